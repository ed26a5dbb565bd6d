// Compares forms of a trace on file: size, and speed of writing and reading by CPU time, at several compression
// settings. The forms take turns, and medians over the rounds are printed. Usage: trace_forms [rounds] [pulses]
#include "TraceForms.h"

#include <MrEvent/FadcData.h>

#include <TFile.h>
#include <TObjArray.h>
#include <TTree.h>

#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kNEvents = 150;
constexpr int kNTraces = 240;
constexpr int kNBins = 1000;
constexpr double kMegaBytes = 2e-6 * kNEvents * kNTraces * kNBins;
const char* const kFileName = "trace_forms.root";

typedef std::vector<UShort_t> Words;

/// 12-bit samples: pedestal 150 to 210, Gaussian noise of 3.5 counts, pulses of 60 bins; the top bit tells that the
/// sample is above a threshold.
Words MakeWords(int n_pulses) {
  std::mt19937 random(20261121);
  std::uniform_real_distribution<double> pedestal(150, 210), place(0, kNBins - 60);
  std::exponential_distribution<double> height(1. / 250);
  std::normal_distribution<double> noise(0, 3.5);
  Words words;
  words.reserve(kNEvents * kNTraces * kNBins);
  for (int trace = 0; trace < kNEvents * kNTraces; ++trace) {
    const double level = pedestal(random);
    std::vector<double> signal(kNBins);
    for (int pulse = 0; pulse < n_pulses; ++pulse) {
      const int first = int(place(random));
      const double top = 40 + height(random);
      for (int i = 0; i < 60; ++i)
        signal[first + i] += top * std::sin(M_PI * (i + 0.5) / 60);
    }
    for (int i = 0; i < kNBins; ++i) {
      const double sample = std::min(level + noise(random) + signal[i], 4095.);
      words.push_back(UShort_t(sample) | (sample > level + 25 ? 0x8000 : 0));
    }
  }
  return words;
}

UShort_t* WordsOf(TraceForm* trace) { return trace->fWord; }
UShort_t* WordsOf(TFADCData* trace) { return &trace->GetRecord()->fFadcData[0].fWord; }

/// CPU time of the process while it runs, in seconds.
class Watch {
 public:
  void Start() { fTotal -= Now(); }
  void Stop() { fTotal += Now(); }
  double Total() const { return fTotal; }

 private:
  static double Now() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return now.tv_sec + 1e-9 * now.tv_nsec;
  }
  double fTotal = 0;
};

struct Result {
  std::vector<double> fSize, fWrite, fRead;
};

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
  return values[values.size() / 2];
}

template <class T>
void WriteFile(const Words& words, int compression, Result& result) {
  Watch watch;
  TFile file(kFileName, "RECREATE", "", compression);
  auto* tree = new TTree("tree", "traces");
  TObjArray* traces = new TObjArray(kNTraces);
  traces->SetOwner(true);
  std::vector<T*> filled;
  for (int i = 0; i < kNTraces; ++i) {
    filled.push_back(new T);
    traces->Add(filled.back());
  }
  tree->Branch("traces", &traces, 1000000, 0);
  const UShort_t* from = words.data();
  for (int event = 0; event < kNEvents; ++event) {
    for (T* trace : filled) {
      std::copy(from, from + kNBins, WordsOf(trace));
      from += kNBins;
    }
    watch.Start();
    tree->Fill();
    watch.Stop();
  }
  watch.Start();
  file.Write();
  file.Close();
  watch.Stop();
  delete traces;
  result.fWrite.push_back(kMegaBytes / watch.Total());
}

template <class T>
void ReadFile(const Words& words, Result& result) {
  Watch watch;
  TFile file(kFileName);
  result.fSize.push_back(file.GetSize() * 1e-6);
  auto* tree = file.Get<TTree>("tree");
  TObjArray* traces = nullptr;
  tree->SetBranchAddress("traces", &traces);
  const UShort_t* from = words.data();
  for (int event = 0; event < kNEvents; ++event) {
    watch.Start();
    tree->GetEntry(event);
    watch.Stop();
    for (int i = 0; i < kNTraces; ++i, from += kNBins)
      if (!std::equal(from, from + kNBins, WordsOf(static_cast<T*>(traces->UncheckedAt(i))))) {
        std::fprintf(stderr, "%s: words differ\n", T::Class_Name());
        std::exit(1);
      }
    watch.Start();
    traces->Delete();
    watch.Stop();
  }
  delete traces;
  result.fRead.push_back(kMegaBytes / watch.Total());
}

template <class T>
void Measure(const Words& words, int compression, std::map<std::string, Result>& results) {
  Result& result = results[std::string(T::Class_Name()) + " | " + std::to_string(compression)];
  WriteFile<T>(words, compression, result);
  ReadFile<T>(words, result);
}

}  // namespace

int main(int argc, char** argv) {
  const int n_rounds = argc > 1 ? std::atoi(argv[1]) : 5;
  const Words words = MakeWords(argc > 2 ? std::atoi(argv[2]) : 1);
  std::map<std::string, Result> results;
  for (int round = 0; round < n_rounds; ++round)
    for (int compression : {1, 404, 501, 505}) {
      Measure<WordsForm>(words, compression, results);
      Measure<ListForm>(words, compression, results);
      Measure<EscapeForm>(words, compression, results);
      Measure<DeltaForm>(words, compression, results);
      Measure<LowHighForm>(words, compression, results);
      Measure<TFADCData>(words, compression, results);
    }
  std::remove(kFileName);
  std::printf("| form | compression | MB on file | write MB/s | read MB/s |\n|---|---|---|---|---|\n");
  for (const auto& [name, result] : results)
    std::printf("| %s | %.2f | %.0f | %.0f |\n", name.c_str(), Median(result.fSize), Median(result.fWrite),
                Median(result.fRead));
  return 0;
}
