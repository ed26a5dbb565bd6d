#include "Simulation.h"

#include <MrEvent/MrRunTrailer.h>

#include <algorithm>
#include <cmath>

namespace StnTools {
namespace {

using VdUtil::Vd;

// Bins that a trigger takes from a mirror to its neighbour, and the choice of bins that it takes inside.
const UInt_t kDelayPerMirror = 3;
const UInt_t kInnerDelays = 3;
const UInt_t kBinNanoSec = 100;
// Pixels of a mirror that trigger on the sky's light in a page, and what they see: bins, and photoelectrons in each.
const double kAccidentals = 0.7;
const UInt_t kAccidentalLength = 15;
const float kAccidentalLight = 5.F;
// A light that takes longer than this crosses the camera from outside; a muon's is over before.
const UInt_t kLongTrack = 25;
const UInt_t kManyBright = 8;
const UInt_t kFewBright = 4;
// Pedestals of the pixels, in counts.
const double kLowestPedestal = 150.;
const double kHighestPedestal = 210.;
const double kPixelAngle = 0.026179938779914945;  // 1.5 degrees
const UInt_t kProgramVersion = 0x010000;          // 1.0.0

std::vector<Electronics> MakeElectronics(const SimulationSettings& settings, UInt_t mirror) {
  Random random(settings.fSeed, 'p', mirror);
  std::vector<Electronics> pixels;
  for (UInt_t i = 0; i < Vd::kMI_NEXTPIXELS; ++i)
    pixels.emplace_back(random.Uniform(kLowestPedestal, kHighestPedestal));
  return pixels;
}

VdRoot::TTimeStamp MakeTimeStamp(const GpsTime& time) {
  return VdRoot::TTimeStamp(VdRoot::TTimeStamp::FromGPS(time.fSec, time.fNanoSec));
}

void AddAccidentals(Random& random, UInt_t n_bins, CameraLight& light) {
  for (UInt_t n = random.Poisson(kAccidentals); n > 0; --n) {
    std::vector<float>& bins = light[1 + random.Integer(Vd::kMI_NEXTPIXELS)];
    bins.resize(n_bins);
    UInt_t first = random.Integer(n_bins - kAccidentalLength);
    for (UInt_t bin = first; bin < first + kAccidentalLength; ++bin)
      bins[bin] += kAccidentalLight;
  }
}

// Fills up with dark pixels, or leaves out the last ones.
void BringToNumber(UInt_t n_pixels, CameraLight& light) {
  for (UInt_t pixel = 1; light.size() < n_pixels; ++pixel)
    light[pixel];
  while (light.size() > n_pixels)
    light.erase(std::prev(light.end()));
}

}  // namespace

Simulation::Simulation(const SimulationSettings& settings)
    : fSettings((settings.Check(), settings)),
      fNBins(settings.GetNBins()),
      fDaqMirrors(settings.GetDaqMirrors()),
      fClock(settings.fSeed),
      fCounters(settings) {
  for (UInt_t mirror = 1; mirror <= Vd::GetStnLastMirrorNo(settings.fStation); ++mirror) {
    fElectronics.push_back(MakeElectronics(settings, mirror));
    fEvents.push_back(std::make_unique<TMirrorEvent>());
  }
}

void Simulation::Simulate(UInt_t trigger) {
  fTrigger = trigger;
  fTime = fCounters.GetTime(trigger);
  fScene = std::make_unique<Scene>(fSettings, trigger);
  fDelivered.clear();
  Random random(fSettings.fSeed, 'l', trigger);
  for (UInt_t mirror : fDaqMirrors) {
    if (!fScene->GetCamera(mirror).fIsRead) continue;
    bool is_lost = random.Uniform() < fSettings.fMissingFraction;
    // An event without any mirror would be none.
    if (is_lost && mirror != fScene->GetFirstMirror()) continue;
    FillMirror(mirror);
    fDelivered.push_back(fEvents[mirror - 1].get());
  }
}

void Simulation::FillMirror(UInt_t mirror) {
  TMirrorEvent& event = *fEvents[mirror - 1];
  event.Clear();
  FillPixels(mirror, event);
  FillHeader(mirror, *event.GetEventHeader());
  event.GetEventHeader()->SetEventLabel(GetLabel(mirror, event.GetPixelList()->GetNumPixels()));
}

void Simulation::FillHeader(UInt_t mirror, TMirrorEventHeader& header) {
  static const TMirrorEventHeader::EMrEventType types[] = {
      TMirrorEventHeader::kCalibrationEvent, TMirrorEventHeader::kSimulatedEvent, TMirrorEventHeader::kPhysicsEvent,
      TMirrorEventHeader::kPhysicsEvent};
  GpsTime end_of_page = {fTime.fSec, fTime.fNanoSec + GetDelay(mirror) * kBinNanoSec};
  GpsTime raw = fClock.Count(end_of_page);
  UInt_t bins_to_end = fNBins - fScene->GetTriggerBin();
  header.SetStnNo(fSettings.fStation);
  header.SetMirrorNo(mirror);
  header.SetEventNo(fTrigger);
  header.SetTriggerNo(fTrigger);
  header.SetRunNo(fSettings.fRun);
  header.SetEventType(types[fScene->GetKind()]);
  header.SetTriggerSource(GetTriggerSource(mirror));
  header.SetNextPageTime(raw.fSec);
  header.SetNextPageNanoTime(raw.fNanoSec);
  header.SetNextPageDelay(static_cast<UShort_t>(bins_to_end));
  header.SetTriggerTimeStamp(raw.fNanoSec / 100 - bins_to_end);
  header.SetRunTimeCounter(fCounters.GetRunTime(end_of_page));
  header.SetVetoTimeCounter(fCounters.GetVetoTime(end_of_page));
  header.SetDeadTimeCounter(fCounters.GetDeadTime(fTrigger, mirror));
  header.SetDaqDeadTime(fCounters.GetMirrorDaqDeadTime(fTrigger, mirror));
  header.SetNumSkippedTriggers(fCounters.GetNSkippedTriggers(fTrigger, mirror));
}

void Simulation::FillPixels(UInt_t mirror, TMirrorEvent& event) {
  Random random(fSettings.fSeed, 'e' << 8 | mirror, fTrigger);
  for (const auto& pixel : GetLight(mirror, random)) {
    const Electronics& electronics = fElectronics[mirror - 1][pixel.first - 1];
    bool is_triggered =
        electronics.Digitise(random, pixel.first, pixel.second, fSettings.fResolution, *fTrace.GetRecord());
    if (is_triggered || fSettings.fPixels != 0) StoreTrace(pixel.first, event);
  }
}

// The light as the mirror's own page shows it, which begins later the farther the trigger had to go.
CameraLight Simulation::GetLight(UInt_t mirror, Random& random) const {
  CameraLight light = fScene->GetCamera(mirror).fLight;
  for (auto& pixel : light)
    pixel.second.erase(pixel.second.begin(), pixel.second.begin() + GetDelay(mirror));
  AddAccidentals(random, fNBins, light);
  if (fSettings.fPixels != 0) BringToNumber(fSettings.fPixels, light);
  return light;
}

void Simulation::StoreTrace(UInt_t pixel_no, TMirrorEvent& event) {
  _PixelNumber pixel;
  pixel.fPixelNumber = static_cast<int>(pixel_no);
  event.GetPixelList()->AddPixel(&pixel);
  event.GetFADCData()->SetPixelFADCData(&pixel, &fTrace);
  for (UInt_t bin = 0; bin < fNBins; ++bin) {
    if (!fTrace.GetRecord()->fFadcData[bin].fPixelTrigger) continue;
    event.GetPixelData()->SetTriggered(&pixel, bin * Vd::kMI_NSLT_BINS / fNBins);
  }
}

UInt_t Simulation::GetDelay(UInt_t mirror) const {
  UInt_t first = fScene->GetFirstMirror();
  if (mirror == first) return 0;
  UInt_t inner = Random(fSettings.fSeed, 'd' << 8 | mirror, fTrigger).Integer(kInnerDelays);
  if (Scene::kNoise == fScene->GetKind()) return inner;
  return inner + kDelayPerMirror * (mirror > first ? mirror - first : first - mirror);
}

TMirrorEventHeader::EMiTriggerSource Simulation::GetTriggerSource(UInt_t mirror) const {
  if (Scene::kCalibration == fScene->GetKind()) return TMirrorEventHeader::kExternalTrigger;
  if (Scene::kNoise == fScene->GetKind()) return TMirrorEventHeader::kSoftwareTrigger;
  UInt_t first = fScene->GetFirstMirror();
  if (mirror == first || fScene->GetCamera(mirror).IsTriggered()) return TMirrorEventHeader::kInternalTrigger;
  return mirror > first ? TMirrorEventHeader::kLeftTrigger : TMirrorEventHeader::kRightTrigger;
}

TMirrorEventHeader::EMrEventLabel Simulation::GetLabel(UInt_t mirror, UInt_t n_pixels) const {
  const Scene::Camera& camera = fScene->GetCamera(mirror);
  if (Scene::kCalibration == fScene->GetKind()) return TMirrorEventHeader::kManyPixelEvent;
  bool is_long = camera.fLastBin - camera.fFirstBin > kLongTrack;
  if (camera.fNBright >= kManyBright && is_long) return TMirrorEventHeader::kShowerEvent;
  if (camera.fNBright >= kFewBright)
    return is_long ? TMirrorEventHeader::kShowerCandidate : TMirrorEventHeader::kMuonEvent;
  return n_pixels > 0 ? TMirrorEventHeader::kRandomEvent : TMirrorEventHeader::kUnlabelled;
}

bool Simulation::Build(TStnEvent& event) {
  event.Clear();
  TStnEventHeader* header = event.GetEventHeader();
  SecondMeasurement second = fClock.Measure(fTime.fSec);
  // Before the first mirror, as each one makes the event's time anew.
  header->SetTimeCorrectionParameters(second.fStartOffset, second.fEndOffset, second.fTicksPerSecond, second.fPPSPhase);
  for (TMirrorEvent* mirror_event : fDelivered) {
    if (!event.AddEvent(mirror_event)) return false;
  }
  for (UInt_t mirror : fDaqMirrors)
    header->SetMirrorPresent(mirror);
  header->SetRunNo(fSettings.fRun);
  header->SetEventNo(fTrigger);
  header->SetStnDaqDeadTime(fCounters.GetStnDaqDeadTime(fTrigger));
  FillT3(event);
  return true;
}

void Simulation::FillT3(TStnEvent& event) {
  const RunCounters::T3Count& count = fCounters.CountT3(fTrigger);
  TStnEventHeader* header = event.GetEventHeader();
  header->SetNRejectedT3(count.fRejected);
  header->SetTotalT3DeadTime(count.GetDeadTime());
  if (!count.fIsIssued) return;
  header->SetT3Id(static_cast<UShort_t>((count.fIssued - 1) % 0xFFFF + 1));
  const LightTrack& track = fScene->GetTrack();
  // The spot has reached its lowest point at the end of the track.
  UInt_t at_ground = fTime.fNanoSec - static_cast<UInt_t>((fNBins - track.fStart - track.fDuration) * kBinNanoSec);
  header->SetT3TimeStamp(fTime.fSec, at_ground);
  if (count.fIsRejected) header->SetIsCKASVetoRejectedT3();
  TStnT3Data* t3 = event.GetT3Data();
  t3->SetNPixels(static_cast<int>(event.GetPixelList()->GetNumPixels()));
  t3->SetSDPTheta(static_cast<float>(std::atan2(-track.fRowSpeed, track.fColumnSpeed)));
  t3->SetSDPPhi(static_cast<float>(track.fColumn * kPixelAngle));
  t3->SetAzimuthAtGround(
      static_cast<float>((track.fColumn - track.fColumnSpeed / track.fRowSpeed * track.fRow) * kPixelAngle));
  t3->SetTimeAtGround(at_ground);
  t3->SetTotalSignal(static_cast<float>(track.fMaximum * track.fDuration * 2. / 3.));
}

void Simulation::FillRunHeader(TStnRunHeader& header) const {
  header.Clear();
  header.SetStnNo(fSettings.fStation);
  header.SetRunNo(fSettings.fRun);
  header.SetStartTime(MakeTimeStamp({fSettings.fStartTime, 0}));
  header.SetUserName("stn-simulate");
  header.SetComment(("simulated, seed " + std::to_string(fSettings.fSeed)).c_str());
  header.SetVersionInformation();
  header.SetEvbVersion(kProgramVersion);
  for (UInt_t mirror : fDaqMirrors)
    header.SetMirrorPresent(mirror);
}

void Simulation::FillRunTrailer(TStnRunTrailer& trailer, UInt_t n_triggers) {
  // The run stops at the second after its last trigger.
  GpsTime stop = {fCounters.GetTime(n_triggers).fSec + 1, 0};
  const RunCounters::T3Count& count = fCounters.CountT3(n_triggers);
  trailer.Clear();
  trailer.SetNEvents(n_triggers);
  trailer.SetStartTime(MakeTimeStamp({fSettings.fStartTime, 0}));
  trailer.SetStopTime(MakeTimeStamp(stop));
  trailer.SetTotalTime();
  trailer.SetNumberOfT3(count.fIssued);
  trailer.SetNumberOfRejectedT3(count.fRejected);
  trailer.SetTotalT3DeadTime(count.GetDeadTime());
  trailer.SetStnDaqDeadTime(fCounters.GetStnDaqDeadTime(n_triggers));
  for (UInt_t mirror : fDaqMirrors)
    FillMirrorTrailer(trailer, mirror, n_triggers);
}

void Simulation::FillMirrorTrailer(TStnRunTrailer& trailer, UInt_t mirror, UInt_t n_triggers) const {
  TMirrorRunTrailer of_mirror;
  of_mirror.SetDeadTimeCounter(fCounters.GetDeadTime(n_triggers, mirror));
  of_mirror.SetVetoTimeCounter(fCounters.GetVetoTime(fCounters.GetTime(n_triggers)));
  of_mirror.SetDaqDeadTime(fCounters.GetMirrorDaqDeadTime(n_triggers, mirror));
  trailer.SetMirrorPresent(mirror);
  trailer.AddMirrorRunTrailer(&of_mirror, mirror);
  trailer.SetMirrorNSkippedTriggers(fCounters.GetNSkippedTriggers(n_triggers, mirror), mirror);
  auto dead_seconds = static_cast<int>(of_mirror.GetDeadTimeCounter() / 10000000);
  trailer.AddToLifeTimeCounter(static_cast<int>(trailer.GetTotalTime()) - dead_seconds, mirror);
}

}  // namespace StnTools
