#ifndef old_EventHeader7_h
#define old_EventHeader7_h

#include "TimeStamp1.h"

#include <TObject.h>

// New: status bits, DAQ dead times, skipped triggers, rejected T3s and their dead time.
class TStnEventHeader : public TObject {
 public:
  UInt_t fEventNumber;                   // the internal number of the event
  UChar_t fStnNumber;                    // official station number
  Int_t fEventClass;                     // T3 class assigned to this event
  Int_t fEventType;                      // type of event, assigned by the trigger
  UChar_t fMirrorDataBits;               // one bit for each mirror present in the event
  UChar_t fMirrorStatus;                 // one bit for each mirror in the DAQ
  UInt_t fRunNo;                         // the number of this run
  UChar_t fTriggerSource[6];             // mirrors' actual trigger sources
  UInt_t fStatusBits;                    // status bits, EHeaderStatusBits
  VdRoot::TTimeStamp fTimeStamp;         // time and date of the event, corrected
  Int_t fTimeCorrectionQuality;          // quality of the time correction
  Float_t fT10Mhz;                       // average duration of a 10 MHz cycle
  Float_t fOffset;                       // offset between second strobe and real second
  UInt_t fMirrorTimeOffset[6];           // adjusted offsets of the mirrors against fTimeStamp
  VdRoot::TTimeStamp fRawMirrorTime[6];  // uncorrected mirror times
  UInt_t fTriggerTimeStamp[6];           // the hardware's trigger time stamp, as it came
  UInt_t fDeadTimeCounter[2][6];         // per mirror dead time, in units of 100 ns
  UInt_t fVetoTimeCounter[2][1];         // accumulated veto time of the station, in units of 100 ns
  ULong64_t fStnDaqDeadTime;             // dead time of the station's DAQ, in units of 100 ns
  ULong64_t fMirrorDaqDeadTime[6];       // per mirror DAQ dead time, in units of 100 ns
  UInt_t fMirrorNSkippedTriggers[6];     // triggers skipped by each mirror
  UShort_t fT3Id;                        // T3 id, assigned by the T3 process; 0 means no T3
  VdRoot::TTimeStamp fT3TimeAtGround;    // T3 time at ground
  UInt_t fNRejectedT3;                   // number of T3s rejected so far
  Float_t fTotalT3DeadTime;              // total T3 dead time, in seconds

  ClassDefOverride(TStnEventHeader, 7)
};

#endif
