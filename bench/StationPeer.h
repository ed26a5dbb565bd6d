#ifndef bench_StationPeer_h
#define bench_StationPeer_h

#include "Peer.h"

#include <StnEvent/StnEventFile.h>

namespace StnBench {

/// Writes a station file.
class StationWriter : public EventWriter {
 public:
  StationWriter(const std::string& path, int compression) : fFile(path.c_str(), "RECREATE", "", compression) {}
  void Prepare(TStnEvent& event) override { *fEvent = event; }
  void Write() override;
  void Close() override { fFile.Close(); }

 private:
  std::unique_ptr<TStnEvent> fOwnedEvent{new TStnEvent};
  TStnEvent* fEvent = fOwnedEvent.get();  // the file keeps the address of this variable
  TStnEventFile fFile;
};

/// Reads a station file.
class StationReader : public EventReader {
 public:
  StationReader(const std::string& path, Peer::Part) : fFile(path.c_str()) {}
  ~StationReader() override { delete fEvent; }
  ULong64_t ReadEvent() override;
  UInt_t ReadHeader() override;
  Long64_t GetBytesRead() const override { return fFile.GetBytesRead(); }

 private:
  TStnEvent* fEvent = nullptr;
  TStnEventFile fFile;
};

/// Bytes that the baskets of the event headers take in a station file, with the key of each.
Long64_t GetHeaderBasketBytes(const std::string& path);

}  // namespace StnBench

#endif
