#include "EventChecksum.h"
#include "Simulation.h"

#include <LogCapture.h>

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <memory>
#include <set>

namespace {

using StnTools::ComputeChecksum;
using StnTools::EventChecksum;
using StnTools::GpsTime;
using StnTools::Scene;
using StnTools::Simulation;
using StnTools::SimulationSettings;
using VdUtil::Vd;

EventChecksum RunTrigger(Simulation& simulation, UInt_t trigger) {
  TStnEvent event;
  simulation.Simulate(trigger);
  EXPECT_TRUE(simulation.Build(event));
  return ComputeChecksum(event);
}

SimulationSettings WithSeed(std::uint64_t seed) {
  SimulationSettings settings;
  settings.fSeed = seed;
  return settings;
}

// Calls `test` for the event of each trigger.
template <typename Test>
void ForEvents(UInt_t n, const SimulationSettings& settings, Test test) {
  Simulation simulation(settings);
  TStnEvent event;
  for (UInt_t trigger = 1; trigger <= n; ++trigger) {
    SCOPED_TRACE(trigger);
    simulation.Simulate(trigger);
    ASSERT_TRUE(simulation.Build(event));
    test(simulation, event);
  }
}

}  // namespace

TEST(SimulationTest, RefusesSettingsThatDoNotExist) {
  SimulationSettings settings;
  settings.fStation = 9;
  EXPECT_THROW(Simulation{settings}, std::invalid_argument);
}

TEST(SimulationTest, RepeatsItselfForTheSameSeed) {
  Simulation a(WithSeed(3));
  Simulation b(WithSeed(3));
  for (UInt_t trigger = 1; trigger <= 10; ++trigger)
    EXPECT_EQ(RunTrigger(a, trigger), RunTrigger(b, trigger)) << trigger;
}

TEST(SimulationTest, DiffersForAnotherSeedInEveryPart) {
  Simulation a(WithSeed(3));
  Simulation b(WithSeed(4));
  EventChecksum first = RunTrigger(a, 2);
  EventChecksum second = RunTrigger(b, 2);
  for (int part = 0; part < StnTools::kNParts; ++part)
    EXPECT_NE(first[part], second[part]) << part;
}

TEST(SimulationTest, DoesNotDependOnTheOrderOfTheTriggers) {
  Simulation straight({});
  Simulation back({});
  EventChecksum late = RunTrigger(back, 9);
  EventChecksum early = RunTrigger(back, 4);
  EXPECT_EQ(RunTrigger(straight, 4), early);
  EXPECT_EQ(RunTrigger(straight, 9), late);
}

TEST(SimulationTest, DoesNotChangeWhenTheSameTriggerIsBuiltTwice) {
  Simulation simulation({});
  TStnEvent event;
  simulation.Simulate(5);
  simulation.Build(event);
  EventChecksum first = ComputeChecksum(event);
  simulation.Build(event);
  EXPECT_EQ(ComputeChecksum(event)[StnTools::kHeader], first[StnTools::kHeader]);
  EXPECT_EQ(ComputeChecksum(event), first);
}

TEST(SimulationTest, MakesEventsWithoutAMessage) {
  LogCapture log;
  ForEvents(100, {}, [](Simulation&, TStnEvent&) {});
  EXPECT_EQ(log.Take(), "");
}

TEST(SimulationTest, NumbersRunStationAndEvent) {
  SimulationSettings settings;
  settings.fStation = 3;
  settings.fRun = 77;
  ForEvents(5, settings, [](Simulation& simulation, TStnEvent& event) {
    EXPECT_EQ(event.GetEventHeader()->GetRunNo(), 77u);
    EXPECT_EQ(event.GetEventHeader()->GetStnNo(), 3u);
    EXPECT_EQ(event.GetPixelList()->GetStnNo(), 3u);
    for (TMirrorEvent* mirror : simulation.GetMirrorEvents()) {
      EXPECT_EQ(mirror->GetEventHeader()->GetRunNo(), 77u);
      EXPECT_EQ(mirror->GetEventHeader()->GetEventNo(), event.GetEventHeader()->GetEventNo());
      EXPECT_EQ(mirror->GetEventHeader()->GetTriggerNo(), event.GetEventHeader()->GetEventNo());
    }
  });
}

TEST(SimulationTest, CorrectsTheTimeToThatOfTheFirstMirror) {
  ForEvents(100, {}, [](Simulation& simulation, TStnEvent& event) {
    const VdRoot::TTimeStamp* time = event.GetEventHeader()->GetTimeStamp();
    GpsTime truth = simulation.GetTrueTime();
    EXPECT_EQ(event.GetEventHeader()->GetTimeCorrectionQuality(), TStnEventHeader::kAveragedPeriod);
    EXPECT_EQ(time->GetGPSSec(), static_cast<time_t>(truth.fSec));
    EXPECT_NEAR(time->GetNanoSec(), truth.fNanoSec - 50., 100.);
  });
}

