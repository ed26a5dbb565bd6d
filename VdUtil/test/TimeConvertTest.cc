#include <VdUtil/TimeConvert.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include <unistd.h>

#include <gtest/gtest.h>

#include <TClass.h>
#include <TClassEdit.h>

#include "LogCapture.h"

using VdUtil::TimeConvert;

namespace {

/// What is protected, made public.
struct Open : TimeConvert {
  using TimeConvert::fLeapSecondTable;
  using TimeConvert::GetFormattedFromTm;
  using TimeConvert::GetLeapSeconds;
  using TimeConvert::InitLeapSecondTable;
  using TimeConvert::IsLeapBoundary;
  using TimeConvert::LeapSecondEntryLess;
};

constexpr UInt_t kEpoch = 315964800;

/// The days before which a second was inserted, from the bulletins of the service that announces them.
struct LeapCase {
  const char* fDate;
  UInt_t fCount;
};
const LeapCase kLeaps[] = {{"1981-07-01", 1},  {"1982-07-01", 2},  {"1983-07-01", 3},  {"1985-07-01", 4},
                           {"1988-01-01", 5},  {"1990-01-01", 6},  {"1991-01-01", 7},  {"1992-07-01", 8},
                           {"1993-07-01", 9},  {"1994-07-01", 10}, {"1996-01-01", 11}, {"1997-07-01", 12},
                           {"1999-01-01", 13}, {"2006-01-01", 14}, {"2009-01-01", 15}, {"2012-07-01", 16},
                           {"2015-07-01", 17}, {"2017-01-01", 18}};

UInt_t GetMidnight(const std::string& date) {
  tm parts = {};
  strptime(date.c_str(), "%Y-%m-%d", &parts);
  return timegm(&parts);
}

class LeapSecond : public testing::TestWithParam<LeapCase> {
 protected:
  const UInt_t fMidnight = GetMidnight(GetParam().fDate);
  const UInt_t fGPS = fMidnight - kEpoch + GetParam().fCount;  // of midnight
};

/// Puts the built-in table back after each test.
class LeapSecondFile : public testing::Test {
 protected:
  ~LeapSecondFile() override { Open::InitLeapSecondTable(); }

  bool Read(const std::string& text) {
    std::ofstream("table.txt") << text;
    return TimeConvert::ReadLeapSecondTable("table.txt");
  }
  void ExpectRefused(const std::string& text, const std::string& message) {
    EXPECT_FALSE(Read(text));
    EXPECT_EQ(fLog.Take(),
              "ERR:TimeConvert::ReadLeapSecondTable() - table.txt" + message + ", the table in use stays\n");
    EXPECT_EQ(Open::fLeapSecondTable.size(), 19u);
    EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(1483228800), 1483228800 - kEpoch + 18);
  }

  LogCapture fLog;
};

tm GetDate() {
  tm date = {};
  date.tm_year = 116;
  date.tm_mon = 11;
  date.tm_mday = 31;
  date.tm_hour = 23;
  date.tm_min = 59;
  date.tm_sec = 60;
  return date;
}

bool gConvertAtTheVeryEnd = false;

// Runs after all exit handlers and destructors of static objects.
__attribute__((destructor)) void ConvertAtTheVeryEnd() {
  if (gConvertAtTheVeryEnd) _exit(TimeConvert::GetUnixTimeFromGPSTime(46828801) == 362793600 ? 7 : 2);
}

// Runs while static objects are made, before main.
const UInt_t gGPSOfAStaticObject = TimeConvert::GetGPSTimeFromUnixTime(1483228800);

}  // namespace

TEST_P(LeapSecond, BeginsAtMidnight) {
  EXPECT_EQ(TimeConvert::GetUnixTimeFromGPSTime(fGPS), fMidnight);
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(fMidnight), fGPS);
  EXPECT_EQ(Open::GetLeapSeconds(fGPS), GetParam().fCount);
}

TEST_P(LeapSecond, InsertedSecondHasTheUnixSecondOfMidnight) {
  EXPECT_EQ(TimeConvert::GetUnixTimeFromGPSTime(fGPS - 1), fMidnight);
  EXPECT_EQ(Open::GetLeapSeconds(fGPS - 1), GetParam().fCount - 1);
}

