#ifndef StnEvent_StnEventHeader_h
#define StnEvent_StnEventHeader_h

#include <MrEvent/MrEventHeader.h>
#include <VdRoot/TTimeStamp.h>

#include <TObject.h>

#include <iostream>

class TFADCData;

/// The header of one station event: who recorded it, which mirrors took part, when it happened, how it was classified,
/// and the times and counters that each mirror reported.
///
/// It is a flat record. Mirrors are numbered 1 to 6 in the interface; slot `i` of each array and bit `i` of each mirror
/// bit field belong to mirror `i + 1`. One thread at a time may use a header.
class TStnEventHeader : public TObject {
 public:
  /// What the trigger was. A file can hold any other value as well.
  enum EEventType : Int_t {
    kUnknown = 0,
    kPhysics = 1,
    kCalibration = 2,
    kSimulated = 3,
    kLaserOffset = 4,
    kFlasherOffset = 5,
    kCalibrationOffset = 6,
    kLidarOffset = 7,
    kAPFOffset = 8,
    kInvalidType = 9
  };

  /// What the T3 classification made of the event. A file can hold any other value as well.
  enum EEventClass : Int_t {
    kUnClassified = 0,
    kNoPhysicsEvent = 1,
    kLargeEvent = 2,
    kUnhandledSignature = 3,
    kEmpty = 4,
    kIsMuon = 5,
    kLongMuon = 6,
    kCloseShower = 7,
    kNoise = 8,
    kMuonAndNoise = 9,
    kVetoedEvent = 10,
    kShowerCandidate = 11,
    kHorizontalShower = 12,
    kIsShower = 13,
    kUserDefined1 = 90,
    kUserDefined2 = 91,
    kUserDefined3 = 92,
    kUserDefined4 = 93,
    kUBANoise = 90,
    kRejected = 98,
    kInvalidClass = 99
  };

  /// The bits of the status word.
  enum EHeaderStatusBits : UInt_t {
    kLidarIsTriggered = 1,
    kT3IsCKASVetoRejected = 2,
    kT3IsDelayRejected = 4,
    kT3IsCKASRejected = 8
  };

  /// How good the time correction is. `kUnknownQuality` is only met in files.
  enum ETimeCorrectionQuality : Int_t {
    kCorrectionNotSet = -1,
    kUnknownQuality = 0,
    kAveragedPeriod = 1,
    kFullQuality = 2
  };

  /// Nominal ticks of the 80 MHz clock in one second.
  static constexpr UInt_t kTicksPerSecond = 80000000;
  /// Nanoseconds in one second.
  static constexpr UInt_t kNanoSecPerSecond = 1000000000;

  /// An empty header of the station of this host, with all times at GPS second 0 and no time correction.
  TStnEventHeader();
  /// A copy; it counts as not read from a file.
  TStnEventHeader(const TStnEventHeader& rhs);
  /// Copies everything but the `TObject` part and the version read from file.
  TStnEventHeader& operator=(const TStnEventHeader& rhs);
  virtual ~TStnEventHeader();

  /// True only for this very object: contents are never compared.
  bool operator==(const TStnEventHeader& rhs) const { return this == &rhs; }

  /// The number of the event in its run.
  UInt_t GetEventNo() const { return fEventNumber; }
  void SetEventNo(UInt_t evnum) { fEventNumber = evnum; }

  /// The station, 1 to 5. The setter keeps the low 8 bits and checks nothing.
  UInt_t GetStnNo() const { return fStnNumber; }
  void SetStnNo(UInt_t stn_no) { fStnNumber = static_cast<UChar_t>(stn_no); }

  /// The event class. Nothing is checked: a header from a file can answer a value that is no enumerator.
  EEventClass GetEventClass() const { return static_cast<EEventClass>(fEventClass); }
  void SetEventClass(EEventClass cl) { fEventClass = cl; }
  /// True while no class is assigned.
  bool IsUnclassified() const { return fEventClass == kUnClassified; }

