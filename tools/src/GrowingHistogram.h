#ifndef tools_GrowingHistogram_h
#define tools_GrowingHistogram_h

#include <Rtypes.h>

#include <vector>

namespace StnTools {

/// A histogram of values from 0 on whose end nobody knows beforehand, in constant memory: when a value lies beyond the
/// last bin, neighbouring bins are joined, which become twice as wide.
class GrowingHistogram {
 public:
  /// `n_bins` bins, an even number, of `width`.
  GrowingHistogram(UInt_t n_bins, ULong64_t width) : fWidth(width), fCounts(n_bins) {}

  /// Counts a value; it must be at most 2^63.
  void Add(ULong64_t value);

  /// Width of a bin.
  ULong64_t GetWidth() const { return fWidth; }
  /// Counts of all bins; bin i begins at i times the width.
  const std::vector<ULong64_t>& GetCounts() const { return fCounts; }

 private:
  void JoinBins();

  ULong64_t fWidth;
  std::vector<ULong64_t> fCounts;
};

}  // namespace StnTools

#endif
