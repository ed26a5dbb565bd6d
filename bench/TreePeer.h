#ifndef bench_TreePeer_h
#define bench_TreePeer_h

#include "FlatEvent.h"
#include "Peer.h"

#include <TFile.h>

#include <list>

class TTree;

namespace StnBench {

/// Writes flat events to a tree with a branch for each field, its baskets as ROOT makes them.
class TreeWriter : public EventWriter {
 public:
  TreeWriter(const std::string& path, int compression);
  void Prepare(TStnEvent& event) override { fEvent.Fill(event); }
  void Write() override;
  void Close() override;

 private:
  FlatEvent fEvent;
  TFile fFile;
  TTree* fTree;
};

/// Reads them back.
class TreeReader : public EventReader {
 public:
  TreeReader(const std::string& path, Peer::Part part);
  ULong64_t ReadEvent() override;
  UInt_t ReadHeader() override;
  Long64_t GetBytesRead() const override { return fFile.GetBytesRead(); }

 private:
  template <class T>
  void Bind(const char* name, T& value);
  template <class T>
  void Bind(const char* name, std::vector<T>& values);
  void ReadEntry();

  FlatEvent fEvent;
  TFile fFile;
  TTree* fTree;
  std::list<void*> fVectors;  // the tree keeps the addresses of these pointers
  Long64_t fEntry = 0;
};

}  // namespace StnBench

#endif
