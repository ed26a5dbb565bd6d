#include "StationPeer.h"

#include "Workload.h"

#include <TBranch.h>
#include <TTree.h>

#include <numeric>
#include <stdexcept>

namespace StnBench {

void StationWriter::Write() {
  if (!fFile.WriteEvent(&fEvent)) throw std::runtime_error("an event was not written");
}

ULong64_t StationReader::ReadEvent() {
  if (!fFile.ReadEvent(&fEvent)) throw std::runtime_error("an event was not read");
  return SumSamples(*fEvent);
}

UInt_t StationReader::ReadHeader() {
  TStnEventHeader* header = nullptr;
  if (!fFile.ReadEventHeader(&header)) throw std::runtime_error("a header was not read");
  return header->GetEventNo();
}

Long64_t GetHeaderBasketBytes(const std::string& path) {
  TFile file(path.c_str());
  TBranch* branch = file.Get<TTree>("StnEventTree")->GetBranch("fEventHeader");
  const Int_t* bytes = branch->GetBasketBytes();
  return std::accumulate(bytes, bytes + branch->GetWriteBasket(), Long64_t(0));
}

}  // namespace StnBench
