#ifndef bench_Workload_h
#define bench_Workload_h

#include "SimulationSettings.h"

#include <MrEvent/MrEvent.h>
#include <StnEvent/StnEvent.h>

#include <memory>
#include <vector>

namespace StnBench {

/// A kind of run to measure with.
struct Workload {
  const char* fName;
  StnTools::SimulationSettings fSettings;
  int fNEvents;  ///< events in a file of 34 MB of 16-bit samples; for "sparse" events that differ
};

/// "light", "middle" and "heavy", as the simulation has them, and "sparse" for long runs: six mirrors with one pixel
/// each, so that headers are as full as in "middle", and 100,000 events fit on a disk.
const std::vector<Workload>& GetWorkloads();

/// Simulated events of a workload.
class Events {
 public:
  /// Simulates `n` events.
  Events(const Workload& workload, int n);

  int GetN() const { return int(fStation.size()); }
  /// Event number `i` from 0; beyond the last one they begin anew.
  TStnEvent& GetStation(int i) const { return *fStation[i % GetN()]; }
  /// The same event as its mirrors delivered it.
  const std::vector<std::unique_ptr<TMirrorEvent>>& GetMirrors(int i) const { return fMirrors[i % GetN()]; }

  /// Samples of all events, as 16-bit words, in bytes.
  double GetSampleBytes() const { return fSampleBytes; }
  /// Sum of all samples of all events.
  ULong64_t GetSum() const { return fSum; }

 private:
  std::vector<std::unique_ptr<TStnEvent>> fStation;
  std::vector<std::vector<std::unique_ptr<TMirrorEvent>>> fMirrors;
  double fSampleBytes = 0;
  ULong64_t fSum = 0;
};

/// Calls `action` with each trace of the event, by ascending pixel number.
template <class Action>
void ForEachTrace(const TStnEvent& event, Action action) {
  const std::unique_ptr<TIterator> traces(const_cast<TStnEvent&>(event).GetFADCData()->GetIterator());
  while (const auto* trace = static_cast<const TFADCData*>(traces->Next()))
    action(*trace);
}

/// Sum of all samples of the event.
ULong64_t SumSamples(const TStnEvent& event);

}  // namespace StnBench

#endif
