#ifndef old_StnFadcData1_h
#define old_StnFadcData1_h

#include <TObjArray.h>
#include <TObject.h>

// Traces of a station, by station pixel.
class TStnFADCData : public TObject {
 public:
  UInt_t fNTraces = 0;             // Number of FADC traces stored
  TObjArray* fFADCData = nullptr;  // Container to store the FADC traces

  ClassDefOverride(TStnFADCData, 1)
};

#endif