  /// The event type. Nothing is checked: a header from a file can answer a value that is no enumerator.
  EEventType GetEventType() const { return static_cast<EEventType>(fEventType); }
  void SetEventType(EEventType type) { fEventType = type; }

  /// The run number.
  UInt_t GetRunNo() const { return fRunNo; }
  void SetRunNo(UInt_t run_no) { fRunNo = run_no; }

  /// One bit for each mirror whose data are in the event; bit 0 is mirror 1.
  UInt_t GetMirrorDataBits() const { return fMirrorDataBits; }
  /// One bit for each mirror that takes part in the DAQ; bit 0 is mirror 1.
  UInt_t GetMirrorStatusBits() const { return fMirrorStatus; }

  /// Ask for one bit, without a check of `mirror_id` and without a message: 0 answers false, 7 and 8 the spare bits of
  /// the field, and 33 and above begin anew at mirror 1.
  bool IsMirrorDataPresent(UInt_t mirror_id) const { return IsBitSet(fMirrorDataBits, mirror_id); }
  bool IsMirrorPresent(UInt_t mirror_id) const { return IsBitSet(fMirrorStatus, mirror_id); }
  /// Set the bit of mirror `mirror_id`, 1 to 6; any other id is logged as an error and sets nothing. Nothing but
  /// `TStnEvent::RemoveEvent` clears a bit.
  void SetMirrorDataPresent(UInt_t mirror_id);
  void SetMirrorPresent(UInt_t mirror_id);

  /// The status word; test it bit by bit.
  EHeaderStatusBits GetStatusBits() const { return static_cast<EHeaderStatusBits>(fStatusBits); }
  /// Each adds its own bit to the status word. No operation takes one away.
  void SetLidarIsTriggered() { fStatusBits |= kLidarIsTriggered; }
  void SetIsCKASVetoRejectedT3() { fStatusBits |= kT3IsCKASVetoRejected; }
  void SetIsDelayRejectedT3() { fStatusBits |= kT3IsDelayRejected; }
  void SetIsCKASRejectedT3() { fStatusBits |= kT3IsCKASRejected; }
  /// True if the lidar fired.
  bool IsLidarTriggered() const { return (fStatusBits & kLidarIsTriggered) != 0; }
  /// True if the T3 was rejected for any of the three reasons.
  bool IsRejectedT3() const {
    return (fStatusBits & (kT3IsCKASVetoRejected | kT3IsDelayRejected | kT3IsCKASRejected)) != 0;
  }

  /// Dead time of the station's DAQ, in units of 100 ns.
  ULong64_t GetStnDaqDeadTime() const { return fStnDaqDeadTime; }
  void SetStnDaqDeadTime(ULong64_t dead_time) { fStnDaqDeadTime = dead_time; }

  /// Accumulated veto time of the station, in units of 100 ns.
  ULong64_t GetVetoTimeCounter() const;
  void SetVetoTimeCounter(ULong64_t veto_ctr);

  /// The T3 identifier; 0 means no T3.
  UShort_t GetT3Id() const { return fT3Id; }
  void SetT3Id(UShort_t t3_id) { fT3Id = t3_id; }
  /// The number of T3s rejected so far.
  UInt_t GetNRejectedT3() const { return fNRejectedT3; }
  void SetNRejectedT3(UInt_t n_rejected) { fNRejectedT3 = n_rejected; }
  /// Total T3 dead time, in seconds.
  Float_t GetTotalT3DeadTime() const { return fTotalT3DeadTime; }
  void SetTotalT3DeadTime(Float_t total_time) { fTotalT3DeadTime = total_time; }

