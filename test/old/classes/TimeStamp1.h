#ifndef old_TimeStamp1_h
#define old_TimeStamp1_h

#include <Rtypes.h>

namespace VdRoot {

class TTimeStamp {
 public:
  virtual ~TTimeStamp() {}

  Int_t fSec = 0;      // seconds since the Unix epoch (not GPS seconds)
  Int_t fNanoSec = 0;  // nanoseconds within that second, 0 to 999,999,999 after Normalize

  ClassDef(TTimeStamp, 1)
};

}  // namespace VdRoot

#endif
