#include "Workload.h"

#include "Simulation.h"

#include <stdexcept>

namespace StnBench {
namespace {

using StnTools::SimulationSettings;

SimulationSettings Sparse() {
  SimulationSettings settings = SimulationSettings::Middle();
  settings.fPixels = 1;
  return settings;
}

}  // namespace

const std::vector<Workload>& GetWorkloads() {
  static const std::vector<Workload> workloads = {{"light", SimulationSettings::Light(), 2100},
                                                  {"middle", SimulationSettings::Middle(), 70},
                                                  {"heavy", SimulationSettings::Heavy(), 7},
                                                  {"sparse", Sparse(), 1000}};
  return workloads;
}

Events::Events(const Workload& workload, int n) {
  StnTools::Simulation simulation(workload.fSettings);
  for (int trigger = 1; trigger <= n; ++trigger) {
    simulation.Simulate(trigger);
    fStation.push_back(std::make_unique<TStnEvent>());
    if (!simulation.Build(*fStation.back())) throw std::runtime_error("a simulated mirror event was refused");
    fStation.back()->GetT3Data();  // in all events, as a flat event has its fields always
    fMirrors.emplace_back();
    for (const TMirrorEvent* mirror : simulation.GetMirrorEvents())
      fMirrors.back().push_back(std::make_unique<TMirrorEvent>(*mirror));
    ForEachTrace(*fStation.back(), [this](const TFADCData& trace) { fSampleBytes += 2. * trace.GetTraceLength(); });
    fSum += SumSamples(*fStation.back());
  }
}

ULong64_t SumSamples(const TStnEvent& event) {
  ULong64_t sum = 0;
  ForEachTrace(event, [&sum](const TFADCData& trace) {
    const auto* words = trace.GetRecord()->fFadcData + trace.GetStartBin();
    const UInt_t n = trace.GetTraceLength();
    UInt_t of_trace = 0;
    for (UInt_t i = 0; i < n; ++i)
      of_trace += words[i].fWord & 0xFFF;
    sum += of_trace;
  });
  return sum;
}

}  // namespace StnBench
