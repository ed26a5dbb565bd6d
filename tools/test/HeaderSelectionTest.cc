#include "HeaderSelection.h"

#include <gtest/gtest.h>

using namespace StnTools;
using VdRoot::TTimeStamp;

namespace {

/// Run 7, number 42, a shower of mirrors 2 and 3 by a physics trigger.
TStnEventHeader MakeHeader() {
  TStnEventHeader header;
  header.SetRunNo(7);
  header.SetEventNo(42);
  header.SetTimeStamp(TTimeStamp(1715964783, 500));
  header.SetEventClass(TStnEventHeader::kIsShower);
  header.SetEventType(TStnEventHeader::kPhysics);
  header.SetMirrorDataPresent(2);
  header.SetMirrorDataPresent(3);
  return header;
}

/// Whether that header is selected by these options.
bool Matches(const std::string& options) {
  CLI::App app;
  HeaderSelection selection;
  selection.AddOptions(app);
  app.parse(options);
  return selection.Matches(MakeHeader());
}

/// What is said about an option that can't be understood.
std::string GetRefusal(const std::string& options) {
  try {
    Matches(options);
  } catch (const CLI::ValidationError& error) {
    return error.what();
  }
  return "";
}

std::string Show(const TTimeStamp& time) { return time.AsString("i"); }

}  // namespace

TEST(HeaderSelection, WithoutAConditionWantsAll) { EXPECT_TRUE(Matches("")); }

/// Options, and whether they select the header.
class HeaderSelectionTest : public testing::TestWithParam<std::pair<const char*, bool>> {};

TEST_P(HeaderSelectionTest, WantsWhatMeetsItsConditions) { EXPECT_EQ(Matches(GetParam().first), GetParam().second); }

INSTANTIATE_TEST_SUITE_P(Conditions, HeaderSelectionTest,
                         testing::Values(std::make_pair("--run 7", true), std::make_pair("--run 8", false),
                                         std::make_pair("--run 1-6,8-9", false), std::make_pair("--run 1-3,7-9", true),
                                         std::make_pair("--number 42", true), std::make_pair("--number 41", false),
                                         std::make_pair("--number 42-50", true), std::make_pair("--number 30-42", true),
                                         std::make_pair("--number 43-50", false),
                                         std::make_pair("--number 3-41", false),
                                         std::make_pair("--number 1 --number 42", true)));

INSTANTIATE_TEST_SUITE_P(Times, HeaderSelectionTest,
                         testing::Values(std::make_pair("--from 2024-05-17T16:53:03.0000005Z", true),
                                         std::make_pair("--from 2024-05-17T16:53:03.000000501Z", false),
                                         std::make_pair("--until 2024-05-17T16:53:03.0000005Z", false),
                                         std::make_pair("--until 2024-05-17T16:53:03.000000501Z", true),
                                         std::make_pair("--from 2024-05-17 --until 2024-05-18", true)));

INSTANTIATE_TEST_SUITE_P(Kinds, HeaderSelectionTest,
                         testing::Values(std::make_pair("--class shower", true), std::make_pair("--class 13", true),
                                         std::make_pair("--class Muon,Noise", false),
                                         std::make_pair("--class Muon,Shower", true),
                                         std::make_pair("--type physics", true), std::make_pair("--type 2", false),
                                         std::make_pair("--class Shower --type Simulated", false)));

INSTANTIATE_TEST_SUITE_P(Mirrors, HeaderSelectionTest,
                         testing::Values(std::make_pair("--mirror 2", true), std::make_pair("--mirror 2,3", true),
                                         std::make_pair("--mirror 2-3", true), std::make_pair("--mirror 1", false),
                                         std::make_pair("--mirror 2-4", false), std::make_pair("--mirror 3,6", false)));

TEST(HeaderSelection, RefusesAMirrorThatIsNone) {
  EXPECT_EQ(GetRefusal("--mirror 0"), "'0' is not a mirror, 1 to 6");
  EXPECT_EQ(GetRefusal("--mirror 5-7"), "'5-7' is not a mirror, 1 to 6");
}

TEST(ParseRange, TakesOneNumber) { EXPECT_EQ(ParseRange("17"), std::make_pair(17U, 17U)); }

TEST(ParseRange, TakesFirstAndLast) { EXPECT_EQ(ParseRange("10-4294967295"), std::make_pair(10U, 4294967295U)); }

TEST(ParseRange, RefusesWhatIsNone) {
  EXPECT_EQ(GetRefusal("--number x"), "'x' is not a number or a range as 10-20");
  EXPECT_EQ(GetRefusal("--number 10-"), "'10-' is not a number or a range as 10-20");
  EXPECT_EQ(GetRefusal("--number 20-10"), "'20-10' is not a range from the lower number to the higher");
  EXPECT_EQ(GetRefusal("--number 4294967296"), "'4294967296' is not a number of 32 bits");
  EXPECT_EQ(GetRefusal("--number 99999999999999999999999"), "'99999999999999999999999' is not a number of 32 bits");
}

TEST(ParseTime, TakesAGpsSecond) { EXPECT_EQ(Show(ParseTime("1400000000.25")), "2024-05-17T16:53:02.250000000Z"); }

TEST(ParseTime, TakesDateAndTimeOfDay) {
  EXPECT_EQ(Show(ParseTime("2024-05-17T16:53:03.5Z")), "2024-05-17T16:53:03.500000000Z");
  EXPECT_EQ(Show(ParseTime("2024-05-17 16:53")), "2024-05-17T16:53:00.000000000Z");
  EXPECT_EQ(Show(ParseTime("2024-05-17")), "2024-05-17T00:00:00.000000000Z");
}

TEST(ParseTime, RefusesWhatIsNone) {
  EXPECT_EQ(GetRefusal("--from today"), "'today' is not a GPS second or a time in UTC as 2024-05-17T16:53:03");
  EXPECT_EQ(GetRefusal("--from 2023-02-29"), "'2023-02-29' is not a date and time of day that a time stamp can hold");
  EXPECT_EQ(GetRefusal("--until 2024-01-01T24:00:00"),
            "'2024-01-01T24:00:00' is not a date and time of day that a time stamp can hold");
  EXPECT_EQ(GetRefusal("--until 2040-01-01"), "'2040-01-01' is not a date and time of day that a time stamp can hold");
}

TEST(ParseClass, KnowsNamesInAnyCaseAndNumbers) {
  EXPECT_EQ(ParseClass("muon + NOISE"), TStnEventHeader::kMuonAndNoise);
  EXPECT_EQ(ParseClass("98"), TStnEventHeader::kRejected);
  EXPECT_EQ(ParseClass("-3"), -3);
}

TEST(ParseClass, RefusesOthersWithTheNamesThereAre) {
  EXPECT_EQ(GetRefusal("--class foo"),
            "'foo' is not an event class; these are: Unclassified, NoPhys, Large Event, Unhandled Signature, Empty, "
            "Muon, Long Muon, Close Shower, Noise, Muon + Noise, Veto, Shower Candidate, Horizontal Shower, Shower, "
            "UBA T3 noise, User defined 2, User defined 3, User defined 4, Rejected, Invalid event class, and their "
            "numbers");
}

TEST(ParseType, RefusesOthersWithTheNamesThereAre) {
  EXPECT_EQ(GetRefusal("--type foo"),
            "'foo' is not an event type; these are: Unknown, Physics, Calibration, Simulated, Laser Offset, Flasher "
            "Offset, Calibration Offset, Lidar Offset, APF Offset, Invalid, and their numbers");
}
