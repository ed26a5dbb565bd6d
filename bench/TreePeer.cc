#include "TreePeer.h"

#include <TTree.h>

#include <stdexcept>

namespace StnBench {
namespace {

const char* const kTreeName = "flat";

/// ROOT's letter for a type in the description of a leaf.
template <class T>
char GetLetter();
template <>
char GetLetter<std::uint8_t>() {
  return 'b';
}
template <>
char GetLetter<std::uint16_t>() {
  return 's';
}
template <>
char GetLetter<std::int32_t>() {
  return 'I';
}
template <>
char GetLetter<std::uint32_t>() {
  return 'i';
}
template <>
char GetLetter<std::uint64_t>() {
  return 'l';
}
template <>
char GetLetter<float>() {
  return 'F';
}

/// Makes a branch for a field of any kind.
struct BranchMaker {
  template <class T>
  void operator()(const char* name, T& value) const {
    fTree->Branch(name, &value, (std::string(name) + "/" + GetLetter<T>()).c_str());
  }
  template <class T, std::size_t N>
  void operator()(const char* name, std::array<T, N>& values) const {
    const std::string leaf = std::string(name) + "[" + std::to_string(N) + "]/" + GetLetter<T>();
    fTree->Branch(name, values.data(), leaf.c_str());
  }
  template <class T>
  void operator()(const char* name, std::vector<T>& values) const {
    fTree->Branch(name, &values);
  }
  TTree* fTree;
};

}  // namespace

TreeWriter::TreeWriter(const std::string& path, int compression)
    : fFile(path.c_str(), "RECREATE", "", compression), fTree(new TTree(kTreeName, "flat events")) {
  fEvent.ForEachField(BranchMaker{fTree});
}

void TreeWriter::Write() {
  if (fTree->Fill() <= 0) throw std::runtime_error("an entry was not written");
}

void TreeWriter::Close() {
  fFile.Write();
  fFile.Close();
}

TreeReader::TreeReader(const std::string& path, Peer::Part part)
    : fFile(path.c_str()), fTree(fFile.Get<TTree>(kTreeName)) {
  const auto bind = [this](const char* name, auto& value) {
    fTree->SetBranchStatus(name, true);
    Bind(name, value);
  };
  fTree->SetBranchStatus("*", false);
  if (part == Peer::kHeaders)
    fEvent.ForEachHeaderField(bind);
  else
    fEvent.ForEachField(bind);
}

template <class T>
void TreeReader::Bind(const char* name, T& value) {
  fTree->SetBranchAddress(name, static_cast<void*>(&value));
}

template <class T>
void TreeReader::Bind(const char* name, std::vector<T>& values) {
  fVectors.push_back(&values);
  fTree->SetBranchAddress(name, static_cast<void*>(&fVectors.back()));
}

void TreeReader::ReadEntry() {
  if (fTree->GetEntry(fEntry++) <= 0) throw std::runtime_error("an entry was not read");
}

ULong64_t TreeReader::ReadEvent() {
  ReadEntry();
  return fEvent.SumSamples();
}

UInt_t TreeReader::ReadHeader() {
  ReadEntry();
  return fEvent.GetEventNo();
}

}  // namespace StnBench