TEST(SimulationTest, KeepsTheMirrorsWithinMicrosecondsOfEachOther) {
  std::set<UInt_t> offsets;
  ForEvents(100, {}, [&offsets](Simulation&, TStnEvent& event) {
    for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
      offsets.insert(event.GetEventHeader()->GetMirrorTimeOffset(mirror));
      EXPECT_LE(event.GetEventHeader()->GetMirrorTimeOffset(mirror), 2000u);
    }
  });
  EXPECT_GT(offsets.size(), 4u);
}

TEST(SimulationTest, ClassifiesShowersMuonsNoiseAndCalibrations) {
  std::map<Scene::Kind, std::map<TStnEventHeader::EEventClass, int>> classes;
  ForEvents(400, {}, [&classes](Simulation& simulation, TStnEvent& event) {
    ++classes[simulation.GetScene().GetKind()][event.GetEventHeader()->GetEventClass()];
  });
  EXPECT_GT(classes[Scene::kShower][TStnEventHeader::kIsShower], 200);
  EXPECT_GT(classes[Scene::kMuon][TStnEventHeader::kIsMuon], 10);
  EXPECT_GT(classes[Scene::kMuon][TStnEventHeader::kMuonAndNoise], 10);
  EXPECT_EQ(classes[Scene::kMuon][TStnEventHeader::kIsShower], 0);
  EXPECT_GT(classes[Scene::kNoise][TStnEventHeader::kNoise], 30);
  EXPECT_EQ(classes[Scene::kNoise].count(TStnEventHeader::kIsShower), 0u);
  EXPECT_EQ(classes[Scene::kCalibration].size(), 1u);
  EXPECT_GT(classes[Scene::kCalibration][TStnEventHeader::kLargeEvent], 2);
}

TEST(SimulationTest, NamesTypeAndTriggerByWhatHappened) {
  const std::map<Scene::Kind, TStnEventHeader::EEventType> types = {
      {Scene::kCalibration, TStnEventHeader::kCalibration},
      {Scene::kNoise, TStnEventHeader::kSimulated},
      {Scene::kMuon, TStnEventHeader::kPhysics},
      {Scene::kShower, TStnEventHeader::kPhysics}};
  const std::map<Scene::Kind, TMirrorEventHeader::EMiTriggerSource> sources = {
      {Scene::kCalibration, TMirrorEventHeader::kExternalTrigger},
      {Scene::kNoise, TMirrorEventHeader::kSoftwareTrigger},
      {Scene::kMuon, TMirrorEventHeader::kInternalTrigger},
      {Scene::kShower, TMirrorEventHeader::kInternalTrigger}};
  ForEvents(100, {}, [&](Simulation& simulation, TStnEvent& event) {
    Scene::Kind kind = simulation.GetScene().GetKind();
    EXPECT_EQ(event.GetEventHeader()->GetEventType(), types.at(kind));
    EXPECT_EQ(event.GetEventHeader()->GetTriggerSource(simulation.GetScene().GetFirstMirror()), sources.at(kind));
  });
}

TEST(SimulationTest, PassesTheTriggerOnToTheNeighbours) {
  ForEvents(50, {}, [](Simulation& simulation, TStnEvent& event) {
    const Scene& scene = simulation.GetScene();
    if (scene.GetKind() != Scene::kShower) return;
    for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
      if (!event.GetEventHeader()->IsMirrorDataPresent(mirror) || scene.GetCamera(mirror).IsTriggered()) continue;
      EXPECT_EQ(event.GetEventHeader()->GetTriggerSource(mirror),
                mirror > scene.GetFirstMirror() ? TMirrorEventHeader::kLeftTrigger : TMirrorEventHeader::kRightTrigger);
    }
  });
}

TEST(SimulationTest, LosesSomeMirrorEvents) {
  UInt_t n_lost = 0;
  ForEvents(200, {}, [&n_lost](Simulation& simulation, TStnEvent& event) {
    EXPECT_NE(event.GetEventHeader()->GetMirrorDataBits(), 0u);
    for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
      n_lost += simulation.GetScene().GetCamera(mirror).fIsRead && !event.GetEventHeader()->IsMirrorDataPresent(mirror);
    }
  });
  EXPECT_NEAR(n_lost, 30, 20);
}

