#include "RunCounters.h"
#include "Scene.h"

#include <gtest/gtest.h>

namespace {

using StnTools::GpsTime;
using StnTools::RunCounters;
using StnTools::Scene;
using StnTools::SimulationSettings;

double ToSeconds(const GpsTime& time) { return time.fSec + time.fNanoSec * 1e-9; }

}  // namespace

TEST(RunCountersTest, LetsTimeGoForward) {
  RunCounters counters({});
  for (UInt_t trigger = 1; trigger < 2000; ++trigger) {
    ASSERT_LT(ToSeconds(counters.GetTime(trigger)), ToSeconds(counters.GetTime(trigger + 1))) << trigger;
  }
}

TEST(RunCountersTest, LeavesTheEdgesOfTheSecondsFree) {
  RunCounters counters({});
  for (UInt_t trigger = 1; trigger < 2000; ++trigger) {
    UInt_t nsec = counters.GetTime(trigger).fNanoSec;
    ASSERT_TRUE(nsec >= 1000000 && nsec <= 999000000) << nsec;
  }
}

TEST(RunCountersTest, BeginsWhenTheRunDoes) {
  SimulationSettings settings;
  settings.fStartTime = 1000000;
  RunCounters counters(settings);
  EXPECT_NEAR(ToSeconds(counters.GetTime(1)), 1000002., 1.);
  EXPECT_NEAR(ToSeconds(counters.GetTime(1000)), 1001700., 2.);
}

TEST(RunCountersTest, CountsRunAndVetoTimeFromTheStart) {
  SimulationSettings settings;
  settings.fStartTime = 1000000;
  RunCounters counters(settings);
  EXPECT_EQ(counters.GetRunTime({1000003, 250000099}), 32500000u);
  EXPECT_EQ(counters.GetVetoTime({1000003, 250000099}), 70000u);
}

TEST(RunCountersTest, CountsUpFromTriggerToTrigger) {
  RunCounters counters({});
  for (UInt_t trigger = 1; trigger < 1000; ++trigger) {
    for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
      ASSERT_LT(counters.GetDeadTime(trigger, mirror), counters.GetDeadTime(trigger + 1, mirror));
      ASSERT_LT(counters.GetMirrorDaqDeadTime(trigger, mirror), counters.GetMirrorDaqDeadTime(trigger + 1, mirror));
      ASSERT_LE(counters.GetNSkippedTriggers(trigger, mirror), counters.GetNSkippedTriggers(trigger + 1, mirror));
    }
    ASSERT_LT(counters.GetStnDaqDeadTime(trigger), counters.GetStnDaqDeadTime(trigger + 1));
  }
  EXPECT_EQ(counters.GetNSkippedTriggers(1000, 3), 6u);
}

TEST(RunCountersTest, CountsEachMirrorByItself) {
  RunCounters counters({});
  EXPECT_NE(counters.GetDeadTime(10, 1), counters.GetDeadTime(10, 2));
  EXPECT_NE(counters.GetMirrorDaqDeadTime(10, 1), counters.GetMirrorDaqDeadTime(10, 2));
}

TEST(RunCountersTest, GivesT3sToShowersOnly) {
  RunCounters counters({});
  UInt_t n_issued = 0;
  UInt_t n_rejected = 0;
  UInt_t n_showers = 0;
  for (UInt_t trigger = 1; trigger <= 2000; ++trigger) {
    const RunCounters::T3Count& count = counters.CountT3(trigger);
    bool is_shower = Scene::DrawKind({}, trigger) == Scene::kShower;
    EXPECT_TRUE(is_shower || !count.fIsIssued);
    EXPECT_TRUE(count.fIsIssued || !count.fIsRejected);
    n_showers += is_shower;
    n_issued += count.fIsIssued;
    n_rejected += count.fIsRejected;
    EXPECT_EQ(count.fIssued, n_issued);
    EXPECT_EQ(count.fRejected, n_rejected);
  }
  EXPECT_NEAR(n_issued, 0.5 * n_showers, 80);
  EXPECT_NEAR(n_rejected, 0.1 * n_issued, 30);
}

TEST(RunCountersTest, CountsT3sTheSameInAnyOrder) {
  RunCounters straight({});
  RunCounters jumping({});
  UInt_t late = jumping.CountT3(300).fIssued;
  EXPECT_EQ(jumping.CountT3(20).fIssued, straight.CountT3(20).fIssued);
  EXPECT_EQ(straight.CountT3(300).fIssued, late);
  EXPECT_EQ(jumping.CountT3(300).fIssued, late);
}

TEST(RunCountersTest, GivesNoOrAllShowersAT3WhenTold) {
  SimulationSettings settings;
  settings.fT3Fraction = 0.;
  EXPECT_EQ(RunCounters(settings).CountT3(500).fIssued, 0u);
  settings.fT3Fraction = 1.;
  UInt_t n_showers = 0;
  for (UInt_t trigger = 1; trigger <= 500; ++trigger)
    n_showers += Scene::DrawKind(settings, trigger) == Scene::kShower;
  EXPECT_EQ(RunCounters(settings).CountT3(500).fIssued, n_showers);
}

TEST(RunCountersTest, CountsAQuarterOfASecondForEachRejectedT3) {
  RunCounters::T3Count count = {};
  count.fRejected = 3;
  EXPECT_EQ(count.GetDeadTime(), 0.75F);
}