TEST_P(LeapSecond, SecondBeforeTheInsertedOneIsTheLastOfTheDay) {
  EXPECT_EQ(TimeConvert::GetUnixTimeFromGPSTime(fGPS - 2), fMidnight - 1);
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(fMidnight - 1), fGPS - 2);
}

TEST_P(LeapSecond, OnlyTheInsertedSecondIsABoundary) {
  EXPECT_FALSE(Open::IsLeapBoundary(fGPS - 2));
  EXPECT_TRUE(Open::IsLeapBoundary(fGPS - 1));
  EXPECT_FALSE(Open::IsLeapBoundary(fGPS));
}

TEST_P(LeapSecond, IsShownAsSecondSixty) {
  EXPECT_EQ(TimeConvert::GetTimeStringFromGPSTime(fGPS - 2, "%H:%M:%S"), "23:59:59");
  EXPECT_EQ(TimeConvert::GetTimeStringFromGPSTime(fGPS - 1, "%H:%M:%S"), "23:59:60");
  EXPECT_EQ(TimeConvert::GetTimeStringFromGPSTime(fGPS), std::string(GetParam().fDate) + " 00:00:00 UTC");
}

INSTANTIATE_TEST_SUITE_P(Every, LeapSecond, testing::ValuesIn(kLeaps),
                         [](const auto& info) { return "Number" + std::to_string(info.param.fCount); });

TEST(TimeConvert, GPSZeroIsTheGPSEpoch) {
  EXPECT_EQ(TimeConvert::GetUnixTimeFromGPSTime(0), kEpoch);
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(kEpoch), 0u);
}

TEST(TimeConvert, TimesBeforeTheGPSEpochWrap) {
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(0), 0u - kEpoch);
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(kEpoch - 1), 0xFFFFFFFFu);
  EXPECT_EQ(TimeConvert::GetUnixTimeFromGPSTime(0xFFFFFFFF), kEpoch - 1);
  EXPECT_EQ(TimeConvert::GetUnixTimeFromGPSTime(0u - kEpoch), 0u);
}

TEST(TimeConvert, LastGPSSecondsBeforeTheWrapHaveTheLeapSeconds) {
  EXPECT_EQ(TimeConvert::GetUnixTimeFromGPSTime(0u - kEpoch - 1), 0xFFFFFFFFu - 18);
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(0xFFFFFFFFu - 18), 0u - kEpoch - 1);
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(0xFFFFFFFFu), 0u - kEpoch - 1 + 18);
}

TEST(TimeConvert, EveryGPSSecondButTheInsertedOnesComesBack) {
  // A step that is odd and large visits all parts of the range.
  UInt_t gps = 0;
  for (int i = 0; i < 200000; ++i, gps += 2654435761u)
    if (!Open::IsLeapBoundary(gps)) {
      ASSERT_EQ(TimeConvert::GetGPSTimeFromUnixTime(TimeConvert::GetUnixTimeFromGPSTime(gps)), gps);
    }
}

TEST(TimeConvert, NowIsThePresent) {
  const UInt_t before = static_cast<UInt_t>(time(nullptr));
  const UInt_t unix_time = TimeConvert::GetUnixTime(), gps = TimeConvert::GetGPSTime();
  const UInt_t after = static_cast<UInt_t>(time(nullptr));
  EXPECT_TRUE(before <= unix_time && unix_time <= after);
  EXPECT_TRUE(before - kEpoch + 18 <= gps && gps <= after - kEpoch + 18);
}

TEST(TimeConvert, WorksWhileStaticObjectsAreMade) { EXPECT_EQ(gGPSOfAStaticObject, 1483228800 - kEpoch + 18); }

TEST(TimeConvert, WorksInExitHandlers) {
  EXPECT_EXIT(
      {
        std::atexit([] { _exit(TimeConvert::GetGPSTimeFromUnixTime(kEpoch + 7)); });
        std::exit(1);
      },
      testing::ExitedWithCode(7), "");
}

TEST(TimeConvert, WorksAfterStaticObjectsAreGone) {
  EXPECT_EXIT(
      {
        gConvertAtTheVeryEnd = true;
        std::exit(1);
      },
      testing::ExitedWithCode(7), "");
}

