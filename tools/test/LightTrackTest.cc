#include "LightTrack.h"

#include <VdUtil/VdNumbering.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using StnTools::CameraLight;
using StnTools::GetPixelAt;
using StnTools::LightTrack;

double Sum(const std::vector<float>& bins) {
  double sum = 0.;
  for (float light : bins)
    sum += light;
  return sum;
}

double Sum(const CameraLight& camera) {
  double sum = 0.;
  for (const auto& pixel : camera)
    sum += Sum(pixel.second);
  return sum;
}

int GetBrightestBin(const std::vector<float>& bins) {
  return static_cast<int>(std::max_element(bins.begin(), bins.end()) - bins.begin());
}

// From the middle of a camera's left to its right, in the row's middle.
const LightTrack kAlongARow = {0.5, 5.5, 0.05, 0., 100., 380., 10.};

}  // namespace

TEST(LightTrackTest, FindsEveryPixelByItsPlace) {
  std::set<UInt_t> seen;
  for (int column = 0; column < 20; ++column) {
    for (int row = 0; row < 24; ++row) {
      _PixelNumber pixel;
      pixel.fPixelNumber = static_cast<int>(GetPixelAt(column, row));
      EXPECT_EQ(VdUtil::Vd::GetColumnNo(&pixel), column + 1u);
      EXPECT_EQ(VdUtil::Vd::GetRowNo(&pixel), row + 1u);
      seen.insert(GetPixelAt(column, row));
    }
  }
  EXPECT_EQ(seen.size(), 480u);
}

TEST(LightTrackTest, FindsNoPixelOutsideTheCamera) {
  EXPECT_EQ(GetPixelAt(-1, 0), 0u);
  EXPECT_EQ(GetPixelAt(20, 0), 0u);
  EXPECT_EQ(GetPixelAt(0, -1), 0u);
  EXPECT_EQ(GetPixelAt(0, 24), 0u);
}

TEST(LightTrackTest, IsDarkAtItsEndsAndBrightestInItsMiddle) {
  EXPECT_EQ(kAlongARow.GetBrightness(99.), 0.);
  EXPECT_EQ(kAlongARow.GetBrightness(100.), 0.);
  EXPECT_EQ(kAlongARow.GetBrightness(290.), 10.);
  EXPECT_EQ(kAlongARow.GetBrightness(480.), 0.);
  EXPECT_EQ(kAlongARow.GetBrightness(481.), 0.);
}

TEST(LightTrackTest, KeepsAllLightThatFallsOnTheCameras) {
  double sum = Sum(kAlongARow.Project(1, 1000)[0]);
  EXPECT_NEAR(sum, 10. * 380. * 2. / 3., 10.);
}

TEST(LightTrackTest, CrossesTheCameraPixelByPixelInTime) {
  CameraLight camera = kAlongARow.Project(1, 1000)[0];
  int last = -1;
  for (int column = 2; column < 18; ++column) {
    int bin = GetBrightestBin(camera.at(GetPixelAt(column, 5)));
    EXPECT_GT(bin, last) << column;
    EXPECT_NEAR(bin, 100. + (column + 0.5 - 0.5) / 0.05, 12.) << column;
    last = bin;
  }
}

TEST(LightTrackTest, ShedsSomeLightOnTheNeighboursOnly) {
  CameraLight camera = kAlongARow.Project(1, 1000)[0];
  double centre = Sum(camera.at(GetPixelAt(10, 5)));
  EXPECT_NEAR(Sum(camera.at(GetPixelAt(10, 4))), Sum(camera.at(GetPixelAt(10, 6))), 1e-3);
  EXPECT_GT(centre, 4. * Sum(camera.at(GetPixelAt(10, 4))));
  EXPECT_EQ(camera.count(GetPixelAt(10, 3)), 0u);
  EXPECT_EQ(camera.count(GetPixelAt(10, 7)), 0u);
}

TEST(LightTrackTest, GoesOnInTheNextCamera) {
  LightTrack track = {18.5, 5.5, 0.05, 0., 0., 80., 10.};
  std::vector<CameraLight> cameras = track.Project(2, 1000);
  EXPECT_EQ(cameras[0].count(GetPixelAt(19, 5)), 1u);
  EXPECT_EQ(cameras[1].count(GetPixelAt(0, 5)), 1u);
  EXPECT_NEAR(Sum(cameras[0]) + Sum(cameras[1]), 10. * 80. * 2. / 3., 2.);
}

TEST(LightTrackTest, LosesWhatFallsBesideTheStation) {
  LightTrack track = {18.5, 5.5, 0.05, 0., 0., 80., 10.};
  std::vector<CameraLight> cameras = track.Project(1, 1000);
  ASSERT_EQ(cameras.size(), 1u);
  EXPECT_LT(Sum(cameras[0]), 300.);
  LightTrack outside = {-3., -3., 0., 0., 0., 80., 10.};
  EXPECT_TRUE(outside.Project(1, 1000)[0].empty());
}

TEST(LightTrackTest, LosesWhatComesAfterThePage) {
  std::vector<CameraLight> cameras = kAlongARow.Project(1, 290);
  EXPECT_NEAR(Sum(cameras[0]), 10. * 380. / 3., 10.);
  EXPECT_EQ(cameras[0].begin()->second.size(), 290u);
}

TEST(LightTrackTest, LeavesNoPixelOutHoweverFast) {
  LightTrack streak = {2.5, 5.5, 4., 0., 10., 4., 100.};
  CameraLight camera = streak.Project(1, 100)[0];
  for (int column = 3; column < 18; ++column)
    EXPECT_EQ(camera.count(GetPixelAt(column, 5)), 1u) << column;
}
