#include "EventFiles.h"
#include "LogCapture.h"

#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <TSysEvtHandler.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

// The library declares this class in its source file only.
class TStnEventFileSignalHandler : public TSignalHandler {
 public:
  TStnEventFileSignalHandler(ESignals sig);
  ~TStnEventFileSignalHandler() override;
  Bool_t Notify() override;
};

// `atexit` comes here, so that a test can make it fail.
static bool gRefuseExitHandlers = false;

extern "C" int __cxa_atexit(void (*function)(void*), void* argument, void* library) noexcept {
  using Register = int (*)(void (*)(void*), void*, void*);
  static const auto kRegister = reinterpret_cast<Register>(dlsym(RTLD_NEXT, "__cxa_atexit"));
  if (!gRefuseExitHandlers) return kRegister(function, argument, library);
  errno = ENOMEM;
  return -1;
}

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

const char* const kName = "exit.root";
const char* const kInstalled = "INF:TStnEventFile::Setup() - 'atexit' handler successfully installed !\n";

// Enough entries for ROOT to save the tree twice before the end.
const UInt_t kMany = 45000;

void FillMany(TStnEvent& event, UInt_t number) {
  event.Clear();
  event.GetEventHeader()->SetEventNo(number);
}

/// Writes a run header and `n_events` events, with a variable that ends with this function and an event that ends
/// before the exit handler runs.
TStnEventFile* WriteOpenFile(const char* option, UInt_t n_events) {
  auto file = new TStnEventFile(kName, option);
  TStnRunHeader header;
  header.SetRunNo(5);
  file->WriteRunHeader(&header);
  static TStnEvent event;
  TStnEvent* address = &event;
  for (UInt_t number = 0; number < n_events; ++number) {
    n_events == kMany ? FillMany(event, number) : FillEvent(event, number);
    file->WriteEvent(&address);
  }
  return file;
}

// The ways in which a process of its own can end, told by its first argument; the others are the option, the number of
// events and the print level.
const std::map<std::string, std::function<void(const char*, UInt_t)>> kEndings = {
    {"exit",
     [](const char* option, UInt_t n_events) {
       WriteOpenFile(option, n_events);
       exit(0);
     }},
    {"return", [](const char* option, UInt_t n_events) { WriteOpenFile(option, n_events); }},
    {"delete", [](const char* option, UInt_t n_events) { delete WriteOpenFile(option, n_events); }},
    {"close", [](const char* option, UInt_t n_events) { WriteOpenFile(option, n_events)->Close(); }},
    {"read", [](const char* option, UInt_t) { (new TStnEventFile(kName, option))->GetNEvents(); }},
    {"nothing",
     [](const char*, UInt_t) {
       QuietRoot quiet;
       TStnEventFile file;
       TStnEvent* event = nullptr;
       TStnEventHeader* header = nullptr;
       TStnRunHeader* run_header = nullptr;
       TStnRunTrailer* run_trailer = nullptr;
       const bool is_read = file.ReadRunHeader(&run_header) || file.ReadRunTrailer(&run_trailer) ||
                            file.ReadEvent(&event) || file.ReadEventHeader(&header);
       exit(is_read ? 1 : 0);
     }},
    {"terminate",
     [](const char* option, UInt_t n_events) {
       WriteOpenFile(option, n_events);
       signal(SIGTERM, SIG_DFL);
       raise(SIGTERM);
     }},
    {"ten",
     [](const char* option, UInt_t) {
       for (int i = 0; i < 10; ++i)
         new TStnEventFile(("ten" + std::to_string(i) + ".root").c_str(), option);
     }},
    {"refused",
     [](const char* option, UInt_t) {
       for (const char* name : {kName, "exit2.root"}) {
         gRefuseExitHandlers = true;
         auto file = std::make_unique<TStnEventFile>(name, option);
         gRefuseExitHandlers = false;
       }
     }},
};

struct Outcome {
  int fStatus;
  std::string fLog;
};

