#ifndef old_Event2_h
#define old_Event2_h

#include <TObject.h>

class TStnEventHeader;
class TStnFADCData;
class TStnPixelData;
class TStnPixelList;

// New: trigger bits of the mirrors' pixels.
class TStnEvent : public TObject {
 public:
  TStnEventHeader* fEventHeader = nullptr;  // station event header
  TStnFADCData* fFADCData = nullptr;        // container of FADC traces
  TStnPixelList* fPixelList = nullptr;      // (compressed) list of pixels
  TStnPixelData* fPixelData = nullptr;      // container of TMirrorPixelData

  ClassDefOverride(TStnEvent, 2)
};

#endif
