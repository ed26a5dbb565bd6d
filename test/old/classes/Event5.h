#ifndef old_Event5_h
#define old_Event5_h

#include <TObject.h>

class TStnEventHeader;
class TStnFADCData;
class TStnGeometryData;
class TStnPixelData;
class TStnPixelList;
class TStnT3Data;
class TStnTriggerData;

// New: axes of the telescopes.
class TStnEvent : public TObject {
 public:
  TStnEventHeader* fEventHeader = nullptr;    // station event header
  TStnFADCData* fFADCData = nullptr;          // container of FADC traces
  TStnPixelList* fPixelList = nullptr;        // (compressed) list of pixels
  TStnPixelData* fPixelData = nullptr;        // container of TMirrorPixelData
  TStnTriggerData* fTriggerData = nullptr;    // trigger info (unused)
  TStnT3Data* fT3Data = nullptr;              // T3 info (used)
  TStnGeometryData* fGeometryData = nullptr;  // geometry information

  ClassDefOverride(TStnEvent, 5)
};

#endif
