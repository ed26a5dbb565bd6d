#include <MrEvent/FadcData.h>

#include <MrEvent/MrRecordReader.h>

#include <TBuffer.h>
#include <TClass.h>

#include <algorithm>
#include <type_traits>

ClassImp(TFADCData);

namespace {

typedef TFADCData::_FADCDataRec Record;
typedef TFADCData::_FADCDataWordRec Word;

static_assert(std::is_trivially_copyable<Record>::value, "a record is copied as one block");
static_assert(sizeof(Word) == 2 && sizeof(TFADCData::_FADCTraceInfoRec) == 4, "fields stand inside their word");

Record* NewRecord() {
  Record* record = new Record();
  record->fTraceInfo.fResolution = TFADCData::kFADC_DEFAULT_RESOLUTION;
  return record;
}

/// Bins first to last - 1.
struct BinRange {
  UInt_t fFirst = 0;
  UInt_t fLast = 0;
  UInt_t Size() const { return fLast - fFirst; }
};

/// The range that leaves out zeros at both ends; empty at 0 when there is nothing else.
template <class T, class IsZero>
BinRange WithoutZeros(const T* values, UInt_t n, IsZero is_zero) {
  BinRange range;
  range.fLast = n;
  while (range.fLast > 0 && is_zero(values[range.fLast - 1]))
    --range.fLast;
  while (range.fFirst < range.fLast && is_zero(values[range.fFirst]))
    ++range.fFirst;
  return range;
}

/// The level of the trace: the median of some of its words, made finer by the mean of all words near it. With the
/// level of each trace at the same byte value, traces of one file compress together.
UShort_t GetLevel(const Word* words, UInt_t n) {
  constexpr UInt_t kNProbes = 31;
  constexpr Int_t kNear = 32;
  UShort_t probes[kNProbes];
  for (UInt_t i = 0; i < kNProbes; ++i)
    probes[i] = words[i * n / kNProbes].fWord;
  std::nth_element(probes, probes + kNProbes / 2, probes + kNProbes);
  const Int_t median = probes[kNProbes / 2];
  Int_t count = 0;
  Int_t sum = 0;
  for (UInt_t i = 0; i < n; ++i) {
    const Int_t difference = words[i].fWord - median;
    const Int_t is_near = difference >= -kNear && difference <= kNear;
    count += is_near;
    sum += is_near * difference;
  }
  return static_cast<UShort_t>(median + sum / count);
}

}  // namespace

TFADCData::TFADCData() : fRecord(NewRecord()), fIsOwner(true) {}

TFADCData::TFADCData(_FADCDataRec* record) : fRecord(record ? record : NewRecord()), fIsOwner(!record) {}

TFADCData::TFADCData(const TFADCData& rhs) : TObject(rhs), fRecord(new _FADCDataRec(*rhs.fRecord)), fIsOwner(true) {}

TFADCData& TFADCData::operator=(const TFADCData& rhs) {
  if (this == &rhs) return *this;
  Own();
  *fRecord = *rhs.fRecord;
  return *this;
}

TFADCData::~TFADCData() {
  if (fIsOwner) delete fRecord;
}

/// Makes the record this object's own to overwrite; its content is open afterwards.
void TFADCData::Own() {
  if (fIsOwner) return;
  fRecord = new _FADCDataRec;
  fIsOwner = true;
}

UInt_t TFADCData::GetNFADCBins(FADCTraceResolution resolution) {
  static constexpr UInt_t kNBins[] = {1000, 2000, 4000};
  const UInt_t index = resolution;
  return index < 3 ? kNBins[index] : 0;
}

void TFADCData::Clear(Option_t*) { *this = TFADCData(); }

void TFADCData::Show(std::ostream& ostr) const {
  const _PixelMonitorDataRec& monitor = fRecord->fMonitor;
  ostr << "--- TFADCData ---" << std::endl
       << " Station, mirror, pixel : " << VdUtil::Vd::GetStnNo(GetPixelNumber()) << ", "
       << VdUtil::Vd::GetMirrorNo(GetPixelNumber()) << ", " << VdUtil::Vd::GetPixelNo(GetPixelNumber()) << std::endl
       << " Bins                   : " << GetStartBin() << " to " << GetEndBin() << " of " << GetNFADCBins()
       << std::endl
       << " Start time             : " << GetTraceStartTime() << std::endl
       << " Previous threshold     : " << monitor.fPrevThreshold << std::endl
       << " Actual threshold       : " << monitor.fActualThreshold << std::endl
       << " Actual rate            : " << monitor.fActualRate << std::endl
       << " Mean, variance         : " << monitor.fMean << ", " << monitor.fVariance << std::endl
       << " Samples                :";
  for (UInt_t bin = GetStartBin(); bin <= GetEndBin() && bin < kNFADCWords; ++bin)
    ostr << " " << GetSample(bin);
  ostr << std::endl << "--------------------" << std::endl;
}

