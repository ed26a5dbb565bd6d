#ifndef old_TriggerData1_h
#define old_TriggerData1_h

#include <TObject.h>

// A place without content.
class TStnTriggerData : public TObject {
 public:
  ClassDefOverride(TStnTriggerData, 1)
};

#endif