TEST(TimeConvert, ThreadsConvertTogether) {
  UInt_t results[4] = {};
  std::thread threads[4];
  for (int i = 0; i < 4; ++i)
    threads[i] = std::thread([&results, i] { results[i] = TimeConvert::GetUnixTimeFromGPSTime(1167264018 + i); });
  for (auto& thread : threads)
    thread.join();
  for (UInt_t i = 0; i < 4; ++i)
    EXPECT_EQ(results[i], 1483228800 + i);
}

TEST(TimeConvert, FormatsDateAndTimeOfDay) {
  EXPECT_EQ(TimeConvert::GetISODate(GetDate()), "2016-12-31");
  EXPECT_EQ(TimeConvert::GetISOTime(GetDate()), "23:59:60");
  EXPECT_EQ(TimeConvert::GetISOTime(GetDate(), false), "23:59:60");
  EXPECT_EQ(TimeConvert::GetISOTime(GetDate(), true), "23:59:60Z");
}

TEST(TimeConvert, ShowsDateAndTimeInUTC) {
  EXPECT_EQ(TimeConvert::GetTimeStringFromGPSTime(1167264017), "2016-12-31 23:59:60 UTC");
  EXPECT_EQ(TimeConvert::GetTimeStringFromGPSTime(0, ""), "1980-01-06 00:00:00 UTC");
  EXPECT_EQ(TimeConvert::GetTimeStringFromUnixTime(1714979289), "2024-05-06 07:08:09 UTC");
  EXPECT_EQ(TimeConvert::GetTimeStringFromUnixTime(0, ""), "1970-01-01 00:00:00 UTC");
}

TEST(TimeConvert, ShowsTimesInAFormatOfTheCaller) {
  EXPECT_EQ(TimeConvert::GetTimeStringFromGPSTime(1167264018, "%j %Y"), "001 2017");
  EXPECT_EQ(TimeConvert::GetTimeStringFromUnixTime(1714979289, "%H%M"), "0708");
}

TEST(TimeConvert, FormatsLongAndEmptyTexts) {
  const tm date = GetDate();
  EXPECT_EQ(Open::GetFormattedFromTm(&date, std::string(1000, 'x')), std::string(1000, 'x'));
  EXPECT_EQ(Open::GetFormattedFromTm(&date, ""), "");
  EXPECT_EQ(Open::GetFormattedFromTm(&date, "100%"), "100%");
  EXPECT_EQ(Open::GetFormattedFromTm(nullptr, "%Y"), "");
}

TEST(TimeConvert, EntriesAreOrderedByTime) {
  EXPECT_TRUE(Open::LeapSecondEntryLess({1, 9}, {2, 0}));
  EXPECT_FALSE(Open::LeapSecondEntryLess({2, 0}, {2, 1}));
}

TEST(TimeConvert, TableBeginsWithGPSZeroAndHasEveryLeapSecond) {
  ASSERT_EQ(Open::fLeapSecondTable.size(), 19u);
  EXPECT_EQ(Open::fLeapSecondTable.front().fGPSTime, 0u);
  EXPECT_EQ(Open::fLeapSecondTable.back().fGPSTime, 1167264018u);
  EXPECT_EQ(Open::fLeapSecondTable.back().fNLeapSeconds, 18u);
}

TEST(TimeConvert, PrintsItsTable) {
  std::ostringstream text;
  TimeConvert::PrintLeapSecondTable(text);
  const std::string first = "1980-01-06 0  # GPS second 0\n1981-07-01 1  # GPS second 46828801\n";
  const std::string last = "2017-01-01 18  # GPS second 1167264018\n";
  EXPECT_EQ(text.str().substr(0, first.size()), first);
  EXPECT_EQ(text.str().substr(text.str().size() - last.size()), last);
}

TEST(TimeConvert, EntriesHaveADictionary) {
  EXPECT_TRUE(TClass::GetClass("_LeapSecondEntryRec"));
  EXPECT_TRUE(TClass::GetClass("LeapSecondEntryRec"));
  TClass* table = TClass::GetClass("vector<LeapSecondEntryRec>");
  ASSERT_TRUE(table);
  EXPECT_TRUE(table->HasDictionary());
  EXPECT_TRUE(TClass::GetClass("VdUtil::TimeConvert"));
}

TEST_F(LeapSecondFile, MayHoldANewLeapSecond) {
  std::ostringstream table;
  TimeConvert::PrintLeapSecondTable(table);
  EXPECT_TRUE(Read(table.str() + "2035-01-01 19\n"));
  EXPECT_EQ(fLog.Take(), "");
  const UInt_t midnight = GetMidnight("2035-01-01");
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(midnight - 1), midnight - 1 - kEpoch + 18);
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(midnight), midnight - kEpoch + 19);
}

