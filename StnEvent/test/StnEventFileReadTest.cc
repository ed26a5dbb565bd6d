#include "EventFiles.h"
#include "LogCapture.h"

#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <TBasket.h>
#include <TBranch.h>
#include <TClass.h>
#include <TKey.h>
#include <TNamed.h>
#include <TROOT.h>
#include <TTree.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>

namespace {

const char* const kNoTree = "ERR:TStnEventFile::GetTree() - no Tree with name 'StnEventTree' found !\n";
const char* const kNoBranch = "ERR:TStnEventFile::GetBranches() - no branch with name 'StnEvent' found !\n";
const char* const kNoHeaderBranch = "ERR:TStnEventFile::GetBranches() - no branch with name 'fEventHeader' found !\n";
const char* const kEventEnd = "WRN:TStnEventFile::ReadEvent() - end of file reached !\n";
const char* const kHeaderEnd = "ERR:TStnEventFile::ReadEventHeader() - end of file reached !\n";

// A file of ROOT's own with the tree "StnEventTree", to which `add_branches` gives its branches.
template <class AddBranches>
void WritePlainFile(const char* name, AddBranches add_branches) {
  TFile file(name, "RECREATE");
  TTree tree("StnEventTree", "");
  add_branches(tree);
  file.Write();
}

class StnEventFileReadTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { WriteFile("four.root", 4); }

  OpenFile fFile{"four.root"};
  TStnEvent fEvent;
  TStnEvent* fAddress = &fEvent;
  TStnEventHeader* fHeader = nullptr;
  LogCapture fLog;
};

TEST_F(StnEventFileReadTest, ReadsEveryEvent) {
  for (UInt_t number = 0; number < 4; ++number) {
    EXPECT_TRUE(fFile.ReadEvent(&fAddress));
    EXPECT_EQ(fAddress, &fEvent);
    EXPECT_TRUE(IsEvent(fEvent, number));
  }
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileReadTest, ReportsTheEndAndEmptiesTheEvent) {
  for (int i = 0; i < 4; ++i)
    fFile.ReadEvent(&fAddress);
  EXPECT_FALSE(fFile.ReadEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), kEventEnd);
  EXPECT_EQ(Member<TStnEventHeader*>(fEvent, "fEventHeader"), nullptr);
  EXPECT_EQ(Member<Int_t>(fFile, "fCurrentEntry"), 4);
}

TEST_F(StnEventFileReadTest, ReportsTheEndOfATreeWithoutEntries) {
  WritePlainFile("empty.root", [this](TTree& tree) {
    TStnEvent::Class()->SetCanSplit(1);
    tree.Branch("StnEvent", "TStnEvent", &fAddress, 500, 1);
  });
  OpenFile file("empty.root");
  EXPECT_FALSE(file.ReadEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), kEventEnd);
  EXPECT_FALSE(file.ReadEventHeader(&fHeader));
  EXPECT_EQ(fLog.Take(), kHeaderEnd);
}

TEST_F(StnEventFileReadTest, ReportsAMissingTreeAndLeavesTheEvent) {
  WriteFile("none.root", 0);
  OpenFile file("none.root");
  FillEvent(fEvent, 1);
  EXPECT_FALSE(file.ReadEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), kNoTree);
  EXPECT_FALSE(file.ReadEventHeader(&fHeader));
  EXPECT_EQ(fLog.Take(), kNoTree);
  EXPECT_TRUE(IsEvent(fEvent, 1));
}

TEST_F(StnEventFileReadTest, TakesNoTreeThatWasLostToZeros) {
  {
    OpenFile file("lost.root", "RECREATE", "", 0);
    file.WriteEvent(&fAddress);
    file.Close();
  }
  const Long64_t begin = OpenFile("lost.root").GetKey("StnEventTree")->GetSeekKey();
  const std::string zeros(200, '\0');
  std::fstream("lost.root", std::ios::in | std::ios::out | std::ios::binary).seekp(begin).write(zeros.data(), 200);
  OpenFile file("lost.root");
  EXPECT_FALSE(file.ReadEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), kNoTree);
}