void TFADCData::Streamer(TBuffer& b) {
  if (b.IsReading()) {
    ReadRecord(b);
  } else {
    WriteRecord(b);
  }
}

void TFADCData::WriteRecord(TBuffer& b) {
  UChar_t low[kNFADCWords];
  UChar_t high[kNFADCWords];
  PackValues();
  PackWords(low, high);
  b.WriteClassBuffer(Class(), this);
  fLow = fHigh = nullptr;
}

void TFADCData::PackValues() {
  fPixelWord = fRecord->fPixelNumber.fPixelNumber;
  fTraceInfo = fRecord->fTraceInfo.fWord;
  fPrevThreshold = fRecord->fMonitor.fPrevThreshold;
  fActualThreshold = fRecord->fMonitor.fActualThreshold;
  fActualRate = fRecord->fMonitor.fActualRate;
  fMean = fRecord->fMonitor.fMean;
  fVariance = fRecord->fMonitor.fVariance;
  fTraceStartTime = fRecord->fTraceStartTime;
}

/// Fills base and bytes of the form on file; the bytes stand in the two arrays, which have room for all words.
void TFADCData::PackWords(UChar_t* low, UChar_t* high) {
  const BinRange used = WithoutZeros(fRecord->fFadcData, kNFADCWords, [](Word word) { return word.fWord == 0; });
  const Word* words = fRecord->fFadcData + used.fFirst;
  const UInt_t n = used.Size();
  // Three quarters of the range of a byte lie above the level: signals go up.
  fBase = n == 0 ? 0 : GetLevel(words, n) - 64;
  for (UInt_t i = 0; i < n; ++i) {
    const UShort_t difference = words[i].fWord - fBase;
    low[i] = difference & 0xFF;
    high[i] = difference >> 8;
  }
  const BinRange not_zero = WithoutZeros(high, n, [](UChar_t byte) { return byte == 0; });

  fFirstLow = used.fFirst;
  fFirstHigh = not_zero.Size() == 0 ? 0 : used.fFirst + not_zero.fFirst;
  fNLow = n;
  fNHigh = not_zero.Size();
  fLow = low;
  fHigh = high + not_zero.fFirst;
}

void TFADCData::ReadRecord(TBuffer& b) {
  MrRecordReader reader(b, Class());
  if (reader.GetVersion() == Class_Version()) {
    ReadCurrentVersion(reader);
    return;
  }
  fFirstLow = fFirstHigh = 0;
  fNLow = fNHigh = 0;
  reader.ReadByDescription(this);
  if (CheckCounts(reader) && reader.CheckArray("fLow", fLow, fNLow) && reader.CheckArray("fHigh", fHigh, fNHigh))
    Unpack(fLow, fHigh);
  delete[] fLow;
  delete[] fHigh;
  fLow = fHigh = nullptr;
}

void TFADCData::ReadCurrentVersion(MrRecordReader& reader) {
  reader.ReadObject(this);
  reader >> fPixelWord >> fTraceInfo >> fPrevThreshold >> fActualThreshold >> fActualRate >> fMean >> fVariance >>
      fTraceStartTime >> fBase >> fFirstLow >> fFirstHigh >> fNLow >> fNHigh;
  if (!CheckCounts(reader)) return;
  const UChar_t* low = reader.ReadBytes("fLow", fNLow);
  const UChar_t* high = reader.ReadBytes("fHigh", fNHigh);
  if (reader.IsComplete()) Unpack(low, high);
}

bool TFADCData::CheckCounts(MrRecordReader& reader) const {
  return reader.CheckCount("fNLow", fNLow, Int_t(kNFADCWords) - fFirstLow) &&
         reader.CheckCount("fNHigh", fNHigh, Int_t(kNFADCWords) - fFirstHigh);
}

/// Fills the record from the form on file, whose counts have been checked.
void TFADCData::Unpack(const UChar_t* low, const UChar_t* high) {
  Own();
  fRecord->fPixelNumber.fPixelNumber = fPixelWord;
  fRecord->fTraceInfo.fWord = fTraceInfo;
  fRecord->fMonitor.fPrevThreshold = fPrevThreshold;
  fRecord->fMonitor.fActualThreshold = fActualThreshold;
  fRecord->fMonitor.fActualRate = fActualRate;
  fRecord->fMonitor.fMean = fMean;
  fRecord->fMonitor.fVariance = fVariance;
  fRecord->fTraceStartTime = fTraceStartTime;

  Word* words = fRecord->fFadcData;
  std::fill(words, words + kNFADCWords, Word());
  for (Int_t i = 0; i < fNLow; ++i)
    words[fFirstLow + i].fWord = fBase + low[i];
  for (Int_t i = 0; i < fNHigh; ++i)
    words[fFirstHigh + i].fWord += high[i] << 8;
}
