#include <MrEvent/MiFadcData.h>

#include <VdUtil/ErrorLogger.h>

#include <TBuffer.h>
#include <TClass.h>
#include <TObjArray.h>

#include <algorithm>

ClassImp(TMirrorFADCData);

using VdUtil::Vd;

namespace {
constexpr UInt_t kNPixels = Vd::kMI_NEXTPIXELS;
}

TMirrorFADCData::TMirrorFADCData() : fData(), fRecord(&fData) {}

TMirrorFADCData::TMirrorFADCData(const TMirrorFADCData& rhs) : TObject(rhs), fData(), fRecord(&fData) { *this = rhs; }

TMirrorFADCData& TMirrorFADCData::operator=(const TMirrorFADCData& rhs) {
  if (this == &rhs) return *this;
  Clear();
  for (UInt_t index = 0; index < kNPixels; ++index)
    if (rhs.fRecord->fTrace[index]) SetTrace(index, *rhs.fRecord->fTrace[index]);
  return *this;
}

TMirrorFADCData::~TMirrorFADCData() { Clear(); }

TMirrorFADCData::_FADCDataRec* TMirrorFADCData::_GetFADCData(UInt_t column, UInt_t row) const {
  if (column - 1 >= Vd::kMI_NCOLUMNS || row - 1 >= Vd::kMI_NROWS) return nullptr;
  return fRecord->fTrace[(column - 1) * Vd::kMI_NROWS + row - 1];
}

void TMirrorFADCData::SetPixelFADCData(_PixelNumber* pixel, const TFADCData* trace) {
  // A word of zero stands for no pixel, which has no trace: the pass one past the end of a list is no error.
  if (!pixel || (pixel->fPixelNumber & 0xFFFF) == 0) return;
  const UInt_t pixel_no = Vd::GetPixelNo(pixel);
  if (pixel_no < 1 || pixel_no > kNPixels) {
    VD_ERROR << "TMirrorFADCData::SetPixelFADCData() - illegal pixel " << pixel_no << " passed, ignored!" << std::endl;
    return;
  }
  if (!trace) {
    VD_ERROR << "TMirrorFADCData::SetPixelFADCData() - no trace passed for pixel " << pixel_no << ", ignored!"
             << std::endl;
    return;
  }
  SetTrace(pixel_no - 1, *trace->GetRecord());
}

void TMirrorFADCData::SetTrace(UInt_t index, const _FADCDataRec& trace) {
  _FADCDataRec*& place = fRecord->fTrace[index];
  if (place) {
    *place = trace;
    return;
  }
  place = new _FADCDataRec(trace);
  ++fRecord->fNumTraces;
}

void TMirrorFADCData::Clear(Option_t*) {
  for (_FADCDataRec* trace : fRecord->fTrace)
    delete trace;
  *fRecord = _MirrorFADCDataRec();
}

void TMirrorFADCData::Show(std::ostream& ostr) const {
  ostr << "--- TMirrorFADCData ---" << std::endl << " Number of traces : " << GetNumTraces() << std::endl;
  for (UInt_t index = 0; index < kNPixels; ++index) {
    if (!fRecord->fTrace[index]) continue;
    const TFADCData trace(fRecord->fTrace[index]);
    ostr << " Column " << index / Vd::kMI_NROWS + 1 << ", row " << index % Vd::kMI_NROWS + 1 << ": bins "
         << trace.GetStartBin() << " to " << trace.GetEndBin() << " of " << trace.GetNFADCBins() << std::endl;
  }
  ostr << "--------------------" << std::endl;
}

void TMirrorFADCData::Streamer(TBuffer& b) {
  if (b.IsReading()) {
    ReadRecord(b);
  } else {
    WriteRecord(b);
  }
}

void TMirrorFADCData::WriteRecord(TBuffer& b) {
  TObjArray traces(kNPixels);
  traces.SetOwner(true);
  for (UInt_t index = 0; index < kNPixels; ++index)
    if (fRecord->fTrace[index]) traces.AddAt(new TFADCData(fRecord->fTrace[index]), index);
  fTraces = &traces;
  b.WriteClassBuffer(Class(), this);
  fTraces = nullptr;
}

void TMirrorFADCData::ReadRecord(TBuffer& b) {
  b.ReadClassBuffer(Class(), this);
  // Every record has the array, also an empty one: without it nothing was read.
  if (!fTraces) return;
  Clear();
  fTraces->SetOwner(true);
  const Int_t n = std::min<Int_t>(fTraces->GetSize(), kNPixels);
  for (Int_t index = 0; index < n; ++index)
    if (const auto* trace = dynamic_cast<TFADCData*>(fTraces->At(index))) SetTrace(index, *trace->GetRecord());
  delete fTraces;
  fTraces = nullptr;
}
