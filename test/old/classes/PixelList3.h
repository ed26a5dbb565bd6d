#ifndef old_PixelList3_h
#define old_PixelList3_h

#include <TObject.h>

// From here on the description in the file tells a reader what is there.
class TStnPixelList : public TObject {
 public:
  UInt_t fNPixels = 0;             // number of pixels in list
  UInt_t fPixelVectorSize = 0;     // size of the pixel bit vector
  UInt_t* fPixelVector = nullptr;  //[fPixelVectorSize]

  ClassDefOverride(TStnPixelList, 3)
};

#endif
