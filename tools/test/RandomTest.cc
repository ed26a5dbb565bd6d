#include "Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using StnTools::Random;

struct Moments {
  double fMean;
  double fVariance;
};

template <typename Draw>
Moments Measure(int n, Draw draw) {
  double sum = 0.;
  double sum2 = 0.;
  for (int i = 0; i < n; ++i) {
    double x = draw();
    sum += x;
    sum2 += x * x;
  }
  return {sum / n, sum2 / n - sum / n * (sum / n)};
}

}  // namespace

// The engine is fixed by the standard and the rest is ours, so these values hold on every machine. They were computed
// apart, from the descriptions of the engine and of splitmix64.
TEST(RandomTest, GivesKnownNumbers) {
  Random random(1, 2, 3);
  EXPECT_DOUBLE_EQ(random.Uniform(), 0.60096848415607551);
  EXPECT_DOUBLE_EQ(random.Gauss(), 2.1780925079200322);
  EXPECT_EQ(random.Poisson(3.), 1u);
  EXPECT_EQ(random.Integer(1000), 742u);
}

TEST(RandomTest, RepeatsItselfForEqualArguments) {
  Random a(5, 6, 7);
  Random b(5, 6, 7);
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(a.Uniform(), b.Uniform());
}

TEST(RandomTest, DependsOnEachArgument) {
  std::set<double> first = {Random(1, 1, 1).Uniform(), Random(2, 1, 1).Uniform(), Random(1, 2, 1).Uniform(),
                            Random(1, 1, 2).Uniform()};
  EXPECT_EQ(first.size(), 4u);
}

TEST(RandomTest, DoesNotExchangeItsArguments) { EXPECT_NE(Random(1, 2, 3).Uniform(), Random(1, 3, 2).Uniform()); }

TEST(RandomTest, SpreadsUniformNumbersOverTheirRange) {
  Random random(1, 0, 0);
  Moments moments = Measure(100000, [&random] {
    double x = random.Uniform(2., 8.);
    EXPECT_TRUE(x >= 2. && x < 8.);
    return x;
  });
  EXPECT_NEAR(moments.fMean, 5., 0.03);
  EXPECT_NEAR(moments.fVariance, 3., 0.05);
}

TEST(RandomTest, DrawsEveryIntegerBelowItsLimit) {
  Random random(1, 0, 0);
  std::set<unsigned> seen;
  for (int i = 0; i < 1000; ++i)
    seen.insert(random.Integer(5));
  EXPECT_EQ(seen, (std::set<unsigned>{0, 1, 2, 3, 4}));
}

TEST(RandomTest, DrawsGaussWithMean0AndWidth1) {
  Random random(1, 0, 0);
  Moments moments = Measure(200000, [&random] { return random.Gauss(); });
  EXPECT_NEAR(moments.fMean, 0., 0.01);
  EXPECT_NEAR(moments.fVariance, 1., 0.02);
}

TEST(RandomTest, DrawsGaussTailsAsOftenAsANormalDistributionHasThem) {
  Random random(1, 0, 0);
  int beyond_one = 0;
  int beyond_three = 0;
  const int n = 400000;
  for (int i = 0; i < n; ++i) {
    double x = std::fabs(random.Gauss());
    beyond_one += x > 1.;
    beyond_three += x > 3.;
  }
  EXPECT_NEAR(static_cast<double>(beyond_one) / n, 0.3173, 0.01);
  EXPECT_NEAR(static_cast<double>(beyond_three) / n, 0.0027, 0.0005);
}

TEST(RandomTest, DrawsPoissonWithEqualMeanAndVariance) {
  Random random(1, 0, 0);
  for (double mean : {0.3, 4., 30., 49., 51., 400.}) {
    SCOPED_TRACE(mean);
    Moments moments = Measure(100000, [&random, mean] { return random.Poisson(mean); });
    EXPECT_NEAR(moments.fMean, mean, 5. * std::sqrt(mean / 100000.));
    EXPECT_NEAR(moments.fVariance / mean, 1., 0.03);
  }
}

TEST(RandomTest, DrawsNothingWhereNothingIsExpected) {
  Random random(1, 0, 0);
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(random.Poisson(0.), 0u);
    EXPECT_EQ(random.Poisson(-3.), 0u);
  }
}
