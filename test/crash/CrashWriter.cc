// CrashWriter OUT [OPTIONS]: an event builder that dies. It writes a run to OUT and says on its output after each event
// how many there are, so that it can be killed; or it ends itself as --end and --at say.

#include "ChecksumList.h"
#include "Simulation.h"

#include <StnEvent/StnEventFile.h>

#include <CLI/CLI.hpp>
#include <TSystem.h>
#include <TTree.h>

#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

namespace {

using namespace StnTools;

struct Options {
  std::string fOutput;
  UInt_t fNEvents = 100;
  UInt_t fPixels = 12;
  int fCompression = 1;
  int fFlush = 0;
  int fSave = 0;
  std::string fSaveOption;
  std::string fChecksums;
  std::string fEnd;
  UInt_t fAt = 0;
};

// What happens at a write to the file, as the number of the write counts down to it.
enum class AtWrite { kNothing, kKillBefore, kKillHalfway, kKillAfter, kInterrupt };
AtWrite gAtWrite = AtWrite::kNothing;
UInt_t gWritesLeft = 0;

ssize_t Write(int descriptor, const void* bytes, size_t size) { return syscall(SYS_write, descriptor, bytes, size); }

ssize_t WriteAndDie(int descriptor, const void* bytes, size_t size) {
  if (gAtWrite == AtWrite::kKillHalfway) Write(descriptor, bytes, size / 2);
  if (gAtWrite == AtWrite::kKillAfter) Write(descriptor, bytes, size);
  return raise(SIGKILL);
}

SimulationSettings GetSettings(const Options& options) {
  SimulationSettings settings = SimulationSettings::Light();
  settings.fPixels = options.fPixels;
  return settings;
}

// A file whose maker gives up while it is being made.
class HopelessFile : public TStnEventFile {
 public:
  explicit HopelessFile(const char* name) : TStnEventFile(name, "RECREATE") { std::exit(5); }
};

void RaiseWithoutDebugger(int signal) {
  gSystem->ResetSignals();
  raise(signal);
}

void EndNow(const Options& options) {
  if (options.fEnd == "terminate") raise(SIGTERM);
  if (options.fEnd == "interrupt") raise(SIGINT);
  if (options.fEnd == "abort") RaiseWithoutDebugger(SIGABRT);
  if (options.fEnd == "exit") std::exit(4);
  if (options.fEnd == "exit-in-constructor") new HopelessFile((options.fOutput + ".other").c_str());
}

void ArmWrites(const Options& options) {
  const std::map<std::string, AtWrite> kinds = {{"kill-before-write", AtWrite::kKillBefore},
                                                {"kill-halfway", AtWrite::kKillHalfway},
                                                {"kill-after-write", AtWrite::kKillAfter},
                                                {"interrupt-in-fill", AtWrite::kInterrupt}};
  auto kind = kinds.find(options.fEnd);
  if (kind == kinds.end()) return;
  gAtWrite = kind->second;
  gWritesLeft = options.fAt;
}

void SaveTree(const Options& options, TStnEventFile& file, UInt_t n_events) {
  if (options.fFlush > 0 && n_events == 1) file.Get<TTree>("StnEventTree")->SetAutoFlush(options.fFlush);
  if (options.fSave > 0 && n_events % static_cast<UInt_t>(options.fSave) == 0)
    file.Get<TTree>("StnEventTree")->AutoSave(options.fSaveOption.c_str());
}

void WriteRun(const Options& options) {
  Simulation simulation(GetSettings(options));
  // Deleted only at the end of the run: whatever ends the process before has to do with an open file.
  auto* file = new TStnEventFile(options.fOutput.c_str(), "RECREATE", "", options.fCompression);
  auto* event = new TStnEvent;
  TStnRunHeader header;
  simulation.FillRunHeader(header);
  file->WriteRunHeader(&header);
  ArmWrites(options);
  for (UInt_t trigger = 1; trigger <= options.fNEvents; ++trigger) {
    simulation.Simulate(trigger);
    simulation.Build(*event);
    file->WriteEvent(&event);
    SaveTree(options, *file, trigger);
    dprintf(STDOUT_FILENO, "%u\n", trigger);
    if (trigger == options.fAt) EndNow(options);
  }
  file->Close();
  delete file;
  delete event;
}

void WriteChecksums(const Options& options) {
  Simulation simulation(GetSettings(options));
  ChecksumList checksums;
  TStnEvent event;
  for (UInt_t trigger = 1; trigger <= options.fNEvents; ++trigger) {
    simulation.Simulate(trigger);
    simulation.Build(event);
    checksums.Add(ComputeChecksum(event));
  }
  checksums.Write(options.fChecksums);
}

}  // namespace

// Stands before that of the C library, also for ROOT.
extern "C" ssize_t write(int descriptor, const void* bytes, size_t size) {
  bool is_meant = descriptor > STDERR_FILENO && gAtWrite != AtWrite::kNothing && --gWritesLeft == 0;
  if (is_meant && gAtWrite != AtWrite::kInterrupt) return WriteAndDie(descriptor, bytes, size);
  if (is_meant) raise(SIGINT);
  return Write(descriptor, bytes, size);
}

int main(int argc, char** argv) {
  Options options;
  CLI::App app;
  app.add_option("OUT", options.fOutput)->required();
  app.add_option("--events", options.fNEvents);
  app.add_option("--pixels", options.fPixels, "pixels with a trace in each event");
  app.add_option("--compression", options.fCompression);
  app.add_option("--flush", options.fFlush, "flush the baskets after so many events");
  app.add_option("--save", options.fSave, "save the tree after so many events");
  app.add_option("--save-option", options.fSaveOption);
  app.add_option("--checksums", options.fChecksums, "write the checksums of the events and no run");
  app.add_option("--end", options.fEnd);
  app.add_option("--at", options.fAt, "event or write at which --end takes place, from 1");
  CLI11_PARSE(app, argc, argv);
  if (options.fChecksums.empty())
    WriteRun(options);
  else
    WriteChecksums(options);
  return 0;
}
