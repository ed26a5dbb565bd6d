#include "RunCounters.h"

#include "Random.h"
#include "Scene.h"

namespace StnTools {
namespace {

const double kMeanInterval = 1.7e9;  // ns between triggers, a busy night
const double kJitter = 1.2e9;        // ns by which a trigger may come later; less than the interval, to keep the order
const double kVetoEdge = 1e6;        // ns without triggers on either side of a full second
const ULong64_t kCountsPerSecond = 10000000;
const ULong64_t kVetoPerSecond = 20000;
const ULong64_t kReadoutTime = 260000;
const UInt_t kReadoutJitter = 5000;
const ULong64_t kMirrorDaqTime = 15000;
const ULong64_t kMirrorDaqStep = 10;
const ULong64_t kStnDaqTime = 4000;
const UInt_t kSkippedPer = 500;
const double kRejectedFraction = 0.1;

}  // namespace

GpsTime RunCounters::GetTime(UInt_t trigger) const {
  double since_start = trigger * kMeanInterval + kJitter * Random(fSettings.fSeed, 't', trigger).Uniform();
  auto nsec = static_cast<ULong64_t>(since_start);
  double part = static_cast<double>(nsec % 1000000000) * 1e-9;
  return {fSettings.fStartTime + static_cast<UInt_t>(nsec / 1000000000),
          static_cast<UInt_t>(kVetoEdge + part * (1e9 - 2. * kVetoEdge))};
}

ULong64_t RunCounters::GetRunTime(const GpsTime& time) const {
  return (time.fSec - fSettings.fStartTime) * kCountsPerSecond + time.fNanoSec / 100;
}

ULong64_t RunCounters::GetVetoTime(const GpsTime& time) const {
  return (time.fSec - fSettings.fStartTime) * kVetoPerSecond + kVetoPerSecond / 2;
}

ULong64_t RunCounters::GetDeadTime(UInt_t trigger, UInt_t mirror) const {
  return trigger * kReadoutTime + Random(fSettings.fSeed, 'r' << 8 | mirror, trigger).Integer(kReadoutJitter);
}

ULong64_t RunCounters::GetMirrorDaqDeadTime(UInt_t trigger, UInt_t mirror) const {
  return trigger * (kMirrorDaqTime + kMirrorDaqStep * mirror);
}

ULong64_t RunCounters::GetStnDaqDeadTime(UInt_t trigger) const { return trigger * kStnDaqTime; }

UInt_t RunCounters::GetNSkippedTriggers(UInt_t trigger, UInt_t mirror) const { return trigger * mirror / kSkippedPer; }

const RunCounters::T3Count& RunCounters::CountT3(UInt_t trigger) {
  if (trigger < fT3Count.fTrigger) fT3Count = {};
  while (fT3Count.fTrigger < trigger)
    CountNextT3();
  return fT3Count;
}

void RunCounters::CountNextT3() {
  UInt_t trigger = ++fT3Count.fTrigger;
  Random random(fSettings.fSeed, '3', trigger);
  fT3Count.fIsIssued =
      random.Uniform() < fSettings.fT3Fraction && Scene::DrawKind(fSettings, trigger) == Scene::kShower;
  fT3Count.fIsRejected = fT3Count.fIsIssued && random.Uniform() < kRejectedFraction;
  fT3Count.fIssued += fT3Count.fIsIssued;
  fT3Count.fRejected += fT3Count.fIsRejected;
}

}  // namespace StnTools
