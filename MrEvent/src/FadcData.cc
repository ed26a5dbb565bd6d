#include <MrEvent/FadcData.h>

#include <MrEvent/MrRecordReader.h>
#include <MrEvent/MrTraceCode.h>

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
  MrTraceCode code;
  MrTraceCode::Room room;
  code.Encode(GetWords(), room);
  PackValues();
  SetCode(code);
  b.WriteClassBuffer(Class(), this);
  SetCode(MrTraceCode());
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

void TFADCData::UnpackValues() {
  fRecord->fPixelNumber.fPixelNumber = fPixelWord;
  fRecord->fTraceInfo.fWord = fTraceInfo;
  fRecord->fMonitor.fPrevThreshold = fPrevThreshold;
  fRecord->fMonitor.fActualThreshold = fActualThreshold;
  fRecord->fMonitor.fActualRate = fActualRate;
  fRecord->fMonitor.fMean = fMean;
  fRecord->fMonitor.fVariance = fVariance;
  fRecord->fTraceStartTime = fTraceStartTime;
}

void TFADCData::SetCode(const MrTraceCode& code) {
  fBase = code.fBase;
  fFirst = code.fFirst;
  fNWords = code.fNWords;
  fFirstWideHigh = code.fFirstHigh;
  fNNear = code.fNNear;
  fNFar = code.fNFar;
  fNWide = code.fNWide;
  fNWideHigh = code.fNHigh;
  fNear = code.fNear;
  fFar = code.fFar;
  fWideLow = code.fLow;
  fWideHigh = code.fHigh;
}

MrTraceCode TFADCData::GetCode() const {
  MrTraceCode code;
  code.fBase = fBase;
  code.fFirst = fFirst;
  code.fNWords = fNWords;
  code.fFirstHigh = fFirstWideHigh;
  code.fNNear = fNNear;
  code.fNFar = fNFar;
  code.fNWide = fNWide;
  code.fNHigh = fNWideHigh;
  code.fNear = fNear;
  code.fFar = fFar;
  code.fLow = fWideLow;
  code.fHigh = fWideHigh;
  return code;
}

void TFADCData::ReadRecord(TBuffer& b) {
  MrRecordReader reader(b, Class());
  if (reader.GetVersion() == Class_Version())
    ReadCurrentVersion(reader);
  else if (reader.GetVersion() == 1)
    ReadVersion1(reader);
  else
    ReadLaterVersion(reader);
  // What they point to is the buffer's, or has been deleted.
  SetCode(MrTraceCode());
}

/// The word of bin b was fBase + fLow[b - fFirstLow] + 256 * fHigh[b - fFirstHigh].
void TFADCData::ReadVersion1(MrRecordReader& reader) {
  UShort_t first_low = 0;
  UShort_t first_high = 0;
  Int_t n_low = 0;
  Int_t n_high = 0;
  reader.ReadObject(this);
  reader >> fPixelWord >> fTraceInfo >> fPrevThreshold >> fActualThreshold >> fActualRate >> fMean >> fVariance >>
      fTraceStartTime >> fBase >> first_low >> first_high >> n_low >> n_high;
  if (!reader.CheckCount("fNLow", n_low, Int_t(kNFADCWords) - first_low) ||
      !reader.CheckCount("fNHigh", n_high, Int_t(kNFADCWords) - first_high))
    return;
  const UChar_t* low = reader.ReadBytes("fLow", n_low);
  const UChar_t* high = reader.ReadBytes("fHigh", n_high);
  if (!reader.IsComplete()) return;
  Own();
  UnpackValues();
  UShort_t* words = GetWords();
  std::fill(words, words + kNFADCWords, 0);
  for (Int_t i = 0; i < n_low; ++i)
    words[first_low + i] = fBase + low[i];
  for (Int_t i = 0; i < n_high; ++i)
    words[first_high + i] += high[i] << 8;
}

void TFADCData::ReadCurrentVersion(MrRecordReader& reader) {
  reader.ReadObject(this);
  reader.ReadValues(fTraceInfo, fVariance, fTraceStartTime, fFirst, fNWords, fNNear, fFirstWideHigh, fNWideHigh, fNWide,
                    fNFar, fPixelWord, fPrevThreshold, fActualThreshold, fActualRate, fMean, fBase);
  if (!CheckCounts(reader)) return;
  fWideHigh = reader.ReadBytes("fWideHigh", fNWideHigh);
  fWideLow = reader.ReadBytes("fWideLow", fNWide);
  fFar = reader.ReadBytes("fFar", fNFar);
  fNear = reader.ReadBytes("fNear", fNNear);
  if (!reader.IsComplete() || !CheckWords(reader)) return;
  Own();
  UnpackValues();
  GetCode().Decode(GetWords());
}

void TFADCData::ReadLaterVersion(MrRecordReader& reader) {
  SetCode(MrTraceCode());
  reader.ReadByDescription(this);
  const bool has_arrays = CheckCounts(reader) && reader.CheckArray("fWideHigh", fWideHigh, fNWideHigh) &&
                          reader.CheckArray("fWideLow", fWideLow, fNWide) && reader.CheckArray("fFar", fFar, fNFar) &&
                          reader.CheckArray("fNear", fNear, fNNear);
  if (has_arrays && CheckWords(reader)) {
    Own();
    UnpackValues();
    GetCode().Decode(GetWords());
  }
  for (UChar_t* array : {fWideHigh, fWideLow, fFar, fNear})
    delete[] array;
}

/// The counts, as far as they can be known without the arrays.
bool TFADCData::CheckCounts(MrRecordReader& reader) const {
  const Int_t n_pairs = (fNWords + 1) / 2;
  if (!reader.CheckCount("fNWords", fNWords, Int_t(kNFADCWords) - fFirst)) return false;
  if (fNNear != 0 && fNNear != n_pairs) return reader.Fail("fNNear", fNNear, "0 or " + std::to_string(n_pairs));
  return reader.CheckCount("fNFar", fNFar, n_pairs) && reader.CheckCount("fNWide", fNWide, fNWords) &&
         reader.CheckCount("fNWideHigh", fNWideHigh, fNWide - fFirstWideHigh);
}

/// Whether the half bytes ask for as many words as there are.
bool TFADCData::CheckWords(MrRecordReader& reader) const {
  const MrTraceCode code = GetCode();
  if (fNNear != 0 && !MrTraceCode::IsPadded(fNear, fNWords)) return reader.Fail("fNear", fNear[fNNear - 1], "0 to 15");
  const Int_t n_far = code.CountFar();
  if (fNFar != (n_far + 1) / 2) return reader.Fail("fNFar", fNFar, std::to_string((n_far + 1) / 2));
  if (!MrTraceCode::IsPadded(fFar, n_far)) return reader.Fail("fFar", fFar[fNFar - 1], "0 to 15");
  const Int_t n_wide = code.CountWide();
  return fNWide == n_wide || reader.Fail("fNWide", fNWide, std::to_string(n_wide));
}
