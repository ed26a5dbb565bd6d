#ifndef old_T3Data2_h
#define old_T3Data2_h

#include <TObject.h>

// The result of the third-level trigger, before it told the total signal.
class TStnT3Data : public TObject {
 public:
  Int_t fNPixels = 0;            // count
  Float_t fSDPTheta = 0;         // radian
  Float_t fSDPPhi = 0;           // radian
  Float_t fAzimuthAtGround = 0;  // radian
  Int_t fTimeAtGround = 0;       // nanosecond

  ClassDefOverride(TStnT3Data, 2)
};

#endif
