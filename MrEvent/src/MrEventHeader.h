#ifndef MrEvent_MrEventHeader_h
#define MrEvent_MrEventHeader_h

#include <VdUtil/VdNumbering.h>

#include <Rtypes.h>
#include <TObject.h>

#include <iostream>
#include <string>

/// Header of one mirror's event: who recorded it, when, how it was triggered and labelled, and the mirror's counters.
/// Getters and setters are plain loads and stores without checks.
class TMirrorEventHeader : public TObject {
 public:
  /// Type of an event, given by the trigger. The underlying type is fixed, so that every stored byte is a value.
  enum EMrEventType : Int_t { kUnknownEvent = 0, kPhysicsEvent = 1, kCalibrationEvent = 2, kSimulatedEvent = 3 };

  /// Label of an event, given by the mirror's second level trigger.
  enum EMrEventLabel : Int_t {
    kUnlabelled = 0,
    kDefault = 0,
    kAcceptedEvent = 1,
    kMuonEvent = 2,
    kShowerCandidate = 3,
    kShowerEvent = 4,
    kRandomEvent = 5,
    kManyPixelEvent = 6,
    kRejected = 99
  };

  /// Where a trigger came from: single bits, which can occur together, and a mask over them.
  enum EMiTriggerSource : Int_t {
    kUnknownTrigger = 0,
    kIllegalTrigger = 0,
    kSoftwareTrigger = 1,
    kRightTrigger = 2,
    kLeftTrigger = 4,
    kInternalTrigger = 8,
    kExternalTrigger = 16,
    kTriggerMask = 31
  };

  /// Format version of a new header.
  static constexpr Version_t kCurrentVersion = 4;
  /// Last format version whose times need no correction by the station: the mirror's clock was corrected already.
  static constexpr Version_t kLastOldTimingVersion = 3;

  /// The data of the header, also its form on file. Counters and dead times are in units of 100 ns.
  struct _MirrorEventHeaderRec {
    Version_t fVersion;  // format version
#ifdef __ROOTCLING__
    UInt_t fMirrorNumber;  // station and mirror number
#else
    /// Station and mirror number.
    _MirrorNumber fMirrorNumber;
#endif
    EMrEventLabel fEventLabel;   // label of the event
    UInt_t fEventNo;             // event number
    UChar_t fEventType;          // type of the event
    UInt_t fTriggerNo;           // trigger number
    UInt_t fTriggerTimeStamp;    // hardware's trigger time stamp
    UInt_t fNextPageTime;        // next page time, GPS seconds
    UInt_t fNextPageNanoTime;    // next page time, nanoseconds
    UInt_t fNextPageDelay;       // delay between trigger and next page
    Float_t fT10Mhz;             // average duration of a 10 MHz cycle, ns
    Float_t fOffset;             // offset between second strobe and real second, ns
    UChar_t fTriggerSource;      // trigger source
    UInt_t fRunNo;               // run number
    UShort_t fT3Id;              // T3 identifier
    ULong64_t fDeadTimeCounter;  // dead time, 100 ns
    ULong64_t fRunTimeCounter;   // run time, 100 ns
    ULong64_t fVetoTimeCounter;  // veto time, 100 ns
    ULong64_t fDaqDeadTime;      // dead time of the DAQ, 100 ns
    UInt_t fNumSkippedTriggers;  // number of skipped triggers
  };

  /// All values 0, but for the format version, which is kCurrentVersion.
  TMirrorEventHeader();
  TMirrorEventHeader(const TMirrorEventHeader& rhs);
  /// Copies the record; the TObject part stays.
  TMirrorEventHeader& operator=(const TMirrorEventHeader& rhs);
  ~TMirrorEventHeader() override {}

  /// Format version.
  Version_t GetVersion() const { return fRecord->fVersion; }
  void SetVersion(Version_t version) { fRecord->fVersion = version; }

  /// The mirror of the installation, inside this object.
  _MirrorNumber* GetMirrorNumber() const {
    // The cast is for the dictionary's form of the record and none for the code's.
    return reinterpret_cast<_MirrorNumber*>(&fRecord->fMirrorNumber);
  }
  /// Station, 1 to 5.
  UInt_t GetStnNo() const { return VdUtil::Vd::GetStnNo(GetMirrorNumber()); }
  /// Sets the station; to be called before SetMirrorNo.
  void SetStnNo(UInt_t stn_no) { VdUtil::Vd::SetStnNo(GetMirrorNumber(), stn_no); }
  /// Mirror inside the station, 1 to 6.
  UInt_t GetMirrorNo() const { return VdUtil::Vd::GetMirrorNo(GetMirrorNumber()); }
  /// Sets the mirror inside the station; to be called after SetStnNo.
  void SetMirrorNo(UInt_t mirror_no) { VdUtil::Vd::SetMirrorNo(GetMirrorNumber(), mirror_no); }

