#include "Scene.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using StnTools::Scene;
using StnTools::SimulationSettings;

// The first scene of a kind from a trigger on.
Scene FindScene(Scene::Kind kind, const SimulationSettings& settings = {}, UInt_t trigger = 1) {
  while (Scene::DrawKind(settings, trigger) != kind)
    ++trigger;
  return Scene(settings, trigger);
}

std::vector<UInt_t> GetRead(const Scene& scene, UInt_t last = 6) {
  std::vector<UInt_t> read;
  for (UInt_t mirror = 1; mirror <= last; ++mirror) {
    if (scene.GetCamera(mirror).fIsRead) read.push_back(mirror);
  }
  return read;
}

using Mirrors = std::vector<UInt_t>;

}  // namespace

TEST(SceneTest, DrawsTheKindsInTheirShares) {
  std::map<Scene::Kind, int> count;
  for (UInt_t trigger = 1; trigger <= 5000; ++trigger)
    ++count[Scene::DrawKind({}, trigger)];
  EXPECT_NEAR(count[Scene::kCalibration], 100, 40);
  EXPECT_NEAR(count[Scene::kNoise], 800, 110);
  EXPECT_NEAR(count[Scene::kMuon], 600, 100);
  EXPECT_NEAR(count[Scene::kShower], 3500, 140);
}

TEST(SceneTest, DrawsShowersOnlyForAFixedNumberOfPixels) {
  for (UInt_t trigger = 1; trigger <= 100; ++trigger) {
    EXPECT_EQ(Scene::DrawKind(SimulationSettings::Middle(), trigger), Scene::kShower);
  }
}

TEST(SceneTest, IsTheSameForTheSameTrigger) {
  Scene a({}, 9);
  Scene b({}, 9);
  EXPECT_EQ(a.GetTrack().fColumn, b.GetTrack().fColumn);
  EXPECT_EQ(a.GetCamera(a.GetFirstMirror()).fLight, b.GetCamera(b.GetFirstMirror()).fLight);
}

TEST(SceneTest, LightsAllPixelsOfOneMirrorInACalibration) {
  Scene scene = FindScene(Scene::kCalibration);
  EXPECT_EQ(GetRead(scene), Mirrors{scene.GetFirstMirror()});
  EXPECT_EQ(scene.GetCamera(scene.GetFirstMirror()).fNBright, 480u);
}

TEST(SceneTest, ReadsAllMirrorsInTheDarkOnTheSoftwaresTrigger) {
  Scene scene = FindScene(Scene::kNoise);
  EXPECT_EQ(GetRead(scene), (Mirrors{1, 2, 3, 4, 5, 6}));
  for (UInt_t mirror = 1; mirror <= 6; ++mirror)
    EXPECT_TRUE(scene.GetCamera(mirror).fLight.empty());
}

TEST(SceneTest, MakesMuonsShort) {
  for (UInt_t trigger = 1; trigger < 200; trigger += 20) {
    Scene scene = FindScene(Scene::kMuon, {}, trigger);
    const Scene::Camera& camera = scene.GetCamera(scene.GetFirstMirror());
    EXPECT_GE(camera.fNBright, 4u);
    EXPECT_LE(camera.fLastBin - camera.fFirstBin, 20u);
  }
}

TEST(SceneTest, MakesMostShowersLong) {
  int n_long = 0;
  for (UInt_t trigger = 1; trigger <= 100; ++trigger) {
    Scene scene = FindScene(Scene::kShower, {}, trigger);
    const Scene::Camera& camera = scene.GetCamera(scene.GetFirstMirror());
    n_long += camera.fNBright >= 8 && camera.fLastBin - camera.fFirstBin > 30;
  }
  EXPECT_GT(n_long, 85);
}

TEST(SceneTest, ReadsMirrorsWithLightAndTheirNeighbours) {
  for (UInt_t trigger = 1; trigger <= 50; ++trigger) {
    Scene scene = FindScene(Scene::kShower, {}, trigger);
    for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
      bool expected = false;
      for (UInt_t other = std::max(1u, mirror - 1); other <= std::min(6u, mirror + 1); ++other) {
        expected = expected || scene.GetCamera(other).IsTriggered();
      }
      if (scene.GetCamera(scene.GetFirstMirror()).IsTriggered()) {
        EXPECT_EQ(scene.GetCamera(mirror).fIsRead, expected) << trigger << " " << mirror;
      }
    }
  }
}

TEST(SceneTest, BeginsWithTheMirrorThatTriggersFirst) {
  for (UInt_t trigger = 1; trigger <= 50; ++trigger) {
    Scene scene = FindScene(Scene::kShower, {}, trigger);
    EXPECT_EQ(scene.GetTriggerBin(), scene.GetCamera(scene.GetFirstMirror()).fFirstBin);
    for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
      if (!scene.GetCamera(mirror).IsTriggered()) continue;
      EXPECT_LE(scene.GetTriggerBin(), scene.GetCamera(mirror).fFirstBin) << trigger;
    }
  }
}

TEST(SceneTest, LeavesOutMirrorsThatAreNotInTheDaq) {
  SimulationSettings settings;
  settings.fMirrors = {2, 5};
  for (UInt_t trigger = 1; trigger <= 50; ++trigger) {
    for (UInt_t mirror : GetRead(Scene(settings, trigger)))
      EXPECT_TRUE(mirror == 2 || mirror == 5);
  }
}

TEST(SceneTest, ReadsAllMirrorsForAFixedNumberOfPixels) {
  EXPECT_EQ(GetRead(Scene(SimulationSettings::Middle(), 1)), (Mirrors{1, 2, 3, 4, 5, 6}));
}

TEST(SceneTest, KnowsThreeMirrorsInStation5) {
  SimulationSettings settings;
  settings.fStation = 5;
  Scene scene = FindScene(Scene::kNoise, settings);
  EXPECT_EQ(GetRead(scene, 3), (Mirrors{1, 2, 3}));
  EXPECT_THROW(scene.GetCamera(4), std::out_of_range);
}
