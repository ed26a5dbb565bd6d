#ifndef tools_Random_h
#define tools_Random_h

#include <cstdint>
#include <random>

namespace StnTools {

/// Random numbers that depend on their seed alone. The engine is fixed by the C++ standard; the distributions are ours,
/// as those of the standard library differ from one library to the next.
class Random {
 public:
  /// A sequence of its own for each combination of `seed`, `stream` (what the numbers are for) and `number` (which of
  /// many alike, such as a trigger).
  Random(std::uint64_t seed, std::uint64_t stream, std::uint64_t number);

  /// Evenly distributed from 0 to below 1, in steps of 2^-53.
  double Uniform();

  /// Evenly distributed from `low` to below `high`.
  double Uniform(double low, double high) { return low + (high - low) * Uniform(); }

  /// Evenly distributed over 0 to `n` - 1; `n` must not be 0.
  unsigned Integer(unsigned n) { return static_cast<unsigned>(Uniform() * n); }

  /// Normally distributed with mean 0 and width 1, out to 8 widths.
  double Gauss();

  /// Number of independent events where `mean` are expected; 0 for a mean of 0 or below.
  unsigned Poisson(double mean);

 private:
  std::mt19937_64 fEngine;
};

}  // namespace StnTools

#endif
