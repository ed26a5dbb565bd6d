#ifndef old_T3Data3_h
#define old_T3Data3_h

#include <TObject.h>

// New: the total signal.
class TStnT3Data : public TObject {
 public:
  Int_t fNPixels = 0;            // count
  Float_t fSDPTheta = 0;         // radian
  Float_t fSDPPhi = 0;           // radian
  Float_t fAzimuthAtGround = 0;  // radian
  Int_t fTimeAtGround = 0;       // nanosecond
  Float_t fTotalSignal = 0;

  ClassDefOverride(TStnT3Data, 3)
};

#endif
