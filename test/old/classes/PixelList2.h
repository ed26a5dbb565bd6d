#ifndef old_PixelList2_h
#define old_PixelList2_h

#include <TBuffer.h>
#include <TObject.h>

// The bits stand on file without the byte that ROOT puts before a counted array.
class TStnPixelList : public TObject {
 public:
  UInt_t fNPixels = 0;             // number of pixels in list
  UInt_t fPixelVectorSize = 0;     // size of the pixel bit vector
  UInt_t* fPixelVector = nullptr;  //[fPixelVectorSize]

  ClassDefOverride(TStnPixelList, 2)
};

inline void TStnPixelList::Streamer(TBuffer& b) {
  const UInt_t start = b.WriteVersion(IsA(), kTRUE);
  TObject::Streamer(b);
  b << fNPixels;
  b << fPixelVectorSize;
  b.WriteFastArray(fPixelVector, fPixelVectorSize);
  b.SetByteCount(start, kTRUE);
}

#endif
