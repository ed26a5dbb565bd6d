#ifndef EventWithOwnParts_h
#define EventWithOwnParts_h

#include <StnEvent/StnEvent.h>

#include <algorithm>
#include <string>
#include <vector>

/// An event whose parts come from getters of its own. What is done to them was done through the getters; the parts that
/// an event holds by itself stay out of it.
class EventWithOwnParts : public TStnEvent {
 public:
  TStnEventHeader* GetEventHeader() override { return Asked("header"), &fOwnHeader; }
  TStnPixelData* GetPixelData() override { return Asked("pixel data"), &fOwnPixelData; }
  TStnPixelList* GetPixelList() override { return Asked("pixel list"), &fOwnPixelList; }
  TStnFADCData* GetFADCData() override { return Asked("traces"), &fOwnTraces; }
  TStnT3Data* GetT3Data() override { return Asked("T3"), &fOwnT3; }
  TStnGeometryData* GetGeometryData() override { return Asked("geometry"), &fOwnGeometry; }
  void SetTriggerData(TStnTriggerData*) override { Asked("trigger"); }

  TStnEventHeader fOwnHeader;
  TStnPixelData fOwnPixelData;
  TStnPixelList fOwnPixelList;
  TStnFADCData fOwnTraces;
  TStnT3Data fOwnT3;
  TStnGeometryData fOwnGeometry;
  std::vector<std::string> fAsked;  // in the order in which they were first asked for

 private:
  void Asked(const char* part) {
    if (std::find(fAsked.begin(), fAsked.end(), part) == fAsked.end()) fAsked.emplace_back(part);
  }
};

#endif
