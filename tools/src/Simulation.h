#ifndef tools_Simulation_h
#define tools_Simulation_h

#include "Electronics.h"
#include "RunCounters.h"
#include "Scene.h"
#include "SimulationSettings.h"
#include "StationClock.h"

#include <MrEvent/MrEvent.h>
#include <StnEvent/StnEvent.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <memory>
#include <vector>

namespace StnTools {

/// A run of one station, trigger by trigger, as its mirrors deliver it and its event builder puts it together. Triggers
/// count from 1, and each comes out the same whether or not others were simulated before.
///
/// A trigger shows a `Scene` to the cameras. A mirror's page is late by the trigger's way to it, 300 ns from mirror to
/// mirror and up to 200 ns inside, and its end is the raw time of the mirror, as the station's clock counts it. A bin is 100 ns. The trigger
/// record of a pixel has 100 slices: in a page of 1000 bins bin b lies in slice b / 10, in one of 2000 bins in slice
/// b / 20. A slice is triggered if one of its words has the trigger bit.
class Simulation {
 public:
  /// Throws `std::invalid_argument`, with a text for the user, for settings that do not exist.
  explicit Simulation(const SimulationSettings& settings);

  const SimulationSettings& GetSettings() const { return fSettings; }

  /// Simulates one trigger, from 1 on.
  void Simulate(UInt_t trigger);

  /// What the trigger simulated last showed.
  const Scene& GetScene() const { return *fScene; }
  /// The mirror events of that trigger, ascending by mirror; they stay this object's and are good until the next call
  /// of `Simulate`. Adding them to a station event labels them, which changes nothing.
  const std::vector<TMirrorEvent*>& GetMirrorEvents() const { return fDelivered; }
  /// True end of that trigger's page in the mirror that triggered first.
  GpsTime GetTrueTime() const { return fTime; }

  /// Makes the station event of that trigger, as an event builder does: clears it, sets the measured second, adds the
  /// mirror events, and fills what they do not bring. False if a mirror event was refused.
  bool Build(TStnEvent& event);

  /// Fills the header of the run.
  void FillRunHeader(TStnRunHeader& header) const;
  /// Fills the trailer of a run that ended after `n_triggers` triggers.
  void FillRunTrailer(TStnRunTrailer& trailer, UInt_t n_triggers);

 private:
  void FillMirror(UInt_t mirror);
  void FillHeader(UInt_t mirror, TMirrorEventHeader& header);
  void FillPixels(UInt_t mirror, TMirrorEvent& event);
  void StoreTrace(UInt_t pixel_no, TMirrorEvent& event);
  CameraLight GetLight(UInt_t mirror, Random& random) const;
  UInt_t GetDelay(UInt_t mirror) const;
  TMirrorEventHeader::EMiTriggerSource GetTriggerSource(UInt_t mirror) const;
  TMirrorEventHeader::EMrEventLabel GetLabel(UInt_t mirror, UInt_t n_pixels) const;
  void FillT3(TStnEvent& event);
  void FillMirrorTrailer(TStnRunTrailer& trailer, UInt_t mirror, UInt_t n_triggers) const;

  SimulationSettings fSettings;
  UInt_t fNBins;
  std::vector<UInt_t> fDaqMirrors;
  StationClock fClock;
  RunCounters fCounters;
  std::vector<std::vector<Electronics>> fElectronics;  // by mirror and pixel, from 0

  UInt_t fTrigger = 0;
  GpsTime fTime = {0, 0};
  std::unique_ptr<Scene> fScene;
  std::vector<std::unique_ptr<TMirrorEvent>> fEvents;  // by mirror, from 0
  std::vector<TMirrorEvent*> fDelivered;
  TFADCData fTrace;
};

}  // namespace StnTools

#endif