std::string GetProgram() {
  char path[4096] = {};
  return readlink("/proc/self/exe", path, sizeof(path) - 1) > 0 ? path : "";
}

/// Runs this program once more, to end in the given way.
Outcome RunToTheEnd(const std::string& ending, const std::string& option, UInt_t n_events, int level = 0) {
  // These processes leave objects behind on purpose: no leak checker is to look at them.
  const std::string command = "ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0 " + GetProgram() + " --end " + ending + " '" +
                              option + "' " + std::to_string(n_events) + " " + std::to_string(level) + " 2>&1";
  FILE* output = popen(command.c_str(), "r");
  std::string log;
  for (int c = fgetc(output); c != EOF; c = fgetc(output))
    log += static_cast<char>(c);
  const int status = pclose(output);
  return {WEXITSTATUS(status), log};
}

UInt_t CountMany() {
  TStnEventFile file(kName);
  TStnEventHeader* header = nullptr;
  UInt_t n = 0;
  while (n < file.GetNEvents() && file.ReadEventHeader(&header) && header->GetEventNo() == n)
    ++n;
  return n;
}

UInt_t ReadRunNo() {
  TStnEventFile file(kName);
  TStnRunHeader* header = nullptr;
  file.ReadRunHeader(&header);
  const UInt_t run_no = header ? header->GetRunNo() : 0;
  delete header;
  return run_no;
}

int CountText(const std::string& text, const std::string& part) {
  int n = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++n;
  return n;
}

class StnEventFileExitTest : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override { gSystem->Unlink(kName); }
};

class AnyEnding : public StnEventFileExitTest {};

TEST_P(AnyEnding, FileIsWhole) {
  const Outcome outcome = RunToTheEnd(GetParam(), "RECREATE", 10);
  EXPECT_EQ(outcome.fStatus, 0);
  EXPECT_EQ(outcome.fLog, "");
  EXPECT_EQ(CountWholeEvents(kName), 10u);
  EXPECT_EQ(ReadRunNo(), 5u);
}

TEST_P(StnEventFileExitTest, FileOfManyEventsIsWhole) {
  EXPECT_EQ(RunToTheEnd(GetParam(), "RECREATE", kMany).fStatus, 0);
  EXPECT_EQ(CountMany(), kMany);
}

TEST_P(StnEventFileExitTest, FileOfOneEventIsWhole) {
  EXPECT_EQ(RunToTheEnd(GetParam(), "create", 1).fStatus, 0);
  EXPECT_EQ(CountWholeEvents(kName), 1u);
}

TEST_P(StnEventFileExitTest, FileWithoutEventsIsWhole) {
  EXPECT_EQ(RunToTheEnd(GetParam(), "RECREATE", 0).fStatus, 0);
  EXPECT_EQ(ReadRunNo(), 5u);
}

TEST_P(StnEventFileExitTest, UpdatedFileIsWhole) {
  WriteFile(kName, 2);
  EXPECT_EQ(RunToTheEnd(GetParam(), "UPDATE", 3).fStatus, 0);
  EXPECT_EQ(CountWholeEvents(kName), 3u);
  EXPECT_EQ(ReadRunNo(), 5u);
}

TEST_P(StnEventFileExitTest, NewFileSurvivesTheTeardownOfRoot) {
  for (const UInt_t n_events : {0, 10}) {
    gSystem->Unlink(kName);
    const Outcome outcome = RunToTheEnd(GetParam(), "NEW", n_events);
    EXPECT_EQ(outcome.fStatus, 0);
    EXPECT_EQ(outcome.fLog, "");
  }
}

TEST_P(AnyEnding, NewFileSurvivesTheTeardownOfRootWithMessages) {
  const Outcome outcome = RunToTheEnd(GetParam(), "NEW", 10, 2);
  EXPECT_EQ(outcome.fStatus, 0);
  EXPECT_THAT(outcome.fLog, Not(HasSubstr("... closing: ")));
}

