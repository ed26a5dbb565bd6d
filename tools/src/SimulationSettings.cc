#include "SimulationSettings.h"

#include <VdUtil/VdNumbering.h>

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <string>

namespace StnTools {
namespace {

using VdUtil::Vd;

SimulationSettings FixedSize(UInt_t n_mirrors, UInt_t n_pixels, TFADCData::FADCTraceResolution resolution) {
  SimulationSettings settings;
  settings.fMirrors.resize(n_mirrors);
  std::iota(settings.fMirrors.begin(), settings.fMirrors.end(), 1);
  settings.fMissingFraction = 0.;
  settings.fPixels = n_pixels;
  settings.fResolution = resolution;
  return settings;
}

void Require(bool condition, const std::string& text) {
  if (!condition) throw std::invalid_argument(text);
}

bool IsFraction(double x) { return x >= 0. && x <= 1.; }

}  // namespace

SimulationSettings SimulationSettings::Light() { return FixedSize(1, 8, TFADCData::kFADC_RESOLUTION_1000_BINS); }

SimulationSettings SimulationSettings::Middle() { return FixedSize(6, 40, TFADCData::kFADC_RESOLUTION_1000_BINS); }

SimulationSettings SimulationSettings::Heavy() { return FixedSize(6, 200, TFADCData::kFADC_RESOLUTION_2000_BINS); }

void SimulationSettings::Check() const {
  Require(fStation >= Vd::kVD_FIRST_STN && fStation <= Vd::kVD_LAST_STN, "there are stations 1 to 5");
  UInt_t last = Vd::GetStnLastMirrorNo(fStation);
  for (UInt_t mirror : fMirrors) {
    Require(mirror >= 1 && mirror <= last,
            "station " + std::to_string(fStation) + " has mirrors 1 to " + std::to_string(last));
  }
  Require(std::adjacent_find(fMirrors.begin(), fMirrors.end(), std::greater_equal<UInt_t>()) == fMirrors.end(),
          "mirrors are named once each, in ascending order");
  Require(IsFraction(fT3Fraction) && IsFraction(fMissingFraction), "fractions lie between 0 and 1");
  Require(fPixels <= Vd::kMI_NEXTPIXELS, "a mirror has 480 pixels");
  Require(GetNBins() == 1000 || GetNBins() == 2000, "a simulated trace has 1000 or 2000 bins");
}

std::vector<UInt_t> SimulationSettings::GetDaqMirrors() const {
  if (!fMirrors.empty()) return fMirrors;
  std::vector<UInt_t> all(Vd::GetStnLastMirrorNo(fStation));
  std::iota(all.begin(), all.end(), 1);
  return all;
}

}  // namespace StnTools
