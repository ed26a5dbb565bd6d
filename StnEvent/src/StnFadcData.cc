#include <StnEvent/StnFadcData.h>

#include <VdUtil/ErrorLogger.h>

#include <memory>

#include <VdUtil/Assertions.h>

using VdUtil::Vd;

ClassImp(TStnFADCData);

namespace {

const Int_t kNPixels = Vd::kSTN_NEXTPIXELS;

}  // namespace

TStnFADCData::TStnFADCData(Int_t num_fadc) : fStreamerVersion(0), fNTraces(0), fFADCData(new TObjArray(num_fadc, 1)) {}

TStnFADCData::TStnFADCData(const TStnFADCData& rhs)
    : TObject(rhs), fStreamerVersion(0), fNTraces(0), fFADCData(new TObjArray(rhs.GetCapacity(), 1)) {
  *this = rhs;
}

TStnFADCData& TStnFADCData::operator=(const TStnFADCData& rhs) {
  if (this == &rhs) return *this;
  fNTraces = rhs.fNTraces;
  TStnFADCData::Clear();
  Reserve(rhs.GetCapacity());
  for (Int_t i = 1; i <= rhs.GetCapacity(); ++i) {
    if (const TFADCData* trace = rhs.GetTrace(i)) fFADCData->AddAt(new TFADCData(*trace), i);
  }
  return *this;
}

TStnFADCData::~TStnFADCData() {
  TStnFADCData::Clear();
  delete fFADCData;
}

/// The array; an empty one where a damaged record left none.
const TObjArray& TStnFADCData::GetArray() const {
  static const TObjArray none(0, 1);
  return fFADCData ? *fFADCData : none;
}

/// Makes room for `capacity` traces: an array that was read has no more slots than its last trace needs.
void TStnFADCData::Reserve(Int_t capacity) {
  if (!fFADCData) fFADCData = new TObjArray(capacity, 1);
  if (fFADCData->GetSize() < capacity) fFADCData->Expand(capacity);
}

/// The trace in a slot, null if the slot is empty or the array ends before it.
TFADCData* TStnFADCData::GetTrace(UInt_t stn_pixel) const {
  const Int_t slot = stn_pixel;
  if (slot < 1 || slot > GetCapacity()) return nullptr;
  return static_cast<TFADCData*>(GetArray().At(slot));
}

void TStnFADCData::AddFADCData(TFADCData* fadc, bool is_owner) {
  if (!fadc) return;
  const _PixelNumber* pixel = fadc->GetPixelNumber();
  const UInt_t pixel_no = Vd::GetPixelNo(pixel);
  const UInt_t stn_pixel = Vd::GetStnPixelNo(pixel);
  // A trace of no mirror has no station pixel, and so no slot.
  if (pixel_no == 0 || pixel_no > Vd::kMI_NEXTPIXELS || stn_pixel == 0) {
    VD_ERROR << "TStnFADCData::AddFADCData() - "
             << "tried to add illegal FADC trace of pixel " << pixel_no << std::endl;
    return;
  }
  if (GetTrace(stn_pixel)) {
    VD_WARNING << "TStnFADCData::AddFADCData() - tried to add trace for pixel " << stn_pixel << " again !" << std::endl;
    return;
  }
  Reserve(kNPixels);
  fFADCData->AddAt(is_owner ? fadc : new TFADCData(*fadc), stn_pixel);
  ++fNTraces;
}

const TFADCData* TStnFADCData::GetFADCData(_VdPixelNumber* pixel) const {
  assert(pixel != __null);
  return GetTrace(Vd::GetStnPixelNo(pixel));
}

const TFADCData* TStnFADCData::GetFADCData(_PixelNumber* pixel) const {
  assert(pixel != __null);
  return GetTrace(Vd::GetStnPixelNo(pixel));
}

void TStnFADCData::RemoveFADCData(const TFADCData* fadc) {
  if (!fadc) return;
  for (Int_t i = 1; i <= GetCapacity(); ++i) {
    TFADCData* entry = GetTrace(i);
    if (!entry) continue;
    if (entry == fadc) {
      fFADCData->RemoveAt(i);
      --fNTraces;
    }
    // A stored trace stands on its own record too, so it is counted down twice. The counts in files are made that way,
    // and what reads them allows for it.
    if (entry->GetPixelNumber() == fadc->GetPixelNumber()) {
      fFADCData->Remove(entry);
      --fNTraces;
    }
  }
}

/// The array is the owner of the traces only here, so that a trace that is removed from it is never deleted.
void TStnFADCData::Clear(Option_t*) {
  if (!fFADCData) return;
  fFADCData->SetOwner(true);
  fFADCData->Clear("");
  fFADCData->SetOwner(false);
}

void TStnFADCData::Show(std::ostream& ostr) const {
  ostr << "--- TStnFADCData ---" << std::endl;
  ostr << " Number of traces : " << fNTraces << std::endl;
  ostr << " Streamer version : " << fStreamerVersion << std::endl;
  ostr << " Class version    : " << Class_Version() << std::endl;
  const std::unique_ptr<TIterator> iterator(GetIterator(true));
  if (const auto* trace = static_cast<const TFADCData*>(iterator->Next())) {
    // To std::cout whatever `ostr` is: programs that catch one of the two streams rely on it.
    std::cout << " GetTraceLength() : " << trace->GetTraceLength() << std::endl;
    std::cout << " GetNFADCBins()   : " << trace->GetNFADCBins() << std::endl;
  }
  ostr << "--------------------" << std::endl;
}
