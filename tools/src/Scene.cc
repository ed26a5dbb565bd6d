#include "Scene.h"

#include "Electronics.h"

#include <VdUtil/VdNumbering.h>

#include <algorithm>
#include <cmath>

namespace StnTools {
namespace {

const double kDegree = 0.017453292519943295;
// Part of the page that has gone by when the light comes.
const double kPreTrigger = 0.25;
// The lamp: photoelectrons of each pixel in a bin, and bins that it lasts.
const float kFlashLight = 15.F;
const UInt_t kFlashLength = 50;

// Kinds by their share of all triggers, up to and including each.
struct KindShare {
  double fUpTo;
  Scene::Kind fKind;
};
const KindShare kKindShares[] = {{0.02, Scene::kCalibration}, {0.18, Scene::kNoise}, {0.30, Scene::kMuon}};

// Evenly distributed in the logarithm: faint light is more frequent.
double DrawLogarithmic(Random& random, double low, double high) { return low * std::pow(high / low, random.Uniform()); }

// First bin in which the sum of the trigger is above its threshold; -1 if there is none.
int FindTrigger(const std::vector<float>& light) {
  double sum = 0.;
  for (size_t bin = 0; bin < light.size(); ++bin) {
    sum += light[bin];
    if (bin >= Electronics::kSumLength) sum -= light[bin - Electronics::kSumLength];
    if (sum * Electronics::kGain > Electronics::kThreshold) return static_cast<int>(bin);
  }
  return -1;
}

void FindBrightPixels(Scene::Camera& camera) {
  for (const auto& pixel : camera.fLight) {
    int bin = FindTrigger(pixel.second);
    if (bin < 0) continue;
    UInt_t first = static_cast<UInt_t>(bin);
    camera.fFirstBin = camera.fNBright == 0 ? first : std::min(camera.fFirstBin, first);
    camera.fLastBin = std::max(camera.fLastBin, first);
    ++camera.fNBright;
  }
}

}  // namespace

Scene::Scene(const SimulationSettings& settings, UInt_t trigger)
    : fKind(DrawKind(settings, trigger)),
      fNBins(settings.GetNBins()),
      fDaqMirrors(settings.GetDaqMirrors()),
      fCameras(VdUtil::Vd::GetStnLastMirrorNo(settings.fStation)),
      fFirstMirror(fDaqMirrors.front()),
      fTriggerBin(static_cast<UInt_t>(kPreTrigger * fNBins)) {
  for (UInt_t mirror : fDaqMirrors)
    fCameras[mirror - 1].fIsInDaq = true;
  Random random(settings.fSeed, 's', trigger);
  SetLight(random);
  ChooseMirrors(settings.fPixels != 0);
}

Scene::Kind Scene::DrawKind(const SimulationSettings& settings, UInt_t trigger) {
  if (settings.fPixels != 0) return kShower;
  double dice = Random(settings.fSeed, 'k', trigger).Uniform();
  for (const KindShare& share : kKindShares) {
    if (dice < share.fUpTo) return share.fKind;
  }
  return kShower;
}

void Scene::SetLight(Random& random) {
  if (kNoise == fKind) return;
  if (kCalibration == fKind) {
    fFirstMirror = fDaqMirrors[random.Integer(fDaqMirrors.size())];
    fCameras[fFirstMirror - 1].fLight = MakeFlash();
    FindBrightPixels(fCameras[fFirstMirror - 1]);
    return;
  }
  fTrack = DrawTrack(random);
  std::vector<CameraLight> light = fTrack.Project(fCameras.size(), fNBins);
  for (size_t i = 0; i < light.size(); ++i) {
    fCameras[i].fLight.swap(light[i]);
    FindBrightPixels(fCameras[i]);
  }
  ChooseFirstMirror();
}

LightTrack Scene::DrawTrack(Random& random) const {
  double edge = kCameraColumns * (fDaqMirrors[random.Integer(fDaqMirrors.size())] - 1.);
  return kMuon == fKind ? DrawMuon(random, edge) : DrawShower(random, edge);
}

// The spot of a shower comes from above and crosses 0.4 to 1.2 pixels in a microsecond, which is what a shower does that
// passes at some ten kilometres. It goes towards the far side of the camera where it begins, so that there is a track to
// see also at the edge of the station.
LightTrack Scene::DrawShower(Random& random, double edge) const {
  double slope = random.Uniform(0., 60.) * kDegree;
  double speed = random.Uniform(0.04, 0.12);
  double column = random.Uniform(2., kCameraColumns - 2.);
  if (column > kCameraColumns / 2.) slope = -slope;
  LightTrack track = {};
  track.fColumn = edge + column;
  track.fRow = random.Uniform(18., kCameraRows);
  track.fColumnSpeed = speed * std::sin(slope);
  track.fRowSpeed = -speed * std::cos(slope);
  track.fStart = kPreTrigger * fNBins;
  track.fDuration = std::min(track.fRow / -track.fRowSpeed, (0.95 - kPreTrigger) * fNBins);
  track.fMaximum = DrawLogarithmic(random, 6., 100.);
  return track;
}

// A muon that hits the mirror lights a streak at once; the bins are too wide to see it grow.
LightTrack Scene::DrawMuon(Random& random, double edge) const {
  double angle = random.Uniform(0., 360.) * kDegree;
  double length = random.Uniform(6., 14.);
  LightTrack track = {};
  track.fColumn = edge + random.Uniform(6., kCameraColumns - 6.);
  track.fRow = random.Uniform(6., kCameraRows - 6.);
  track.fStart = kPreTrigger * fNBins;
  track.fDuration = random.Uniform(3., 8.);
  track.fColumnSpeed = length * std::cos(angle) / track.fDuration;
  track.fRowSpeed = length * std::sin(angle) / track.fDuration;
  track.fMaximum = random.Uniform(300., 700.);
  return track;
}

CameraLight Scene::MakeFlash() const {
  std::vector<float> pulse(fNBins);
  std::fill_n(pulse.begin() + fTriggerBin, kFlashLength, kFlashLight);
  CameraLight light;
  for (UInt_t pixel = 1; pixel <= VdUtil::Vd::kMI_NEXTPIXELS; ++pixel)
    light[pixel] = pulse;
  return light;
}

// A track too faint for any mirror is given to the one that sees most of it.
void Scene::ChooseFirstMirror() {
  auto is_before = [this](UInt_t a, UInt_t b) {
    const Camera& x = GetCamera(a);
    const Camera& y = GetCamera(b);
    if (x.IsTriggered() != y.IsTriggered()) return x.IsTriggered();
    return x.IsTriggered() ? x.fFirstBin < y.fFirstBin : x.fNBright > y.fNBright;
  };
  fFirstMirror = *std::min_element(fDaqMirrors.begin(), fDaqMirrors.end(), is_before);
  if (GetCamera(fFirstMirror).fNBright > 0) fTriggerBin = GetCamera(fFirstMirror).fFirstBin;
}

void Scene::ChooseMirrors(bool is_fixed_size) {
  bool is_neighbour = false;  // of a triggered mirror on the left
  bool is_all = is_fixed_size || kNoise == fKind;
  for (size_t i = 0; i < fCameras.size(); ++i) {
    Camera& camera = fCameras[i];
    bool has_right = i + 1 < fCameras.size() && fCameras[i + 1].IsTriggered();
    bool is_called = is_all || camera.IsTriggered() || i + 1 == fFirstMirror;
    if (kCalibration != fKind) is_called = is_called || is_neighbour || has_right;
    camera.fIsRead = camera.fIsInDaq && is_called;
    is_neighbour = camera.IsTriggered();
  }
}

}  // namespace StnTools
