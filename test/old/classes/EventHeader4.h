#ifndef old_EventHeader4_h
#define old_EventHeader4_h

#include "TimeStamp1.h"

#include <TBuffer.h>
#include <TObject.h>

// The arrays of numbers were stored with their count in front.
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

  ClassDefOverride(TStnEventHeader, 4)
};

inline void TStnEventHeader::Streamer(TBuffer& b) {
  const UInt_t start = b.WriteVersion(IsA(), kTRUE);
  TObject::Streamer(b);
  b << fEventNumber;
  b << fStnNumber;
  b << fEventClass;
  b << fEventType;
  b << fMirrorDataBits;
  b << fMirrorStatus;
  b << fRunNo;
  b.WriteArray(fTriggerSource, 6);
  fTimeStamp.Streamer(b);
  b << fT10Mhz;
  b << fOffset;
  b.WriteArray(fMirrorTimeOffset, 6);
  for (auto& time : fRawMirrorTime)
    time.Streamer(b);
  b.WriteArray(fDeadTimeCounter[0], sizeof(fDeadTimeCounter) / sizeof(UInt_t));
  b.WriteArray(fVetoTimeCounter[0], sizeof(fVetoTimeCounter) / sizeof(UInt_t));
  b << fT3Id;
  fT3TimeAtGround.Streamer(b);
  b.SetByteCount(start, kTRUE);
}

#endif
