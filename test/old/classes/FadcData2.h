#ifndef old_FadcData2_h
#define old_FadcData2_h

#include <TObject.h>

// A trace as it stands on file; docs/format.md tells how it is packed.
class TFADCData : public TObject {
 public:
  UInt_t fTraceInfo = 0;         // start bin in bits 0 to 11, end bin in bits 12 to 23, resolution in bits 24 and 25
  Double_t fVariance = 0;        // variance
  Float_t fTraceStartTime = 0;   // start of the trace
  UShort_t fFirst = 0;           // bin of the first word
  UShort_t fNWords = 0;          // number of words
  Int_t fNNear = 0;              // number of bytes with near words
  UShort_t fFirstWideHigh = 0;   // first wide word with a high byte
  Int_t fNWideHigh = 0;          // number of high bytes of wide words
  Int_t fNWide = 0;              // number of wide words
  Int_t fNFar = 0;               // number of bytes with far words
  UInt_t fPixelWord = 0;         // pixel number
  UInt_t fPrevThreshold = 0;     // previous threshold
  UInt_t fActualThreshold = 0;   // actual threshold
  UInt_t fActualRate = 0;        // actual rate
  Double_t fMean = 0;            // mean
  UShort_t fBase = 0;            // base value of the trace
  UChar_t* fWideHigh = nullptr;  //[fNWideHigh] high bytes of the wide words, from the first to the last that is not 0
  UChar_t* fWideLow = nullptr;   //[fNWide] their low bytes
  UChar_t* fFar = nullptr;       //[fNFar] two far words in a byte, the first in the low bits
  UChar_t* fNear = nullptr;      //[fNNear] two near words in a byte, the first in the low bits

  ClassDefOverride(TFADCData, 2)
};

#endif
