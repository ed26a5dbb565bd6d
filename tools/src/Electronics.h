#ifndef tools_Electronics_h
#define tools_Electronics_h

#include "Random.h"

#include <MrEvent/FadcData.h>

#include <vector>

namespace StnTools {

/// The readout of one pixel: an amplifier with pedestal and noise, an FADC of 12 bits and 10 MHz, and a trigger that
/// compares the sum of the last ten samples with a threshold.
class Electronics {
 public:
  /// Counts that one photoelectron adds to a sample.
  static constexpr double kGain = 2.;
  /// Width of the noise of a sample, in counts: that of the night sky and of the amplifier together.
  static constexpr double kNoise = 3.5;
  /// Samples in the sum that the trigger looks at, one microsecond.
  static constexpr UInt_t kSumLength = 10;
  /// Counts above the pedestal at which the sum triggers: 5.4 times the width of its noise, so that noise alone hardly
  /// ever does.
  static constexpr UInt_t kThreshold = 60;

  /// A pixel whose samples lie around `pedestal` counts without light.
  explicit Electronics(double pedestal) : fPedestal(pedestal) {}

  /// Fills `record` with a trace over all bins of `resolution` that sees `light` photoelectrons expected in each bin
  /// (bins without an entry see none). Of the pixel number, the mirror pixel is set. Answers whether the pixel triggered.
  bool Digitise(Random& random, UInt_t pixel_no, const std::vector<float>& light,
                TFADCData::FADCTraceResolution resolution, TFADCData::_FADCDataRec& record) const;

 private:
  UInt_t GetSample(Random& random, double light) const;
  bool SetTriggerBits(UInt_t n_bins, TFADCData::_FADCDataRec& record) const;
  void FillMonitor(Random& random, TFADCData::_PixelMonitorDataRec& monitor) const;

  double fPedestal;
};

}  // namespace StnTools

#endif
