#include "Random.h"

#include <algorithm>
#include <bitset>
#include <cmath>

namespace StnTools {
namespace {

// Above this mean a normal distribution stands for Poisson's, which by then is symmetric to a few percent.
const double kLargeMean = 50.;

// The finaliser of splitmix64 (Steele, Lea and Flood, 2014): neighbouring numbers come out unrelated.
std::uint64_t Mix(std::uint64_t x) {
  x += 0x9e3779b97f4a7c15ULL;
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
  x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
  return x ^ (x >> 31);
}

}  // namespace

Random::Random(std::uint64_t seed, std::uint64_t stream, std::uint64_t number)
    : fEngine(Mix(Mix(Mix(seed) ^ stream) ^ number)) {}

double Random::Uniform() { return static_cast<double>(fEngine() >> 11) * 0x1p-53; }

// The number of bits set in 64 random ones has mean 32 and variance 16; an even spread over one unit, of variance 1/12,
// fills the gaps between the integers. This needs neither logarithm nor table.
double Random::Gauss() {
  double bits = static_cast<double>(std::bitset<64>(fEngine()).count());
  return (bits - 32. + Uniform() - 0.5) / std::sqrt(16. + 1. / 12.);
}

unsigned Random::Poisson(double mean) {
  if (mean > kLargeMean) return static_cast<unsigned>(std::max(0., std::round(mean + std::sqrt(mean) * Gauss())));
  unsigned n = 0;
  double limit = std::exp(-std::max(mean, 0.));
  for (double product = Uniform(); product > limit; product *= Uniform())
    ++n;
  return n;
}

}  // namespace StnTools
