#ifndef tools_TraceView_h
#define tools_TraceView_h

#include <MrEvent/FadcData.h>

#include <string>
#include <utility>
#include <vector>

namespace StnTools {

/// What a picture needs of one FADC trace. Bins are those of the trace, 100 ns each, ranges include both ends. Bins that
/// the trace names but has no word for do not take part.
class TraceView {
 public:
  using Range = std::pair<UInt_t, UInt_t>;

  /// Bins that the signal takes in before the first trigger bin and after the last.
  static constexpr UInt_t kMargin = 10;

  explicit TraceView(const TFADCData& trace);

  /// First bin, and number of bins; no bins if the last one of the trace lies before the first.
  UInt_t GetFirst() const { return fFirst; }
  UInt_t GetSize() const { return static_cast<UInt_t>(fWords.size()); }

  /// Bins whose word has the pixel trigger set, in ranges as long as possible.
  const std::vector<Range>& GetTriggerRanges() const { return fTriggers; }
  /// Bins whose word says that the threshold changed.
  const std::vector<UInt_t>& GetThresholdChanges() const { return fThresholdChanges; }

  /// Mean of the samples within 16 counts of the median, in FADC counts; 0 without bins.
  double GetPedestal() const { return fPedestal; }
  /// Sum of the samples above the pedestal, in FADC counts: from `kMargin` bins before the first trigger bin to as many
  /// after the last, of all bins if none has a trigger.
  double GetSignal() const;

  /// The samples as base64 of bytes: a byte of -127 to 127 is the difference to the sample before, the first one's to 0;
  /// -128 announces a whole sample in two bytes, the low one first.
  std::string EncodeSamples() const;

 private:
  void FindFlags();
  void FindPedestal();

  UInt_t fFirst;
  std::vector<TFADCData::_FADCDataWordRec> fWords;
  std::vector<Range> fTriggers;
  std::vector<UInt_t> fThresholdChanges;
  double fPedestal = 0.;
};

}  // namespace StnTools

#endif
