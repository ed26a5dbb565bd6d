#include "StationClock.h"

#include <StnEvent/StnEventHeader.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using StnTools::GpsTime;
using StnTools::SecondMeasurement;
using StnTools::StationClock;

const UInt_t kSecond = 1400000000;

// A header that takes the measurement as an event builder gives it.
TStnEventHeader MakeHeader(const StationClock& clock, UInt_t sec) {
  TStnEventHeader header;
  SecondMeasurement second = clock.Measure(sec);
  header.SetTimeCorrectionParameters(second.fStartOffset, second.fEndOffset, second.fTicksPerSecond, second.fPPSPhase);
  return header;
}

}  // namespace

TEST(StationClockTest, MeasuresWhatCountsAsPlausible) {
  for (std::uint64_t seed : {1, 2, 3}) {
    StationClock clock(seed);
    for (UInt_t sec = kSecond; sec < kSecond + 4000; sec += 7) {
      ASSERT_EQ(MakeHeader(clock, sec).GetTimeCorrectionQuality(), TStnEventHeader::kAveragedPeriod) << sec;
    }
  }
}

TEST(StationClockTest, EndsEachSecondWhereTheNextBegins) {
  StationClock clock(1);
  for (UInt_t sec = kSecond; sec < kSecond + 100; ++sec) {
    EXPECT_EQ(clock.Measure(sec).fEndOffset, clock.Measure(sec + 1).fStartOffset);
  }
}

TEST(StationClockTest, IsNeverQuiteRight) {
  StationClock clock(1);
  EXPECT_NE(clock.Measure(kSecond).fTicksPerSecond, 80000000u);
  EXPECT_NE(clock.Measure(kSecond).fTicksPerSecond, clock.Measure(kSecond + 900).fTicksPerSecond);
}

TEST(StationClockTest, DependsOnItsSeed) {
  EXPECT_NE(StationClock(1).Measure(kSecond).fTicksPerSecond, StationClock(2).Measure(kSecond).fTicksPerSecond);
}

TEST(StationClockTest, CountsInStepsOf100ns) {
  StationClock clock(1);
  for (UInt_t nsec = 1000000; nsec < 998000000; nsec += 12345678) {
    GpsTime raw = clock.Count({kSecond, nsec});
    EXPECT_EQ(raw.fSec, kSecond);
    EXPECT_EQ(raw.fNanoSec % 100, 0u);
  }
}

TEST(StationClockTest, NeedsTheCorrectionOfItsSecond) {
  StationClock clock(1);
  GpsTime raw = clock.Count({kSecond, 900000000});
  EXPECT_GT(std::abs(static_cast<int>(raw.fNanoSec) - 900000000), 1000);
}

// A count of 100 ns, and half of one that single precision leaves of the cycle's length.
TEST(StationClockTest, IsRightToOneCountAfterTheCorrection) {
  for (std::uint64_t seed : {1, 2, 3, 4}) {
    StationClock clock(seed);
    for (UInt_t sec = kSecond; sec < kSecond + 2000; sec += 41) {
      TStnEventHeader header = MakeHeader(clock, sec);
      for (UInt_t nsec = 1000000; nsec < 998000000; nsec += 98765432) {
        GpsTime raw = clock.Count({sec, nsec});
        UInt_t corrected_sec = 0;
        UInt_t corrected_nsec = 0;
        header.DoTimeCorrection(raw.fSec, static_cast<Int_t>(raw.fNanoSec), &corrected_sec, &corrected_nsec);
        EXPECT_EQ(corrected_sec, sec);
        EXPECT_NEAR(static_cast<double>(corrected_nsec), nsec - 50., 100.) << sec << " " << seed;
      }
    }
  }
}