TEST_F(StnEventFileReadTest, LooksForAMissingTreeAgain) {
  OpenFile file("late.root", "RECREATE");
  EXPECT_FALSE(file.ReadEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), kNoTree);
  TTree tree("StnEventTree", "");
  EXPECT_FALSE(file.ReadEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), kNoBranch);
}

TEST_F(StnEventFileReadTest, ReportsAMissingBranchAndLeavesTheEvent) {
  WritePlainFile("branch.root", [](TTree&) {});
  OpenFile file("branch.root");
  FillEvent(fEvent, 1);
  EXPECT_FALSE(file.ReadEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), kNoBranch);
  EXPECT_FALSE(file.ReadEventHeader(&fHeader));
  EXPECT_EQ(fLog.Take(), kNoBranch);
  EXPECT_TRUE(IsEvent(fEvent, 1));
  EXPECT_NE(Member<TTree*>(file, "fTree"), nullptr);
}

TEST_F(StnEventFileReadTest, TakesNoBranchOfAnotherClass) {
  WritePlainFile("branch.root", [](TTree& tree) {
    Int_t value = 5;
    tree.Branch("StnEvent", &value, "value/I");
    tree.Fill();
  });
  OpenFile file("branch.root");
  EXPECT_FALSE(file.ReadEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), kNoBranch);
}

TEST_F(StnEventFileReadTest, TakesNoHeaderBranchFromOutsideTheEvents) {
  WritePlainFile("elsewhere.root", [this](TTree& tree) {
    tree.Branch("fEventHeader", "TStnEvent", &fAddress, 500, 0);
    tree.Branch("StnEvent", "TStnEvent", &fAddress, 500, 0);
    tree.Fill();
  });
  OpenFile file("elsewhere.root");
  EXPECT_FALSE(file.ReadEventHeader(&fHeader));
  EXPECT_EQ(fLog.Take(), kNoHeaderBranch);
}

TEST_F(StnEventFileReadTest, ReportsAMissingHeaderBranchAndLeavesTheEvent) {
  WritePlainFile("unsplit.root", [this](TTree& tree) {
    FillEvent(fEvent, 0);
    tree.Branch("StnEvent", "TStnEvent", &fAddress, 500, 0);
    tree.Fill();
  });
  OpenFile file("unsplit.root");
  FillEvent(fEvent, 1);
  EXPECT_FALSE(file.ReadEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), kNoHeaderBranch);
  EXPECT_TRUE(IsEvent(fEvent, 1));
  EXPECT_EQ(Member<TBranch*>(file, "fBranch")->GetAddress(), reinterpret_cast<char*>(&fAddress));
  EXPECT_FALSE(file.ReadEventHeader(&fHeader));
  EXPECT_EQ(fLog.Take(), kNoHeaderBranch);
}

TEST_F(StnEventFileReadTest, ReadsAtAPosition) {
  for (const UInt_t number : {2, 0, 3}) {
    EXPECT_TRUE(fFile.ReadEvent(&fAddress, number));
    EXPECT_TRUE(IsEvent(fEvent, number));
    EXPECT_EQ(fFile.GetCurrentEntryId(), number);
  }
}

TEST_F(StnEventFileReadTest, PositionPastTheEndReportsTheEndAndStays) {
  for (const UInt_t position : {4u, 1000u, 0x7fffffffu}) {
    EXPECT_FALSE(fFile.ReadEvent(&fAddress, position));
    EXPECT_EQ(fLog.Take(), kEventEnd);
    EXPECT_EQ(Member<Int_t>(fFile, "fCurrentEntry"), static_cast<Int_t>(position));
  }
}