TEST(SimulationTest, MarksAllMirrorsInTheDaq) {
  SimulationSettings settings;
  settings.fMirrors = {1, 3};
  ForEvents(5, settings, [](Simulation&, TStnEvent& event) {
    EXPECT_EQ(event.GetEventHeader()->GetMirrorStatusBits(), 5u);
    EXPECT_EQ(event.GetEventHeader()->GetMirrorDataBits() & ~5u, 0u);
  });
}

TEST(SimulationTest, KnowsThreeMirrorsInStation5) {
  SimulationSettings settings;
  settings.fStation = 5;
  ForEvents(50, settings, [](Simulation&, TStnEvent& event) {
    EXPECT_EQ(event.GetEventHeader()->GetMirrorStatusBits(), 7u);
    EXPECT_EQ(event.GetEventHeader()->GetMirrorDataBits() & ~7u, 0u);
  });
}

TEST(SimulationTest, HasATraceAndASliceForEveryPixelOfTheList) {
  ForEvents(20, {}, [](Simulation&, TStnEvent& event) {
    TStnPixelList* list = event.GetPixelList();
    EXPECT_EQ(event.GetFADCData()->GetNTraces(), list->GetNumPixels());
    EXPECT_EQ(event.GetPixelData()->GetNumberOfTriggeredPixels(), list->GetNumPixels());
    for (UInt_t i = 0; i < list->GetNumPixels(); ++i) {
      ASSERT_NE(event.GetFADCData()->GetFADCData(list->GetPixel(i)), nullptr);
    }
  });
}

TEST(SimulationTest, PutsTenBinsOf1000IntoASlice) {
  ForEvents(10, {}, [](Simulation&, TStnEvent& event) {
    TStnPixelList* list = event.GetPixelList();
    for (UInt_t i = 0; i < list->GetNumPixels(); ++i) {
      _VdPixelNumber pixel = *list->GetPixel(i);
      const auto* words = event.GetFADCData()->GetFADCData(&pixel)->GetRecord()->fFadcData;
      for (UInt_t slice = 0; slice < 100; ++slice) {
        bool is_triggered = false;
        for (UInt_t bin = 10 * slice; bin < 10 * slice + 10; ++bin)
          is_triggered |= words[bin].fPixelTrigger;
        ASSERT_EQ(event.GetPixelData()->GetFirstTriggeredTimeBin(&pixel, slice, slice) >= 0, is_triggered);
      }
    }
  });
}

TEST(SimulationTest, PutsTwentyBinsOf2000IntoASlice) {
  SimulationSettings settings = SimulationSettings::Heavy();
  settings.fPixels = 40;
  ForEvents(1, settings, [](Simulation&, TStnEvent& event) {
    TStnPixelList* list = event.GetPixelList();
    for (UInt_t i = 0; i < list->GetNumPixels(); ++i) {
      _VdPixelNumber pixel = *list->GetPixel(i);
      const auto* words = event.GetFADCData()->GetFADCData(&pixel)->GetRecord()->fFadcData;
      int first = event.GetPixelData()->GetFirstTriggeredTimeBin(&pixel);
      for (int bin = 0; bin < 2000; ++bin) {
        if (!words[bin].fPixelTrigger) continue;
        EXPECT_EQ(first, bin / 20);
        break;
      }
    }
  });
}

// The page of a neighbour is late, so the light of the same moment stands earlier in it. Of all shifts, that by the
// mirror's time offset fits the traces best.
TEST(SimulationTest, ShowsOneTrackAcrossTheCamerasInTime) {
  std::map<int, double> residuals;  // by bins away from the time offset
  ForEvents(60, {}, [&residuals](Simulation& simulation, TStnEvent& event) {
    const Scene& scene = simulation.GetScene();
    if (scene.GetKind() != Scene::kShower) return;
    for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
      int late = static_cast<int>(event.GetEventHeader()->GetMirrorTimeOffset(mirror) / 100);
      if (!event.GetEventHeader()->IsMirrorDataPresent(mirror) || late == 0) continue;
      for (const auto& pixel : scene.GetCamera(mirror).fLight) {
        _PixelNumber number;
        number.fPixelNumber = static_cast<int>(pixel.first);
        Vd::SetMirrorNo(&number, mirror);
        const TFADCData* trace = event.GetFADCData()->GetFADCData(&number);
        if (trace == nullptr) continue;
        for (int extra : {-3, -2, -1, 0, 1, 2, 3}) {
          for (int bin = 20; bin < 980; ++bin) {
            double expected = trace->GetRecord()->fMonitor.fMean +
                              StnTools::Electronics::kGain * pixel.second[static_cast<size_t>(bin + late + extra)];
            residuals[extra] += std::pow(trace->GetSample(static_cast<UInt_t>(bin)) - expected, 2);
          }
        }
      }
    }
  });
  ASSERT_EQ(residuals.size(), 7u);
  for (const auto& residual : residuals) {
    if (residual.first == 0) continue;
    EXPECT_GT(residual.second, residuals[0]) << residual.first;
  }
}

