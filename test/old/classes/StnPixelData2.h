#ifndef old_StnPixelData2_h
#define old_StnPixelData2_h

#include "MirrorPixelData1.h"

#include <TObject.h>

// Trigger bits of a station, by mirror.
class TStnPixelData : public TObject {
 public:
  TMirrorPixelData* fPixelData[6] = {};  // Pointers to PixelData obj.

  ClassDefOverride(TStnPixelData, 2)
};

#endif
