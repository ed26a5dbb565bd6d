#include "StationClock.h"

#include "Random.h"

#include <cmath>

namespace StnTools {
namespace {

const double kTwoPi = 6.283185307179586;
// The strobe wanders over +-80 ns within some 16 minutes, well inside the +-128 ns that count as plausible.
const double kStrobeWander = 80.;
const double kStrobePeriod = 977.;
// A quartz without an oven: up to 20 parts in a million off, and 2 more as the hut warms and cools.
const double kQuartzOffset = 20e-6;
const double kQuartzDrift = 2e-6;
const double kQuartzPeriod = 3600.;
const double kNominalTicks = 80e6;
// The receiver's pulse moves in a sawtooth against the true second, as its own clock is a multiple of 13 ns.
const UInt_t kSawtooth = 13;

}  // namespace

StationClock::StationClock(std::uint64_t seed) {
  Random random(seed, 'c', 0);
  fPhase = random.Uniform(0., kTwoPi);
  fOffset = random.Uniform(-kQuartzOffset, kQuartzOffset);
}

SecondMeasurement StationClock::Measure(UInt_t sec) const {
  SecondMeasurement second = {GetStrobeOffset(sec), GetStrobeOffset(sec + 1), 0, sec * 5 % kSawtooth};
  double span = 1e9 + second.fEndOffset - second.fStartOffset;
  double speed = 1. + fOffset + kQuartzDrift * std::sin(kTwoPi * sec / kQuartzPeriod + fPhase);
  second.fTicksPerSecond = static_cast<UInt_t>(std::lround(kNominalTicks * speed * span * 1e-9));
  return second;
}

GpsTime StationClock::Count(const GpsTime& true_time) const {
  SecondMeasurement second = Measure(true_time.fSec);
  double cycle = 8. * (1e9 + second.fEndOffset - second.fStartOffset) / second.fTicksPerSecond;
  double since_strobe = static_cast<double>(true_time.fNanoSec) - second.fStartOffset - second.fPPSPhase;
  return {true_time.fSec, 100 * static_cast<UInt_t>(since_strobe / cycle)};
}

Short_t StationClock::GetStrobeOffset(UInt_t sec) const {
  return static_cast<Short_t>(std::lround(kStrobeWander * std::sin(kTwoPi * sec / kStrobePeriod + fPhase)));
}

}  // namespace StnTools