TEST(SimulationTest, FillsTheCountersOfEveryMirror) {
  Simulation simulation({});
  TStnEvent event;
  ULong64_t last_run_time = 0;
  for (UInt_t trigger = 1; trigger <= 20; ++trigger) {
    simulation.Simulate(trigger);
    simulation.Build(event);
    TStnEventHeader* header = event.GetEventHeader();
    UInt_t mirror = simulation.GetScene().GetFirstMirror();
    EXPECT_GT(header->GetRunTimeCounter(mirror), last_run_time);
    EXPECT_EQ(header->GetDeadTimeCounter(mirror) / 260000, trigger);
    EXPECT_GT(header->GetMirrorDaqDeadTime(mirror), 0u);
    EXPECT_GT(header->GetVetoTimeCounter(), 0u);
    EXPECT_EQ(header->GetStnDaqDeadTime(), 4000u * trigger);
    EXPECT_GT(header->GetTriggerTimeStamp(mirror), 0u);
    last_run_time = header->GetRunTimeCounter(mirror);
  }
}

TEST(SimulationTest, DelaysThePageByTheTimeFromTheTriggerToItsEnd) {
  ForEvents(10, {}, [](Simulation& simulation, TStnEvent&) {
    for (TMirrorEvent* mirror : simulation.GetMirrorEvents()) {
      UInt_t delay = mirror->GetEventHeader()->GetNextPageDelay();
      EXPECT_EQ(delay, 1000 - simulation.GetScene().GetTriggerBin());
      EXPECT_EQ(mirror->GetEventHeader()->GetTriggerTimeStamp(),
                mirror->GetEventHeader()->GetNextPageNanoTime() / 100 - delay);
    }
  });
}

TEST(SimulationTest, GivesSomeShowersAT3) {
  UInt_t n_t3 = 0;
  ForEvents(50, {}, [&n_t3](Simulation& simulation, TStnEvent& event) {
    TStnEventHeader* header = event.GetEventHeader();
    if (header->GetT3Id() == 0) {
      EXPECT_FALSE(header->IsRejectedT3());
      return;
    }
    EXPECT_EQ(header->GetT3Id(), ++n_t3);
    EXPECT_EQ(simulation.GetScene().GetKind(), Scene::kShower);
    // The track ends inside the page.
    EXPECT_TRUE(*header->GetT3TimeStamp() < *header->GetTimeStamp());
    EXPECT_EQ(header->GetT3TimeStamp()->GetGPSSec(), header->GetTimeStamp()->GetGPSSec());
    EXPECT_LT(header->GetTimeStamp()->GetNanoSec() - header->GetT3TimeStamp()->GetNanoSec(), 100000);
    EXPECT_EQ(event.GetT3Data()->GetNPixels(), event.GetPixelList()->GetNumPixels());
    EXPECT_EQ(event.GetT3Data()->GetTimeAtGround(), header->GetT3TimeStamp()->GetNanoSec());
    EXPECT_GT(event.GetT3Data()->GetSDPTheta(), 0.F);
    EXPECT_NE(event.GetT3Data()->GetSDPPhi(), TStnT3Data::kInvalidValue);
    EXPECT_NE(event.GetT3Data()->GetAzimuthAtGround(), TStnT3Data::kInvalidValue);
    EXPECT_GT(event.GetT3Data()->GetTotalSignal(), 0.F);
  });
  EXPECT_GT(n_t3, 8u);
}

TEST(SimulationTest, RejectsSomeT3s) {
  bool is_any_rejected = false;
  UInt_t n_rejected = 0;
  SimulationSettings settings;
  settings.fT3Fraction = 1.;
  ForEvents(60, settings, [&](Simulation&, TStnEvent& event) {
    TStnEventHeader* header = event.GetEventHeader();
    n_rejected += header->IsRejectedT3();
    EXPECT_EQ(header->GetNRejectedT3(), n_rejected);
    EXPECT_EQ(header->GetTotalT3DeadTime(), 0.25F * static_cast<Float_t>(n_rejected));
    is_any_rejected |= header->IsRejectedT3();
  });
  EXPECT_TRUE(is_any_rejected);
}

