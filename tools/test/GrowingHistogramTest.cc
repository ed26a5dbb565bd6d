#include "GrowingHistogram.h"

#include <gtest/gtest.h>

namespace {

using StnTools::GrowingHistogram;
using Counts = std::vector<ULong64_t>;

GrowingHistogram Fill(std::initializer_list<ULong64_t> values) {
  GrowingHistogram histogram(4, 10);
  for (ULong64_t value : values)
    histogram.Add(value);
  return histogram;
}

}  // namespace

TEST(GrowingHistogramTest, CountsByBins) {
  const GrowingHistogram histogram = Fill({0, 9, 10, 39});
  EXPECT_EQ(histogram.GetWidth(), 10U);
  EXPECT_EQ(histogram.GetCounts(), (Counts{2, 1, 0, 1}));
}

TEST(GrowingHistogramTest, JoinsBinsForAValueBeyondTheLast) {
  const GrowingHistogram histogram = Fill({0, 9, 10, 39, 40});
  EXPECT_EQ(histogram.GetWidth(), 20U);
  EXPECT_EQ(histogram.GetCounts(), (Counts{3, 1, 1, 0}));
}

TEST(GrowingHistogramTest, JoinsBinsAsOftenAsItTakes) {
  const GrowingHistogram histogram = Fill({0, 39, 1ULL << 63});
  EXPECT_EQ(histogram.GetCounts()[0], 2U);
  EXPECT_EQ(histogram.GetCounts()[(1ULL << 63) / histogram.GetWidth()], 1U);
}
