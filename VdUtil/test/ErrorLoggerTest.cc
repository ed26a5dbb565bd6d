#include <VdUtil/ErrorLogger.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <type_traits>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <VdUtil/TimeConvert.h>

#include "LogCapture.h"

// As a release build does.
#ifndef NDEBUG
#define NDEBUG
#endif
#include <VdUtil/Assertions.h>

using testing::MatchesRegex;
using VdUtil::ErrorLogger;

namespace {

int gNClockReads = 0;

}  // namespace

/// Stands in for the function of the system, to see when it is called.
extern "C" time_t time(time_t* result) noexcept {
  ++gNClockReads;
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  if (result) *result = now.tv_sec;
  return now.tv_sec;
}

namespace {

const char kFile[] = "VdUtil/test/ErrorLoggerTest.cc";
constexpr ErrorLogger::ELoggingOption kOptions[] = {
    ErrorLogger::eShowSeverity,   ErrorLogger::eShowGPSTime,   ErrorLogger::eShowUnixTime, ErrorLogger::eShowFilename,
    ErrorLogger::eShowLineNumber, ErrorLogger::eShowClassName, ErrorLogger::eShowFuncName};
constexpr ErrorLogger::ESeverityLevel kLevels[] = {ErrorLogger::eDebug, ErrorLogger::eInfo,     ErrorLogger::eWarning,
                                                   ErrorLogger::eError, ErrorLogger::eCritical, ErrorLogger::eSevere,
                                                   ErrorLogger::eFatal};

ErrorLogger& GetLogger() { return ErrorLogger::GetInstance(); }

std::string ReadFile(const char* name) {
  std::ifstream file(name);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Starts every test with a logger without options, and puts the defaults back.
class Logger : public testing::Test {
 protected:
  Logger() { SetAll(false); }
  ~Logger() override {
    SetAll(false);
    GetLogger().SetOption(ErrorLogger::eShowSeverity);
    GetLogger().SetLoggingLevel(ErrorLogger::eDebug);
    GetLogger().SetVerbosity(ErrorLogger::eTerse);
  }
  static void SetAll(bool on) {
    for (auto option : kOptions)
      GetLogger().SetOption(option, on);
  }

  LogCapture fLog;
};

/// Text that tells where the stream was flushed.
class FlushMarks : public std::stringbuf {
  int sync() override {
    sputc('|');
    return 0;
  }
};

typedef Logger LogStatement;
typedef Logger LogOperation;

}  // namespace

TEST(LoggerAtTheStart, ShowsTheSeverityAloneAndEveryLevelOnClog) {
  // In a process of its own: other tests change the logger.
  EXPECT_EXIT(
      {
        const ErrorLogger& logger = GetLogger();
        std::ostringstream text;
        std::clog.rdbuf(text.rdbuf());
        for (auto option : kOptions)
          if (logger.IsOptionSet(option) != (option == ErrorLogger::eShowSeverity)) _exit(1);
        if (logger.GetLoggingLevel() != ErrorLogger::eDebug || logger.GetVerbosity() != ErrorLogger::eTerse) _exit(2);
        VD_INFO << "hello" << std::endl;
        _exit(text.str() == "INF:hello\n" ? 0 : 3);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(LogStatement, HasNoPrefixWithoutOptions) {
  VD_INFO << "a" << std::endl;
  VD_WARNING << "b" << std::endl;
  VD_ERROR << "c" << std::endl;
  VD_SEVERE << "d" << std::endl;
  VD_FATAL << "e" << std::endl;
  EXPECT_EQ(fLog.Take(), "a\nb\nc\nd\ne\n");
}

TEST_F(LogStatement, HasItsTagDirectlyBeforeTheText) {
  GetLogger().SetOption(ErrorLogger::eShowSeverity);
  VD_INFO << "TFoo::Bar() - a" << std::endl;
  VD_WARNING << "b" << std::endl;
  VD_ERROR << "c" << std::endl;
  VD_SEVERE << "d" << std::endl;
  VD_FATAL << "e" << std::endl;
  EXPECT_EQ(fLog.Take(), "INF:TFoo::Bar() - a\nWRN:b\nERR:c\nSEV:d\nFAT:e\n");
}

TEST_F(LogStatement, OfADebugMessageHasTagFileAndLineAlsoWithoutOptions) {
  VD_DEBUG << "text" << std::endl;
  const int line = __LINE__ - 1;
  EXPECT_EQ(fLog.Take(), std::string("DBG:") + kFile + ":" + std::to_string(line) + ": text\n");
}

TEST_F(LogStatement, OfADebugMessageHasItsTagOnce) {
  GetLogger().SetOption(ErrorLogger::eShowSeverity);
  VD_DEBUG << "text" << std::endl;
  EXPECT_THAT(fLog.Take(), MatchesRegex("DBG:VdUtil/test/ErrorLoggerTest.cc:[0-9]+: text\n"));
}

TEST_F(LogStatement, HasTheTimeInTenColumnsBetweenTagAndText) {
  GetLogger().SetOption(ErrorLogger::eShowSeverity);
  GetLogger().SetOption(ErrorLogger::eShowGPSTime);
  const unsigned int before = VdUtil::TimeConvert::GetGPSTime();
  VD_WARNING << "text" << std::endl;
  const std::string line = fLog.Take();
  EXPECT_THAT(line, MatchesRegex("WRN:[0-9]{10}: text\n"));
  EXPECT_GE(std::stoul(line.substr(4)), before);
  EXPECT_LE(std::stoul(line.substr(4)), VdUtil::TimeConvert::GetGPSTime());
}

TEST_F(LogStatement, HasTheTimeAloneWithoutTheSeverity) {
  GetLogger().SetOption(ErrorLogger::eShowGPSTime);
  VD_ERROR << "text" << std::endl;
  EXPECT_THAT(fLog.Take(), MatchesRegex("[0-9]{10}: text\n"));
}

TEST_F(LogStatement, OfADebugMessageHasTheTimeBetweenTagAndFile) {
  GetLogger().SetOption(ErrorLogger::eShowGPSTime);
  VD_DEBUG << "text" << std::endl;
  EXPECT_THAT(fLog.Take(), MatchesRegex("DBG:[0-9]{10}: VdUtil/test/ErrorLoggerTest.cc:[0-9]+: text\n"));
}

TEST_F(LogStatement, ReadsTheClockOnlyForTheTime) {
  SetAll(true);
  GetLogger().SetOption(ErrorLogger::eShowGPSTime, false);
  const int before = gNClockReads;
  VD_DEBUG << "text" << std::endl;
  VD_WARNING << "text" << std::endl;
  EXPECT_EQ(gNClockReads, before);
  GetLogger().SetOption(ErrorLogger::eShowGPSTime);
  VD_WARNING << "text" << std::endl;
  EXPECT_EQ(gNClockReads, before + 1);
}

TEST_F(LogStatement, TakesNoNoticeOfTheOtherOptions) {
  SetAll(true);
  GetLogger().SetOption(ErrorLogger::eShowSeverity, false);
  GetLogger().SetOption(ErrorLogger::eShowGPSTime, false);
  VD_ERROR << "text" << std::endl;
  EXPECT_EQ(fLog.Take(), "text\n");
}

TEST_F(LogStatement, NeverEndsTheLineItself) {
  GetLogger().SetOption(ErrorLogger::eShowSeverity);
  VD_INFO << "a";
  VD_WARNING << "b" << std::endl;
  EXPECT_EQ(fLog.Take(), "INF:aWRN:b\n");
}

TEST_F(LogStatement, FlushesWithItsEndOfLineAlone) {
  FlushMarks marks;
  std::ostream stream(&marks);
  GetLogger().SetStream(&stream);
  GetLogger().SetOption(ErrorLogger::eShowSeverity);
  VD_INFO << "a";
  VD_WARNING << "b" << std::endl;
  GetLogger().SetStream(&std::clog);
  EXPECT_EQ(marks.str(), "INF:aWRN:b\n|");
}

TEST_F(LogStatement, HasItsPrefixOnceAlsoWithSeveralLines) {
  GetLogger().SetOption(ErrorLogger::eShowSeverity);
  VD_WARNING << "one" << std::endl << "    two" << std::endl;
  EXPECT_EQ(fLog.Take(), "WRN:one\n    two\n");
}

TEST_F(LogStatement, LeavesManipulatorsSet) {
  VD_INFO << std::hex << std::setfill('.') << 255 << std::endl;
  VD_INFO << std::setw(4) << 255 << std::dec << std::setfill(' ') << std::endl;
  EXPECT_EQ(fLog.Take(), "ff\n..ff\n");
}

TEST_F(LogStatement, OfADebugMessageHasItsLineInDecimalAlsoAfterAHexadecimalMessage) {
  VD_INFO << std::hex;
  VD_DEBUG << 255 << std::dec << std::endl;
  const int line = __LINE__ - 1;
  EXPECT_EQ(fLog.Take(), std::string("DBG:") + kFile + ":" + std::to_string(line) + ": ff\n");
}

TEST_F(LogStatement, LooksTheOptionsUpAnew) {
  for (bool on : {true, false, true}) {
    GetLogger().SetOption(ErrorLogger::eShowSeverity, on);
    VD_INFO << "x" << std::endl;
  }
  EXPECT_EQ(fLog.Take(), "INF:x\nx\nINF:x\n");
}

TEST_F(LogStatement, BelongsToItsOwnIf) {
  const bool enabled = false;
  bool other = false;
  if (enabled)
    VD_DEBUG << "never" << std::endl;
  else
    other = true;
  EXPECT_TRUE(other);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(LogStatement, ComposesItsMessageAlsoBelowTheThreshold) {
  GetLogger().SetLoggingLevel(ErrorLogger::eError);
  GetLogger().SetOption(ErrorLogger::eShowGPSTime);
  const int n_clock_reads = gNClockReads;
  int n_calls = 0;
  VD_WARNING << ++n_calls << std::endl;
  EXPECT_EQ(n_calls, 1);
  EXPECT_EQ(gNClockReads, n_clock_reads + 1);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(LogStatement, OfAFatalMessageEndsNothing) {
  VD_FATAL << "still here" << std::endl;
  EXPECT_EQ(fLog.Take(), "still here\n");
}

TEST_F(Logger, ThresholdLetsItsOwnLevelAndThoseAboveThrough) {
  for (auto threshold : kLevels) {
    GetLogger().SetLoggingLevel(threshold);
    EXPECT_EQ(GetLogger().GetLoggingLevel(), threshold);
    for (auto level : kLevels) {
      GetLogger().GetStream(level) << "x";
      EXPECT_EQ(fLog.Take(), level >= threshold ? "x" : "") << level << " of " << threshold;
    }
  }
}

TEST_F(Logger, ALevelCanBeSwitchedOffWithAllBelow) {
  GetLogger().SetLoggingLevel(ErrorLogger::eWarning, false);
  VD_WARNING << "w" << std::endl;
  VD_ERROR << "e" << std::endl;
  EXPECT_EQ(fLog.Take(), "e\n");
  GetLogger().SetLoggingLevel(ErrorLogger::eFatal, false);
  VD_FATAL << "f" << std::endl;
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(Logger, OptionsHaveTheirBits) {
  int bit = 1;
  for (auto option : kOptions) {
    EXPECT_EQ(option, bit);
    bit *= 2;
  }
}

TEST_F(Logger, OptionsAreSetOneByOne) {
  for (auto option : kOptions) {
    GetLogger().SetOption(option);
    for (auto other : kOptions)
      EXPECT_EQ(GetLogger().IsOptionSet(other), other == option);
    GetLogger().SetOption(option, false);
    EXPECT_FALSE(GetLogger().IsOptionSet(option));
  }
}

TEST_F(Logger, SeveritiesHaveTheirValues) {
  int value = -1;
  for (auto level : kLevels)
    EXPECT_EQ(level, value++);
  EXPECT_EQ(ErrorLogger::eDefaultVerbosity, -1);
  EXPECT_EQ(ErrorLogger::eTerse, 0);
  EXPECT_EQ(ErrorLogger::eVerbose, 1);
}

TEST_F(Logger, SeveritiesHaveNamesAndTags) {
  std::string names, tags;
  for (auto level : kLevels) {
    names += ErrorLogger::GetVerboseSeverity(level) + " ";
    tags += ErrorLogger::GetVerboseSeverityShort(level);
  }
  EXPECT_EQ(names, "Debug Info Warning Error Critical Severe Fatal ");
  EXPECT_EQ(tags, "DBG:INF:WRN:ERR:CRI:SEV:FAT:");
}

TEST_F(Logger, ValuesThatAreNoSeverityHaveAName) {
  for (int value : {-2, 6}) {
    EXPECT_EQ(ErrorLogger::GetVerboseSeverity(static_cast<ErrorLogger::ESeverityLevel>(value)), "Unknown");
    EXPECT_EQ(ErrorLogger::GetVerboseSeverityShort(static_cast<ErrorLogger::ESeverityLevel>(value)), "\?\?\?:");
  }
}

TEST_F(Logger, PadsNumbersOnTheLeftAndNeverCutsThem) {
  EXPECT_EQ(ErrorLogger::GetASCIIFromInt(5, 10), "         5");
  EXPECT_EQ(ErrorLogger::GetASCIIFromInt(4294967295u, 10), "4294967295");
  EXPECT_EQ(ErrorLogger::GetASCIIFromInt(12345, 3), "12345");
  EXPECT_EQ(ErrorLogger::GetASCIIFromInt(0, 0), "0");
}

TEST_F(Logger, NullStreamSwallowsEverything) {
  ASSERT_TRUE(ErrorLogger::fgNullStream);
  *ErrorLogger::fgNullStream << "text" << 5 << std::endl;
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(Logger, WithoutAStreamIsSilent) {
  GetLogger().SetStream(nullptr);
  VD_ERROR << "lost" << std::endl;
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(Logger, WritesToTheStreamThatWasSet) {
  std::ostringstream other;
  GetLogger().SetStream(&other);
  VD_ERROR << "text" << std::endl;
  EXPECT_EQ(other.str(), "text\n");
  EXPECT_EQ(fLog.Take(), "");
  GetLogger().SetStream(&std::clog);
}

TEST_F(Logger, AppendsToAFile) {
  std::remove("log.txt");
  for (const char* text : {"one", "two"}) {
    EXPECT_TRUE(GetLogger().SetFile("log.txt"));
    VD_ERROR << text << std::endl;
  }
  EXPECT_EQ(ReadFile("log.txt"), "one\ntwo\n");
  EXPECT_TRUE(GetLogger().SetFile(std::string("other.txt")));
  VD_ERROR << "three" << std::endl;
  EXPECT_EQ(ReadFile("log.txt"), "one\ntwo\n");
  std::remove("other.txt");
}

TEST_F(Logger, ClosesItsFileForAStream) {
  std::remove("log.txt");
  GetLogger().SetFile("log.txt");
  VD_ERROR << "buffered";
  std::ostringstream other;
  GetLogger().SetStream(&other);
  EXPECT_EQ(ReadFile("log.txt"), "buffered");
  GetLogger().SetStream(&std::clog);
}

TEST_F(Logger, SaysWhenAFileCannotBeOpenedAndKeepsItsStream) {
  const char* kNoFolder = "ErrorLogger::SetFile() - can't open log file 'no/such.txt', No such file or directory\n";
  EXPECT_FALSE(GetLogger().SetFile("no/such.txt"));
  EXPECT_EQ(fLog.Take(), kNoFolder);
  EXPECT_FALSE(GetLogger().SetFile(std::string("")));
  EXPECT_EQ(fLog.Take(), "ErrorLogger::SetFile() - can't open log file '', No such file or directory\n");
  EXPECT_FALSE(GetLogger().SetFile(static_cast<const char*>(nullptr)));
  EXPECT_EQ(fLog.Take(), "ErrorLogger::SetFile() - can't open log file '', No such file or directory\n");
  VD_ERROR << "text" << std::endl;
  EXPECT_EQ(fLog.Take(), "text\n");
}

TEST_F(Logger, KeepsItsFileWhenTheNextCannotBeOpened) {
  std::remove("log.txt");
  GetLogger().SetFile("log.txt");
  EXPECT_FALSE(GetLogger().SetFile("/no/such.txt"));
  VD_ERROR << "text" << std::endl;
  EXPECT_THAT(ReadFile("log.txt"), testing::EndsWith("'/no/such.txt', No such file or directory\ntext\n"));
}

TEST_F(LogOperation, WritesTheMessageAloneWithoutOptions) {
  GetLogger().Log(ErrorLogger::eError, "TFoo::Bar", "Foo.cc", 12, "text");
  EXPECT_EQ(fLog.Take(), "text\n");
}

TEST_F(LogOperation, WritesEachPartWithItsOption) {
  const std::pair<ErrorLogger::ELoggingOption, const char*> kParts[] = {
      {ErrorLogger::eShowSeverity, "ERR:text\n"},        {ErrorLogger::eShowGPSTime, "[0-9]{10}: text\n"},
      {ErrorLogger::eShowUnixTime, "[0-9]{10}: text\n"}, {ErrorLogger::eShowFilename, "Foo.cc: text\n"},
      {ErrorLogger::eShowLineNumber, "12: text\n"},      {ErrorLogger::eShowClassName, "ns::TFoo: text\n"},
      {ErrorLogger::eShowFuncName, "Bar: text\n"}};
  for (const auto& part : kParts) {
    GetLogger().SetOption(part.first);
    GetLogger().Log(ErrorLogger::eError, "ns::TFoo::Bar", "Foo.cc", 12, "text");
    EXPECT_THAT(fLog.Take(), MatchesRegex(part.second));
    GetLogger().SetOption(part.first, false);
  }
}

TEST_F(LogOperation, WritesGPSTimeAndUnixTime) {
  GetLogger().SetOption(ErrorLogger::eShowGPSTime);
  GetLogger().SetOption(ErrorLogger::eShowUnixTime);
  GetLogger().Log(ErrorLogger::eError, "", "", 0, "text");
  const std::string line = fLog.Take();
  const unsigned int gps = std::stoul(line), unix_time = std::stoul(line.substr(12));
  EXPECT_NEAR(VdUtil::TimeConvert::GetGPSTime(), gps, 60);
  EXPECT_NEAR(VdUtil::TimeConvert::GetUnixTime(), unix_time, 60);
}

TEST_F(LogOperation, WritesEveryPartInOrder) {
  SetAll(true);
  GetLogger().Log(ErrorLogger::eInfo, "TFoo::Bar", "Foo.cc", 12, "text");
  EXPECT_THAT(fLog.Take(), MatchesRegex("INF:[0-9]{10}: [0-9]{10}: Foo.cc: 12: TFoo: Bar: text\n"));
}

TEST_F(LogOperation, LeavesOutNamesThatAreNotGiven) {
  SetAll(true);
  GetLogger().SetOption(ErrorLogger::eShowGPSTime, false);
  GetLogger().SetOption(ErrorLogger::eShowUnixTime, false);
  GetLogger().Log(ErrorLogger::eInfo, "Bar", "", 12, "text");
  EXPECT_EQ(fLog.Take(), "INF:12: Bar: text\n");
}

TEST_F(LogOperation, WritesTheSeverityAsAWordWhenVerbose) {
  GetLogger().SetOption(ErrorLogger::eShowSeverity);
  GetLogger().Log(ErrorLogger::eWarning, "", "", 0, "text", ErrorLogger::eVerbose);
  EXPECT_EQ(fLog.Take(), "Warning: text\n");
}

TEST_F(LogOperation, TakesTheDefaultVerbosityWhenItNamesNone) {
  GetLogger().SetOption(ErrorLogger::eShowSeverity);
  GetLogger().SetVerbosity(ErrorLogger::eVerbose);
  EXPECT_EQ(GetLogger().GetVerbosity(), ErrorLogger::eVerbose);
  GetLogger().Log(ErrorLogger::eWarning, "", "", 0, "a");
  GetLogger().Log(ErrorLogger::eWarning, "", "", 0, "b", ErrorLogger::eTerse);
  GetLogger().SetVerbosity(ErrorLogger::eDefaultVerbosity);
  EXPECT_EQ(GetLogger().GetVerbosity(), ErrorLogger::eTerse);
  GetLogger().Log(ErrorLogger::eWarning, "", "", 0, "c");
  EXPECT_EQ(fLog.Take(), "Warning: a\nWRN:b\nWRN:c\n");
}

TEST_F(LogOperation, TakesAMessageComposedInAStream) {
  std::ostringstream message;
  message << "number " << 5;
  GetLogger().Log(ErrorLogger::eInfo, "", "", 0, message);
  EXPECT_EQ(fLog.Take(), "number 5\n");
}

TEST_F(LogOperation, ObeysTheThreshold) {
  GetLogger().SetLoggingLevel(ErrorLogger::eError);
  GetLogger().Log(ErrorLogger::eWarning, "", "", 0, "text");
  EXPECT_EQ(fLog.Take(), "");
}

TEST(LoggerAtTheEnd, ServesExitHandlersThatAreNewerThanItself) {
  EXPECT_EXIT(
      {
        GetLogger().SetStream(&std::cerr);
        std::atexit([] { VD_ERROR << "from the handler" << std::endl; });
        std::exit(0);
      },
      testing::ExitedWithCode(0), "ERR:from the handler");
}

TEST(LoggerAtTheEnd, ServesExitHandlersAlsoWithAFile) {
  std::remove("exit.txt");
  EXPECT_EXIT(
      {
        GetLogger().SetFile("exit.txt");
        std::atexit([] { VD_ERROR << "from the handler" << std::endl; });
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
  EXPECT_EQ(ReadFile("exit.txt"), "ERR:from the handler\n");
}

namespace {

/// A handler registered before the logger is made: it runs after the logger's end.
[[noreturn]] void ExitWithALateHandler() {
  std::atexit([] { VD_ERROR << "late" << std::endl; });
  GetLogger().SetFile("late.txt");
  std::exit(0);
}

}  // namespace

TEST(LoggerAtTheEnd, SendsLaterMessagesToClog) {
  // The program starts anew, so that the logger is not yet made.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(ExitWithALateHandler(), testing::ExitedWithCode(0), "ERR:late");
  GTEST_FLAG_SET(death_test_style, "fast");
  EXPECT_EQ(ReadFile("late.txt"), "");
}

TEST(LoggerClass, IsMadeByItsSingletonAlone) {
  EXPECT_FALSE(std::is_default_constructible<ErrorLogger>::value);
  EXPECT_FALSE(std::is_copy_constructible<ErrorLogger>::value);
  EXPECT_FALSE(std::is_copy_assignable<ErrorLogger>::value);
  EXPECT_FALSE(std::is_destructible<ErrorLogger>::value);
  EXPECT_EQ(&GetLogger(), &VdUtil::Singleton<ErrorLogger>::GetInstance());
}

TEST(Assertion, StandsInEveryBuildTypeAndKeepsItsText) {
  const char* event = nullptr;
  EXPECT_DEATH(assert(event != __null), "VdUtil/test/ErrorLoggerTest.cc:[0-9]+: .*Assertion `event != __null' failed");
}
