#ifndef bench_NTuplePeer_h
#define bench_NTuplePeer_h

#include "FlatEvent.h"
#include "Peer.h"

#include <ROOT/RNTupleReader.hxx>
#include <ROOT/RNTupleWriter.hxx>

namespace StnBench {

/// Writes flat events to an RNTuple with the fields of the flat tree.
class NTupleWriter : public EventWriter {
 public:
  NTupleWriter(const std::string& path, int compression);
  void Prepare(TStnEvent& event) override { fEvent.Fill(event); }
  void Write() override { fWriter->Fill(*fEntry); }
  void Close() override { fWriter->CommitDataset(); }

 private:
  FlatEvent fEvent;
  std::unique_ptr<ROOT::RNTupleWriter> fWriter;
  std::unique_ptr<ROOT::REntry> fEntry;
};

/// Reads them back.
class NTupleReader : public EventReader {
 public:
  NTupleReader(const std::string& path, Peer::Part part);
  ULong64_t ReadEvent() override;
  UInt_t ReadHeader() override;

 private:
  FlatEvent fEvent;
  std::unique_ptr<ROOT::RNTupleReader> fReader;
  std::unique_ptr<ROOT::REntry> fEntry;
  ROOT::NTupleSize_t fNext = 0;
};

}  // namespace StnBench

#endif
