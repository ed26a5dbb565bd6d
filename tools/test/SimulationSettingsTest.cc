#include "SimulationSettings.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using StnTools::SimulationSettings;

std::string GetComplaint(const SimulationSettings& settings) {
  try {
    settings.Check();
    return "";
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

template <typename Change>
std::string GetComplaintAfter(Change change) {
  SimulationSettings settings;
  change(settings);
  return GetComplaint(settings);
}

using Mirrors = std::vector<UInt_t>;

}  // namespace

TEST(SimulationSettingsTest, AcceptsItsDefaultsAndTheFixedWorkloads) {
  EXPECT_EQ(GetComplaint({}), "");
  EXPECT_EQ(GetComplaint(SimulationSettings::Light()), "");
  EXPECT_EQ(GetComplaint(SimulationSettings::Middle()), "");
  EXPECT_EQ(GetComplaint(SimulationSettings::Heavy()), "");
}

TEST(SimulationSettingsTest, RefusesStationsThatDoNotExist) {
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fStation = 0; }), "there are stations 1 to 5");
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fStation = 6; }), "there are stations 1 to 5");
}

TEST(SimulationSettingsTest, RefusesMirrorsThatTheStationLacks) {
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fMirrors = {0}; }), "station 1 has mirrors 1 to 6");
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fMirrors = {7}; }), "station 1 has mirrors 1 to 6");
  EXPECT_EQ(GetComplaintAfter([](auto& s) {
              s.fStation = 5;
              s.fMirrors = {1, 4};
            }),
            "station 5 has mirrors 1 to 3");
}

TEST(SimulationSettingsTest, RefusesMirrorsOutOfOrder) {
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fMirrors = {2, 1}; }), "mirrors are named once each, in ascending order");
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fMirrors = {1, 1}; }), "mirrors are named once each, in ascending order");
}

TEST(SimulationSettingsTest, RefusesFractionsBeyondTheWhole) {
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fT3Fraction = 1.01; }), "fractions lie between 0 and 1");
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fMissingFraction = -0.01; }), "fractions lie between 0 and 1");
}

TEST(SimulationSettingsTest, RefusesMorePixelsThanAMirrorHas) {
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fPixels = 480; }), "");
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fPixels = 481; }), "a mirror has 480 pixels");
}

TEST(SimulationSettingsTest, RefusesTracesThatDoNotFitTheRecord) {
  EXPECT_EQ(GetComplaintAfter([](auto& s) { s.fResolution = TFADCData::kFADC_RESOLUTION_4000_BINS; }),
            "a simulated trace has 1000 or 2000 bins");
}

TEST(SimulationSettingsTest, TakesAllMirrorsOfTheStationByDefault) {
  SimulationSettings settings;
  EXPECT_EQ(settings.GetDaqMirrors(), (Mirrors{1, 2, 3, 4, 5, 6}));
  settings.fStation = 5;
  EXPECT_EQ(settings.GetDaqMirrors(), (Mirrors{1, 2, 3}));
  settings.fMirrors = {2};
  EXPECT_EQ(settings.GetDaqMirrors(), (Mirrors{2}));
}
