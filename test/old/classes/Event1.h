#ifndef old_Event1_h
#define old_Event1_h

#include <TObject.h>

class TStnEventHeader;
class TStnFADCData;
class TStnPixelList;

// The first events: header, traces and pixel list.
class TStnEvent : public TObject {
 public:
  TStnEventHeader* fEventHeader = nullptr;  // station event header
  TStnFADCData* fFADCData = nullptr;        // container of FADC traces
  TStnPixelList* fPixelList = nullptr;      // (compressed) list of pixels

  ClassDefOverride(TStnEvent, 1)
};

#endif
