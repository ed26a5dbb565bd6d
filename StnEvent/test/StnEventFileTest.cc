#include "EventFiles.h"
#include "LogCapture.h"

#include <TBranch.h>
#include <TClass.h>
#include <TList.h>
#include <TNamed.h>
#include <TTree.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <type_traits>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

const char* const kNoTree = "ERR:TStnEventFile::GetTree() - no Tree with name 'StnEventTree' found !\n";

bool IsRegistered(const TStnEventFile* file) {
  for (const TStnEventFile* entry : OpenFile::fgFileList)
    if (entry == file) return true;
  return false;
}

// A file of which nothing was written or read, as far as it knows.
void ForgetBytes(OpenFile& file) { file.fBytesRead = file.fBytesWrite = 0; }

class StnEventFileTest : public testing::Test {
 protected:
  void SetUp() override { gSystem->Unlink(kName); }

  static constexpr const char* kName = "file.root";
  LogCapture fLog;
};

class Option : public StnEventFileTest, public testing::WithParamInterface<const char*> {};
class RegisteredOption : public Option {};
class UnregisteredOption : public Option {};

TEST_P(RegisteredOption, EntersTheFileIntoTheRegistry) {
  OpenFile file(kName, GetParam());
  EXPECT_EQ(OpenFile::fgFileList.back(), &file);
}
INSTANTIATE_TEST_SUITE_P(Options, RegisteredOption,
                         testing::Values("CREATE", "RECREATE", "UPDATE", "create", "ReCreate", "update"));

TEST_P(UnregisteredOption, LeavesTheFileOutOfTheRegistry) {
  if (std::strcmp(GetParam(), "NEW") != 0) WriteFile(kName, 1);
  OpenFile file(kName, GetParam());
  ASSERT_FALSE(file.IsZombie());
  EXPECT_FALSE(IsRegistered(&file));
}
INSTANTIATE_TEST_SUITE_P(Options, UnregisteredOption, testing::Values("NEW", "READ", "", "read"));

TEST_F(StnEventFileTest, ConstructorRegistersAZombie) {
  QuietRoot quiet;
  OpenFile file("/nowhere/file.root", "RECREATE");
  EXPECT_TRUE(file.IsZombie());
  EXPECT_TRUE(IsRegistered(&file));
}

TEST_F(StnEventFileTest, ConstructorIsSilentAtLevel0) {
  OpenFile file(kName, "RECREATE");
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileTest, ConstructorLogsRegistrationAtLevel1) {
  OpenFile first("first.root", "RECREATE");
  FilePrintLevel level(1);
  OpenFile file(kName, "RECREATE");
  EXPECT_EQ(fLog.Take(), "INF:StnEventFile::TStnEventFile() - added " + Hex(&file) + " to the list !\n");
}

TEST_F(StnEventFileTest, ConstructorLogsNameAndAddressAtLevel2) {
  OpenFile first("first.root", "RECREATE");
  FilePrintLevel level(2);
  OpenFile file(kName, "NEW");
  EXPECT_EQ(fLog.Take(), "INF:StnEventFile::TStnEventFile('file.root') - " + Hex(&file) + "\n");
}

TEST_F(StnEventFileTest, ConstructorTakesNoNameAtAll) {
  OpenFile first("first.root", "RECREATE");
  FilePrintLevel level(2);
  QuietRoot quiet;
  OpenFile file(nullptr, "READ");
  EXPECT_TRUE(file.IsZombie());
  EXPECT_EQ(fLog.Take(), "INF:StnEventFile::TStnEventFile('') - " + Hex(&file) + "\n");
}

TEST_F(StnEventFileTest, DefaultConstructorLogsItsAddressAtLevel2) {
  OpenFile first;
  FilePrintLevel level(2);
  OpenFile file;
  EXPECT_EQ(fLog.Take(), "INF:StnEventFile::TStnEventFile() - " + Hex(&file) + "\n");
}

