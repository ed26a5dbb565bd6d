#ifndef old_RunTrailer2_h
#define old_RunTrailer2_h

#include "TimeStamp1.h"

#include <TObject.h>

// The end of a run, before it told its length.
class TStnRunTrailer : public TObject {
 public:
  UChar_t fMirrorStatus = 0;               // bit for each mirror in DAQ: bit (id - 1) for mirror id
  UInt_t fNEvents = 0;                     // number of events in the file
  ULong64_t fVetoTimeCounter = 0;          // accumulated VETO time
  ULong64_t fDeadTimeCounter[6] = {};      // accumulated, individual DEAD time, in units of 100 ns
  UInt_t fLifeTimeCounter[6] = {};         // accumulated, individual life time [sec]
  ULong64_t fMirrorDaqDeadTime[6] = {};    // acc. DAQ dead times, in units of 100 ns
  UInt_t fMirrorNSkippedTriggers[6] = {};  // triggers skipped, per mirror
  ULong64_t fStnDaqDeadTime = 0;           // DAQ dead time of the station, in units of 100 ns
  UInt_t fNT3 = 0;                         // total number of T3, incl. rejected
  UInt_t fNRejectedT3 = 0;                 // number of T3 rejected by T3-CKAS VETO
  Float_t fTotalT3DeadTime = 0;            // acc. deadtime by T3-CKAS VETO, in seconds
  VdRoot::TTimeStamp fStartTime;           // timestamp when the RUN was started
  VdRoot::TTimeStamp fStopTime;            // timestamp when the RUN was stopped

  ClassDefOverride(TStnRunTrailer, 2)
};

#endif
