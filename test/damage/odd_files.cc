// odd_files KIND OUT IN [STEP]: makes a file OUT of the good station file IN. Most kinds are what somebody could make with
// plain ROOT who does not know what a station file must have. "large" is a good station file of which each quarter of the
// events begins STEP bytes behind the one before, with free space, for which no disk is needed, between them.

#include "InputFile.h"

#include <TFree.h>
#include <TNamed.h>
#include <TTree.h>

#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using StnTools::InputFile;

struct Paths {
  const char* fOut;
  const char* fIn;
  Long64_t fStep;
};

constexpr UInt_t kNParts = 4;

using Maker = void (*)(const Paths& paths);
/// Adds branches to a tree and fills it, with the events of a file.
using Filler = void (*)(TTree& tree, InputFile& events);

template <class Record>
void CopyRecord(TFile& in, TFile& out, const char* name) {
  const std::unique_ptr<Record> record(in.Get<Record>(name));
  out.WriteTObject(record.get(), name);
}

void CopyRecords(TFile& in, TFile& out) {
  CopyRecord<TStnRunHeader>(in, out, "RunHeader");
  CopyRecord<TStnRunTrailer>(in, out, "RunTrailer");
}

void LeaveOutHeaders(const Paths& paths) {
  TFile in(paths.fIn);
  TFile out(paths.fOut, "RECREATE", "", in.GetCompressionSettings());
  auto* tree = in.Get<TTree>("StnEventTree");
  tree->SetBranchStatus("fEventHeader", false);
  tree->CloneTree(-1, "fast");
  CopyRecords(in, out);
  out.Write();
}

/// A tree of the right name with branches of someone else's.
template <Filler kFill>
void MakeTree(const Paths& paths) {
  InputFile events("odd_files", paths.fIn);
  TFile in(paths.fIn);
  TFile out(paths.fOut, "RECREATE", "", in.GetCompressionSettings());
  CopyRecords(in, out);
  auto* tree = new TTree("StnEventTree", "");
  kFill(*tree, events);
  out.Write();
}

/// The events in one branch, or divided as far as ROOT can.
template <int kSplitLevel>
void FillEvents(TTree& tree, InputFile& events) {
  TStnEvent::Class()->SetCanSplit(1);
  TStnEvent* event = events.ReadEvent(0);
  tree.Branch("StnEvent", &event, 32000, kSplitLevel);
  for (UInt_t entry = 0; entry < events.GetNEvents(); ++entry) {
    event = events.ReadEvent(entry);
    tree.Fill();
  }
}

void FillNumbers(TTree& tree, InputFile& events) {
  Double_t number = -1;
  tree.Branch("StnEvent", &number);
  tree.Branch("fEventHeader", &number);
  for (UInt_t entry = 0; entry < events.GetNEvents(); ++entry)
    tree.Fill();
}

void FillNames(TTree& tree, InputFile& events) {
  TNamed name("not", "an event");
  tree.Branch("StnEvent", &name);
  tree.Branch("fEventHeader", &name);
  for (UInt_t entry = 0; entry < events.GetNEvents(); ++entry)
    tree.Fill();
}

/// Events where headers should be, and names where events should be.
void FillEventsForHeaders(TTree& tree, InputFile& events) {
  TNamed name("not", "an event");
  TStnEvent* event = events.ReadEvent(0);
  tree.Branch("fEventHeader", &event, 32000, 0);
  tree.Branch("StnEvent", &event, 32000, 0);
  for (UInt_t entry = 0; entry < events.GetNEvents(); ++entry) {
    event = events.ReadEvent(entry);
    tree.Fill();
  }
}

/// What comes now goes behind this place. What was written must all be on disk.
void GoTo(TFile& file, Long64_t place) {
  constexpr Long64_t room = 1000000000;  // which ROOT, too, adds when it needs some
  auto* last = static_cast<TFree*>(file.GetListOfFree()->Last());
  last->SetFirst(place);
  last->SetLast(place + room);
  file.SetEND(place);
}

struct Gap {
  Long64_t fBegin;
  Long64_t fEnd;
};

/// Copies all events, in parts that begin at multiples of `step`. Answers with what lies between them.
std::vector<Gap> CopyInParts(InputFile& events, TStnEventFile& out, Long64_t step) {
  std::vector<Gap> gaps;
  TStnEvent* event = nullptr;
  for (UInt_t entry = 0; entry < events.GetNEvents(); ++entry) {
    if (entry > 0 && entry % (events.GetNEvents() / kNParts) == 0) {
      out.Get<TTree>("StnEventTree")->FlushBaskets();
      const Long64_t place = step * static_cast<Long64_t>(gaps.size() + 1);
      gaps.push_back({out.GetEND(), place});
      GoTo(out, place);
    }
    event = events.ReadEvent(entry);
    out.WriteEvent(&event);
  }
  return gaps;
}

/// Makes free space of the gaps, as if something had been deleted there.
void GiveUp(const char* path, const std::vector<Gap>& gaps) {
  TFile file(path, "UPDATE");
  for (const Gap& gap : gaps)
    file.MakeFree(gap.fBegin, gap.fEnd - 1);
}

void MakeLarge(const Paths& paths) {
  InputFile events("odd_files", paths.fIn);
  TStnEventFile out(paths.fOut, "RECREATE", "", StnTools::GetCompression(paths.fIn));
  out.WriteRunHeader(events.ReadRunHeader().get());
  const std::vector<Gap> gaps = CopyInParts(events, out, paths.fStep);
  out.WriteRunTrailer(events.ReadRunTrailer().get());
  out.Close();
  GiveUp(paths.fOut, gaps);
}

const std::map<std::string, Maker> kMakers = {
    {"no-headers", LeaveOutHeaders},
    {"numbers", MakeTree<FillNumbers>},
    {"names", MakeTree<FillNames>},
    {"events-for-headers", MakeTree<FillEventsForHeaders>},
    {"one-branch", MakeTree<FillEvents<0>>},
    {"many-branches", MakeTree<FillEvents<99>>},
    {"large", MakeLarge},
};

}  // namespace

int main(int argc, char** argv) {
  const auto maker = argc > 3 ? kMakers.find(argv[1]) : kMakers.end();
  if (maker == kMakers.end()) {
    std::cerr << "odd_files KIND OUT IN [STEP]; the kinds are in the source" << std::endl;
    return 2;
  }
  maker->second({argv[2], argv[3], argc > 4 ? std::stoll(argv[4]) : 0});
  return 0;
}