TEST_F(StnEventFileReadTest, NegativePositionGivesAnEmptyEvent) {
  FillEvent(fEvent, 3);
  EXPECT_TRUE(fFile.ReadEvent(&fAddress, 0x80000000u));
  EXPECT_EQ(Member<Int_t>(fFile, "fCurrentEntry"), std::numeric_limits<Int_t>::min() + 1);
  EXPECT_EQ(Member<TStnFADCData*>(fEvent, "fFADCData"), nullptr);
  EXPECT_EQ(fEvent.GetEventHeader()->GetEventNo(), 0u);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileReadTest, NegativePositionGivesNoHeader) {
  fFile.Seek(0xffffffffu);
  TStnEventHeader before;
  fHeader = &before;
  EXPECT_FALSE(fFile.ReadEventHeader(&fHeader));
  EXPECT_EQ(fHeader, &before);
  EXPECT_EQ(Member<Int_t>(fFile, "fCurrentEntry"), -1);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileReadTest, MakesAnEventForANullPointer) {
  TStnEvent* made = nullptr;
  ASSERT_TRUE(fFile.ReadEvent(&made));
  std::unique_ptr<TStnEvent> event(made);
  EXPECT_TRUE(IsEvent(*event, 0));
  EXPECT_TRUE(fFile.ReadEvent(&fAddress));
  EXPECT_TRUE(IsEvent(*event, 0));
}

TEST_F(StnEventFileReadTest, LeavesNothingOfTheEventBefore) {
  fFile.ReadEvent(&fAddress, 0);
  EXPECT_NE(Member<TStnT3Data*>(fEvent, "fT3Data"), nullptr);
  fFile.ReadEvent(&fAddress, 1);
  EXPECT_EQ(Member<TStnT3Data*>(fEvent, "fT3Data"), nullptr);
}

TEST_F(StnEventFileReadTest, MakesTheFileTheCurrentDirectory) {
  const auto is_entered = [this] {
    const bool entered = gDirectory == &fFile;
    gROOT->cd();
    return entered;
  };
  gROOT->cd();
  fFile.ReadEvent(&fAddress);
  EXPECT_TRUE(is_entered());
  fFile.ReadEventHeader(&fHeader);
  EXPECT_TRUE(is_entered());
  TStnRunHeader* header = nullptr;
  fFile.ReadRunHeader(&header);
  EXPECT_TRUE(is_entered());
  TStnRunTrailer* trailer = nullptr;
  fFile.ReadRunTrailer(&trailer);
  EXPECT_TRUE(is_entered());
}

TEST_F(StnEventFileReadTest, RaisesTheDebugLevelDuringAReadAboveLevel3) {
  fFile.ReadEvent(&fAddress);
  for (const int level : {3, 4}) {
    FilePrintLevel print_level(level);
    testing::internal::CaptureStdout();
    fFile.ReadEvent(&fAddress);
    EXPECT_EQ(testing::internal::GetCapturedStdout() != "", level == 4);
    EXPECT_EQ(gDebug, 0);
  }
}

TEST_F(StnEventFileReadTest, PutsTheDebugLevelBackAfterARead) {
  FilePrintLevel level(4);
  testing::internal::CaptureStdout();
  gDebug = -1;
  EXPECT_TRUE(fFile.ReadEvent(&fAddress));
  EXPECT_EQ(gDebug, -1);
  EXPECT_FALSE(fFile.ReadEvent(&fAddress, 4));
  EXPECT_EQ(gDebug, -1);
  gDebug = 0;
  testing::internal::GetCapturedStdout();
}