TEST_P(StnEventFileExitTest, InstallsTheHandlerOnceAndSaysSoAtLevel1) {
  const Outcome outcome = RunToTheEnd(GetParam(), "RECREATE", 1, 1);
  EXPECT_EQ(outcome.fStatus, 0);
  EXPECT_EQ(CountText(outcome.fLog, kInstalled), 1);
  EXPECT_THAT(outcome.fLog, Not(HasSubstr("ExitHandler")));
}

INSTANTIATE_TEST_SUITE_P(Endings, AnyEnding, testing::Values("exit", "return", "delete", "close"));
// What only the exit handler can get wrong.
INSTANTIATE_TEST_SUITE_P(Endings, StnEventFileExitTest, testing::Values("exit", "return"));

const char* const kHandlerBegins = "INF:TStnEventFile::ExitHandler\\(\\) - closing files open for writing ...\n";
const char* const kHandlerEnds = "INF:TStnEventFile::ExitHandler\\(\\) - done !\n";
const char* const kClosing = "DBG:StnEvent/src/StnEventFile.cc:[0-9]+: \t\t... closing: 0x[0-9a-f]+\n";
const char* const kDestructor = "INF:TStnEventFile::~TStnEventFile\\(\\) - 0x[0-9a-f]+\n";
const char* const kClose =
    "INF:TStnEventFile::Close\\(''\\) - \nINF:\tbytes written:  *[0-9]+\nINF:\tbytes read:     *[0-9]+\n";
const char* const kRemoved = "INF:TStnEventFile::~TStnEventFile\\(\\) - removed 0x[0-9a-f]+ from the list !\n";

// What a process says after its last write.
std::string GetExitLog(const std::string& log) {
  const size_t at = log.rfind("INF:TStnEventFile::ExitHandler() - closing");
  return at == std::string::npos ? "" : log.substr(at);
}

TEST(StnEventFileExitLogTest, ShowsTheClosingOfAnOpenFile) {
  gSystem->Unlink(kName);
  EXPECT_THAT(GetExitLog(RunToTheEnd("exit", "RECREATE", 1, 2).fLog),
              MatchesRegex(std::string(kHandlerBegins) + kClosing + kDestructor + kClose + kRemoved + kHandlerEnds));
}

TEST(StnEventFileExitLogTest, SkipsADeletedFileWithoutAMessage) {
  gSystem->Unlink(kName);
  EXPECT_THAT(GetExitLog(RunToTheEnd("delete", "RECREATE", 1, 2).fLog),
              MatchesRegex(std::string(kHandlerBegins) + kHandlerEnds));
}

TEST(StnEventFileExitLogTest, ClosesNoFileTwice) {
  gSystem->Unlink(kName);
  EXPECT_THAT(GetExitLog(RunToTheEnd("close", "RECREATE", 1, 2).fLog),
              MatchesRegex(std::string(kHandlerBegins) + kClosing + kDestructor + kRemoved + kHandlerEnds));
}

TEST(StnEventFileExitLogTest, LeavesFilesBeingReadAlone) {
  WriteFile(kName, 2);
  const Outcome outcome = RunToTheEnd("read", "", 0, 2);
  EXPECT_EQ(outcome.fStatus, 0);
  EXPECT_THAT(outcome.fLog, HasSubstr(kInstalled));
  EXPECT_THAT(GetExitLog(outcome.fLog), testing::ContainsRegex(std::string(kHandlerBegins) + kHandlerEnds));
}

TEST(StnEventFileExitLogTest, FileObjectWithoutFileHasNothingToRead) {
  const Outcome outcome = RunToTheEnd("nothing", "", 0);
  EXPECT_EQ(outcome.fStatus, 0);
  EXPECT_EQ(outcome.fLog,
            "ERR:TStnEventFile::ReadRunHeader() - reading 'RunHeader' from file was unsuccessful !\n"
            "ERR:TStnEventFile::ReadRunTrailer() - reading 'RunTrailer' from file was unsuccessful !\n"
            "ERR:TStnEventFile::GetTree() - no Tree with name 'StnEventTree' found !\n"
            "ERR:TStnEventFile::GetTree() - no Tree with name 'StnEventTree' found !\n");
}

