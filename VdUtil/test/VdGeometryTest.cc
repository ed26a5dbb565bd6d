#include <VdUtil/VdGeometry.h>

#include <cstddef>
#include <type_traits>

#include <gtest/gtest.h>

using VdUtil::VdGeometry;

namespace {

struct Axis {
  double fAzimuth = -1;
  double fElevation = -1;
};

Axis GetAxis(unsigned int vd_mirror_no) {
  Axis axis;
  VdGeometry::GetTelescopeAxis(vd_mirror_no, axis.fAzimuth, axis.fElevation);
  return axis;
}

}  // namespace

TEST(VdGeometry, SixMirrorsStandSideBySideAroundTheStationsDirection) {
  const double kAzimuths[] = {357, 27, 57, 87, 117, 147};
  for (unsigned int mirror = 1; mirror <= 6; ++mirror)
    EXPECT_DOUBLE_EQ(GetAxis(6 + mirror).fAzimuth, kAzimuths[mirror - 1]) << mirror;
}

TEST(VdGeometry, ThreeMirrorsStandInStationFive) {
  EXPECT_DOUBLE_EQ(GetAxis(25).fAzimuth, 258);
  EXPECT_DOUBLE_EQ(GetAxis(26).fAzimuth, 288);
  EXPECT_DOUBLE_EQ(GetAxis(27).fAzimuth, 318);
}

TEST(VdGeometry, EveryMirrorLooksSixteenDegreesUpAndBetween0And360) {
  for (unsigned int number = 1; number <= 27; ++number) {
    EXPECT_DOUBLE_EQ(GetAxis(number).fElevation, 16) << number;
    EXPECT_GE(GetAxis(number).fAzimuth, 0) << number;
    EXPECT_LT(GetAxis(number).fAzimuth, 360) << number;
  }
}

TEST(VdGeometry, MissingAndIllegalMirrorsHaveZeros) {
  for (unsigned int number : {0u, 28u, 29u, 30u, 31u, 0xFFFFFFFFu}) {
    EXPECT_EQ(GetAxis(number).fAzimuth, 0) << number;
    EXPECT_EQ(GetAxis(number).fElevation, 0) << number;
  }
}

TEST(VdGeometry, StationsLookInDirections72DegreesApart) {
  for (unsigned int stn = 1; stn <= 5; ++stn)
    EXPECT_DOUBLE_EQ(VdGeometry::GetStnGeometry(stn).fAngleToEast, 72 * (stn - 1));
}

TEST(VdGeometry, PlacesOfStationsAreNotKnown) {
  const auto geometry = VdGeometry::GetStnGeometry(2);
  EXPECT_EQ(geometry.fLongitude, 0);
  EXPECT_EQ(geometry.fLatitude, 0);
  EXPECT_EQ(geometry.fGPSAltitude, 0);
  EXPECT_EQ(geometry.fFloorAltitude, 0);
}

TEST(VdGeometry, PlaceOfAStationHasItsFieldsInOrder) {
  const VdGeometry::_StnGeometryRec geometry = {1, 2, 3, 4, 5};
  EXPECT_EQ(geometry.fLongitude, 1);
  EXPECT_EQ(geometry.fLatitude, 2);
  EXPECT_EQ(geometry.fGPSAltitude, 3);
  EXPECT_EQ(geometry.fFloorAltitude, 4);
  EXPECT_EQ(geometry.fAngleToEast, 5);
}

TEST(VdGeometry, IllegalStationsHaveZeros) {
  EXPECT_EQ(VdGeometry::GetStnGeometry(0).fAngleToEast, 0);
  EXPECT_EQ(VdGeometry::GetStnGeometry(6).fAngleToEast, 0);
}

TEST(CameraPointing, HoldsAzimuthAndElevation) {
  const VdGeometry::_CameraPointingRec pointing(57, 16);
  EXPECT_EQ(pointing.fAzimuth, 57);
  EXPECT_EQ(pointing.fElevation, 16);
}

TEST(CameraPointing, StartsWithZeros) {
  const VdGeometry::_CameraPointingRec pointing;
  EXPECT_EQ(pointing.fAzimuth, 0);
  EXPECT_EQ(pointing.fElevation, 0);
  EXPECT_EQ(pointing.fHashValue, VdGeometry::_CameraPointingRec(0, 0).fHashValue);
}

TEST(CameraPointing, HasItsFieldsInOrder) {
  typedef VdGeometry::_CameraPointingRec Record;
  EXPECT_TRUE((std::is_same<decltype(Record::fHashValue), unsigned int>::value));
  EXPECT_EQ(offsetof(Record, fHashValue), 0u);
  EXPECT_EQ(offsetof(Record, fAzimuth), sizeof(double));
  EXPECT_EQ(offsetof(Record, fElevation), 2 * sizeof(double));
}

TEST(CameraPointing, EqualDirectionsHaveEqualHashValues) {
  EXPECT_EQ(VdGeometry::_CameraPointingRec(57, 16).fHashValue, VdGeometry::_CameraPointingRec(57, 16).fHashValue);
  EXPECT_EQ(VdGeometry::_CameraPointingRec(-0.0, 16).fHashValue, VdGeometry::_CameraPointingRec(0.0, 16).fHashValue);
}

TEST(CameraPointing, OtherDirectionsHaveOtherHashValues) {
  const unsigned int value = VdGeometry::_CameraPointingRec(57, 16).fHashValue;
  EXPECT_NE(VdGeometry::_CameraPointingRec(58, 16).fHashValue, value);
  EXPECT_NE(VdGeometry::_CameraPointingRec(57, 17).fHashValue, value);
  EXPECT_NE(VdGeometry::_CameraPointingRec(16, 57).fHashValue, value);
}

TEST(CameraPointing, CalculateHashFollowsTheAngles) {
  VdGeometry::_CameraPointingRec pointing;
  pointing.fAzimuth = 57;
  pointing.fElevation = 16;
  EXPECT_EQ(pointing.CalculateHash(), VdGeometry::_CameraPointingRec(57, 16).fHashValue);
  EXPECT_EQ(pointing.fHashValue, VdGeometry::_CameraPointingRec(57, 16).fHashValue);
}
