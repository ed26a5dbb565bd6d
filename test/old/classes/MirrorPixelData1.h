#ifndef old_MirrorPixelData1_h
#define old_MirrorPixelData1_h

#include <TObject.h>

// Trigger bits of a mirror's pixels as they stand on file.
class TMirrorPixelData : public TObject {
 public:
  UInt_t fUnused = 0;              // word without meaning
  UInt_t fMirrorNumber = 0;        // station and mirror number
  Int_t fNTriggered = 0;           // number of pixels with a trigger bit
  Int_t fNTriggerWords = 0;        // four words for each of these pixels
  UShort_t* fPixelNo = nullptr;    //[fNTriggered] number of each of these pixels in its mirror, from 1
  UInt_t* fTriggerWord = nullptr;  //[fNTriggerWords] slices, the first in the lowest bit of the first word

  ClassDefOverride(TMirrorPixelData, 1)
};

#endif
