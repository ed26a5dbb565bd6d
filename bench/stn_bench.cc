// Measures the station file beside its peers. Benchmarks are named WHAT/WORKLOAD/COMPRESSION/PEER/TURN and run in the
// order of registration, so that peers take turns; their time is CPU time of the process. Further options: --quick for
// fewer turns and settings, --tiny for a run that only shows that everything works; others are Google Benchmark's.
#include "Limits.h"
#include "Peer.h"
#include "Scratch.h"
#include "StationPeer.h"
#include "Stopwatch.h"
#include "Workload.h"

#include <TROOT.h>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <set>

namespace StnBench {
namespace {

struct Scale {
  int fTurns;
  std::vector<int> fCompressions;
  int fMaxEvents;  // in a file
  int fWindows;    // of a long run
  int fEventsPerWindow;
  int fFileTurns;
  int fFilesPerTurn;
};
const Scale kFull = {7, {1, 404, 501, 505}, 2100, 100, 1000, 200, 50};
const Scale kQuick = {3, {1, 501}, 2100, 20, 1000, 40, 25};
const Scale kTiny = {1, {1, 501}, 2, 2, 10, 2, 3};

const int kLongRunCompression = 501;

typedef std::function<void(benchmark::State&, Stopwatch&)> Measurement;

Long64_t GetResidentMemory() {
  Long64_t all = 0;
  Long64_t resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

/// Writes a long run with events that are put together as an event builder does it.
class LongRun {
 public:
  LongRun(const Peer& peer, const std::string& path, const Events& events)
      : fEvents(events), fWriter(peer.fWrite(path, kLongRunCompression)) {}

  void WriteEvent() {
    fEvent.Clear();
    fAdd.Time([this] {
      for (const auto& mirror : fEvents.GetMirrors(fNEvents))
        fEvent.AddEvent(mirror.get());
    });
    fEvent.GetEventHeader()->SetEventNo(++fNEvents);
    fWriter->Prepare(fEvent);
    fWrite.Time([this] { fWriter->Write(); });
  }
  void Close() { fWriter->Close(); }

  int GetNEvents() const { return fNEvents; }
  const Stopwatch& GetAdd() const { return fAdd; }
  const Stopwatch& GetWrite() const { return fWrite; }

 private:
  const Events& fEvents;
  std::unique_ptr<EventWriter> fWriter;
  TStnEvent fEvent;
  int fNEvents = 0;
  Stopwatch fAdd;
  Stopwatch fWrite;
};

/// All benchmarks, and what they leave behind for each other.
class Suite {
 public:
  explicit Suite(const Scale& scale) : fScale(scale) {}

  /// Lets everything happen once that happens once in a process.
  void WarmUp() {
    Stopwatch ignored;
    const Events events(GetWorkloads().front(), 1);
    for (const Peer& peer : GetPeers()) {
      const std::string path = fScratch.GetPath("warm-up");
      WriteFile(events, 1, peer, path, ignored);
      ReadFile(events, peer, path, ignored);
    }
  }

  void Register() {
    for (const Workload& workload : GetWorkloads()) {
      if (std::strcmp(workload.fName, "sparse") == 0) continue;
      for (int compression : fScale.fCompressions)
        RegisterFiles(workload, compression);
      RegisterAdd(workload);
      RegisterEntropy(workload);
    }
    RegisterLongRun(GetWorkloads().back());
    RegisterManyFiles(GetWorkloads().front());
  }

 private:
  void Add(const std::string& what, const Workload& workload, int compression, const std::string& peer, int turn,
           const Measurement& measure) {
    const std::string name =
        what + "/" + workload.fName + "/" + std::to_string(compression) + "/" + peer + "/" + std::to_string(turn);
    const auto run = [measure](benchmark::State& state) {
      for (auto _ : state) {
        Stopwatch watch;
        try {
          measure(state, watch);
        } catch (const std::exception& error) {
          state.SkipWithError(error.what());
        }
        state.SetIterationTime(watch.GetCpu());
        state.counters["wall"] = watch.GetWall();
      }
    };
    benchmark::RegisterBenchmark(name.c_str(), run)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
  }

  void RegisterFiles(const Workload& workload, int compression) {
    std::vector<Peer> peers = GetPeers();
    peers.insert(peers.end(), GetLimits().begin(), GetLimits().end());
    for (int turn = 0; turn < fScale.fTurns; ++turn)
      for (const Peer& peer : peers)
        Add("write", workload, compression, peer.fName, turn, [=, &workload](auto& state, auto& watch) {
          const std::string path = GetPath(workload, compression, peer);
          WriteFile(GetEvents(workload), compression, peer, path, watch);
          fWritten.insert(path);
          SetEventCounters(GetEvents(workload), state);
          state.counters["bytes"] = double(GetSize(path));
        });
    for (int turn = 0; turn < fScale.fTurns; ++turn)
      for (const Peer& peer : peers)
        Add("read", workload, compression, peer.fName, turn, [=, &workload](auto& state, auto& watch) {
          const std::string path = GetFile(workload, compression, peer);
          ReadFile(GetEvents(workload), peer, path, watch);
          SetEventCounters(GetEvents(workload), state);
        });
  }

  std::string GetPath(const Workload& workload, int compression, const Peer& peer) const {
    return fScratch.GetPath(std::string(workload.fName) + "-" + std::to_string(compression) + "-" + peer.fName);
  }

  /// Makes a file, or takes the one that was made before.
  std::string GetFile(const Workload& workload, int compression, const Peer& peer) {
    Stopwatch ignored;
    const std::string path = GetPath(workload, compression, peer);
    if (fWritten.insert(path).second) WriteFile(GetEvents(workload), compression, peer, path, ignored);
    return path;
  }

  static void WriteFile(const Events& events, int compression, const Peer& peer, const std::string& path,
                        Stopwatch& watch) {
    auto writer = watch.Time([&] { return peer.fWrite(path, compression); });
    for (int i = 0; i < events.GetN(); ++i) {
      writer->Prepare(events.GetStation(i));
      watch.Time([&] { writer->Write(); });
    }
    watch.Time([&] { writer->Close(); });
  }

  static std::uintmax_t GetSize(const std::string& path) {
    return std::filesystem::exists(path) ? std::filesystem::file_size(path) : MemoryFile::GetSize(path);
  }

  static void ReadFile(const Events& events, const Peer& peer, const std::string& path, Stopwatch& watch) {
    ULong64_t sum = 0;
    watch.Time([&] {
      auto reader = peer.fRead(path, Peer::kEvents);
      for (int i = 0; i < events.GetN(); ++i) {
        const ULong64_t of_event = reader->ReadEvent();
        sum = of_event == EventReader::kNoSamples ? events.GetSum() : sum + of_event;
      }
    });
    if (sum != events.GetSum()) throw std::runtime_error("other samples were read than were written");
  }

  static void SetEventCounters(const Events& events, benchmark::State& state) {
    state.counters["events"] = events.GetN();
    state.counters["sample_bytes"] = events.GetSampleBytes();
  }

  void RegisterAdd(const Workload& workload) {
    for (int turn = 0; turn < fScale.fTurns; ++turn) {
      Add("add", workload, 0, "station", turn, [=, &workload](auto& state, auto& watch) {
        AddMirrors(GetEvents(workload), watch);
        SetEventCounters(GetEvents(workload), state);
      });
      Add("add", workload, 0, "memcpy", turn, [=, &workload](auto& state, auto& watch) {
        CopyRecords(GetEvents(workload), watch);
        SetEventCounters(GetEvents(workload), state);
      });
    }
  }

  static void AddMirrors(const Events& events, Stopwatch& watch) {
    TStnEvent event;
    for (int i = 0; i < events.GetN(); ++i) {
      event.Clear();
      watch.Time([&] {
        for (const auto& mirror : events.GetMirrors(i))
          event.AddEvent(mirror.get());
      });
    }
  }

  /// Copies the records of the mirrors' traces, and nothing else, to where they were copied before.
  static void CopyRecords(const Events& events, Stopwatch& watch) {
    typedef TFADCData::_FADCDataRec Record;
    std::vector<Record> copies;
    for (int i = 0; i < events.GetN(); ++i) {
      std::vector<const Record*> records;
      for (const auto& mirror : events.GetMirrors(i))
        for (UInt_t pixel = 0; pixel < mirror->GetPixelList()->GetNumPixels(); ++pixel)
          records.push_back(GetRecord(*mirror, pixel));
      copies.resize(records.size());
      watch.Time([&] {
        for (std::size_t k = 0; k < records.size(); ++k)
          std::memcpy(&copies[k], records[k], sizeof(Record));
        benchmark::ClobberMemory();
      });
    }
  }

  static const TFADCData::_FADCDataRec* GetRecord(TMirrorEvent& mirror, UInt_t i) {
    _PixelNumber* pixel = mirror.GetPixelList()->GetPixel(i);
    return mirror.GetFADCData()->GetFADCData(VdUtil::Vd::GetColumnNo(pixel), VdUtil::Vd::GetRowNo(pixel));
  }

  void RegisterEntropy(const Workload& workload) {
    Add("entropy", workload, 0, "noise", 0,
        [=, &workload](auto& state, auto&) { state.counters["bytes"] = GetNoiseEntropy(GetEvents(workload)); });
    Add("entropy", workload, 0, "trace", 0,
        [=, &workload](auto& state, auto&) { state.counters["bytes"] = GetTraceEntropy(GetEvents(workload)); });
  }

  void RegisterLongRun(const Workload& workload) {
    for (int turn = 0; turn < fScale.fWindows; ++turn)
      for (const Peer& peer : GetPeers())
        Add("grow", workload, kLongRunCompression, peer.fName, turn,
            [=, &workload](auto& state, auto& watch) { Grow(workload, peer, turn, state, watch); });
    for (int turn = 0; turn < fScale.fTurns; ++turn)
      for (const Peer& peer : GetPeers())
        Add("scan", workload, kLongRunCompression, peer.fName, turn,
            [=, &workload](auto& state, auto& watch) { Scan(workload, peer, state, watch); });
  }

  /// Writes the next window of a long run.
  void Grow(const Workload& workload, const Peer& peer, int turn, benchmark::State& state, Stopwatch& watch) {
    LongRun& run = GetLongRun(workload, peer);
    const Long64_t memory = GetResidentMemory();
    const Stopwatch add = run.GetAdd();
    const Stopwatch write = run.GetWrite();
    WriteUntil(run, (turn + 1) * fScale.fEventsPerWindow);
    watch = run.GetWrite() - write;
    state.counters["events"] = fScale.fEventsPerWindow;
    state.counters["add_cpu"] = 1e3 * (run.GetAdd() - add).GetCpu();
    state.counters["write_cpu"] = 1e3 * watch.GetCpu();
    state.counters["memory"] = GetResidentMemory();
    state.counters["memory_growth"] = GetResidentMemory() - memory;
  }

  LongRun& GetLongRun(const Workload& workload, const Peer& peer) {
    const Events& events = GetEvents(workload);
    auto& run = fLongRuns[peer.fName];
    if (!run) run = std::make_unique<LongRun>(peer, GetPath(workload, kLongRunCompression, peer), events);
    return *run;
  }

  /// Goes on with a long run, and closes its file after the last event.
  void WriteUntil(LongRun& run, int n_events) {
    if (run.GetNEvents() == GetLongRunLength()) return;
    while (run.GetNEvents() < n_events)
      run.WriteEvent();
    if (n_events == GetLongRunLength()) run.Close();
  }

  int GetLongRunLength() const { return fScale.fWindows * fScale.fEventsPerWindow; }

  void Scan(const Workload& workload, const Peer& peer, benchmark::State& state, Stopwatch& watch) {
    WriteUntil(GetLongRun(workload, peer), GetLongRunLength());
    const std::string path = GetPath(workload, kLongRunCompression, peer);
    const int n = GetLongRunLength();
    watch.Time([&] {
      auto reader = peer.fRead(path, Peer::kHeaders);
      for (int number = 1; number <= n; ++number)
        if (reader->ReadHeader() != UInt_t(number)) throw std::runtime_error("another header was read than written");
      state.counters["bytes_read"] = reader->GetBytesRead();
    });
    state.counters["events"] = n;
    if (peer.fName == std::string("station")) state.counters["basket_bytes"] = GetHeaderBasketBytes(path);
  }

  void RegisterManyFiles(const Workload& workload) {
    for (int turn = 0; turn < fScale.fFileTurns; ++turn)
      for (const Peer& peer : GetPeers())
        Add("files", workload, 1, peer.fName, turn, [=, &workload](auto& state, auto& watch) {
          for (int i = 0; i < fScale.fFilesPerTurn; ++i)
            WriteSmallFile(GetEvents(workload).GetStation(0), peer, watch);
          state.counters["events"] = fScale.fFilesPerTurn;
        });
  }

  void WriteSmallFile(TStnEvent& event, const Peer& peer, Stopwatch& watch) {
    auto writer = watch.Time([&] { return peer.fWrite(fScratch.GetPath("small.root"), 1); });
    writer->Prepare(event);
    watch.Time([&] {
      writer->Write();
      writer->Close();
      writer.reset();
    });
  }

  /// The events of a workload; those of another one are given up.
  const Events& GetEvents(const Workload& workload) {
    if (fCurrent != &workload) {
      fLongRuns.clear();
      fEvents.reset();
      fEvents = std::make_unique<Events>(workload, std::min(workload.fNEvents, fScale.fMaxEvents));
      fCurrent = &workload;
    }
    return *fEvents;
  }

  Scale fScale;
  Scratch fScratch;
  const Workload* fCurrent = nullptr;
  std::unique_ptr<Events> fEvents;
  std::set<std::string> fWritten;
  std::map<std::string, std::unique_ptr<LongRun>> fLongRuns;
};

/// Takes the scale's option out of the arguments.
Scale TakeScale(int& argc, char** argv) {
  const std::map<std::string, Scale> scales = {{"--quick", kQuick}, {"--tiny", kTiny}};
  for (int i = 1; i < argc; ++i) {
    const auto scale = scales.find(argv[i]);
    if (scale == scales.end()) continue;
    std::copy(argv + i + 1, argv + argc + 1, argv + i);
    --argc;
    return scale->second;
  }
  return kFull;
}

}  // namespace
}  // namespace StnBench

int main(int argc, char** argv) try {
  StnBench::Suite suite(StnBench::TakeScale(argc, argv));
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::AddCustomContext("root", gROOT->GetVersion());
  benchmark::AddCustomContext("compiler", __VERSION__);
  suite.WarmUp();
  suite.Register();
  benchmark::RunSpecifiedBenchmarks();
  return 0;
} catch (const std::exception& error) {
  std::cerr << "stn_bench: " << error.what() << std::endl;
  return 1;
}
