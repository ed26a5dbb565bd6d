#include <MrEvent/MiPixelData.h>

#include <MrEvent/MrRecordReader.h>
#include <VdUtil/ErrorLogger.h>

#include <TBuffer.h>
#include <TClass.h>

#include <algorithm>

ClassImp(TMirrorPixelData);

using VdUtil::Vd;

namespace {

constexpr UInt_t kNPixels = Vd::kMI_NEXTPIXELS;
constexpr UInt_t kNWords = TMirrorPixelData::kNWords;
constexpr UInt_t kLastSlice = Vd::kMI_NSLT_BINS - 1;

/// Index of a pixel in the record; false when the camera has no such pixel.
bool GetIndex(UInt_t column, UInt_t row, UInt_t* index) {
  if (column - 1 >= Vd::kMI_NCOLUMNS || row - 1 >= Vd::kMI_NROWS) return false;
  *index = (column - 1) * Vd::kMI_NROWS + row - 1;
  return true;
}

/// The bits of the slices from start to end, both included.
struct SliceMask {
  SliceMask(UInt_t start, UInt_t end) {
    end = std::min(end, kLastSlice);
    for (UInt_t w = 0; w < kNWords; ++w)
      fWord[w] = start > end ? 0 : UpTo(end, w) & ~Below(start, w);
  }
  /// Bits of word w that belong to slices below `slice`.
  static UInt_t Below(UInt_t slice, UInt_t w) {
    if (slice <= 32 * w) return 0;
    return slice >= 32 * (w + 1) ? ~0U : (1U << (slice - 32 * w)) - 1;
  }
  static UInt_t UpTo(UInt_t slice, UInt_t w) { return Below(slice + 1, w); }

  UInt_t fWord[kNWords];
};

bool IsAnySet(const UInt_t* trigger, const SliceMask& mask) {
  UInt_t set = 0;
  for (UInt_t w = 0; w < kNWords; ++w)
    set |= trigger[w] & mask.fWord[w];
  return set != 0;
}

bool IsAnySet(const UInt_t* trigger) {
  return std::any_of(trigger, trigger + kNWords, [](UInt_t word) { return word != 0; });
}

}  // namespace

TMirrorPixelData::TMirrorPixelData() : fRecord(new _MirrorPixelDataRec()) {}

TMirrorPixelData::TMirrorPixelData(const TMirrorPixelData& rhs)
    : TObject(rhs), fRecord(new _MirrorPixelDataRec(*rhs.fRecord)) {}

TMirrorPixelData& TMirrorPixelData::operator=(const TMirrorPixelData& rhs) {
  if (this != &rhs) *fRecord = *rhs.fRecord;
  return *this;
}

TMirrorPixelData::~TMirrorPixelData() { delete fRecord; }

void TMirrorPixelData::SetTriggered(UInt_t column, UInt_t row, UInt_t slice, bool on) {
  UInt_t index = 0;
  if (!GetIndex(column, row, &index) || slice > kLastSlice) {
    VD_ERROR << "TMirrorPixelData::SetTriggered() - illegal column " << column << ", row " << row << " or slice "
             << slice << " passed, ignored!" << std::endl;
    return;
  }
  UInt_t& word = fRecord->fTrigger[index][slice / 32];
  const UInt_t bit = 1U << slice % 32;
  word = on ? word | bit : word & ~bit;
}

int TMirrorPixelData::GetFirstTriggeredTimeBin(UInt_t column, UInt_t row, UInt_t start_slice, UInt_t end_slice) const {
  UInt_t index = 0;
  if (!GetIndex(column, row, &index)) return kNoTrigger;
  const SliceMask mask(start_slice, end_slice);
  for (UInt_t w = 0; w < kNWords; ++w) {
    const UInt_t set = fRecord->fTrigger[index][w] & mask.fWord[w];
    if (set != 0) return 32 * w + __builtin_ctz(set);
  }
  return kNoTrigger;
}

UInt_t TMirrorPixelData::GetNumberOfTriggeredPixels(UInt_t start_slice, UInt_t end_slice) const {
  const SliceMask mask(start_slice, end_slice);
  return std::count_if(fRecord->fTrigger, fRecord->fTrigger + kNPixels,
                       [&mask](const UInt_t* trigger) { return IsAnySet(trigger, mask); });
}

void TMirrorPixelData::Clear(Option_t*) { *fRecord = _MirrorPixelDataRec(); }

