#include <StnEvent/StnPixelData.h>

#include <VdUtil/ErrorLogger.h>

using VdUtil::Vd;

ClassImp(TStnPixelData);

namespace {

bool IsMirror(UInt_t mirror_id) { return mirror_id - 1 < Vd::kSTN_NMIRRORS; }

}  // namespace

TStnPixelData::TStnPixelData() : fStreamerVersion(0), fPixelData() {}

TStnPixelData::TStnPixelData(const TStnPixelData& rhs) : TObject(rhs), fStreamerVersion(0), fPixelData() {
  *this = rhs;
}

TStnPixelData& TStnPixelData::operator=(const TStnPixelData& rhs) {
  if (this == &rhs) return *this;
  for (UInt_t i = 0; i < Vd::kSTN_NMIRRORS; ++i) {
    CopySlot(fPixelData[i], rhs.fPixelData[i]);
  }
  return *this;
}

/// An object that is already in the slot is reused.
void TStnPixelData::CopySlot(TMirrorPixelData*& slot, const TMirrorPixelData* source) {
  if (source && slot) {
    *slot = *source;
    return;
  }
  delete slot;
  slot = source ? new TMirrorPixelData(*source) : nullptr;
}

TStnPixelData::~TStnPixelData() { TStnPixelData::Clear(); }

bool TStnPixelData::AddPixelData(TMirrorPixelData* pixel_data, UInt_t mirror_id, bool is_owner) {
  if (!IsMirror(mirror_id)) {
    VD_ERROR << "TStnPixelData::AddPixelData() - "
             << "trying to add data for illegal mirror id !" << std::endl;
    return false;
  }
  TMirrorPixelData*& slot = fPixelData[mirror_id - 1];
  if (slot) {
    VD_WARNING << "TStnPixelData::AddPixelData() - "
               << "pixel data for Mirror Id " << mirror_id << " has been already added, ignored!" << std::endl;
    // The slot's own object, offered again, stays.
    if (is_owner && pixel_data != slot) delete pixel_data;
    return false;
  }
  if (!pixel_data && !is_owner) return false;
  slot = is_owner ? pixel_data : new TMirrorPixelData;
  if (!is_owner) *slot = *pixel_data;
  return true;
}

void TStnPixelData::Clear(Option_t*) {
  for (TMirrorPixelData*& slot : fPixelData) {
    delete slot;
    slot = nullptr;
  }
}

void TStnPixelData::Show(std::ostream& ostr) {
  ostr << "--- TStnPixelData ---" << std::endl;
  ostr << " Streamer version: " << fStreamerVersion << std::endl;
  ostr << " Class version   : " << Class_Version() << std::endl;
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    const TMirrorPixelData* data = fPixelData[mirror - 1];
    if (!data) continue;
    ostr << "\tFound pixel data for Mirror " << mirror
         << ", telescope id= " << Vd::GetVdMirrorNo(data->GetMirrorNumber()) << " (probably wrong!)" << std::endl;
    // To std::cout whatever `ostr` is: programs that catch one of the two streams rely on it.
    data->Show(std::cout, 100);
  }
}

int TStnPixelData::GetFirstTriggeredTimeBin(_VdPixelNumber* vdpixel, UInt_t first_bin, UInt_t last_bin) const {
  const UInt_t mirror_id = Vd::GetStnMirrorNo(vdpixel);
  if (!IsMirror(mirror_id)) return kNoTrigger;
  const TMirrorPixelData* data = fPixelData[mirror_id - 1];
  if (!data) return kNoTrigger;
  const _PixelNumber* pixel = Vd::GetPixelNumber(vdpixel);
  return data->GetFirstTriggeredTimeBin(Vd::GetColumnNo(pixel), Vd::GetRowNo(pixel), first_bin, last_bin);
}

UInt_t TStnPixelData::GetNumberOfTriggeredPixels(UInt_t start_slice, UInt_t end_slice) const {
  UInt_t n_pixels = 0;
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    n_pixels += GetNumberOfTriggeredPixels(mirror, start_slice, end_slice);
  }
  return n_pixels;
}

UInt_t TStnPixelData::GetNumberOfTriggeredPixels(UInt_t mirror_id, UInt_t start_slice, UInt_t end_slice) const {
  const TMirrorPixelData* data = GetPixelData(mirror_id);
  return data ? data->GetNumberOfTriggeredPixels(start_slice, end_slice) : 0;
}

TMirrorPixelData* TStnPixelData::GetPixelData(UInt_t mirror_id) const {
  if (IsMirror(mirror_id)) return fPixelData[mirror_id - 1];
  VD_ERROR << "TStnPixelData::GetPixelData(" << mirror_id << ") - "
           << "illegal Mirror id passed !" << std::endl;
  return nullptr;
}
