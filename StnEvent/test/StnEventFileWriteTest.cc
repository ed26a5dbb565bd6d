#include "EventFiles.h"
#include "LogCapture.h"

#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <TBranch.h>
#include <TKey.h>
#include <TList.h>
#include <TNamed.h>
#include <TROOT.h>
#include <TTree.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <new>

#include <sys/resource.h>

namespace {

using testing::HasSubstr;

/// A trace that does something when it is written, and so in the middle of a `TTree::Fill`.
class Probe : public TFADCData {
 public:
  explicit Probe(std::function<void()> action) : TFADCData(*MakeTrace(2, 1, 5)), fAction(std::move(action)) {}
  void Streamer(TBuffer& buffer) override {
    fAction();
    TFADCData::Streamer(buffer);
  }

 private:
  std::function<void()> fAction;
};

class StnEventFileWriteTest : public testing::Test {
 protected:
  void SetUp() override {
    gSystem->Unlink(kName);
    FillEvent(fEvent, 0);
  }

  void AddProbe(std::function<void()> action) { fEvent.GetFADCData()->AddFADCData(new Probe(std::move(action)), true); }

  // The event numbers on file.
  std::vector<UInt_t> ReadNumbers() {
    std::vector<UInt_t> numbers;
    TStnEventFile file(kName);
    TStnEventHeader* header = nullptr;
    const UInt_t n_events = file.GetNEvents();
    while (numbers.size() < n_events && file.ReadEventHeader(&header))
      numbers.push_back(header->GetEventNo());
    return numbers;
  }

