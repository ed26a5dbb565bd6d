#include "Electronics.h"

#include <algorithm>
#include <cmath>

namespace StnTools {
namespace {

const double kMaxSample = 4095.;  // 12 bits
// Of the pixels read out, so many have their threshold moved during the page, as happens once a second in each.
const double kThresholdChanges = 0.01;
const double kTriggerRate = 100.;  // in Hz, to which the threshold of a pixel is regulated

}  // namespace

bool Electronics::Digitise(Random& random, UInt_t pixel_no, const std::vector<float>& light,
                           TFADCData::FADCTraceResolution resolution, TFADCData::_FADCDataRec& record) const {
  // A record has 2000 words, also for a resolution that stands for more bins.
  UInt_t n_bins = std::min(TFADCData::GetNFADCBins(resolution), TFADCData::kNFADCWords);
  record = {};
  record.fPixelNumber.fPixelNumber = static_cast<int>(pixel_no);
  record.fTraceInfo.fEndBin = n_bins - 1;
  record.fTraceInfo.fResolution = resolution;
  FillMonitor(random, record.fMonitor);
  for (UInt_t bin = 0; bin < n_bins; ++bin) {
    record.fFadcData[bin].fData = GetSample(random, bin < light.size() ? light[bin] : 0.) & 0xFFF;
  }
  if (random.Uniform() < kThresholdChanges) record.fFadcData[random.Integer(n_bins)].fThresholdChanged = 1;
  return SetTriggerBits(n_bins, record);
}

UInt_t Electronics::GetSample(Random& random, double light) const {
  double signal = light > 0. ? kGain * random.Poisson(light) : 0.;
  return static_cast<UInt_t>(std::clamp(std::round(fPedestal + signal + kNoise * random.Gauss()), 0., kMaxSample));
}

bool Electronics::SetTriggerBits(UInt_t n_bins, TFADCData::_FADCDataRec& record) const {
  double level = kSumLength * fPedestal + kThreshold;
  UInt_t sum = 0;
  bool is_triggered = false;
  for (UInt_t bin = 0; bin < n_bins; ++bin) {
    sum += record.fFadcData[bin].fData;
    if (bin >= kSumLength) sum -= record.fFadcData[bin - kSumLength].fData;
    if (sum <= level) continue;
    record.fFadcData[bin].fPixelTrigger = 1;
    is_triggered = true;
  }
  return is_triggered;
}

void Electronics::FillMonitor(Random& random, TFADCData::_PixelMonitorDataRec& monitor) const {
  monitor.fActualThreshold = static_cast<unsigned>(std::lround(kSumLength * fPedestal)) + kThreshold;
  monitor.fPrevThreshold = monitor.fActualThreshold - 1 + random.Integer(3);
  monitor.fActualRate = random.Poisson(kTriggerRate);
  monitor.fMean = fPedestal;
  monitor.fVariance = kNoise * kNoise;
}

}  // namespace StnTools
