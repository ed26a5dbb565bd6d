#ifndef StnEvent_StnRunTrailer_h
#define StnEvent_StnRunTrailer_h

#include <VdRoot/TTimeStamp.h>

#include <TObject.h>

#include <iostream>

class TMirrorRunTrailer;

/// The summary of a run of one station, made at its end; stored in the file as "RunTrailer".
///
/// Mirrors are numbered 1 to 6. An operation that is given another number says so on `std::cerr` (never in the log) and
/// changes nothing or returns 0, unless it is told otherwise.
class TStnRunTrailer : public TObject {
 public:
  /// A trailer in the state after `Clear()`.
  TStnRunTrailer();
  TStnRunTrailer(const TStnRunTrailer& rhs);
  /// Copies all fields but the `TObject` part.
  TStnRunTrailer& operator=(const TStnRunTrailer& rhs);
  ~TStnRunTrailer() override = default;

  /// Sets both stamps to Unix second 0 and everything else to 0; `option` is ignored.
  void Clear(Option_t* option = "") override;
  /// Writes the trailer for a person to read.
  void Show(std::ostream& ostr = std::cout) const;

  /// Takes dead time, DAQ dead time and veto time of a mirror's trailer over, in place of what was there. The veto time
  /// is the station's: that of the mirror added last stands, also for an illegal `mirror_id`. Presence, life time and
  /// skipped triggers of the mirror are not touched. `trailer` must not be null (assertion).
  void AddMirrorRunTrailer(const TMirrorRunTrailer* trailer, unsigned int mirror_id);
  /// Adds to the life time of a mirror; `seconds` may be negative.
  void AddToLifeTimeCounter(int seconds, unsigned int mirror_id);

  /// Whether a mirror took part: bit (id - 1) modulo 32 of the status. Other numbers are never complained of.
  Bool_t IsMirrorPresent(unsigned int mirror_id) const;
  void SetMirrorPresent(unsigned int mirror_id);

  /// When the run was started and stopped; without an argument the present moment.
  void SetStartTime() { fStartTime = VdRoot::TTimeStamp(); }
  void SetStopTime() { fStopTime = VdRoot::TTimeStamp(); }
  void SetStartTime(const VdRoot::TTimeStamp& t) { fStartTime = t; }
  void SetStopTime(const VdRoot::TTimeStamp& t) { fStopTime = t; }
  const VdRoot::TTimeStamp& GetStartTime() const { return fStartTime; }
  const VdRoot::TTimeStamp& GetStopTime() const { return fStopTime; }
  /// Length of the run in seconds; 0 takes it from the two stamps, leap seconds included, modulo 2^32.
  void SetTotalTime(unsigned int total_time = 0);
  UInt_t GetTotalTime() const { return fTotalTime; }

  /// Dead time of a mirror, in units of 100 ns.
  void SetDeadTimeCounter(unsigned long long dead_time, unsigned int mirror_id);
  ULong64_t GetDeadTimeCounter(unsigned int mirror_id) const;
  /// Life time of a mirror, in seconds.
  void SetLifeTimeCounter(unsigned int life_time, unsigned int mirror_id);
  UInt_t GetLifeTimeCounter(unsigned int mirror_id) const;
  /// DAQ dead time of a mirror, in units of 100 ns.
  void SetMirrorDaqDeadTime(unsigned long long dead_time, unsigned int mirror_id);
  ULong64_t GetMirrorDaqDeadTime(unsigned int mirror_id) const;
  /// Number of triggers that a mirror skipped.
  void SetMirrorNSkippedTriggers(unsigned int n, unsigned int mirror_id);
  UInt_t GetMirrorNSkippedTriggers(unsigned int mirror_id) const;

  /// Number of events in the file.
  void SetNEvents(UInt_t n) { fNEvents = n; }
  UInt_t GetNEvents() const { return fNEvents; }
  /// Mirrors that took part: bit (id - 1) for mirror id; the low 8 bits are stored.
  void SetMirrorStatus(UInt_t status) { fMirrorStatus = status; }
  UInt_t GetMirrorStatus() const { return fMirrorStatus; }
  /// Veto time of the station, as counted by the mirrors' hardware.
  void SetVetoTimeCounter(ULong64_t veto_time) { fVetoTimeCounter = veto_time; }
  ULong64_t GetVetoTimeCounter() const { return fVetoTimeCounter; }
  /// DAQ dead time of the station, in units of 100 ns.
  void SetStnDaqDeadTime(ULong64_t dead_time) { fStnDaqDeadTime = dead_time; }
  ULong64_t GetStnDaqDeadTime() const { return fStnDaqDeadTime; }
  /// Number of third-level triggers, rejected ones included.
  void SetNumberOfT3(UInt_t n) { fNT3 = n; }
  UInt_t GetNumberOfT3() const { return fNT3; }
  /// Number of third-level triggers that the veto rejected.
  void SetNumberOfRejectedT3(UInt_t n) { fNRejectedT3 = n; }
  UInt_t GetNumberOfRejectedT3() const { return fNRejectedT3; }
  /// Dead time by that veto, in seconds.
  void SetTotalT3DeadTime(Float_t dead_time) { fTotalT3DeadTime = dead_time; }
  Float_t GetTotalT3DeadTime() const { return fTotalT3DeadTime; }

 private:
  void ShowMirror(std::ostream& ostr, unsigned int mirror_id) const;

  UChar_t fMirrorStatus;              // bit for each mirror in DAQ: bit (id - 1) for mirror id
  UInt_t fNEvents;                    // number of events in the file
  ULong64_t fVetoTimeCounter;         // accumulated VETO time
  ULong64_t fDeadTimeCounter[6];      // accumulated, individual DEAD time, in units of 100 ns
  UInt_t fLifeTimeCounter[6];         // accumulated, individual life time [sec]
  ULong64_t fMirrorDaqDeadTime[6];    // acc. DAQ dead times, in units of 100 ns
  UInt_t fMirrorNSkippedTriggers[6];  // triggers skipped, per mirror
  ULong64_t fStnDaqDeadTime;          // DAQ dead time of the station, in units of 100 ns
  UInt_t fNT3;                        // total number of T3, incl. rejected
  UInt_t fNRejectedT3;                // number of T3 rejected by T3-CKAS VETO
  Float_t fTotalT3DeadTime;           // acc. deadtime by T3-CKAS VETO, in seconds
  VdRoot::TTimeStamp fStartTime;      // timestamp when the RUN was started
  VdRoot::TTimeStamp fStopTime;       // timestamp when the RUN was stopped
  UInt_t fTotalTime;                  // total number of seconds of the RUN

  ClassDefOverride(TStnRunTrailer, 3)
};

#endif