  /// The values of mirror `mirror_id`, 1 to 6, whether or not its data are present. Any other id is logged as an error:
  /// a setter then changes nothing and a getter answers 0, which only the log tells from a value of 0.
  /// Counters and dead times are in units of 100 ns; the trigger time stamp is the hardware's raw value; the trigger
  /// source keeps its low 8 bits; the time offset is that of the mirror's corrected time against the event's, in ns.
  UInt_t GetMirrorNSkippedTriggers(UInt_t mirror_id) const;
  void SetMirrorNSkippedTriggers(UInt_t n, UInt_t mirror_id);
  Int_t GetMirrorEventLabel(UInt_t mirror_id) const;
  void SetMirrorEventLabel(Int_t label, UInt_t mirror_id);
  ULong64_t GetMirrorDaqDeadTime(UInt_t mirror_id) const;
  void SetMirrorDaqDeadTime(ULong64_t t, UInt_t mirror_id);
  ULong64_t GetDeadTimeCounter(UInt_t mirror_id) const;
  void SetDeadTimeCounter(ULong64_t t, UInt_t mirror_id);
  ULong64_t GetRunTimeCounter(UInt_t mirror_id) const;
  void SetRunTimeCounter(ULong64_t t, UInt_t mirror_id);
  TMirrorEventHeader::EMiTriggerSource GetTriggerSource(UInt_t mirror_id) const;
  void SetTriggerSource(TMirrorEventHeader::EMiTriggerSource src, UInt_t mirror_id);
  UInt_t GetTriggerTimeStamp(UInt_t mirror_id) const;
  void SetTriggerTimeStamp(UInt_t timestamp, UInt_t mirror_id);
  UInt_t GetMirrorTimeOffset(UInt_t mirror_id) const;

  /// The uncorrected time of mirror `mirror_id`, owned by the header. Null if the mirror's data are not present, and,
  /// with an error logged, for an id outside 1 to 6.
  const VdRoot::TTimeStamp* GetRawMirrorTimeStamp(UInt_t mirror_id) const;
  /// Sets that time; an id outside 1 to 6 is logged as an error and changes nothing. Call `AdjustMirrorTimes` after it.
  void SetRawMirrorTime(UInt_t mirror_id, const VdRoot::TTimeStamp& t);

  /// The corrected time of the event, owned by the header.
  const VdRoot::TTimeStamp* GetTimeStamp() const { return &fTimeStamp; }
  /// Set that time to a final value: no correction is applied. `sec` is a GPS second; a null pointer changes nothing.
  void SetTimeStamp(UInt_t sec, UInt_t nsec);
  void SetTimeStamp(const VdRoot::TTimeStamp* datime);
  void SetTimeStamp(const VdRoot::TTimeStamp& datime) { fTimeStamp = datime; }

  /// The time of the T3 at ground, owned by the header.
  const VdRoot::TTimeStamp* GetT3TimeStamp() const { return &fT3TimeAtGround; }
  /// Set that time. `sec` is a GPS second; a null pointer changes nothing.
  void SetT3TimeStamp(UInt_t sec, UInt_t nsec);
  void SetT3TimeStamp(const VdRoot::TTimeStamp* t3);
  void SetT3TimeStamp(const VdRoot::TTimeStamp& t3) { fT3TimeAtGround = t3; }

  /// Sets the time correction from the measured second: shifts of its start and end in ns (-128 to 127), 80 MHz ticks
  /// in it (79,200,000 to 80,800,000) and the delay between PPS and second strobe in ns (0 to 100). The first value
  /// out of its range is logged as an error and nothing changes; otherwise the quality becomes `kAveragedPeriod`.
  void SetTimeCorrectionParameters(Short_t start_offset, Short_t end_offset, UInt_t ticks_per_sec,
                                   UInt_t pps_phase = 0);
  /// The same from derived values: the duration of a 10 MHz cycle in ns (50 to 150) and the offset between second
  /// strobe and real second in ns (-128 to 227). The values of the measured second stay as they were.
  void SetTimeCorrectionParameters(Float_t t10, Float_t offset = 0);
  /// Copies the derived values out, in ns. Neither pointer may be null (assertion).
  void GetTimeCorrectionParameters(Float_t* t10, Float_t* offset) const;
  /// True if the duration of a 10 MHz cycle is above 50 ns. Derives it first from the measured second if it is not
  /// plausible (50 or below, or above 150) and there is a measurement. Never changes the quality.
  Bool_t IsTimeCorrectionSet();
  /// Corrects a raw time of GPS second and ns, which may be negative. True if a correction was applied; otherwise the
  /// raw time passes through. `*nsec_out` can reach 1,000,000,000 and more: building a time stamp carries it over.
  /// Neither result pointer may be null (assertion).
  Bool_t DoTimeCorrection(UInt_t sec_in, Int_t nsec_in, UInt_t* sec_out, UInt_t* nsec_out);
  /// The quality of the time correction.
  ETimeCorrectionQuality GetTimeCorrectionQuality() const {
    return static_cast<ETimeCorrectionQuality>(fTimeCorrectionQuality);
  }
  /// Makes the event time the corrected time of the earliest mirror, and recomputes the offsets of the others. The
  /// earliest mirror's own offset is not written. Call it after every change of mirror times or correction parameters.
  void AdjustMirrorTimes();