TEST(StnEventFileExitLogTest, TenFilesInstallTheHandlerOnce) {
  const Outcome outcome = RunToTheEnd("ten", "RECREATE", 0, 1);
  EXPECT_EQ(outcome.fStatus, 0);
  EXPECT_EQ(CountText(outcome.fLog, "INF:StnEventFile::TStnEventFile() - added "), 10);
  EXPECT_EQ(CountText(outcome.fLog, kInstalled), 1);
}

TEST(StnEventFileExitLogTest, ReportsAHandlerThatCantBeInstalledOnce) {
  EXPECT_EQ(
      RunToTheEnd("refused", "RECREATE", 0, 0).fLog,
      "ERR:TStnEventFile::Setup() - trying installing 'atexit' handler with error, 12 - Cannot allocate memory\n");
}

TEST(StnEventFileExitLogTest, SaysNothingOfSuccessWhenTheHandlerCantBeInstalled) {
  EXPECT_THAT(RunToTheEnd("refused", "RECREATE", 0, 1).fLog, Not(HasSubstr("successfully installed")));
}

TEST(StnEventFileExitLogTest, DoesNothingAboutASignal) {
  gSystem->Unlink(kName);
  const Outcome outcome = RunToTheEnd("terminate", "RECREATE", 10, 2);
  EXPECT_EQ(outcome.fStatus, 128 + SIGTERM);
  EXPECT_EQ(GetExitLog(outcome.fLog), "");
}

class ExitHandlerTest : public testing::Test {
 protected:
  void SetUp() override { OpenFile::ExitHandler(); }
  LogCapture fLog;
};

