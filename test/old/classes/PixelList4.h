#ifndef old_PixelList4_h
#define old_PixelList4_h

#include <TObject.h>

// New: the station, counted from 0, which these lists often had wrong.
class TStnPixelList : public TObject {
 public:
  UInt_t fStnNo = 0;               // Stn number (0..3)
  UInt_t fNPixels = 0;             // number of pixels in list
  UInt_t fPixelVectorSize = 0;     // size of the pixel bit vector
  UInt_t* fPixelVector = nullptr;  //[fPixelVectorSize]

  ClassDefOverride(TStnPixelList, 4)
};

#endif
