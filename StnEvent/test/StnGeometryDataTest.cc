#include <StnEvent/StnGeometryData.h>

#include "HostOfStation4.h"
#include "LogCapture.h"

#include <TBufferFile.h>
#include <TClass.h>
#include <TStreamerElement.h>
#include <TVirtualStreamerInfo.h>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using VdUtil::VdGeometry;
using Axis = std::pair<float, float>;

Axis GetAxis(TStnGeometryData& data, unsigned int telescope_id) {
  Axis axis(-1, -1);
  data.GetAxisDirection(telescope_id, axis.first, axis.second);
  return axis;
}

Axis GetNominalAxis(unsigned int stn, unsigned int mirror) {
  double azimuth = -1, elevation = -1;
  VdGeometry::GetTelescopeAxis((stn - 1) * 6 + mirror, azimuth, elevation);
  return Axis(azimuth, elevation);
}

const Axis kNone(0, 0);

class StnGeometryDataTest : public testing::Test {
 protected:
  LogCapture fLog;
};

/// What a call throws.
template <typename T>
std::string Thrown(T call) {
  try {
    call();
  } catch (const std::logic_error& error) {
    return error.what();
  }
  return "nothing";
}

TEST_F(StnGeometryDataTest, NewRecordHasNoAxes) {
  TStnGeometryData data;
  for (unsigned int id = 1; id <= 6; ++id)
    EXPECT_EQ(GetAxis(data, id), kNone);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnGeometryDataTest, RecordOfAStationHasTheAxesOfAllSixTelescopes) {
  for (unsigned int stn = 1; stn <= 5; ++stn) {
    TStnGeometryData data(stn);
    for (unsigned int id = 1; id <= 6; ++id)
      EXPECT_EQ(GetAxis(data, id), GetNominalAxis(stn, id)) << stn << id;
  }
}

TEST_F(StnGeometryDataTest, NominalAxesAreNotZero) {
  TStnGeometryData data(1);
  EXPECT_NE(GetAxis(data, 6), kNone);
}

TEST_F(StnGeometryDataTest, ConstructorRefusesStationsOutsideTheRange) {
  EXPECT_EQ(Thrown([] { TStnGeometryData(0U); }), "stn number is outside valid range");
  EXPECT_EQ(Thrown([] { TStnGeometryData(6U); }), "stn number is outside valid range");
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnGeometryData(int,int) - stn number 0 is outside valid range!\n"
            "ERR:TStnGeometryData(int,int) - stn number 6 is outside valid range!\n");
}

TEST_F(StnGeometryDataTest, ResetForgetsTheAxes) {
  TStnGeometryData data(1);
  data.Reset();
  for (unsigned int id = 1; id <= 6; ++id)
    EXPECT_EQ(GetAxis(data, id), kNone);
}

TEST_F(StnGeometryDataTest, TakesTheAxesOfASixMirrorStation) {
  TStnGeometryData data;
  data.SetAxisDirection(4);
  for (unsigned int id = 1; id <= 6; ++id)
    EXPECT_EQ(GetAxis(data, id), GetNominalAxis(4, id));
}

TEST_F(StnGeometryDataTest, LeavesTelescopesThatTheStationLacks) {
  TStnGeometryData data;
  for (unsigned int id = 1; id <= 6; ++id)
    data.SetAxisDirection(id, 7, 8);
  data.SetAxisDirection(5);
  for (unsigned int id = 1; id <= 3; ++id)
    EXPECT_EQ(GetAxis(data, id), GetNominalAxis(5, id));
  for (unsigned int id = 4; id <= 6; ++id)
    EXPECT_EQ(GetAxis(data, id), Axis(7, 8));
}

TEST_F(StnGeometryDataTest, TakesTheAxesOfTheHostsStation) {
  TStnGeometryData data;
  data.SetAxisDirection();
  EXPECT_EQ(GetAxis(data, 2), GetNominalAxis(4, 2));
}

TEST_F(StnGeometryDataTest, RefusesStationsOutsideTheRange) {
  TStnGeometryData data;
  data.SetAxisDirection(1, 7, 8);
  EXPECT_EQ(Thrown([&] { data.SetAxisDirection(0); }), "Stn id is outside valid range");
  EXPECT_EQ(Thrown([&] { data.SetAxisDirection(6); }), "Stn id is outside valid range");
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnGeometryData::SetAxisDirection() - stn id 0 is outside valid range!\n"
            "ERR:TStnGeometryData::SetAxisDirection() - stn id 6 is outside valid range!\n");
  EXPECT_EQ(GetAxis(data, 1), Axis(7, 8));
}