  static constexpr const char* kName = "write.root";
  TStnEvent fEvent;
  TStnEvent* fAddress = &fEvent;
  LogCapture fLog;
};

TEST_F(StnEventFileWriteTest, StoresTheStateOfTheTimeOfEachCall) {
  {
    OpenFile file(kName, "RECREATE");
    for (const UInt_t number : {3, 1, 2}) {
      fEvent.GetEventHeader()->SetEventNo(number);
      EXPECT_TRUE(file.WriteEvent(&fAddress));
    }
  }
  EXPECT_EQ(ReadNumbers(), (std::vector<UInt_t>{3, 1, 2}));
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileWriteTest, StoresWholeEvents) {
  WriteFile(kName, 20);
  EXPECT_EQ(CountWholeEvents(kName), 20u);
}

TEST_F(StnEventFileWriteTest, StoresSubObjectsThatAreNotThereAsNull) {
  {
    OpenFile file(kName, "RECREATE");
    fEvent.Clear();
    fEvent.GetEventHeader()->SetStnNo(5);
    file.WriteEvent(&fAddress);
  }
  TStnEventFile file(kName);
  TStnEvent event;
  TStnEvent* address = &event;
  ASSERT_TRUE(file.ReadEvent(&address));
  for (const char* name : {"fFADCData", "fPixelList", "fTriggerData", "fT3Data", "fGeometryData"})
    EXPECT_EQ(Member<TObject*>(event, name), nullptr) << name;
}

TEST_F(StnEventFileWriteTest, RefusesAnotherEvent) {
  {
    OpenFile file(kName, "RECREATE");
    file.WriteEvent(&fAddress);
    TStnEvent other;
    TStnEvent* other_address = &other;
    EXPECT_FALSE(file.WriteEvent(&other_address));
    EXPECT_EQ(fLog.Take(), "ERR:TStnEventFile::WriteEvent() - address of data buffer " + Hex(&fEvent) +
                               " was changed !\nERR: -----> No data written to file !\n");
    EXPECT_EQ(Member<TTree*>(file, "fTree")->GetEntries(), 1);
    EXPECT_TRUE(file.WriteEvent(&fAddress));
  }
  EXPECT_EQ(ReadNumbers().size(), 2u);
}

TEST_F(StnEventFileWriteTest, RefusesAnotherEventInTheSameVariable) {
  OpenFile file(kName, "RECREATE");
  file.WriteEvent(&fAddress);
  TStnEvent other;
  fAddress = &other;
  EXPECT_FALSE(file.WriteEvent(&fAddress));
  fAddress = &fEvent;
  EXPECT_TRUE(file.WriteEvent(&fAddress));
}

TEST_F(StnEventFileWriteTest, TakesTheSameEventFromAnotherVariable) {
  {
    OpenFile file(kName, "RECREATE");
    file.WriteEvent(&fAddress);
    TStnEvent* other = &fEvent;
    fEvent.GetEventHeader()->SetEventNo(9);
    EXPECT_TRUE(file.WriteEvent(&other));
  }
  EXPECT_EQ(ReadNumbers(), (std::vector<UInt_t>{0, 9}));
}

TEST_F(StnEventFileWriteTest, KeepsReadingTheFirstVariable) {
  {
    OpenFile file(kName, "RECREATE");
    TStnEvent* first = &fEvent;
    file.WriteEvent(&first);
    TStnEvent other;
    FillEvent(other, 8);
    first = &other;
    TStnEvent* second = &fEvent;
    EXPECT_TRUE(file.WriteEvent(&second));
    first = &fEvent;
  }
  EXPECT_EQ(ReadNumbers(), (std::vector<UInt_t>{0, 8}));
}

TEST_F(StnEventFileWriteTest, NullAtFirstTurnsTheCheckOff) {
  {
    OpenFile file(kName, "RECREATE");
    TStnEvent* event = nullptr;
    EXPECT_TRUE(file.WriteEvent(&event));
    EXPECT_EQ(Member<TStnEvent*>(file, "fEventBuffer"), nullptr);
    std::unique_ptr<TStnEvent> made(event);
    EXPECT_NE(made, nullptr);
    event = &fEvent;
    EXPECT_TRUE(file.WriteEvent(&event));
    TStnEvent other;
    FillEvent(other, 4);
    event = &other;
    EXPECT_TRUE(file.WriteEvent(&event));
    event = &fEvent;
  }
  EXPECT_EQ(ReadNumbers(), (std::vector<UInt_t>{0, 0, 4}));
  EXPECT_EQ(fLog.Take(), "");
}

/// A file for whose trees there is no memory.
class FullFile : public OpenFile {
 public:
  using OpenFile::OpenFile;
  void Append(TObject* object, Bool_t replace) override {
    if (fIsFull) throw std::bad_alloc();
    OpenFile::Append(object, replace);
  }
  bool fIsFull = true;
};

TEST_F(StnEventFileWriteTest, ReportsATreeThatCantBeMade) {
  FullFile file(kName, "RECREATE");
  EXPECT_FALSE(file.WriteEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEventFile::WriteEvent() - could not create TTree !\n");
  EXPECT_EQ(Member<TStnEvent*>(file, "fEventBuffer"), &fEvent);
  EXPECT_EQ(Member<TTree*>(file, "fTree"), nullptr);
  file.fIsFull = false;
  EXPECT_TRUE(file.WriteEvent(&fAddress));
  EXPECT_NE(Member<TTree*>(file, "fTree"), nullptr);
}

TEST_F(StnEventFileWriteTest, IsSilentAtLevel1) {
  OpenFile file(kName, "RECREATE");
  FilePrintLevel level(1);
  file.WriteEvent(&fAddress);
  TStnRunHeader header;
  file.WriteRunHeader(&header);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileWriteTest, LogsTheFirstWriteAtLevel2) {
  OpenFile file(kName, "RECREATE");
  FilePrintLevel level(2);
  file.WriteEvent(&fAddress);
  EXPECT_EQ(fLog.Take(), "INF:TStnEventFile::WriteEvent(): " + Hex(&fEvent) +
                             "\nINF:TStnEventFile::WriteEvent() - set fEventBuffer to 0"
                             "\nINF:TStnEventFile::WriteEvent() - set fTree to " +
                             Hex(Member<TTree*>(file, "fTree")) + "\n");
}

TEST_F(StnEventFileWriteTest, LogsALaterWriteAtLevel2) {
  OpenFile file(kName, "RECREATE");
  file.WriteEvent(&fAddress);
  FilePrintLevel level(2);
  file.WriteEvent(&fAddress);
  EXPECT_EQ(fLog.Take(), "INF:TStnEventFile::WriteEvent(): " + Hex(&fEvent) + "\n");
}

TEST_F(StnEventFileWriteTest, PutsTheLogBackToDecimalNumbers) {
  OpenFile file(kName, "RECREATE");
  FilePrintLevel level(2);
  file.WriteEvent(&fAddress);
  fLog.Take();
  VD_INFO << 16 << std::endl;
  EXPECT_EQ(fLog.Take(), "INF:16\n");
}

TEST_F(StnEventFileWriteTest, PrintsTheTreeAboveLevel2) {
  OpenFile file(kName, "RECREATE");
  file.WriteEvent(&fAddress);
  for (const int level : {2, 3}) {
    FilePrintLevel print_level(level);
    testing::internal::CaptureStdout();
    file.WriteEvent(&fAddress);
    const bool is_printed = testing::internal::GetCapturedStdout().find("*Tree    :StnEventTree") != std::string::npos;
    EXPECT_EQ(is_printed, level == 3);
  }
}

TEST_F(StnEventFileWriteTest, RaisesTheDebugLevelDuringAFillAboveLevel3) {
  Int_t during = -1;
  AddProbe([&] { during = gDebug; });
  OpenFile file(kName, "RECREATE");
  QuietRoot quiet;
  testing::internal::CaptureStdout();
  gDebug = 1;
  for (const int level : {3, 4}) {
    FilePrintLevel print_level(level);
    file.WriteEvent(&fAddress);
    EXPECT_EQ(during, level == 4 ? 2 : 1);
    EXPECT_EQ(gDebug, 1);
  }
  gDebug = 0;
  testing::internal::GetCapturedStdout();
}

TEST_F(StnEventFileWriteTest, IgnoresAnInterruptDuringAFill) {
  AddProbe([] { raise(SIGINT); });
  EXPECT_EXIT(
      {
        signal(SIGINT, SIG_DFL);
        gSystem->ResetSignals();
        OpenFile file(kName, "RECREATE");
        _exit(file.WriteEvent(&fAddress) ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(StnEventFileWriteTest, InterruptsActAsUsualAfterAFill) {
  EXPECT_EXIT(
      {
        signal(SIGINT, SIG_DFL);
        gSystem->ResetSignals();
        OpenFile file(kName, "RECREATE");
        file.WriteEvent(&fAddress);
        raise(SIGINT);
      },
      testing::KilledBySignal(SIGINT), "");
}

TEST_F(StnEventFileWriteTest, EndsAnIgnoringOfInterruptsFromBefore) {
  EXPECT_EXIT(
      {
        signal(SIGINT, SIG_DFL);
        gSystem->ResetSignals();
        gSystem->IgnoreSignal(kSigInterrupt, kTRUE);
        OpenFile file(kName, "RECREATE");
        file.WriteEvent(&fAddress);
        raise(SIGINT);
      },
      testing::KilledBySignal(SIGINT), "");
}

TEST_F(StnEventFileWriteTest, StaysInItsFileWhateverTheTreeSizeLimitIs) {
  const Long64_t limit = TTree::GetMaxTreeSize();
  {
    OpenFile file(kName, "RECREATE");
    file.WriteEvent(&fAddress);
    EXPECT_GT(TTree::GetMaxTreeSize(), 1000000000000000LL);
    TTree::SetMaxTreeSize(1000);
    for (int i = 1; i < 500; ++i)
      file.WriteEvent(&fAddress);
    EXPECT_EQ(gROOT->GetListOfFiles()->FindObject("write_1.root"), nullptr);
    EXPECT_GT(file.GetEND(), 1000);
    EXPECT_EQ(Member<TTree*>(file, "fTree")->GetCurrentFile(), &file);
  }
  TTree::SetMaxTreeSize(limit);
  EXPECT_EQ(ReadNumbers().size(), 500u);
}

TEST_F(StnEventFileWriteTest, MakesTheFileTheCurrentDirectory) {
  OpenFile file(kName, "RECREATE");
  OpenFile other("other.root", "RECREATE");
  file.WriteEvent(&fAddress);
  EXPECT_EQ(gDirectory, &file);
  EXPECT_EQ(Member<TTree*>(file, "fTree")->GetDirectory(), &file);
}

TEST_F(StnEventFileWriteTest, CountsNothing) {
  OpenFile file(kName, "RECREATE");
  for (int i = 0; i < 3; ++i)
    file.WriteEvent(&fAddress);
  EXPECT_EQ(Member<Int_t>(file, "fCurrentEntry"), 0);
  EXPECT_EQ(Member<Int_t>(file, "fNEntries"), 0);
}

// Every file object that can't be written, and every operation that writes.
enum Unwritable { kZombie, kWithoutFile, kClosed, kReadOnly };

std::unique_ptr<OpenFile> MakeUnwritable(Unwritable kind) {
  QuietRoot quiet;
  if (kind == kZombie) return std::make_unique<OpenFile>("/nowhere/x.root", "RECREATE");
  if (kind == kWithoutFile) return std::make_unique<OpenFile>();
  WriteFile("x.root", 1);
  if (kind == kReadOnly) return std::make_unique<OpenFile>("x.root");
  auto file = std::make_unique<OpenFile>("x.root", "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  file->WriteEvent(&address);
  file->Close();
  return file;
}

class UnwritableFile : public testing::TestWithParam<Unwritable> {};

TEST_P(UnwritableFile, RefusesEventsAndRecords) {
  auto file = MakeUnwritable(GetParam());
  LogCapture log;
  TStnEvent event;
  TStnEvent* address = &event;
  TStnRunHeader header;
  TStnRunTrailer trailer;
  const std::string rest = "() - file '" + std::string(file->GetName()) + "' is not open for writing !\n";
  EXPECT_FALSE(file->WriteEvent(&address));
  EXPECT_EQ(log.Take(), "ERR:TStnEventFile::WriteEvent" + rest);
  EXPECT_FALSE(file->WriteRunHeader(&header));
  EXPECT_EQ(log.Take(), "ERR:TStnEventFile::WriteRunHeader" + rest);
  EXPECT_FALSE(file->WriteRunTrailer(&trailer));
  EXPECT_EQ(log.Take(), "ERR:TStnEventFile::WriteRunTrailer" + rest);
  EXPECT_EQ(Member<TTree*>(*file, "fTree"), nullptr);
}
INSTANTIATE_TEST_SUITE_P(Kinds, UnwritableFile, testing::Values(kZombie, kWithoutFile, kClosed, kReadOnly));

TEST_F(StnEventFileWriteTest, RefusesAnEventForATreeThatWasOnlyCounted) {
  WriteFile(kName, 3);
  {
    OpenFile file(kName, "UPDATE");
    EXPECT_EQ(file.GetNEvents(), 3u);
    EXPECT_FALSE(file.WriteEvent(&fAddress));
    EXPECT_EQ(fLog.Take(), "ERR:TStnEventFile::WriteEvent() - no event bound to the tree !\n");
    EXPECT_EQ(file.GetNEvents(), 3u);
  }
  EXPECT_EQ(CountWholeEvents(kName), 3u);
}

TEST_F(StnEventFileWriteTest, RefusesAnEventForATreeOfAnotherKind) {
  {
    TFile plain(kName, "RECREATE");
    Int_t value = 0;
    TTree tree("StnEventTree", "");
    tree.Branch("StnEvent", &value, "value/I");
    plain.Write();
  }
  OpenFile file(kName, "UPDATE");
  file.GetNEvents();
  EXPECT_FALSE(file.WriteEvent(&fAddress));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEventFile::WriteEvent() - no event bound to the tree !\n");
}

TEST_F(StnEventFileWriteTest, AppendsFromTheEventThatWasRead) {
  WriteFile(kName, 3);
  OpenFile file(kName, "UPDATE");
  ASSERT_TRUE(file.ReadEvent(&fAddress));
  EXPECT_TRUE(file.WriteEvent(&fAddress));
  EXPECT_EQ(file.GetNEvents(), 4u);
  EXPECT_EQ(Member<TStnEvent*>(file, "fEventBuffer"), nullptr);
  TStnEvent* null = nullptr;
  EXPECT_TRUE(file.WriteEvent(&null));
  fEvent.Clear();
  Member<TTree*>(file, "fTree")->GetEntry(3);
  TStnEvent::DoCorrections(&fEvent);
  EXPECT_TRUE(IsEvent(fEvent, 0));
}

TEST_F(StnEventFileWriteTest, AppendsTheEventThatHeadersAreReadInto) {
  WriteFile(kName, 3);
  {
    OpenFile file(kName, "UPDATE");
    TStnEventHeader* header = nullptr;
    file.Seek(2);
    ASSERT_TRUE(file.ReadEventHeader(&header));
    header->SetEventNo(70);
    EXPECT_TRUE(file.WriteEvent(&fAddress));
    TStnRunTrailer trailer;
    file.WriteRunTrailer(&trailer);
  }
  EXPECT_EQ(ReadNumbers(), (std::vector<UInt_t>{0, 1, 2, 70}));
}

TEST_F(StnEventFileWriteTest, ClosingAnUpdatedFileLosesEntriesIfNothingReachedTheDisk) {
  WriteFile(kName, 3);
  for (const bool is_read : {false, true}) {
    OpenFile file(kName, "UPDATE");
    if (is_read) file.ReadEvent(&fAddress);
    file.WriteEvent(&fAddress);
    ASSERT_EQ(file.GetBytesWritten(), 0);
  }
  EXPECT_EQ(ReadNumbers(), (std::vector<UInt_t>{0, 1, 2}));
}

TEST_F(StnEventFileWriteTest, ClosingKeepsWhatWasAppendedWhenSomethingElseWasWritten) {
  WriteFile(kName, 3);
  {
    OpenFile file(kName, "UPDATE");
    file.ReadEvent(&fAddress);
    fEvent.GetEventHeader()->SetEventNo(50);
    file.WriteEvent(&fAddress);
    TStnRunTrailer trailer;
    file.WriteRunTrailer(&trailer);
  }
  EXPECT_EQ(ReadNumbers(), (std::vector<UInt_t>{0, 1, 2, 50}));
}

TEST_F(StnEventFileWriteTest, UpdateStartsANewTreeInPlaceOfTheOldOne) {
  WriteFile(kName, 3);
  {
    OpenFile file(kName, "UPDATE");
    fEvent.GetEventHeader()->SetEventNo(60);
    file.WriteEvent(&fAddress);
    TStnRunTrailer trailer;
    file.WriteRunTrailer(&trailer);
  }
  EXPECT_EQ(ReadNumbers(), (std::vector<UInt_t>{60}));
}

TEST_F(StnEventFileWriteTest, UpdateThatWritesNothingKeepsTheFile) {
  WriteFile(kName, 3);
  {
    OpenFile file(kName, "UPDATE");
    TStnRunHeader header;
    file.WriteRunHeader(&header);
  }
  EXPECT_EQ(CountWholeEvents(kName), 3u);
}

TEST_F(StnEventFileWriteTest, WriteRunHeaderReplacesTheEarlierOne) {
  TStnRunHeader header;
  {
    OpenFile file(kName, "RECREATE");
    for (const UInt_t run_no : {5, 6}) {
      OpenFile other("other.root", "RECREATE");
      header.SetRunNo(run_no);
      EXPECT_TRUE(file.WriteRunHeader(&header));
    }
    EXPECT_EQ(gDirectory, &file);
  }
  TStnEventFile file(kName);
  EXPECT_EQ(file.GetNkeys(), 1);
  EXPECT_STREQ(static_cast<TKey*>(file.GetListOfKeys()->First())->GetClassName(), "TStnRunHeader");
  TStnRunHeader* read = nullptr;
  ASSERT_TRUE(file.ReadRunHeader(&read));
  EXPECT_EQ(read->GetRunNo(), 6u);
  delete read;
}

TEST_F(StnEventFileWriteTest, WriteRunTrailerReplacesTheEarlierOne) {
  TStnRunTrailer trailer;
  {
    OpenFile file(kName, "RECREATE");
    for (const UInt_t n_events : {5, 6}) {
      OpenFile other("other.root", "RECREATE");
      trailer.SetNEvents(n_events);
      EXPECT_TRUE(file.WriteRunTrailer(&trailer));
    }
    EXPECT_EQ(gDirectory, &file);
  }
  TStnEventFile file(kName);
  EXPECT_EQ(file.GetNkeys(), 1);
  TStnRunTrailer* read = nullptr;
  ASSERT_TRUE(file.ReadRunTrailer(&read));
  EXPECT_EQ(read->GetNEvents(), 6u);
  delete read;
}

TEST_F(StnEventFileWriteTest, RefusesNullRecordsSilently) {
  OpenFile file(kName, "RECREATE");
  EXPECT_FALSE(file.WriteRunHeader(nullptr));
  EXPECT_FALSE(file.WriteRunTrailer(nullptr));
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(file.GetNkeys(), 0);
}

TEST_F(StnEventFileWriteTest, LogsRecordsAtLevel2AlsoNullOnes) {
  OpenFile file(kName, "RECREATE");
  FilePrintLevel level(2);
  EXPECT_FALSE(file.WriteRunHeader(nullptr));
  EXPECT_EQ(fLog.Take(), "INF:TStnEventFile::WriteRunHeader()\n");
  TStnRunTrailer trailer;
  EXPECT_TRUE(file.WriteRunTrailer(&trailer));
  EXPECT_EQ(fLog.Take(), "INF:TStnEventFile::WriteRunTrailer()\n");
}

TEST_F(StnEventFileWriteTest, DoesNotLookAtTheResultOfAWrite) {
  EXPECT_EXIT(
      {
        gSystem->ResetSignals();
        gErrorIgnoreLevel = kFatal;
        signal(SIGXFSZ, SIG_IGN);
        OpenFile file(kName, "RECREATE");
        TStnRunHeader header;
        rlimit limit;
        limit.rlim_cur = limit.rlim_max = 1;
        setrlimit(RLIMIT_FSIZE, &limit);
        const bool is_written = file.WriteRunHeader(&header);
        _exit(is_written && file.TestBit(TFile::kWriteError) ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(StnEventFileWriteTest, DoesNotLookAtTheResultOfAFill) {
  EXPECT_EXIT(
      {
        gSystem->ResetSignals();
        gErrorIgnoreLevel = kFatal;
        signal(SIGXFSZ, SIG_IGN);
        OpenFile file(kName, "RECREATE");
        bool is_written = file.WriteEvent(&fAddress);
        rlimit limit;
        limit.rlim_cur = limit.rlim_max = 1;
        setrlimit(RLIMIT_FSIZE, &limit);
        while (is_written && !file.TestBit(TFile::kWriteError))
          is_written = file.WriteEvent(&fAddress);
        _exit(is_written ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
