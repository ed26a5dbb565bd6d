#ifndef old_Event4_h
#define old_Event4_h

#include <TObject.h>

class TStnEventHeader;
class TStnFADCData;
class TStnPixelData;
class TStnPixelList;
class TStnT3Data;
class TStnTriggerData;

// New: result of the third-level trigger.
class TStnEvent : public TObject {
 public:
  TStnEventHeader* fEventHeader = nullptr;  // station event header
  TStnFADCData* fFADCData = nullptr;        // container of FADC traces
  TStnPixelList* fPixelList = nullptr;      // (compressed) list of pixels
  TStnPixelData* fPixelData = nullptr;      // container of TMirrorPixelData
  TStnTriggerData* fTriggerData = nullptr;  // trigger info (unused)
  TStnT3Data* fT3Data = nullptr;            // T3 info (used)

  ClassDefOverride(TStnEvent, 4)
};

#endif
