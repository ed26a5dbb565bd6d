#ifndef old_EventHeader5_h
#define old_EventHeader5_h

#include "TimeStamp1.h"

#include <TObject.h>

// The arrays of numbers lost their counts.
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
  VdRoot::TTimeStamp fTimeStamp;         // time and date of the event, corrected
  Float_t fT10Mhz;                       // average duration of a 10 MHz cycle
  Float_t fOffset;                       // offset between second strobe and real second
  UInt_t fMirrorTimeOffset[6];           // adjusted offsets of the mirrors against fTimeStamp
  VdRoot::TTimeStamp fRawMirrorTime[6];  // uncorrected mirror times
  UInt_t fDeadTimeCounter[2][6];         // per mirror dead time, in units of 100 ns
  UInt_t fVetoTimeCounter[2][1];         // accumulated veto time of the station, in units of 100 ns
  UShort_t fT3Id;                        // T3 id, assigned by the T3 process; 0 means no T3
  VdRoot::TTimeStamp fT3TimeAtGround;    // T3 time at ground
#ifdef OLD_EVENT_HEADER_TAIL
  OLD_EVENT_HEADER_TAIL
#endif

  ClassDefOverride(TStnEventHeader, 5)
};

#endif