TEST_F(LeapSecondFile, MayTakeALeapSecondBack) {
  EXPECT_TRUE(Read("1980-01-06 0\n1981-07-01 1\n1982-07-01 0\n"));
  const UInt_t midnight = GetMidnight("1982-07-01"), gps = midnight - kEpoch;
  EXPECT_EQ(TimeConvert::GetUnixTimeFromGPSTime(gps), midnight);
  EXPECT_EQ(TimeConvert::GetUnixTimeFromGPSTime(gps - 1), midnight - 2);
  EXPECT_FALSE(Open::IsLeapBoundary(gps - 1));
}

TEST_F(LeapSecondFile, MayHaveCommentsAndEmptyLines) {
  EXPECT_TRUE(Read("# leap seconds\n\n \t\r\n  1980-01-06   0 # epoch\r\n1981-07-01 1"));
  EXPECT_EQ(Open::fLeapSecondTable.size(), 2u);
}

TEST_F(LeapSecondFile, BuiltInTableCanBePutBack) {
  EXPECT_TRUE(Read("1980-01-06 0\n"));
  Open::InitLeapSecondTable();
  EXPECT_EQ(TimeConvert::GetGPSTimeFromUnixTime(1483228800), 1167264018u);
}

TEST_F(LeapSecondFile, WhatIsPrintedCanBeRead) {
  std::ostringstream before, after;
  TimeConvert::PrintLeapSecondTable(before);
  EXPECT_TRUE(Read(before.str()));
  TimeConvert::PrintLeapSecondTable(after);
  EXPECT_EQ(before.str(), after.str());
}

TEST_F(LeapSecondFile, ThatIsMissingIsRefused) {
  EXPECT_FALSE(TimeConvert::ReadLeapSecondTable("no/such.txt"));
  EXPECT_EQ(
      fLog.Take(),
      "ERR:TimeConvert::ReadLeapSecondTable() - no/such.txt: No such file or directory, the table in use stays\n");
  EXPECT_EQ(Open::fLeapSecondTable.size(), 19u);
}

TEST_F(LeapSecondFile, ThatIsAFolderIsRefused) {
  EXPECT_FALSE(TimeConvert::ReadLeapSecondTable("."));
  EXPECT_EQ(fLog.Take(), "ERR:TimeConvert::ReadLeapSecondTable() - .: no entries, the table in use stays\n");
}

TEST_F(LeapSecondFile, ThatIsEmptyIsRefused) { ExpectRefused("# nothing\n", ": no entries"); }

TEST_F(LeapSecondFile, ThatBeginsLaterIsRefused) {
  ExpectRefused("1981-07-01 1\n", ":1: the first entry is not 1980-01-06 0");
  ExpectRefused("1980-01-06 1\n", ":1: the first entry is not 1980-01-06 0");
  ExpectRefused("1981-07-01 0\n", ":1: the first entry is not 1980-01-06 0");
}

TEST_F(LeapSecondFile, WhoseDatesDontRiseIsRefused) {
  ExpectRefused("1980-01-06 0\n#\n1982-07-01 1\n1981-07-01 2\n", ":4: the date does not rise");
  ExpectRefused("1980-01-06 0\n1982-07-01 1\n1982-07-01 2\n", ":3: the date does not rise");
}

TEST_F(LeapSecondFile, WhoseCountJumpsIsRefused) {
  ExpectRefused("1980-01-06 0\n1982-07-01 2\n", ":2: the count does not change by one");
  ExpectRefused("1980-01-06 0\n1982-07-01 0\n", ":2: the count does not change by one");
}

TEST_F(LeapSecondFile, WithALineOfAnotherFormIsRefused) {
  const std::string fault = ":2: neither a comment nor a date with a count";
  for (const char* line :
       {"1981-07-01", "1981-07-01 one", "1981-07-01 1 2", "1981-07-01 -1", "1981/07/01 1", "1981-13-01 1",
        "1981-02-30 1", "1979-12-31 1", "2106-02-08 1", "GPS 1", "1981-07-01 99999999999"})
    ExpectRefused("1980-01-06 0\n" + std::string(line) + "\n", fault);
}