  /// Label of the event.
  EMrEventLabel GetEventLabel() const { return fRecord->fEventLabel; }
  void SetEventLabel(EMrEventLabel label) { fRecord->fEventLabel = label; }

  /// Event number.
  UInt_t GetEventNo() const { return fRecord->fEventNo; }
  void SetEventNo(UInt_t event_no) { fRecord->fEventNo = event_no; }

  /// Type of the event; the low 8 bits are stored.
  EMrEventType GetEventType() const { return static_cast<EMrEventType>(fRecord->fEventType); }
  void SetEventType(EMrEventType type) { fRecord->fEventType = static_cast<UChar_t>(type); }

  /// Trigger number.
  UInt_t GetTriggerNo() const { return fRecord->fTriggerNo; }
  void SetTriggerNo(UInt_t trigger_no) { fRecord->fTriggerNo = trigger_no; }

  /// The hardware's trigger time stamp, as it came.
  UInt_t GetTriggerTimeStamp() const { return fRecord->fTriggerTimeStamp; }
  void SetTriggerTimeStamp(UInt_t timestamp) { fRecord->fTriggerTimeStamp = timestamp; }

  /// GPS second of the next page, the raw time of the mirror.
  UInt_t GetNextPageTime() const { return fRecord->fNextPageTime; }
  void SetNextPageTime(UInt_t gps_sec) { fRecord->fNextPageTime = gps_sec; }

  /// Nanoseconds in the second of the next page.
  UInt_t GetNextPageNanoTime() const { return fRecord->fNextPageNanoTime; }
  void SetNextPageNanoTime(UInt_t nsec) { fRecord->fNextPageNanoTime = nsec; }

  /// Delay between trigger and next page.
  UInt_t GetNextPageDelay() const { return fRecord->fNextPageDelay; }
  void SetNextPageDelay(UShort_t delay) { fRecord->fNextPageDelay = delay; }

  /// Where the trigger came from; the low 8 bits are stored.
  EMiTriggerSource GetTriggerSource() const { return static_cast<EMiTriggerSource>(fRecord->fTriggerSource); }
  void SetTriggerSource(EMiTriggerSource source) { fRecord->fTriggerSource = static_cast<UChar_t>(source); }

  /// Run number.
  UInt_t GetRunNo() const { return fRecord->fRunNo; }
  void SetRunNo(UInt_t run_no) { fRecord->fRunNo = run_no; }

  /// T3 identifier; 0 means no T3.
  UShort_t GetT3Id() const { return fRecord->fT3Id; }
  void SetT3Id(UShort_t t3_id) { fRecord->fT3Id = t3_id; }

  /// Accumulated dead time, in units of 100 ns.
  ULong64_t GetDeadTimeCounter() const { return fRecord->fDeadTimeCounter; }
  void SetDeadTimeCounter(ULong64_t counter) { fRecord->fDeadTimeCounter = counter; }

  /// Accumulated run time, in units of 100 ns.
  ULong64_t GetRunTimeCounter() const { return fRecord->fRunTimeCounter; }
  void SetRunTimeCounter(ULong64_t counter) { fRecord->fRunTimeCounter = counter; }

  /// Accumulated veto time, in units of 100 ns.
  ULong64_t GetVetoTimeCounter() const { return fRecord->fVetoTimeCounter; }
  void SetVetoTimeCounter(ULong64_t counter) { fRecord->fVetoTimeCounter = counter; }

  /// Dead time of the mirror's DAQ, in units of 100 ns.
  ULong64_t GetDaqDeadTime() const { return fRecord->fDaqDeadTime; }
  void SetDaqDeadTime(ULong64_t dead_time) { fRecord->fDaqDeadTime = dead_time; }

  /// Number of triggers that the mirror skipped.
  UInt_t GetNumSkippedTriggers() const { return fRecord->fNumSkippedTriggers; }
  void SetNumSkippedTriggers(UInt_t n) { fRecord->fNumSkippedTriggers = n; }

  /// True for format versions up to kLastOldTimingVersion.
  bool IsOldTimingFormat() const;

  /// Stores the duration of a 10 MHz cycle and the offset of the second, both in ns, unchecked.
  void SetTimeCorrectionParameters(Float_t t10, Float_t offset);
  /// Gives what SetTimeCorrectionParameters stored; a null pointer is left out.
  void GetTimeCorrectionParameters(Float_t* t10, Float_t* offset) const;

  /// Name of a label as its enumerator spells it without the leading k ("Unlabelled" for 0); "Unknown" for a value
  /// that is no label.
  static std::string GetVerboseEventLabel(EMrEventLabel label);

  /// Back to the values of a new header.
  void Clear(Option_t* option = "") override;
  /// Prints every value, one on a line.
  void Show(std::ostream& ostr = std::cout) const;

 private:
  _MirrorEventHeaderRec fData;     // data of the header
  _MirrorEventHeaderRec* fRecord;  //! the data, as the accessors reach them

  ClassDefOverride(TMirrorEventHeader, 1)
};

#endif
