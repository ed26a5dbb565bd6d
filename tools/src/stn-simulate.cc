#include "ChecksumList.h"
#include "CommandLine.h"
#include "FileName.h"
#include "OutputFile.h"
#include "ProgressBar.h"
#include "Simulation.h"
#include "ToolError.h"

#include <iostream>

namespace {

using namespace StnTools;

struct Options {
  std::string fOutput;
  std::string fChecksums;
  UInt_t fNEvents = 500;
  int fCompression = 1;
  bool fForce = false;
  SimulationSettings fSettings;
};

void AddOptions(CLI::App& app, Options& options) {
  SimulationSettings& settings = options.fSettings;
  app.add_option("OUT", options.fOutput, "station file to write")->required();
  app.add_option("-n,--events", options.fNEvents, "number of triggers")->capture_default_str();
  app.add_option("--run", settings.fRun, "run number")->capture_default_str();
  app.add_option("--station", settings.fStation, "station, 1 to 5")->check(CLI::Range(1, 5))->capture_default_str();
  app.add_option("--mirrors", settings.fMirrors, "mirrors in the DAQ, as in 1,2,4 (default: all of the station)")
      ->delimiter(',');
  app.add_option("--seed", settings.fSeed, "decides everything that is left to chance")->capture_default_str();
  app.add_option("--start", settings.fStartTime, "GPS second of the start of the run")->capture_default_str();
  app.add_option("--t3-fraction", settings.fT3Fraction, "part of the showers that get a T3")
      ->check(CLI::Range(0., 1.))
      ->capture_default_str();
  app.add_option("--missing-fraction", settings.fMissingFraction, "part of the mirror events that get lost")
      ->check(CLI::Range(0., 1.))
      ->capture_default_str();
  app.add_option("--compression", options.fCompression, "ROOT's setting: algorithm times 100 plus level")
      ->check(CLI::Range(0, 509))
      ->capture_default_str();
  app.add_option("--checksums", options.fChecksums, "also write the checksums of the events, for stn-verify");
  app.add_flag("-f,--force", options.fForce, "replace what exists");
}

Simulation MakeSimulation(const SimulationSettings& settings) {
  try {
    return Simulation(settings);
  } catch (const std::invalid_argument& error) {
    throw ToolError(kUsage, error.what());
  }
}

void WriteEvents(const Options& options, Simulation& simulation, OutputFile& file, ChecksumList& checksums) {
  ProgressBar progress(options.fNEvents);
  for (UInt_t trigger = 1; trigger <= options.fNEvents; ++trigger) {
    simulation.Simulate(trigger);
    if (!simulation.Build(file.GetEvent())) throw std::logic_error("a simulated mirror event was refused");
    if (!options.fChecksums.empty()) checksums.Add(ComputeChecksum(file.GetEvent()));
    file.WriteEvent();
    progress.Show(trigger);
  }
}

void RequireChecksumName(const Options& options) {
  if (options.fChecksums.empty()) return;
  if (options.fChecksums == options.fOutput) throw ToolError(kUsage, "OUT and the checksums are two files");
  RequireNewName(options.fChecksums, options.fForce);
}

int Simulate(const Options& options) {
  Simulation simulation = MakeSimulation(options.fSettings);
  RequireChecksumName(options);
  OutputFile file(options.fOutput, options.fForce, options.fCompression);
  ChecksumList checksums;
  TStnRunHeader header;
  simulation.FillRunHeader(header);
  file.WriteRunHeader(header);
  WriteEvents(options, simulation, file, checksums);
  TStnRunTrailer trailer;
  simulation.FillRunTrailer(trailer, options.fNEvents);
  file.WriteRunTrailer(trailer);
  file.Finish();
  if (!options.fChecksums.empty()) checksums.Write(options.fChecksums);
  std::cout << options.fOutput << ": " << options.fNEvents << " events of station " << options.fSettings.fStation
            << ", run " << options.fSettings.fRun << ", seed " << options.fSettings.fSeed << std::endl;
  return kFine;
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("stn-simulate", "Simulates a run of one station and writes it to a station file.", AddOptions,
                    Simulate, argc, argv);
}
