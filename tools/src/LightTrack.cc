#include "LightTrack.h"

#include <VdUtil/VdNumbering.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace StnTools {
namespace {

// The spot of a telescope with a corrector ring: a width of half a pixel, so nearly all light falls on 3 x 3 pixels.
const double kSpotWidth = 0.45;

// Longest way of the spot in one step, in pixels: that of a muon moves by several in a bin and must not leave any out.
const double kLongestStep = 0.25;

using PixelMap = std::array<std::array<UInt_t, kCameraRows>, kCameraColumns>;

PixelMap MakePixelMap() {
  PixelMap map = {};
  for (UInt_t pixel_no = 1; pixel_no <= VdUtil::Vd::kMI_NEXTPIXELS; ++pixel_no) {
    _PixelNumber pixel;
    pixel.fPixelNumber = static_cast<int>(pixel_no);
    map.at(VdUtil::Vd::GetColumnNo(&pixel) - 1).at(VdUtil::Vd::GetRowNo(&pixel) - 1) = pixel_no;
  }
  return map;
}

// Shares of a spot at `x` that fall on the pixel below it and on the neighbour of either side.
std::array<double, 3> GetShares(double x) {
  std::array<double, 3> shares;
  double centre = std::floor(x) + 0.5;
  for (int i = 0; i < 3; ++i) {
    double distance = (centre + i - 1 - x) / kSpotWidth;
    shares[i] = std::exp(-0.5 * distance * distance);
  }
  double sum = shares[0] + shares[1] + shares[2];
  for (double& share : shares)
    share /= sum;
  return shares;
}

void AddLight(std::vector<CameraLight>& cameras, int column, int row, UInt_t bin, UInt_t n_bins, double light) {
  if (column < 0 || column >= kCameraColumns * static_cast<int>(cameras.size())) return;
  UInt_t pixel = GetPixelAt(column % kCameraColumns, row);
  if (pixel == 0) return;
  std::vector<float>& bins = cameras[column / kCameraColumns][pixel];
  bins.resize(n_bins);
  bins[bin] += static_cast<float>(light);
}

}  // namespace

UInt_t GetPixelAt(int column, int row) {
  static const PixelMap map = MakePixelMap();
  if (column < 0 || column >= kCameraColumns || row < 0 || row >= kCameraRows) return 0;
  return map[column][row];
}

double LightTrack::GetBrightness(double bin) const {
  double progress = (bin - fStart) / fDuration;
  if (progress < 0. || progress > 1.) return 0.;
  return fMaximum * 4. * progress * (1. - progress);
}

std::vector<CameraLight> LightTrack::Project(UInt_t n_mirrors, UInt_t n_bins) const {
  std::vector<CameraLight> cameras(n_mirrors);
  auto n_steps = 1 + static_cast<UInt_t>(std::hypot(fColumnSpeed, fRowSpeed) / kLongestStep);
  for (UInt_t step = 0; step < n_bins * n_steps; ++step) {
    double time = (step + 0.5) / n_steps;
    double light = GetBrightness(time) / n_steps;
    if (light <= 0.) continue;
    double column = fColumn + fColumnSpeed * (time - fStart);
    double row = fRow + fRowSpeed * (time - fStart);
    std::array<double, 3> columns = GetShares(column);
    std::array<double, 3> rows = GetShares(row);
    for (int i = 0; i < 9; ++i) {
      AddLight(cameras, static_cast<int>(std::floor(column)) + i % 3 - 1, static_cast<int>(std::floor(row)) + i / 3 - 1,
               step / n_steps, n_bins, light * columns[i % 3] * rows[i / 3]);
    }
  }
  return cameras;
}

}  // namespace StnTools
