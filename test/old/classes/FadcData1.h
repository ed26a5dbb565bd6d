#ifndef old_FadcData1_h
#define old_FadcData1_h

#include <TObject.h>

// A trace as it stands on file. The word of bin b is, modulo 65536, fBase + fLow[b - fFirstLow] + 256 * fHigh[b - fFirstHigh];
// a bin outside fHigh has no high byte, and a bin outside fLow is 0.
class TFADCData : public TObject {
 public:
  UInt_t fPixelWord = 0;        // pixel number
  UInt_t fTraceInfo = 0;        // start bin in bits 0 to 11, end bin in bits 12 to 23, resolution in bits 24 and 25
  UInt_t fPrevThreshold = 0;    // previous threshold
  UInt_t fActualThreshold = 0;  // actual threshold
  UInt_t fActualRate = 0;       // actual rate
  Double_t fMean = 0;           // mean
  Double_t fVariance = 0;       // variance
  Float_t fTraceStartTime = 0;  // start of the trace
  UShort_t fBase = 0;           // base value of the trace
  UShort_t fFirstLow = 0;       // bin of the first low byte
  UShort_t fFirstHigh = 0;      // bin of the first high byte
  Int_t fNLow = 0;              // number of low bytes
  Int_t fNHigh = 0;             // number of high bytes
  UChar_t* fLow = nullptr;      //[fNLow] low bytes of the words' differences to the base
  UChar_t* fHigh = nullptr;     //[fNHigh] their high bytes, from the first to the last that is not 0

  ClassDefOverride(TFADCData, 1)
};

#endif
