#ifndef old_Event3_h
#define old_Event3_h

#include <TObject.h>

class TStnEventHeader;
class TStnFADCData;
class TStnPixelData;
class TStnPixelList;
class TStnTriggerData;

// New: a place for trigger information.
class TStnEvent : public TObject {
 public:
  TStnEventHeader* fEventHeader = nullptr;  // station event header
  TStnFADCData* fFADCData = nullptr;        // container of FADC traces
  TStnPixelList* fPixelList = nullptr;      // (compressed) list of pixels
  TStnPixelData* fPixelData = nullptr;      // container of TMirrorPixelData
  TStnTriggerData* fTriggerData = nullptr;  // trigger info (unused)

  ClassDefOverride(TStnEvent, 3)
};

#endif
