#ifndef MrEvent_MrEvent_h
#define MrEvent_MrEvent_h

#include <MrEvent/MiFadcData.h>
#include <MrEvent/MiPixelData.h>
#include <MrEvent/MiPixelList.h>
#include <MrEvent/MrEventHeader.h>

#include <Rtypes.h>
#include <TObject.h>

#include <iostream>

/// The data of one mirror for one trigger. The four parts come into being when they are first asked for, belong to the
/// event and keep their addresses as long as it lives, also through Clear and assignment.
class TMirrorEvent : public TObject {
 public:
  /// An event without parts.
  TMirrorEvent();
  TMirrorEvent(const TMirrorEvent& rhs);
  /// Deep copy of all parts; what the source lacks is emptied here. The TObject part stays.
  TMirrorEvent& operator=(const TMirrorEvent& rhs);
  ~TMirrorEvent() override;

  // The order of the virtual operations is fixed: callers are compiled against these slots.
  /// Header of the event, never null.
  virtual TMirrorEventHeader* GetEventHeader();
  /// Trigger bits of the pixels, never null.
  virtual TMirrorPixelData* GetPixelData();
  /// True when there are trigger bits, pixels or traces; none of the three makes the part.
  virtual bool HasPixelData() const;
  virtual bool HasPixelList() const;
  virtual bool HasFADCData() const;
  /// Prints the parts that are there.
  virtual void Show(std::ostream& ostr = std::cout) const;
  /// Traces of the pixels, never null.
  virtual TMirrorFADCData* GetFADCData();
  /// Pixels that took part, never null.
  virtual TMirrorPixelList* GetPixelList();

  /// Empties the parts that are there.
  void Clear(Option_t* option = "") override;

 private:
  TMirrorEventHeader* fEventHeader = nullptr;  // header of the event
  TMirrorPixelData* fPixelData = nullptr;      // trigger bits of the pixels
  TMirrorPixelList* fPixelList = nullptr;      // pixels that took part
  TMirrorFADCData* fFADCData = nullptr;        // traces of the pixels

  ClassDefOverride(TMirrorEvent, 1)
};

#endif