TEST_F(StnEventFileReadTest, LeavesTheDebugLevelWhenReadingHeaders) {
  fFile.ReadEventHeader(&fHeader);
  FilePrintLevel level(4);
  testing::internal::CaptureStdout();
  fFile.ReadEventHeader(&fHeader);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(StnEventFileReadTest, CorrectsEventsButNotHeaders) {
  {
    OpenFile file("label.root", "RECREATE");
    FillEvent(fEvent, 0);
    fEvent.SetGeometryData(nullptr);
    fEvent.GetPixelData()->GetPixelData(3)->SetMirrorNo(6);
    file.WriteEvent(&fAddress);
  }
  OpenFile file("label.root");
  ASSERT_TRUE(file.ReadEventHeader(&fHeader));
  EXPECT_EQ(Member<TStnGeometryData*>(*Member<TStnEvent*>(file, "fPartialEvent"), "fGeometryData"), nullptr);
  ASSERT_TRUE(file.ReadEvent(&fAddress, 0));
  EXPECT_TRUE(IsEvent(fEvent, 0));
}

TEST_F(StnEventFileReadTest, HandsOutOneHeaderForAllEntries) {
  ASSERT_TRUE(fFile.ReadEventHeader(&fHeader));
  TStnEventHeader* const first = fHeader;
  EXPECT_EQ(first->GetEventNo(), 0u);
  for (UInt_t number = 1; number < 4; ++number) {
    fHeader = nullptr;
    ASSERT_TRUE(fFile.ReadEventHeader(&fHeader));
    EXPECT_EQ(fHeader, first);
    EXPECT_EQ(first->GetEventNo(), number);
    EXPECT_EQ(first->GetDeadTimeCounter(3), 10 * number + 2);
    EXPECT_EQ(Member<Version_t>(*first, "fStreamerVersion"), 10);
  }
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileReadTest, HandsOutTheHeaderOfItsOwnEvent) {
  fFile.ReadEventHeader(&fHeader);
  fFile.ReadEventHeader(&fHeader);
  EXPECT_EQ(Member<TStnEvent*>(fFile, "fPartialEvent")->GetEventHeader(), fHeader);
}

TEST_F(StnEventFileReadTest, ReportsTheEndOfHeadersAndLeavesTheLastOne) {
  for (int i = 0; i < 4; ++i)
    fFile.ReadEventHeader(&fHeader);
  TStnEventHeader* const last = fHeader;
  EXPECT_FALSE(fFile.ReadEventHeader(&fHeader));
  EXPECT_EQ(fLog.Take(), kHeaderEnd);
  EXPECT_EQ(fHeader, last);
  EXPECT_EQ(last->GetEventNo(), 3u);
}

TEST_F(StnEventFileReadTest, LeavesTheLastHeaderWhenHeadersAreSwitchedOff) {
  fFile.ReadEventHeader(&fHeader);
  fFile.ReadEventHeader(&fHeader);
  Member<TTree*>(fFile, "fTree")->SetBranchStatus("fEventHeader*", false);
  EXPECT_FALSE(fFile.ReadEventHeader(&fHeader));
  EXPECT_EQ(fHeader->GetEventNo(), 1u);
}

TEST_F(StnEventFileReadTest, SharesThePositionBetweenHeadersAndEvents) {
  fFile.ReadEventHeader(&fHeader);
  ASSERT_TRUE(fFile.ReadEvent(&fAddress));
  EXPECT_TRUE(IsEvent(fEvent, 1));
  EXPECT_EQ(fHeader->GetEventNo(), 0u);
  TStnEventHeader* const before = fHeader;
  ASSERT_TRUE(fFile.ReadEventHeader(&fHeader));
  EXPECT_EQ(fHeader, before);
  EXPECT_EQ(fHeader->GetEventNo(), 2u);
  EXPECT_TRUE(IsEvent(fEvent, 1));
}

TEST_F(StnEventFileReadTest, ReadsTheEventOfTheHeaderJustSeen) {
  fFile.Seek(2);
  fFile.ReadEventHeader(&fHeader);
  ASSERT_TRUE(fFile.ReadEvent(&fAddress, fFile.GetCurrentEntryId()));
  EXPECT_TRUE(IsEvent(fEvent, 2));
}

TEST_F(StnEventFileReadTest, GivesAnEmptyHeaderForAnEventWithoutOne) {
  {
    OpenFile file("headers.root", "RECREATE");
    for (const bool has_header : {false, true, false, true}) {
      fEvent.Clear();
      if (has_header) fEvent.GetEventHeader()->SetEventNo(7);
      file.WriteEvent(&fAddress);
    }
  }
  OpenFile file("headers.root");
  ASSERT_TRUE(file.ReadEventHeader(&fHeader));
  TStnEventHeader* const first = fHeader;
  EXPECT_EQ(first->GetEventNo(), 0u);
  for (const UInt_t number : {7, 0, 7}) {
    ASSERT_TRUE(file.ReadEventHeader(&fHeader));
    EXPECT_EQ(fHeader, first);
    EXPECT_EQ(first->GetEventNo(), number);
    EXPECT_EQ(Member<Version_t>(*first, "fStreamerVersion"), number == 0 ? 0 : 10);
  }
}

TEST_F(StnEventFileReadTest, HeaderOutlivesTheFile) {
  {
    OpenFile file("four.root");
    file.Seek(3);
    file.ReadEventHeader(&fHeader);
    file.Close();
  }
  EXPECT_EQ(fHeader->GetEventNo(), 3u);
}

TEST_F(StnEventFileReadTest, HeaderScanReadsOnlyTheHeaders) {
  WriteFile("many.root", 300);
  OpenFile file("many.root");
  ASSERT_TRUE(file.GetTree());
  TBranch* branch = Member<TTree*>(file, "fTree")->GetBranch("fEventHeader");
  ASSERT_GT(branch->GetWriteBasket(), 10);
  Long64_t n_bytes = 0;
  for (int i = 0; i < branch->GetWriteBasket(); ++i)
    n_bytes += branch->GetBasketBytes()[i];
  const Long64_t before = file.GetBytesRead();
  while (file.ReadEventHeader(&fHeader)) {
  }
  EXPECT_EQ(fHeader->GetEventNo(), 299u);
  EXPECT_EQ(file.GetBytesRead() - before, n_bytes);
}

TEST_F(StnEventFileReadTest, DamagedHeaderGivesNoHeader) {
  WriteFile("damaged.root", 40);
  Long64_t where = 0;
  Long64_t first_entry = 0;
  {
    OpenFile file("damaged.root");
    file.GetTree();
    TBranch* branch = Member<TTree*>(file, "fTree")->GetBranch("fEventHeader");
    where = branch->GetBasketSeek(2);
    first_entry = branch->GetBasketEntry()[2];
  }
  std::fstream bytes("damaged.root", std::ios::in | std::ios::out | std::ios::binary);
  bytes.seekp(where);
  bytes << std::string(40, '\xff');
  bytes.close();

  QuietRoot quiet;
  OpenFile file("damaged.root");
  file.Seek(2);
  file.ReadEventHeader(&fHeader);
  TStnEventHeader* const before = fHeader;
  file.Seek(first_entry);
  EXPECT_FALSE(file.ReadEventHeader(&fHeader));
  EXPECT_EQ(fHeader, before);
  EXPECT_EQ(before->GetEventNo(), 2u);
  EXPECT_EQ(Member<Int_t>(file, "fCurrentEntry"), first_entry);
  file.Seek(1);
  ASSERT_TRUE(file.ReadEventHeader(&fHeader));
  EXPECT_EQ(fHeader, before);
  EXPECT_EQ(before->GetEventNo(), 1u);
}

TEST_F(StnEventFileReadTest, UsesNoHeaderBranchLeftFromATreeBefore) {
  fFile.GetTree();
  Member<TBranch*>(fFile, "fEventHeaderBranch") = Member<TTree*>(fFile, "fTree")->GetBranch("fT3Data");
  ASSERT_TRUE(fFile.ReadEventHeader(&fHeader));
  EXPECT_STREQ(Member<TBranch*>(fFile, "fEventHeaderBranch")->GetName(), "fEventHeader");
}

TEST_F(StnEventFileReadTest, NullHeaderEndsTheProcess) {
  EXPECT_DEATH(
      {
        gSystem->ResetSignals();
        fFile.ReadEventHeader(nullptr);
      },
      "Assertion `header != __null' failed");
}

// A record that tells of its end.
template <class Record>
struct Mortal : Record {
  explicit Mortal(bool* is_dead) : fIsDead(is_dead) {}
  ~Mortal() override { *fIsDead = true; }
  bool* fIsDead;
};

TEST_F(StnEventFileReadTest, ReadsTheRunHeaderInPlaceOfTheObjectBefore) {
  {
    OpenFile file("records.root", "RECREATE");
    TStnRunHeader header;
    header.SetRunNo(12);
    file.WriteRunHeader(&header);
  }
  OpenFile file("records.root");
  bool is_dead = false;
  TStnRunHeader* header = new Mortal<TStnRunHeader>(&is_dead);
  EXPECT_TRUE(file.ReadRunHeader(&header));
  EXPECT_TRUE(is_dead);
  EXPECT_EQ(header->GetRunNo(), 12u);
  EXPECT_TRUE(file.ReadRunHeader(&header));
  EXPECT_EQ(header->GetRunNo(), 12u);
  EXPECT_EQ(fLog.Take(), "");
  delete header;
}

TEST_F(StnEventFileReadTest, ReadsTheRunTrailerInPlaceOfTheObjectBefore) {
  {
    OpenFile file("records.root", "RECREATE");
    TStnRunTrailer trailer;
    trailer.SetNEvents(13);
    file.WriteRunTrailer(&trailer);
  }
  OpenFile file("records.root");
  bool is_dead = false;
  TStnRunTrailer* trailer = new Mortal<TStnRunTrailer>(&is_dead);
  EXPECT_TRUE(file.ReadRunTrailer(&trailer));
  EXPECT_TRUE(is_dead);
  EXPECT_EQ(trailer->GetNEvents(), 13u);
  EXPECT_EQ(fLog.Take(), "");
  delete trailer;
}

TEST_F(StnEventFileReadTest, ReportsMissingRecordsAndDeletesTheObjectsBefore) {
  bool is_header_dead = false;
  bool is_trailer_dead = false;
  TStnRunHeader* header = new Mortal<TStnRunHeader>(&is_header_dead);
  TStnRunTrailer* trailer = new Mortal<TStnRunTrailer>(&is_trailer_dead);
  EXPECT_FALSE(fFile.ReadRunHeader(&header));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEventFile::ReadRunHeader() - reading 'RunHeader' from file was unsuccessful !\n");
  EXPECT_FALSE(fFile.ReadRunTrailer(&trailer));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEventFile::ReadRunTrailer() - reading 'RunTrailer' from file was unsuccessful !\n");
  EXPECT_TRUE(is_header_dead && is_trailer_dead);
  EXPECT_EQ(header, nullptr);
  EXPECT_EQ(trailer, nullptr);
}

TEST_F(StnEventFileReadTest, FindsNothingOnAClosedFile) {
  fFile.GetNEvents();
  fFile.Close();
  QuietRoot quiet;
  TStnRunHeader* header = nullptr;
  TStnRunTrailer* trailer = nullptr;
  EXPECT_FALSE(fFile.ReadEvent(&fAddress));
  EXPECT_FALSE(fFile.ReadEventHeader(&fHeader));
  EXPECT_FALSE(fFile.ReadRunHeader(&header));
  EXPECT_FALSE(fFile.ReadRunTrailer(&trailer));
  EXPECT_EQ(fLog.Take(),
            std::string(kNoTree) + kNoTree +
                "ERR:TStnEventFile::ReadRunHeader() - reading 'RunHeader' from file was unsuccessful !\n"
                "ERR:TStnEventFile::ReadRunTrailer() - reading 'RunTrailer' from file was unsuccessful !\n");
}

TEST_F(StnEventFileReadTest, TakesNoRecordThatGoesOnBeyondTheEndOfTheFile) {
  Long64_t end_of_record = 0;
  {
    OpenFile file("records.root", "RECREATE");
    TStnRunTrailer trailer;
    file.WriteRunTrailer(&trailer);
    end_of_record = file.GetEND();
  }
  QuietRoot quiet;
  for (const bool is_whole : {true, false}) {
    std::filesystem::resize_file("records.root", is_whole ? end_of_record : end_of_record - 1);
    OpenFile file("records.root");
    TStnRunTrailer* trailer = nullptr;
    EXPECT_EQ(file.ReadRunTrailer(&trailer), is_whole);
    delete trailer;
  }
}

TEST_F(StnEventFileReadTest, TakesNoRecordOfAnotherClass) {
  {
    TFile plain("records.root", "RECREATE");
    TStnRunHeader header;
    header.Write("RunTrailer");
    TNamed("RunHeader", "").Write();
  }
  OpenFile file("records.root");
  TStnRunHeader* header = nullptr;
  TStnRunTrailer* trailer = nullptr;
  EXPECT_FALSE(file.ReadRunHeader(&header));
  EXPECT_FALSE(file.ReadRunTrailer(&trailer));
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnEventFile::ReadRunHeader() - reading 'RunHeader' from file was unsuccessful !\n"
            "ERR:TStnEventFile::ReadRunTrailer() - reading 'RunTrailer' from file was unsuccessful !\n");
}

}  // namespace