TEST_F(ExitHandlerTest, ClosesTheFilesAndEmptiesTheRegistry) {
  WriteOpenFile("RECREATE", 2);
  delete new OpenFile("deleted.root", "RECREATE");
  new OpenFile("second.root", "RECREATE");
  OpenFile::ExitHandler();
  EXPECT_TRUE(OpenFile::fgFileList.empty());
  EXPECT_EQ(CountWholeEvents(kName), 2u);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(ExitHandlerTest, RunsAnyNumberOfTimes) {
  FilePrintLevel level(2);
  for (int i = 0; i < 2; ++i) {
    OpenFile::ExitHandler();
    EXPECT_EQ(fLog.Take(),
              "INF:TStnEventFile::ExitHandler() - closing files open for writing ...\n"
              "INF:TStnEventFile::ExitHandler() - done !\n");
  }
}

TEST_F(ExitHandlerTest, IsSilentAtLevel1) {
  FilePrintLevel level(1);
  OpenFile::ExitHandler();
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(ExitHandlerTest, ClosesTheFilesFromTheFirst) {
  const std::string first = Hex(new OpenFile("first.root", "RECREATE"));
  const std::string second = Hex(new OpenFile("second.root", "RECREATE"));
  FilePrintLevel level(1);
  OpenFile::ExitHandler();
  EXPECT_EQ(fLog.Take(), "INF:TStnEventFile::~TStnEventFile() - removed " + first +
                             " from the list !\nINF:TStnEventFile::~TStnEventFile() - removed " + second +
                             " from the list !\n");
}

TEST_F(ExitHandlerTest, RemovesSignalHandlers) {
  auto handler = new TStnEventFileSignalHandler(kSigUser2);
  handler->Add();
  OpenFile::fgSignalHandlerList = {handler, nullptr};
  OpenFile::ExitHandler();
  EXPECT_TRUE(OpenFile::fgSignalHandlerList.empty());
  EXPECT_EQ(gSystem->GetListOfSignalHandlers()->FindObject(handler), nullptr);
}

TEST_F(ExitHandlerTest, LibraryInstallsNoSignalHandler) {
  OpenFile file("first.root", "RECREATE");
  EXPECT_TRUE(OpenFile::fgSignalHandlerList.empty());
}

struct Deadly {
  ESignals fSignal;
  int fNumber;
};

class DeadlySignal : public testing::TestWithParam<Deadly> {
 protected:
  void SetUp() override { gSystem->Unlink(kName); }
};

TEST_P(DeadlySignal, ClosesTheFilesAndDiesOfTheSignal) {
  EXPECT_EXIT(
      {
        signal(GetParam().fNumber, SIG_DFL);
        gSystem->ResetSignals();
        WriteOpenFile("RECREATE", 3);
        TStnEventFileSignalHandler handler(GetParam().fSignal);
        handler.Notify();
        _exit(0);
      },
      testing::KilledBySignal(GetParam().fNumber), "WRN:TStnEventFileSignalHandler::Notify\\(\\) \\.\\.\\.");
  EXPECT_EQ(CountWholeEvents(kName), 3u);
}

TEST_P(DeadlySignal, DiesOfTheSignalAlsoWhenRegistered) {
  EXPECT_EXIT(
      {
        signal(GetParam().fNumber, SIG_DFL);
        gSystem->ResetSignals();
        auto handler = new TStnEventFileSignalHandler(GetParam().fSignal);
        handler->Add();
        OpenFile::fgSignalHandlerList.push_back(handler);
        handler->Notify();
        _exit(0);
      },
      testing::KilledBySignal(GetParam().fNumber), "");
}

TEST_P(DeadlySignal, DiesOfTheSignalAlsoWhenInstalled) {
  EXPECT_EXIT(
      {
        signal(GetParam().fNumber, SIG_DFL);
        gSystem->ResetSignals();
        TStnEventFileSignalHandler handler(GetParam().fSignal);
        handler.Add();
        handler.Notify();
        _exit(0);
      },
      testing::KilledBySignal(GetParam().fNumber), "");
}

INSTANTIATE_TEST_SUITE_P(Signals, DeadlySignal,
                         testing::Values(Deadly{kSigQuit, SIGQUIT}, Deadly{kSigInterrupt, SIGINT},
                                         Deadly{kSigTermination, SIGTERM}));

TEST(SignalHandlerTest, OtherSignalsOnlyCloseTheFiles) {
  OpenFile::ExitHandler();
  gSystem->Unlink(kName);
  WriteOpenFile("RECREATE", 3);
  LogCapture log;
  EXPECT_FALSE(TStnEventFileSignalHandler(kSigUser2).Notify());
  EXPECT_EQ(log.Take(), "WRN:TStnEventFileSignalHandler::Notify() ...\n");
  EXPECT_EQ(CountWholeEvents(kName), 3u);
}

TEST(SignalHandlerTest, DoesNotLogItsEndAtLevel1) {
  OpenFile::ExitHandler();
  LogCapture log;
  FilePrintLevel level(1);
  TStnEventFileSignalHandler(kSigUser2).Notify();
  EXPECT_EQ(log.Take(), "WRN:TStnEventFileSignalHandler::Notify() ...\n");
}

TEST(SignalHandlerTest, LogsItsEndAtLevel2) {
  OpenFile::ExitHandler();
  LogCapture log;
  FilePrintLevel level(2);
  TStnEventFileSignalHandler(kSigUser2).Notify();
  EXPECT_EQ(log.Take(),
            "WRN:TStnEventFileSignalHandler::Notify() ...\n"
            "INF:TStnEventFile::ExitHandler() - closing files open for writing ...\n"
            "INF:TStnEventFile::ExitHandler() - done !\n"
            "INF:TStnEventFileSignalHandler::Notify() - done !\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 6 && std::string(argv[1]) == "--end") {
    gSystem->ResetSignals();
    TStnEventFile::SetPrintLevel(std::atoi(argv[5]));
    kEndings.at(argv[2])(argv[3], std::atoi(argv[4]));
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
