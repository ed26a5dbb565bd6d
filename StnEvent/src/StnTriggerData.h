#ifndef StnEvent_StnTriggerData_h
#define StnEvent_StnTriggerData_h

#include <TObject.h>

#include <iostream>

/// A place for trigger information in events and files. It holds nothing yet.
class TStnTriggerData : public TObject {
 public:
  /// An empty record, whatever it is made from.
  TStnTriggerData();
  TStnTriggerData(const TStnTriggerData& rhs);
  /// Copies nothing.
  TStnTriggerData& operator=(const TStnTriggerData& rhs);
  ~TStnTriggerData() override;

  /// Prints nothing, but logs a warning.
  void Show(std::ostream& ostr = std::cout) const;

  ClassDefOverride(TStnTriggerData, 1)  // trigger information (unused)
};

#endif
