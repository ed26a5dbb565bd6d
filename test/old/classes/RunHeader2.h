#ifndef old_RunHeader2_h
#define old_RunHeader2_h

#include "TimeStamp1.h"

#include <TObject.h>
#include <TString.h>

// The start of a run.
class TStnRunHeader : public TObject {
 public:
  UChar_t fStnNumber = 0;         // Stn number (1..4)
  UChar_t fMirrorStatus = 0;      // bit for each mirror in DAQ: bit (id - 1) for mirror id
  UInt_t fRunNo = 0;              // run number of current RUN
  VdRoot::TTimeStamp fStartTime;  // time when the RUN was started
  TString fUserName;              // name of the user who did DAQ
  TString fComment;               // RUN specific comment string
  UInt_t fEvbVersion = 0;         // version of the event builder
  UInt_t fStnEventVersion = 0;    // version of this library's data format
  UInt_t fMrEventVersion = 0;     // version of the MrEvent data fmt.
  UInt_t fReadoutVersion = 0;     // version of the readout program

  ClassDefOverride(TStnRunHeader, 2)
};

#endif
