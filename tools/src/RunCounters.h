#ifndef tools_RunCounters_h
#define tools_RunCounters_h

#include "SimulationSettings.h"
#include "StationClock.h"

namespace StnTools {

/// Times and counters of a simulated run: what each trigger finds them at. All but the T3 counts follow from the number
/// of the trigger alone. Counters are in units of 100 ns.
class RunCounters {
 public:
  explicit RunCounters(const SimulationSettings& settings) : fSettings(settings) {}

  /// True end of the page in the mirror that triggered first: some 1.7 s after that of the trigger before, and never
  /// within 1 ms of a full second, where the readout is vetoed.
  GpsTime GetTime(UInt_t trigger) const;

  /// Time since the start of the run.
  ULong64_t GetRunTime(const GpsTime& time) const;
  /// Veto time of the station: 2 ms in each second.
  ULong64_t GetVetoTime(const GpsTime& time) const;
  /// Dead time of a mirror: some 26 ms for each readout.
  ULong64_t GetDeadTime(UInt_t trigger, UInt_t mirror) const;
  /// Dead time of a mirror's DAQ, and that of the station's.
  ULong64_t GetMirrorDaqDeadTime(UInt_t trigger, UInt_t mirror) const;
  ULong64_t GetStnDaqDeadTime(UInt_t trigger) const;
  /// Triggers that a mirror skipped: a few in a thousand.
  UInt_t GetNSkippedTriggers(UInt_t trigger, UInt_t mirror) const;

  /// T3s up to and including a trigger, and whether that trigger has one itself. Asked for ascending triggers, each
  /// answer takes the same time.
  struct T3Count {
    UInt_t fTrigger;
    UInt_t fIssued;
    UInt_t fRejected;
    bool fIsIssued;
    bool fIsRejected;

    /// Dead time by rejected T3s, in seconds.
    Float_t GetDeadTime() const { return 0.25F * static_cast<Float_t>(fRejected); }
  };
  const T3Count& CountT3(UInt_t trigger);

 private:
  void CountNextT3();

  SimulationSettings fSettings;
  T3Count fT3Count = {};
};

}  // namespace StnTools

#endif