TEST(SimulationTest, HasTheSizesOfTheFixedWorkloads) {
  struct Workload {
    SimulationSettings fSettings;
    UInt_t fMirrors;
    UInt_t fTraces;
    UInt_t fBins;
  };
  for (const Workload& workload :
       {Workload{SimulationSettings::Light(), 1, 8, 1000}, Workload{SimulationSettings::Middle(), 6, 240, 1000},
        Workload{SimulationSettings::Heavy(), 6, 1200, 2000}}) {
    ForEvents(3, workload.fSettings, [&workload](Simulation& simulation, TStnEvent& event) {
      EXPECT_EQ(simulation.GetMirrorEvents().size(), workload.fMirrors);
      EXPECT_EQ(event.GetFADCData()->GetNTraces(), workload.fTraces);
      EXPECT_EQ(event.GetPixelList()->GetNumPixels(), workload.fTraces);
      std::unique_ptr<TIterator> next(event.GetFADCData()->GetIterator());
      EXPECT_EQ(static_cast<TFADCData*>(next->Next())->GetTraceLength(), workload.fBins);
    });
  }
}

TEST(SimulationTest, ReportsARefusedMirrorEvent) {
  LogCapture log;
  Simulation simulation({});
  simulation.Simulate(1);
  ASSERT_GT(simulation.GetMirrorEvents().size(), 1u);
  simulation.GetMirrorEvents().back()->GetEventHeader()->SetStnNo(2);
  simulation.GetMirrorEvents().back()->GetEventHeader()->SetMirrorNo(6);
  TStnEvent event;
  EXPECT_FALSE(simulation.Build(event));
}

TEST(SimulationTest, DescribesItsRun) {
  SimulationSettings settings;
  settings.fStation = 4;
  settings.fRun = 12;
  settings.fSeed = 34;
  settings.fMirrors = {2, 6};
  Simulation simulation(settings);
  TStnRunHeader header;
  simulation.FillRunHeader(header);
  EXPECT_EQ(header.GetStnNo(), 4u);
  EXPECT_EQ(header.GetRunNo(), 12u);
  EXPECT_EQ(header.GetMirrorStatus(), 34u);
  EXPECT_EQ(header.GetStartTime().GetGPSSec(), 1400000000);
  EXPECT_EQ(header.GetUserName(), "stn-simulate");
  EXPECT_EQ(header.GetUserComment(), "simulated, seed 34");
  EXPECT_EQ(header.GetEvbVersion(), 0x010000u);
  EXPECT_EQ(header.GetStnEventVersion(), 0x20164u);
}

TEST(SimulationTest, SumsItsRunUp) {
  SimulationSettings settings;
  settings.fMirrors = {2, 6};
  Simulation simulation(settings);
  TStnEvent event;
  simulation.Simulate(600);
  simulation.Build(event);
  TStnRunTrailer trailer;
  simulation.FillRunTrailer(trailer, 600);
  EXPECT_EQ(trailer.GetNEvents(), 600u);
  EXPECT_EQ(trailer.GetMirrorStatus(), 34u);
  EXPECT_EQ(trailer.GetStartTime().GetGPSSec(), 1400000000);
  EXPECT_EQ(trailer.GetStopTime().GetGPSSec(), simulation.GetTrueTime().fSec + 1);
  EXPECT_EQ(trailer.GetTotalTime(), simulation.GetTrueTime().fSec + 1 - 1400000000);
  EXPECT_EQ(trailer.GetVetoTimeCounter(), event.GetEventHeader()->GetVetoTimeCounter());
  EXPECT_EQ(trailer.GetStnDaqDeadTime(), event.GetEventHeader()->GetStnDaqDeadTime());
  EXPECT_GT(trailer.GetNumberOfT3(), trailer.GetNumberOfRejectedT3());
  EXPECT_EQ(trailer.GetNumberOfRejectedT3(), event.GetEventHeader()->GetNRejectedT3());
  EXPECT_EQ(trailer.GetTotalT3DeadTime(), event.GetEventHeader()->GetTotalT3DeadTime());
  UInt_t first = simulation.GetScene().GetFirstMirror();
  EXPECT_EQ(trailer.GetDeadTimeCounter(first), event.GetEventHeader()->GetDeadTimeCounter(first));
  EXPECT_EQ(trailer.GetMirrorDaqDeadTime(first), event.GetEventHeader()->GetMirrorDaqDeadTime(first));
  EXPECT_EQ(trailer.GetMirrorNSkippedTriggers(6), 7u);
  EXPECT_EQ(trailer.GetLifeTimeCounter(6), trailer.GetTotalTime() - 15);
}
