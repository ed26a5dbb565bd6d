#ifndef MrEvent_MrRunTrailer_h
#define MrEvent_MrRunTrailer_h

#include <VdUtil/VdNumbering.h>

#include <Rtypes.h>
#include <TObject.h>

#include <iostream>

/// End-of-run record of one mirror. Getters and setters are plain loads and stores without checks.
class TMirrorRunTrailer : public TObject {
 public:
  /// The data of the trailer, also its form on file.
  struct _MirrorRunTrailerRec {
#ifdef __ROOTCLING__
    UInt_t fMirrorNumber;  // station and mirror number
#else
    /// Station and mirror number.
    _MirrorNumber fMirrorNumber;
#endif
    UInt_t fRunNo;               // run number
    UInt_t fNumEvents;           // number of events of the mirror
    ULong64_t fDeadTimeCounter;  // dead time of the run, 100 ns
    ULong64_t fVetoTimeCounter;  // veto time of the run, 100 ns
    ULong64_t fDaqDeadTime;      // dead time of the DAQ in the run, 100 ns
  };

  /// All values 0.
  TMirrorRunTrailer();
  TMirrorRunTrailer(const TMirrorRunTrailer& rhs);
  /// Copies the record; the TObject part stays.
  TMirrorRunTrailer& operator=(const TMirrorRunTrailer& rhs);
  ~TMirrorRunTrailer() override {}

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

  /// Run number.
  UInt_t GetRunNo() const { return fRecord->fRunNo; }
  void SetRunNo(UInt_t run_no) { fRecord->fRunNo = run_no; }

  /// Number of events that the mirror recorded.
  UInt_t GetNumEvents() const { return fRecord->fNumEvents; }
  void SetNumEvents(UInt_t n) { fRecord->fNumEvents = n; }

  /// Dead time of the run, in units of 100 ns.
  ULong64_t GetDeadTimeCounter() const { return fRecord->fDeadTimeCounter; }
  void SetDeadTimeCounter(ULong64_t counter) { fRecord->fDeadTimeCounter = counter; }

  /// Veto time of the run, in units of 100 ns.
  ULong64_t GetVetoTimeCounter() const { return fRecord->fVetoTimeCounter; }
  void SetVetoTimeCounter(ULong64_t counter) { fRecord->fVetoTimeCounter = counter; }

  /// Dead time of the mirror's DAQ in the run, in units of 100 ns.
  ULong64_t GetDaqDeadTime() const { return fRecord->fDaqDeadTime; }
  void SetDaqDeadTime(ULong64_t dead_time) { fRecord->fDaqDeadTime = dead_time; }

  /// All values 0 again.
  void Clear(Option_t* option = "") override;
  /// Prints every value, one on a line.
  void Show(std::ostream& ostr = std::cout) const;

 private:
  _MirrorRunTrailerRec fData;     // data of the trailer
  _MirrorRunTrailerRec* fRecord;  //! the data, as the accessors reach them

  ClassDefOverride(TMirrorRunTrailer, 1)
};

#endif
