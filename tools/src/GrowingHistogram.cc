#include "GrowingHistogram.h"

namespace StnTools {

void GrowingHistogram::Add(ULong64_t value) {
  while (value / fWidth >= fCounts.size())
    JoinBins();
  ++fCounts[value / fWidth];
}

void GrowingHistogram::JoinBins() {
  const size_t n_joined = fCounts.size() / 2;
  for (size_t i = 0; i < n_joined; ++i)
    fCounts[i] = fCounts[2 * i] + fCounts[2 * i + 1];
  for (size_t i = n_joined; i < fCounts.size(); ++i)
    fCounts[i] = 0;
  fWidth *= 2;
}

}  // namespace StnTools
