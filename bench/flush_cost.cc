// flush_cost [ROUNDS]: what it costs to put events on disk more often than the library does. Prints the table of
// docs/builder.md. In each round all ways take turns; 0 is one round with few events. The files go to $TMPDIR, else /tmp.

#include "Stopwatch.h"
#include "Workload.h"

#include <StnEvent/StnEventFile.h>

#include <TTree.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <map>
#include <string>

namespace {

using namespace StnBench;

/// How often what is done; 0 for never.
struct Way {
  const char* fName;
  int fFlush;
  int fSave;
  const char* fSaveOption;
  bool fIsSynced;
};

constexpr int kEvery = 20;

const Way kWays[] = {
    {"as the library does it", 0, 0, "", false},
    {"`SetAutoFlush(100)`", 100, 0, "", false},
    {"`SetAutoFlush(10)`", 10, 0, "", false},
    {"`SetAutoFlush(1)`", 1, 0, "", false},
    {"`AutoSave(\"SaveSelf\")` every 20", 0, kEvery, "SaveSelf", false},
    {"`AutoSave(\"FlushBaskets SaveSelf\")` every 20", 0, kEvery, "FlushBaskets SaveSelf", false},
    {"`AutoSave(\"FlushBaskets\")` and `Flush()` every 20", 0, kEvery, "FlushBaskets", true},
};

const struct {
  const char* fName;
  int fWorkload;
  int fNEvents;
} kRuns[] = {{"one mirror, 8 pixels", 0, 1000}, {"six mirrors, 240 pixels", 1, 200}};

struct Results {
  std::vector<double> fCpu;
  std::vector<double> fWall;
  Long64_t fSize = 0;
};

void PutOnDisk(TStnEventFile& file, const Way& way, int n_events) {
  if (way.fFlush > 0 && n_events == 1) file.Get<TTree>("StnEventTree")->SetAutoFlush(way.fFlush);
  if (way.fSave == 0 || n_events % way.fSave != 0) return;
  file.Get<TTree>("StnEventTree")->AutoSave(way.fSaveOption);
  if (way.fIsSynced) file.Flush();
}

void Measure(const std::string& path, const Events& events, int n_events, const Way& way, Results& results) {
  TStnEvent the_event;
  TStnEvent* event = &the_event;
  Stopwatch watch;
  TStnEventFile file(path.c_str(), "RECREATE");
  for (int i = 0; i < n_events; ++i) {
    the_event = events.GetStation(i);
    watch.Start();
    file.WriteEvent(&event);
    PutOnDisk(file, way, i + 1);
    watch.Stop();
  }
  watch.Time([&] { file.Close(); });
  results.fCpu.push_back(n_events / watch.GetCpu());
  results.fWall.push_back(n_events / watch.GetWall());
  results.fSize = file.GetEND();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void Show(const char* run, const std::map<const Way*, Results>& all) {
  const auto first = static_cast<double>(all.at(&kWays[0]).fSize);
  std::cout << std::fixed;
  for (const Way& way : kWays) {
    const Results& results = all.at(&way);
    const auto size = static_cast<double>(results.fSize);
    std::cout << "| " << run << " | " << way.fName << " | " << std::setprecision(0) << Median(results.fCpu) << " | "
              << Median(results.fWall) << " | " << results.fSize << " | " << std::showpos << std::setprecision(1)
              << 100 * (size / first - 1) << std::noshowpos << " % |" << std::endl;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int n_rounds = argc > 1 ? std::atoi(argv[1]) : 11;
  const char* folder = std::getenv("TMPDIR");
  const std::string path = std::string(folder ? folder : "/tmp") + "/flush_cost." + std::to_string(getpid()) + ".root";
  std::cout << "| run | way | events/s of CPU time | events/s | bytes | more |\n|---|---|---|---|---|---|" << std::endl;
  for (const auto& run : kRuns) {
    const int n_events = n_rounds > 0 ? run.fNEvents : kEvery;
    const Events events(GetWorkloads()[run.fWorkload], std::min(n_events, 50));
    std::map<const Way*, Results> all;
    for (int round = 0; round < std::max(n_rounds, 1); ++round)
      for (const Way& way : kWays)
        Measure(path, events, n_events, way, all[&way]);
    Show(run.fName, all);
  }
  return unlink(path.c_str());
}
