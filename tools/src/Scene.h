#ifndef tools_Scene_h
#define tools_Scene_h

#include "LightTrack.h"
#include "Random.h"
#include "SimulationSettings.h"

#include <vector>

namespace StnTools {

/// What one trigger shows to the cameras of a station, and which mirrors it makes take part.
///
/// One in 50 triggers is a calibration, in which a lamp lights all pixels of one mirror; one in six is a trigger of the
/// software with nothing but night sky; one in eight is a muon, a short streak that is over within a microsecond; the
/// others are showers, spots that cross one camera or more. A run with a fixed number of pixels has showers only.
///
/// The mirror that triggers first triggers its neighbours: each mirror with light of its own and its neighbours are
/// read out. The software's trigger goes to all mirrors, the lamp's to its own.
class Scene {
 public:
  enum Kind { kCalibration, kNoise, kMuon, kShower };

  /// One mirror's part.
  struct Camera {
    CameraLight fLight;     ///< light, in bins of the page of the mirror that triggered first
    UInt_t fNBright = 0;    ///< pixels bright enough to trigger without the help of noise
    UInt_t fFirstBin = 0;   ///< bin in which the first of them triggers
    UInt_t fLastBin = 0;    ///< bin in which the last of them does
    bool fIsInDaq = false;  ///< is the mirror switched on?
    bool fIsRead = false;   ///< is it read out?

    /// Does the mirror trigger on its own light, which takes four pixels?
    bool IsTriggered() const { return fIsInDaq && fNBright >= 4; }
  };

  /// The scene of a trigger; equal seeds and trigger numbers give equal scenes.
  Scene(const SimulationSettings& settings, UInt_t trigger);

  /// The kind alone, which takes far less time.
  static Kind DrawKind(const SimulationSettings& settings, UInt_t trigger);

  Kind GetKind() const { return fKind; }
  /// The track of a muon or shower.
  const LightTrack& GetTrack() const { return fTrack; }
  /// The part of mirror `mirror`, 1 to the station's last.
  const Camera& GetCamera(UInt_t mirror) const { return fCameras.at(mirror - 1); }
  /// The mirror that triggers first.
  UInt_t GetFirstMirror() const { return fFirstMirror; }
  /// The bin of its page in which it does.
  UInt_t GetTriggerBin() const { return fTriggerBin; }

 private:
  LightTrack DrawTrack(Random& random) const;
  LightTrack DrawShower(Random& random, double edge) const;
  LightTrack DrawMuon(Random& random, double edge) const;
  CameraLight MakeFlash() const;
  void SetLight(Random& random);
  void ChooseFirstMirror();
  void ChooseMirrors(bool is_fixed_size);

  Kind fKind;
  UInt_t fNBins;
  std::vector<UInt_t> fDaqMirrors;
  LightTrack fTrack = {};
  std::vector<Camera> fCameras;
  UInt_t fFirstMirror;
  UInt_t fTriggerBin;
};

}  // namespace StnTools

#endif