TEST_F(StnGeometryDataTest, SetsTheAxisOfEveryTelescope) {
  TStnGeometryData data;
  for (unsigned int id = 1; id <= 6; ++id)
    data.SetAxisDirection(id, 10 * id, id);
  for (unsigned int id = 1; id <= 6; ++id)
    EXPECT_EQ(GetAxis(data, id), Axis(10 * id, id));
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnGeometryDataTest, RefusesToSetATelescopeOutsideTheRange) {
  TStnGeometryData data(1);
  data.SetAxisDirection(0, 7, 8);
  data.SetAxisDirection(7, 7, 8);
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnGeometryData::SetAxisDirection() - telescope id 0 is outside valid range!\n"
            "ERR:TStnGeometryData::SetAxisDirection() - telescope id 7 is outside valid range!\n");
  for (unsigned int id = 1; id <= 6; ++id)
    EXPECT_EQ(GetAxis(data, id), GetNominalAxis(1, id));
}

TEST_F(StnGeometryDataTest, TelescopeOutsideTheRangeHasNoAxis) {
  TStnGeometryData data(1);
  EXPECT_EQ(GetAxis(data, 0), kNone);
  EXPECT_EQ(GetAxis(data, 7), kNone);
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnGeometryData::GetAxisDirection() - telescope id 0 is outside valid range!\n"
            "ERR:TStnGeometryData::GetAxisDirection() - telescope id 7 is outside valid range!\n");
}

TEST_F(StnGeometryDataTest, FillsAPointingAndLeavesItsHash) {
  TStnGeometryData data;
  data.SetAxisDirection(3, 45.5, 16.25);
  VdGeometry::_CameraPointingRec pointing;
  pointing.fHashValue = 99;
  data.GetAxisDirection(3, pointing);
  EXPECT_EQ(pointing.fAzimuth, 45.5);
  EXPECT_EQ(pointing.fElevation, 16.25);
  EXPECT_EQ(pointing.fHashValue, 99U);
}

TEST_F(StnGeometryDataTest, PointingHasFloatPrecision) {
  TStnGeometryData data;
  data.SetAxisDirection(3, 0.1, 0.7);
  VdGeometry::_CameraPointingRec pointing;
  data.GetAxisDirection(3, pointing);
  EXPECT_EQ(pointing.fAzimuth, static_cast<double>(0.1F));
  EXPECT_NE(pointing.fAzimuth, 0.1);
  EXPECT_EQ(pointing.fElevation, static_cast<double>(0.7F));
}

TEST_F(StnGeometryDataTest, PointingOutsideTheRangeIsZero) {
  TStnGeometryData data(1);
  VdGeometry::_CameraPointingRec pointing(1, 2);
  data.GetAxisDirection(7, pointing);
  EXPECT_EQ(fLog.Take(), "ERR:TStnGeometryData::GetAxisDirection() - telescope id 7 is outside valid range!\n");
  EXPECT_EQ(pointing.fAzimuth, 0);
  EXPECT_EQ(pointing.fElevation, 0);
}

TEST_F(StnGeometryDataTest, CopyAndAssignmentTakeAllValues) {
  TStnGeometryData source(2), target;
  TStnGeometryData copy(source);
  target = source;
  for (unsigned int id = 1; id <= 6; ++id) {
    EXPECT_EQ(GetAxis(copy, id), GetNominalAxis(2, id));
    EXPECT_EQ(GetAxis(target, id), GetNominalAxis(2, id));
  }
}

/// A record whose axes come and go through operations of its own.
class TDerivedData : public TStnGeometryData {
 public:
  using TStnGeometryData::GetAxisDirection;
  using TStnGeometryData::SetAxisDirection;
  void GetAxisDirection(unsigned int telescope_id, float& azimuth, float& elevation) override {
    azimuth = 10 * telescope_id;
    elevation = telescope_id;
  }
  void SetAxisDirection(unsigned int stn_id) override {
    fStns.push_back(stn_id);
    TStnGeometryData::SetAxisDirection(stn_id);
  }
  void SetAxisDirection(unsigned int, float azimuth, float elevation) override {
    fAxes.emplace_back(azimuth, elevation);
  }