  /// The corrected GPS second of time bin `bin` of a trace, and the nanoseconds in it, from the raw time of the trace's
  /// mirror, which is the end of its last bin. 0, with an error logged, for a bin that the trace lacks or a null trace;
  /// 0 also if the trace names no mirror from 1 to 6.
  UInt_t GetFADCBinTime(const TFADCData* fadc, UInt_t bin);
  UInt_t GetFADCBinNanoTime(const TFADCData* fadc, UInt_t bin);
  /// The same for the first bin, number 0.
  UInt_t GetFADCTraceStartTime(TFADCData* fadc) { return GetFADCBinTime(fadc, 0); }
  UInt_t GetFADCTraceStartNanoTime(TFADCData* fadc) { return GetFADCBinNanoTime(fadc, 0); }

  /// Names for people, with single quote marks around them, valid until the process exits. A value that is no
  /// enumerator reads as the invalid class, as "Invalid Type" (no marks), and as the unknown quality. The first call of
  /// each of the first two must not run beside another call of the same.
  static const char* GetVerboseEventClass(EEventClass event_class);
  static const char* GetVerboseEventType(EEventType type);
  static const char* GetVerboseTimeCorrectionQuality(ETimeCorrectionQuality quality);
  /// The mirror event type for a station event type: the offset types count as physics, what is no type as unknown.
  static TMirrorEventHeader::EMrEventType GetMirrorEventType(EEventType type);

  /// Writes the header for a person to read.
  void Show(std::ostream& ostr = std::cout) const;

 protected:
  /// Derives cycle duration and offset from the measured second, unchecked.
  void ConvertTimeCorrectionParameters();
  void SetTimeCorrectionQuality(ETimeCorrectionQuality quality) { fTimeCorrectionQuality = quality; }

  /// Read a record of the class version in the name, from behind its frame; `Streamer` calls them.
  void StreamerV4(TBuffer& R__b);
  void StreamerV5(TBuffer& R__b);
  void StreamerV6(TBuffer& R__b);
  void StreamerV7(TBuffer& R__b);
  void StreamerV8(TBuffer& R__b);

 private:
  // Sets the time correction quality and clears the slots of a mirror that is taken out.
  friend class TStnEvent;
  // Carries the version read from file over to the header that it hands out.
  friend class TStnEventFile;

  static bool IsBitSet(UInt_t bits, UInt_t mirror_id) { return (bits >> ((mirror_id - 1) & 31) & 1) != 0; }

  void AdjustMirrorTimeOffset(UInt_t index);
  void GetBinTime(const char* prefix, const TFADCData* fadc, UInt_t bin, UInt_t* sec, UInt_t* nsec);

  void ReadRecord(TBuffer& R__b);
  void ReadByDescription(TBuffer& R__b, Version_t R__v, UInt_t R__s, UInt_t R__c);
  void ReadByHand(TBuffer& R__b, Version_t R__v, UInt_t R__s, UInt_t R__c);
  void ReadFields(TBuffer& R__b, Version_t version);
  void FillMissingFields(Version_t version);