TEST_F(StnEventFileTest, DefaultConstructorIsSilentAtLevel1) {
  FilePrintLevel level(1);
  OpenFile file;
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileTest, DefaultConstructorRegistersNothing) {
  OpenFile file;
  EXPECT_FALSE(IsRegistered(&file));
}

TEST_F(StnEventFileTest, ConstructorDoesNotWriteToTheLogOfEvents) {
  EXPECT_EXIT(
      {
        gSystem->ResetSignals();
        LogCapture log;
        TStnEvent::SetPrintLevel(2);
        { OpenFile file(kName, "RECREATE"); }
        _exit(log.Take() == "" ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(StnEventFileTest, ConstructorKeepsTheMode) {
  OpenFile file(kName, "RECREATE", "a title", 404);
  EXPECT_STREQ(file.GetTitle(), "a title");
  EXPECT_EQ(file.GetCompressionSettings(), 404);
  EXPECT_EQ(gDirectory, &file);
}

TEST_F(StnEventFileTest, ConstructorCompressesAtLevel1ByDefault) {
  OpenFile file(kName, "RECREATE");
  EXPECT_EQ(file.GetCompressionSettings(), 1);
}

TEST_F(StnEventFileTest, NullOptionEndsTheProcess) {
  EXPECT_DEATH(
      {
        gSystem->ResetSignals();
        TStnEventFile::SetPrintLevel(2);
        VdUtil::ErrorLogger::GetInstance().SetStream(&std::clog);
        OpenFile file(kName, nullptr);
      },
      "INF:StnEventFile::TStnEventFile\\('file.root'\\) - 0x[0-9a-f]+\n.*Assertion `option != __null' failed");
}

TEST_F(StnEventFileTest, MembersAreDescribedInTheirOrder) {
  EXPECT_THAT(
      DescribedMembers(TStnEventFile::Class()),
      ElementsAre(
          Pair("fgFileList", "files open for writing"),
          Pair("fgPrintLevel", "print level of this class, starts at 0; independent of TStnEvent::fgPrintLevel"),
          Pair("fgSignalHandlerList", "signal handlers to remove at exit"),
          Pair("fBranch", "event branch in split level=1"),
          Pair("fCurrentEntry", "current entry id on file (read mode): the entry that the next read takes"),
          Pair("fPartialEvent", "buffer for partial readout"),
          Pair("fEventBuffer", "backup pointer for branch: the event object seen at the first write"),
          Pair("fNEntries", "number of entries/events in tree, as of GetTree"), Pair("fTree", "event data tree"),
          Pair("fEventHeaderBranch", "the \"fEventHeader\" sub-branch")));
}

TEST_F(StnEventFileTest, NewFileIsUnbound) {
  OpenFile file(kName, "RECREATE");
  EXPECT_EQ(Member<TBranch*>(file, "fBranch"), nullptr);
  EXPECT_EQ(Member<Int_t>(file, "fCurrentEntry"), 0);
  EXPECT_EQ(Member<TStnEvent*>(file, "fPartialEvent"), nullptr);
  EXPECT_EQ(Member<TStnEvent*>(file, "fEventBuffer"), nullptr);
  EXPECT_EQ(Member<Int_t>(file, "fNEntries"), 0);
  EXPECT_EQ(Member<TTree*>(file, "fTree"), nullptr);
  EXPECT_EQ(Member<TBranch*>(file, "fEventHeaderBranch"), nullptr);
}

TEST_F(StnEventFileTest, OpeningReadsNothingOfTheTree) {
  WriteFile(kName, 3);
  OpenFile file(kName);
  EXPECT_EQ(Member<TTree*>(file, "fTree"), nullptr);
  EXPECT_EQ(file.GetList()->GetSize(), 0);
}

TEST_F(StnEventFileTest, CloseIsSilentAtLevel1) {
  OpenFile file(kName, "RECREATE");
  FilePrintLevel level(1);
  file.Close();
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileTest, CloseLogsByteCountsCutTo32BitsAtLevel2) {
  OpenFile file(kName, "RECREATE");
  file.fBytesWrite = (3LL << 32) + 12345;
  file.fBytesRead = (1LL << 32) + 7;
  FilePrintLevel level(2);
  file.Close("R");
  EXPECT_EQ(fLog.Take(),
            "INF:TStnEventFile::Close('R') - \n"
            "INF:\tbytes written:      12345\n"
            "INF:\tbytes read:             7\n");
}

TEST_F(StnEventFileTest, CloseTakesNoOptionAtAll) {
  OpenFile file(kName, "RECREATE");
  FilePrintLevel level(2);
  file.Close(nullptr);
  EXPECT_THAT(fLog.Take(), testing::StartsWith("INF:TStnEventFile::Close('') - \n"));
}

TEST_F(StnEventFileTest, CloseWritesTheTree) {
  auto file = std::make_unique<OpenFile>(kName, "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  FillEvent(event, 0);
  file->WriteEvent(&address);
  TFile* base = file.get();
  base->Close();
  EXPECT_FALSE(file->IsOpen());
  EXPECT_EQ(CountWholeEvents(kName), 1u);
}

TEST_F(StnEventFileTest, CloseWritesTheTreeInPlaceOfTheOneSavedBefore) {
  {
    OpenFile file(kName, "RECREATE");
    TStnEvent event;
    TStnEvent* address = &event;
    file.WriteEvent(&address);
    Member<TTree*>(file, "fTree")->Write();
  }
  EXPECT_EQ(TFile(kName).GetNkeys(), 1);
}

// With "nodelete" ROOT leaves the objects of the file's directory alone.
TEST_F(StnEventFileTest, CloseOfAWrittenFileTakesTheOptionsOfRoot) {
  OpenFile file(kName, "RECREATE");
  file.fBytesRead = 0;
  auto named = new TNamed("named", "");
  file.Append(named);
  file.Close("nodelete");
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.GetList()->First(), named);
}

TEST_F(StnEventFileTest, CloseOfAReadFileTakesTheOptionsOfRoot) {
  WriteFile(kName, 1);
  OpenFile file(kName);
  auto named = new TNamed("named", "");
  file.Append(named);
  file.Close("nodelete");
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.GetList()->First(), named);
}

TEST_F(StnEventFileTest, CloseOfAnUntouchedFileLeavesItOpen) {
  OpenFile file(kName, "RECREATE");
  ForgetBytes(file);
  file.Close();
  EXPECT_TRUE(file.IsOpen());
}

TEST_F(StnEventFileTest, CloseOfAReadFileClosesIt) {
  WriteFile(kName, 1);
  OpenFile file(kName);
  file.GetNEvents();
  file.Close();
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(StnEventFileTest, CloseForgetsWritingButNotThePosition) {
  WriteFile(kName, 3);
  OpenFile file(kName);
  TStnEventHeader* header = nullptr;
  file.ReadEventHeader(&header);
  const auto partial_event = Member<TStnEvent*>(file, "fPartialEvent");
  const auto header_branch = Member<TBranch*>(file, "fEventHeaderBranch");
  file.Close();
  EXPECT_EQ(Member<TTree*>(file, "fTree"), nullptr);
  EXPECT_EQ(Member<TBranch*>(file, "fBranch"), nullptr);
  EXPECT_EQ(Member<Int_t>(file, "fCurrentEntry"), 1);
  EXPECT_EQ(Member<Int_t>(file, "fNEntries"), 3);
  EXPECT_EQ(Member<TStnEvent*>(file, "fPartialEvent"), partial_event);
  EXPECT_EQ(Member<TBranch*>(file, "fEventHeaderBranch"), header_branch);
}

TEST_F(StnEventFileTest, CloseForgetsTheEventBuffer) {
  OpenFile file(kName, "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  file.WriteEvent(&address);
  EXPECT_EQ(Member<TStnEvent*>(file, "fEventBuffer"), &event);
  file.Close();
  EXPECT_EQ(Member<TStnEvent*>(file, "fEventBuffer"), nullptr);
}

TEST_F(StnEventFileTest, CloseLeavesTheFileRegistered) {
  OpenFile file(kName, "RECREATE");
  file.Close();
  EXPECT_TRUE(IsRegistered(&file));
}

TEST_F(StnEventFileTest, SecondCloseTriesToWriteAgain) {
  auto file = std::make_unique<OpenFile>(kName, "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  FillEvent(event, 0);
  file->WriteEvent(&address);
  file->Close();
  testing::internal::CaptureStderr();
  file->Close();
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("file.root not opened in write mode"));
  file.reset();
  EXPECT_EQ(CountWholeEvents(kName), 1u);
}

TEST_F(StnEventFileTest, DestructorClosesABoundFile) {
  auto file = new OpenFile(kName, "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  FillEvent(event, 0);
  file->WriteEvent(&address);
  const std::string where = Hex(file);
  FilePrintLevel level(2);
  delete file;
  const std::string log = fLog.Take();
  EXPECT_THAT(log, testing::StartsWith("INF:TStnEventFile::~TStnEventFile() - " + where +
                                       "\nINF:TStnEventFile::Close('') - \nINF:\tbytes written: "));
  EXPECT_THAT(log, testing::EndsWith("INF:TStnEventFile::~TStnEventFile() - removed " + where + " from the list !\n"));
  EXPECT_EQ(CountWholeEvents(kName), 1u);
}

TEST_F(StnEventFileTest, DestructorLeavesAnUnboundFileToRoot) {
  auto file = new OpenFile(kName, "NEW");
  const std::string where = Hex(file);
  FilePrintLevel level(2);
  delete file;
  EXPECT_EQ(fLog.Take(), "INF:TStnEventFile::~TStnEventFile() - " + where + "\n");
}

TEST_F(StnEventFileTest, DestructorLogsOnlyTheRemovalAtLevel1) {
  auto file = new OpenFile(kName, "RECREATE");
  const std::string where = Hex(file);
  FilePrintLevel level(1);
  delete file;
  EXPECT_EQ(fLog.Take(), "INF:TStnEventFile::~TStnEventFile() - removed " + where + " from the list !\n");
}

TEST_F(StnEventFileTest, DestructorLeavesANullEntryInTheRegistry) {
  const size_t n_entries = OpenFile::fgFileList.size();
  { OpenFile file(kName, "RECREATE"); }
  EXPECT_EQ(OpenFile::fgFileList.size(), n_entries + 1);
  EXPECT_EQ(OpenFile::fgFileList.back(), nullptr);
}

TEST_F(StnEventFileTest, ShowsAFileBeingWritten) {
  OpenFile file(kName, "RECREATE", "", 4);
  TStnEvent event;
  TStnEvent* address = &event;
  FillEvent(event, 0);
  for (int i = 0; i < 200; ++i)
    file.WriteEvent(&address);
  std::ostringstream text;
  file.Show(text);
  std::ostringstream expected;
  expected << "--- TStnEventFile ---\n"
           << " File file.root opened for writing\n"
           << " CompressionLevel  = 4\n"
           << " CompressionFactor = " << file.GetCompressionFactor() << "\n"
           << " Number of Entries = 0\n"
           << " Bytes written     = " << file.GetBytesWritten() << "\n"
           << "---------------------------------\n\n";
  EXPECT_EQ(text.str(), expected.str());
}

TEST_F(StnEventFileTest, ShowDoesNotTurnWritingIntoReading) {
  OpenFile file(kName, "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  file.WriteEvent(&address);
  file.Seek(5);
  std::ostringstream text;
  file.Show(text);
  file.Show(text);
  EXPECT_EQ(file.GetBytesRead(), 0);
  EXPECT_EQ(file.GetNEvents(), 5u);
}

TEST_F(StnEventFileTest, ShowsAFileBeingRead) {
  WriteFile(kName, 3);
  OpenFile file(kName);
  std::ostringstream text;
  file.Show(text);
  std::ostringstream expected;
  expected << "--- TStnEventFile ---\n"
           << " File file.root opened for reading\n"
           << " CompressionLevel  = 1\n"
           << " CompressionFactor = " << file.GetCompressionFactor() << "\n"
           << " Number of Entries = 3\n"
           << " Bytes on file     = " << file.GetSize() << "\n"
           << "---------------------------------\n\n";
  EXPECT_EQ(text.str(), expected.str());
}

TEST_F(StnEventFileTest, GetTreeCountsOnlyOnce) {
  WriteFile(kName, 3);
  OpenFile file(kName);
  EXPECT_TRUE(file.GetTree());
  EXPECT_EQ(Member<Int_t>(file, "fNEntries"), 3);
  Member<Int_t>(file, "fNEntries") = 2;
  EXPECT_TRUE(file.GetTree());
  EXPECT_EQ(Member<Int_t>(file, "fNEntries"), 2);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileTest, GetTreeReportsAMissingTree) {
  OpenFile file(kName, "RECREATE");
  EXPECT_FALSE(file.GetTree());
  EXPECT_EQ(fLog.Take(), kNoTree);
}

TEST_F(StnEventFileTest, GetTreeTakesNoObjectOfAnotherClass) {
  {
    TFile plain(kName, "RECREATE");
    TNamed("StnEventTree", "").Write();
  }
  OpenFile file(kName);
  EXPECT_FALSE(file.GetTree());
  EXPECT_EQ(Member<TTree*>(file, "fTree"), nullptr);
  EXPECT_EQ(fLog.Take(), kNoTree);
}

TEST_F(StnEventFileTest, GetTreeTakesNoObjectInMemoryOfAnotherClass) {
  WriteFile(kName, 1);
  OpenFile file(kName);
  TNamed named("StnEventTree", "");
  file.Append(&named);
  EXPECT_FALSE(file.GetTree());
  file.GetList()->Remove(&named);
}

TEST_F(StnEventFileTest, GetTreeReportsAMissingTreeOnAFileWithoutFile) {
  OpenFile file;
  EXPECT_FALSE(file.GetTree());
  EXPECT_EQ(fLog.Take(), kNoTree);
}

TEST_F(StnEventFileTest, GetTreePrintsTheTreeAboveLevel2) {
  WriteFile(kName, 1);
  OpenFile file(kName);
  FilePrintLevel level(3);
  testing::internal::CaptureStdout();
  file.GetTree();
  EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("*Tree    :StnEventTree: TStnEvent tree"));
}

TEST_F(StnEventFileTest, GetTreePrintsNothingAtLevel2) {
  WriteFile(kName, 1);
  OpenFile file(kName);
  FilePrintLevel level(2);
  testing::internal::CaptureStdout();
  file.GetTree();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(StnEventFileTest, NewFileCountsNoEvents) {
  OpenFile file(kName, "RECREATE");
  EXPECT_EQ(file.GetNEvents(), 0u);
  file.Seek(3);
  EXPECT_EQ(file.GetNEvents(), 0u);
  TStnEvent event;
  TStnEvent* address = &event;
  file.Rewind();
  for (int i = 0; i < 10; ++i)
    file.WriteEvent(&address);
  EXPECT_EQ(file.GetNEvents(), 0u);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileTest, WrittenFileCountsThePositionAsEvents) {
  OpenFile file(kName, "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  file.WriteEvent(&address);
  file.Seek(3);
  EXPECT_EQ(file.GetNEvents(), 3u);
}

TEST_F(StnEventFileTest, ReadFileCountsTheEntriesOfItsTree) {
  WriteFile(kName, 4);
  OpenFile file(kName);
  EXPECT_EQ(file.GetNEvents(), 4u);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventFileTest, UpdatedFileCountsTheEntriesOfItsTree) {
  WriteFile(kName, 4);
  OpenFile file(kName, "UPDATE");
  EXPECT_EQ(file.GetNEvents(), 4u);
}

TEST_F(StnEventFileTest, ReadFileWithoutTreeCountsNoEventsAndSaysSo) {
  WriteFile(kName, 0);
  OpenFile file(kName);
  EXPECT_EQ(file.GetNEvents(), 0u);
  EXPECT_EQ(fLog.Take(), kNoTree);
}

TEST_F(StnEventFileTest, ClosedFileCountsNoEventsAndSaysSo) {
  WriteFile(kName, 2);
  OpenFile file(kName);
  file.GetNEvents();
  file.Close();
  EXPECT_EQ(file.GetNEvents(), 0u);
  EXPECT_EQ(fLog.Take(), kNoTree);
}

TEST_F(StnEventFileTest, CurrentEntryIsTheOneReadLast) {
  WriteFile(kName, 3);
  OpenFile file(kName);
  TStnEventHeader* header = nullptr;
  EXPECT_EQ(file.GetCurrentEntryId(), 0u);
  for (const UInt_t id : {0, 1, 2}) {
    file.ReadEventHeader(&header);
    EXPECT_EQ(file.GetCurrentEntryId(), id);
  }
  file.ReadEventHeader(&header);
  EXPECT_EQ(file.GetCurrentEntryId(), 2u);
  file.Seek(100);
  EXPECT_EQ(file.GetCurrentEntryId(), 2u);
  file.Rewind();
  EXPECT_EQ(file.GetCurrentEntryId(), 0u);
}

TEST_F(StnEventFileTest, CurrentEntryIs0BeforeTheTreeIsKnown) {
  WriteFile(kName, 3);
  OpenFile file(kName);
  file.Seek(2);
  EXPECT_EQ(file.GetCurrentEntryId(), 0u);
}

TEST_F(StnEventFileTest, CurrentEntryWrapsRoundAtTheSmallestPosition) {
  WriteFile(kName, 3);
  OpenFile file(kName);
  file.GetNEvents();
  file.Seek(0x80000000u);
  EXPECT_EQ(file.GetCurrentEntryId(), 0x7fffffffu);
}

TEST_F(StnEventFileTest, SeekSetsThePositionUnchecked) {
  OpenFile file(kName, "RECREATE");
  file.Seek(4000000000u);
  EXPECT_EQ(Member<Int_t>(file, "fCurrentEntry"), -294967296);
  file.Rewind();
  EXPECT_EQ(Member<Int_t>(file, "fCurrentEntry"), 0);
}

template <class File, class = void>
constexpr bool kSeeksBytes = false;
template <class File>
constexpr bool kSeeksBytes<File, std::void_t<decltype(std::declval<File&>().Seek(Long64_t(0), TFile::kBeg))>> = true;

TEST_F(StnEventFileTest, SeekHidesTheOneOfTheBaseClass) {
  EXPECT_TRUE(kSeeksBytes<TFile>);
  EXPECT_FALSE(kSeeksBytes<TStnEventFile>);
}

TEST_F(StnEventFileTest, PrintLevelIsItsOwnAnd1ByDefault) {
  EXPECT_EQ(OpenFile::fgPrintLevel, 0);
  TStnEventFile::SetPrintLevel();
  EXPECT_EQ(OpenFile::fgPrintLevel, 1);
  EXPECT_EQ(TStnEvent::fgPrintLevel, 0u);
  TStnEventFile::SetPrintLevel(0);
}

struct MergedFile : TStnEventFile {
  void ResetAfterMerge(TFileMergeInfo*) override { fIsReset = true; }
  bool fIsReset = false;
};

TEST_F(StnEventFileTest, MergingResetsTheFileItself) {
  MergedFile file;
  TStnEventFile::Class()->GetResetAfterMerge()(static_cast<TStnEventFile*>(&file), nullptr);
  EXPECT_TRUE(file.fIsReset);
}

TEST_F(StnEventFileTest, StreamerIsTheOneOfTheBaseClass) {
  OpenFile file(kName, "RECREATE", "title");
  TBufferFile own(TBuffer::kWrite);
  file.Streamer(own);
  TBufferFile base(TBuffer::kWrite);
  file.TFile::Streamer(base);
  EXPECT_EQ(std::string(own.Buffer(), own.Length()), std::string(base.Buffer(), base.Length()));
}

}  // namespace