  std::vector<unsigned int> fStns;
  std::vector<Axis> fAxes;
};

TEST_F(StnGeometryDataTest, ShortFormsGoThroughTheLongOnes) {
  TDerivedData data;
  data.SetAxisDirection();
  EXPECT_EQ(data.fStns, std::vector<unsigned int>({4}));
  data.fAxes.clear();
  data.SetAxisDirection(5);
  EXPECT_EQ(data.fAxes, std::vector<Axis>({GetNominalAxis(5, 1), GetNominalAxis(5, 2), GetNominalAxis(5, 3)}));
  VdGeometry::_CameraPointingRec pointing;
  data.GetAxisDirection(3, pointing);
  EXPECT_EQ(pointing.fAzimuth, 30);
  EXPECT_EQ(pointing.fElevation, 3);
}

const std::string kHead = "--- TStnGeometryData ---\n";
const std::string kHalf =
    " (az,el)[1]=      (10.5,1)\n"
    " (az,el)[2]=      (20.5,2)\n"
    " (az,el)[3]=      (30.5,3)\n";
const std::string kOtherHalf =
    " (az,el)[4]=      (40.5,4)\n"
    " (az,el)[5]=      (50.5,5)\n"
    " (az,el)[6]=      (60.5,6)\n";
const std::string kEnd = "------------------------\n";

TStnGeometryData Example() {
  TStnGeometryData data;
  for (unsigned int id = 1; id <= 6; ++id)
    data.SetAxisDirection(id, 10 * id + 0.5F, id);
  return data;
}

std::string Shown(unsigned int stn_no) {
  std::ostringstream text;
  Example().Show(text, stn_no);
  return text.str();
}

TEST_F(StnGeometryDataTest, ShowsSixAxesBelowStation5) {
  EXPECT_EQ(Shown(4), kHead + kHalf + kOtherHalf + kEnd);
  EXPECT_EQ(Shown(0), kHead + kHalf + kOtherHalf + kEnd);
}

TEST_F(StnGeometryDataTest, ShowsThreeAxesFromStation5On) {
  EXPECT_EQ(Shown(5), kHead + kHalf + kEnd);
  EXPECT_EQ(Shown(9), kHead + kHalf + kEnd);
}

TEST_F(StnGeometryDataTest, ShowsStation1ToStandardOutputByDefault) {
  testing::internal::CaptureStdout();
  Example().Show();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), Shown(1));
}

TEST_F(StnGeometryDataTest, ReadsBackWhatItWrote) {
  TStnGeometryData source = Example(), target;
  TBufferFile b(TBuffer::kWrite);
  source.Streamer(b);
  EXPECT_EQ(b.Length(), 6 + 10 + 48);
  b.SetReadMode();
  b.SetBufferOffset(0);
  target.Streamer(b);
  for (unsigned int id = 1; id <= 6; ++id)
    EXPECT_EQ(GetAxis(target, id), Axis(10 * id + 0.5F, id));
}

TEST_F(StnGeometryDataTest, IsRegisteredAsVersion1) {
  EXPECT_EQ(TClass::GetClass("TStnGeometryData")->GetClassVersion(), 1);
}

TEST_F(StnGeometryDataTest, DescriptionHasTwoArraysOfSix) {
  const TObjArray& elements = *TStnGeometryData::Class()->GetStreamerInfo()->GetElements();
  ASSERT_EQ(elements.GetEntries(), 3);
  const auto& azimuth = *static_cast<TStreamerElement*>(elements[1]);
  const auto& elevation = *static_cast<TStreamerElement*>(elements[2]);
  EXPECT_STREQ(azimuth.GetName(), "fAxisAzimuth");
  EXPECT_STREQ(azimuth.GetTitle(), "axis azimuth values");
  EXPECT_EQ(azimuth.GetArrayLength(), 6);
  EXPECT_STREQ(elevation.GetName(), "fAxisElevation");
  EXPECT_STREQ(elevation.GetTitle(), "axis elevation values");
  EXPECT_EQ(elevation.GetArrayLength(), 6);
}

}  // namespace