  // A station numbered 5 or above has three mirrors only.
  UInt_t GetNMirrors() const { return fStnNumber < 5 ? 6 : 3; }
  void ShowIdentity(std::ostream& ostr) const;
  void ShowT3(std::ostream& ostr) const;
  void ShowTrigger(std::ostream& ostr) const;
  void ShowMirrors(std::ostream& ostr) const;
  void ShowMirror(std::ostream& ostr, UInt_t index) const;
  void ShowTimeCorrection(std::ostream& ostr) const;

  Version_t fStreamerVersion = 0;                    //! version read from file
  UInt_t fEventNumber = 0;                           // the internal number of the event
  UChar_t fStnNumber = 0;                            // official station number
  Int_t fEventClass = 0;                             // T3 class assigned to this event
  Int_t fEventType = 0;                              // type of event, assigned by the trigger
  UChar_t fMirrorDataBits = 0;                       // one bit for each mirror present in the event
  UChar_t fMirrorStatus = 0;                         // one bit for each mirror in the DAQ
  UInt_t fRunNo = 0;                                 // the number of this run
  UChar_t fTriggerSource[6] = {};                    // mirrors' actual trigger sources
  UInt_t fStatusBits = 0;                            // status bits, EHeaderStatusBits
  VdRoot::TTimeStamp fTimeStamp;                     // time and date of the event, corrected
  Short_t fSecStartOffset = 0;                       //! Shift of second start
  Short_t fSecEndOffset = 0;                         //! Shift of second end
  UInt_t fTicksPerSecond = kTicksPerSecond;          //! 80 MHz ticks per second
  UInt_t fPPSPhase = 0;                              //! Delay between PPS and SecondStrobe
  Int_t fTimeCorrectionQuality = kCorrectionNotSet;  // quality of the time correction
  Float_t fT10Mhz = 0;                               // average duration of a 10 MHz cycle
  Float_t fOffset = 0;                               // offset between second strobe and real second
  UInt_t fMirrorTimeOffset[6] = {};                  // adjusted offsets of the mirrors against fTimeStamp
  VdRoot::TTimeStamp fRawMirrorTime[6];              // uncorrected mirror times
  UInt_t fTriggerTimeStamp[6] = {};                  // the hardware's trigger time stamp, as it came
  // Old files hold these two as pairs of 32-bit words, low word first, and so do new ones for their sake: to the
  // dictionary, which makes the file's schema, they are such words; to the code the same storage is whole counters.
#ifdef __ROOTCLING__
  alignas(8) UInt_t fDeadTimeCounter[2][6] = {};  // per mirror dead time, in units of 100 ns
  alignas(8) UInt_t fVetoTimeCounter[2][1] = {};  // accumulated veto time of the station, in units of 100 ns
#else
  ULong64_t fDeadTimeCounter[6] = {};  // per mirror dead time, in units of 100 ns
  ULong64_t fVetoTimeCounter[1] = {};  // accumulated veto time of the station, in units of 100 ns
#endif
  ULong64_t fRunTimeCounter[6] = {};       // per mirror run time, in units of 100 ns
  ULong64_t fStnDaqDeadTime = 0;           // dead time of the station's DAQ, in units of 100 ns
  ULong64_t fMirrorDaqDeadTime[6] = {};    // per mirror DAQ dead time, in units of 100 ns
  UInt_t fMirrorNSkippedTriggers[6] = {};  // triggers skipped by each mirror
  Int_t fMirrorEventLabel[6] = {};         // label of each mirror's event
  UShort_t fT3Id = 0;                      // T3 id, assigned by the T3 process; 0 means no T3
  VdRoot::TTimeStamp fT3TimeAtGround;      // T3 time at ground
  UInt_t fNRejectedT3 = 0;                 // number of T3s rejected so far
  Float_t fTotalT3DeadTime = 0;            // total T3 dead time, in seconds

  ClassDefOverride(TStnEventHeader, 10)
};

#endif
