// What becomes of a file when the system refuses the n-th call on it, once or from then on, for every n.

#include "EventFiles.h"
#include "IoShim.h"
#include "OutputFile.h"
#include "ToolError.h"

#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>
#include <VdUtil/ErrorLogger.h>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr const char* kName = "faulty.root";
constexpr UInt_t kNEvents = 5;

// What a child tells about its work.
enum Answer { kDone = 0, kRefused = 1, kWrongAnswer = 2 };

struct Fault {
  const char* fName;
  const char* fCall;
  bool fLasting;
  int fError;
};

void PrintTo(const Fault& fault, std::ostream* stream) { *stream << fault.fName; }

/// Tells from a process of its own, in which the n-th call fails, whether it failed at all and what the work answered.
struct Outcome {
  bool fIsHit;
  int fAnswer;
};

Outcome WorkWithFault(const Fault& fault, int nth, const std::function<Answer()>& work) {
  constexpr int kHit = 16;
  const pid_t child = fork();
  if (child == 0) {
    gErrorIgnoreLevel = kFatal;
    std::ostringstream log;
    VdUtil::ErrorLogger::GetInstance().SetStream(&log);
    IoShim::Settings settings;
    settings.fFile = kName;
    settings.fCall = fault.fCall;
    settings.fNth = nth;
    settings.fLasting = fault.fLasting;
    settings.fError = fault.fError;
    IoShim::Set(settings);
    const Answer answer = work();
    _exit(answer | (IoShim::GetNFailures() > 0 ? kHit : 0));
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status)) << fault.fName << " at call " << nth << ": signal " << WTERMSIG(status);
  return {(WEXITSTATUS(status) & kHit) != 0, WEXITSTATUS(status) & ~kHit};
}

std::string GetContents(const char* name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Answer WriteByLibrary() {
  TStnEventFile file(kName, "RECREATE");
  if (file.IsZombie()) return kRefused;
  TStnRunHeader header;
  TStnRunTrailer trailer;
  TStnEvent event;
  TStnEvent* address = &event;
  bool is_kept = file.WriteRunHeader(&header);
  for (UInt_t number = 0; number < kNEvents; ++number) {
    FillEvent(event, number);
    is_kept = file.WriteEvent(&address) && is_kept;
  }
  is_kept = file.WriteRunTrailer(&trailer) && is_kept;
  file.Close();
  if (file.TestBit(TFile::kWriteError)) return kRefused;
  return is_kept ? kDone : kWrongAnswer;
}

bool IsLibraryFileWhole() {
  QuietRoot quiet;
  if (CountWholeEvents(kName) != kNEvents) return false;
  TStnEventFile file(kName);
  TStnRunHeader* header = nullptr;
  TStnRunTrailer* trailer = nullptr;
  const bool is_whole =
      !file.TestBit(TFile::kRecovered) && file.ReadRunHeader(&header) && file.ReadRunTrailer(&trailer);
  delete header;
  delete trailer;
  return is_whole;
}

Answer WriteByTool() {
  try {
    StnTools::OutputFile file(kName, false, 1);
    TStnRunHeader header;
    TStnRunTrailer trailer;
    file.WriteRunHeader(header);
    for (UInt_t number = 0; number < kNEvents; ++number) {
      FillEvent(file.GetEvent(), number);
      file.WriteEvent();
    }
    file.WriteRunTrailer(trailer);
    file.Finish();
    return kDone;
  } catch (const StnTools::ToolError& error) {
    return error.GetCode() == StnTools::kCannotWrite ? kRefused : kWrongAnswer;
  }
}

class WriteFaultsTest : public testing::TestWithParam<Fault> {
 protected:
  void SetUp() override { Clear(); }
  void TearDown() override { RecordProperty("faults", fNFaults); }
  static void Clear() {
    fs::remove(kName);
    fs::remove(std::string(kName) + ".part");
  }

  int fNFaults = 0;
};

const Fault kFaults[] = {
    {"WriteOnce", "write", false, ENOSPC}, {"WriteLasting", "write", true, ENOSPC}, {"WriteBroken", "write", true, EIO},
    {"WriteHalfOnce", "write", false, 0},  {"WriteHalfLasting", "write", true, 0},  {"SyncOnce", "fsync", false, EIO},
    {"SyncLasting", "fsync", true, EIO},   {"CloseOnce", "close", false, EIO},
};

}  // namespace

TEST_P(WriteFaultsTest, LibraryMarksAFileThatIsNotWhole) {
  ASSERT_EQ(WriteByLibrary(), kDone);  // ROOT's preparations are then made once for all children
  for (int nth = 1;; ++nth) {
    Clear();
    const Outcome outcome = WorkWithFault(GetParam(), nth, WriteByLibrary);
    if (!outcome.fIsHit) break;
    ++fNFaults;
    EXPECT_NE(outcome.fAnswer, kWrongAnswer) << "at call " << nth;
    EXPECT_TRUE(outcome.fAnswer != kDone || IsLibraryFileWhole()) << "at call " << nth;
  }
  EXPECT_GT(fNFaults, 0);
}

TEST_P(WriteFaultsTest, ToolsKeepNoFileThatIsNotWhole) {
  ASSERT_EQ(WriteByTool(), kDone);
  const std::string whole = GetContents(kName);
  for (int nth = 1;; ++nth) {
    Clear();
    const Outcome outcome = WorkWithFault(GetParam(), nth, WriteByTool);
    if (!outcome.fIsHit) break;
    ++fNFaults;
    EXPECT_FALSE(fs::exists(std::string(kName) + ".part")) << "at call " << nth;
    EXPECT_NE(outcome.fAnswer, kWrongAnswer) << "at call " << nth;
    EXPECT_EQ(GetContents(kName), outcome.fAnswer == kDone ? whole : "") << "at call " << nth;
    EXPECT_EQ(fs::exists(kName), outcome.fAnswer == kDone) << "at call " << nth;
  }
  EXPECT_GT(fNFaults, 0);
}

INSTANTIATE_TEST_SUITE_P(, WriteFaultsTest, testing::ValuesIn(kFaults),
                         [](const auto& fault) { return std::string(fault.param.fName); });

TEST(RemovedFileTest, IsReadToItsEnd) {
  WriteFile(kName, kNEvents);
  TStnEventFile file(kName);
  TStnEvent event;
  TStnEvent* address = &event;
  ASSERT_TRUE(file.ReadEvent(&address));
  ASSERT_TRUE(fs::remove(kName));
  for (UInt_t number = 1; number < kNEvents; ++number) {
    ASSERT_TRUE(file.ReadEvent(&address));
    EXPECT_TRUE(IsEvent(event, number));
  }
}

TEST(RemovedFileTest, IsNotReportedAsWritten) {
  fs::remove(kName);
  StnTools::OutputFile file(kName, true, 1);
  FillEvent(file.GetEvent(), 0);
  file.WriteEvent();
  ASSERT_TRUE(fs::remove(std::string(kName) + ".part"));
  try {
    file.Finish();
    FAIL();
  } catch (const StnTools::ToolError& error) {
    EXPECT_EQ(error.GetCode(), StnTools::kCannotWrite);
    EXPECT_STREQ(error.what(),
                 "faulty.root could not be written (No such file or directory) and was not kept; choose another place");
  }
  EXPECT_FALSE(fs::exists(kName));
}
