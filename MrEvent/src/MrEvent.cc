#include <MrEvent/MrEvent.h>

ClassImp(TMirrorEvent);

namespace {

template <class Part>
Part* MakeOnDemand(Part*& part) {
  if (!part) part = new Part;
  return part;
}

template <class Part>
void CopyPart(Part*& target, const Part* source) {
  if (source) {
    *MakeOnDemand(target) = *source;
  } else if (target) {
    target->Clear();
  }
}

}  // namespace

TMirrorEvent::TMirrorEvent() {}

TMirrorEvent::TMirrorEvent(const TMirrorEvent& rhs) : TObject(rhs) { *this = rhs; }

TMirrorEvent& TMirrorEvent::operator=(const TMirrorEvent& rhs) {
  if (this == &rhs) return *this;
  CopyPart(fEventHeader, rhs.fEventHeader);
  CopyPart(fPixelData, rhs.fPixelData);
  CopyPart(fPixelList, rhs.fPixelList);
  CopyPart(fFADCData, rhs.fFADCData);
  return *this;
}

TMirrorEvent::~TMirrorEvent() {
  delete fEventHeader;
  delete fPixelData;
  delete fPixelList;
  delete fFADCData;
}

TMirrorEventHeader* TMirrorEvent::GetEventHeader() { return MakeOnDemand(fEventHeader); }

TMirrorPixelData* TMirrorEvent::GetPixelData() { return MakeOnDemand(fPixelData); }

TMirrorFADCData* TMirrorEvent::GetFADCData() { return MakeOnDemand(fFADCData); }

TMirrorPixelList* TMirrorEvent::GetPixelList() { return MakeOnDemand(fPixelList); }

bool TMirrorEvent::HasPixelData() const {
  return fPixelData && fPixelData->GetNumberOfTriggeredPixels(0, VdUtil::Vd::kMI_NSLT_BINS - 1) > 0;
}

bool TMirrorEvent::HasPixelList() const { return fPixelList && fPixelList->GetNumPixels() > 0; }

bool TMirrorEvent::HasFADCData() const { return fFADCData && fFADCData->GetNumTraces() > 0; }

void TMirrorEvent::Clear(Option_t*) { *this = TMirrorEvent(); }

void TMirrorEvent::Show(std::ostream& ostr) const {
  ostr << "--- TMirrorEvent ---" << std::endl;
  if (fEventHeader) fEventHeader->Show(ostr);
  if (fPixelData) fPixelData->Show(ostr);
  if (fPixelList) fPixelList->Show(ostr);
  if (fFADCData) fFADCData->Show(ostr);
  ostr << "--------------------" << std::endl;
}