void TMirrorPixelData::Show(std::ostream& ostr, UInt_t n) const {
  const UInt_t n_slices = std::min(n, UInt_t(Vd::kMI_NSLT_BINS));
  ostr << "--- TMirrorPixelData ---" << std::endl
       << " Station, mirror  : " << GetStnNo() << ", " << (Vd::GetVdMirrorNo(GetMirrorNumber()) ? GetMirrorNo() : 0)
       << std::endl
       << " Triggered pixels : " << GetNumberOfTriggeredPixels(0, kLastSlice) << std::endl;
  if (n_slices > 0) ShowPixels(ostr, n_slices);
  ostr << "--------------------" << std::endl;
}

void TMirrorPixelData::ShowPixels(std::ostream& ostr, UInt_t n_slices) const {
  const SliceMask mask(0, n_slices - 1);
  for (UInt_t index = 0; index < kNPixels; ++index) {
    const UInt_t* trigger = fRecord->fTrigger[index];
    if (!IsAnySet(trigger, mask)) continue;
    ostr << " Column " << index / Vd::kMI_NROWS + 1 << ", row " << index % Vd::kMI_NROWS + 1 << ": ";
    for (UInt_t slice = 0; slice < n_slices; ++slice)
      ostr << ((trigger[slice / 32] >> slice % 32 & 1) != 0 ? '1' : '.');
    ostr << std::endl;
  }
}

void TMirrorPixelData::Streamer(TBuffer& b) {
  if (b.IsReading()) {
    ReadRecord(b);
  } else {
    WriteRecord(b);
  }
}

void TMirrorPixelData::WriteRecord(TBuffer& b) {
  UShort_t pixel_no[kNPixels];
  UInt_t words[kNPixels][kNWords];

  fUnused = fRecord->fUnused;
  fMirrorNumber = UShort_t(fRecord->fMirrorNumber.fMirrorNumber);
  fNTriggered = 0;
  for (UInt_t index = 0; index < kNPixels; ++index) {
    const UInt_t* trigger = fRecord->fTrigger[index];
    if (!IsAnySet(trigger)) continue;
    std::copy(trigger, trigger + kNWords, words[fNTriggered]);
    pixel_no[fNTriggered++] = index + 1;
  }
  fNTriggerWords = fNTriggered * kNWords;
  fPixelNo = pixel_no;
  fTriggerWord = words[0];
  b.WriteClassBuffer(Class(), this);
  fPixelNo = nullptr;
  fTriggerWord = nullptr;
}

void TMirrorPixelData::ReadRecord(TBuffer& b) {
  MrRecordReader reader(b, Class());
  if (reader.GetVersion() == Class_Version()) {
    ReadCurrentVersion(reader);
    return;
  }
  fNTriggered = fNTriggerWords = 0;
  reader.ReadByDescription(this);
  if (CheckCounts(reader) && reader.CheckArray("fPixelNo", fPixelNo, fNTriggered) &&
      reader.CheckArray("fTriggerWord", fTriggerWord, fNTriggerWords))
    Unpack(reader, fPixelNo, fTriggerWord);
  delete[] fPixelNo;
  delete[] fTriggerWord;
  fPixelNo = nullptr;
  fTriggerWord = nullptr;
}

void TMirrorPixelData::ReadCurrentVersion(MrRecordReader& reader) {
  UShort_t pixel_no[kNPixels];
  UInt_t words[kNPixels * kNWords];
  reader.ReadObject(this);
  reader >> fUnused >> fMirrorNumber >> fNTriggered >> fNTriggerWords;
  if (!CheckCounts(reader)) return;
  reader.ReadArray("fPixelNo", pixel_no, fNTriggered);
  reader.ReadArray("fTriggerWord", words, fNTriggerWords);
  if (reader.IsComplete()) Unpack(reader, pixel_no, words);
}

bool TMirrorPixelData::CheckCounts(MrRecordReader& reader) const {
  if (!reader.CheckCount("fNTriggered", fNTriggered, kNPixels)) return false;
  const Int_t n_words = fNTriggered * kNWords;
  return fNTriggerWords == n_words || reader.Fail("fNTriggerWords", fNTriggerWords, std::to_string(n_words));
}

/// Fills the record from the form on file, whose counts have been checked.
void TMirrorPixelData::Unpack(MrRecordReader& reader, const UShort_t* pixel_no, const UInt_t* words) {
  for (Int_t i = 0; i < fNTriggered; ++i) {
    if (pixel_no[i] >= 1 && pixel_no[i] <= kNPixels) continue;
    reader.Fail("fPixelNo", pixel_no[i], "1 to " + std::to_string(kNPixels));
    return;
  }
  Clear();
  fRecord->fUnused = fUnused;
  fRecord->fMirrorNumber.fMirrorNumber = fMirrorNumber;
  for (Int_t i = 0; i < fNTriggered; ++i, words += kNWords)
    std::copy(words, words + kNWords, fRecord->fTrigger[pixel_no[i] - 1]);
}
