#include <MrEvent/MiPixelList.h>

#include <MrEvent/MrRecordReader.h>

#include <TBuffer.h>
#include <TClass.h>

#include <algorithm>
#include <vector>

ClassImp(TMirrorPixelList);

using VdUtil::Vd;

TMirrorPixelList::TMirrorPixelList() : fData(), fRecord(&fData) {}

TMirrorPixelList::TMirrorPixelList(const TMirrorPixelList& rhs) : TObject(rhs), fData(), fRecord(&fData) {
  *this = rhs;
}

TMirrorPixelList& TMirrorPixelList::operator=(const TMirrorPixelList& rhs) {
  if (this == &rhs) return *this;
  Reserve(rhs.fRecord->fNumPixels);
  std::copy_n(rhs.fRecord->fPixels, rhs.fRecord->fNumPixels, fRecord->fPixels);
  fRecord->fNumPixels = rhs.fRecord->fNumPixels;
  return *this;
}

TMirrorPixelList::~TMirrorPixelList() { delete[] fRecord->fPixels; }

void TMirrorPixelList::Reserve(UInt_t capacity) {
  if (capacity <= fRecord->fCapacity) return;
  _PixelNumber* pixels = new _PixelNumber[capacity];
  std::copy_n(fRecord->fPixels, fRecord->fNumPixels, pixels);
  delete[] fRecord->fPixels;
  fRecord->fPixels = pixels;
  fRecord->fCapacity = capacity;
}

void TMirrorPixelList::AddPixel(_PixelNumber* pixel) {
  if (!pixel) return;
  // Copied first: the number may be an entry of this list, which moves when the list grows.
  const _PixelNumber number = *pixel;
  if (fRecord->fNumPixels == fRecord->fCapacity) Reserve(std::max(2 * fRecord->fCapacity, UInt_t(64)));
  fRecord->fPixels[fRecord->fNumPixels++] = number;
}

_PixelNumber* TMirrorPixelList::GetPixel(UInt_t index) const {
  if (index < fRecord->fNumPixels) return &fRecord->fPixels[index];
  static thread_local _PixelNumber none;
  // Callers may have written into it.
  none.fPixelNumber = 0;
  return &none;
}

void TMirrorPixelList::Clear(Option_t*) { fRecord->fNumPixels = 0; }

void TMirrorPixelList::Show(std::ostream& ostr) const {
  ostr << "--- TMirrorPixelList ---" << std::endl << " Number of pixels : " << GetNumPixels() << std::endl;
  for (UInt_t i = 0; i < GetNumPixels(); ++i) {
    const _PixelNumber* pixel = GetPixel(i);
    ostr << " Station " << Vd::GetStnNo(pixel) << ", mirror " << Vd::GetMirrorNo(pixel) << ", pixel "
         << Vd::GetPixelNo(pixel) << ", column " << Vd::GetColumnNo(pixel) << ", row " << Vd::GetRowNo(pixel)
         << std::endl;
  }
  ostr << "--------------------" << std::endl;
}

void TMirrorPixelList::Streamer(TBuffer& b) {
  if (b.IsReading()) {
    ReadRecord(b);
  } else {
    WriteRecord(b);
  }
}

void TMirrorPixelList::WriteRecord(TBuffer& b) {
  std::vector<UInt_t> words(fRecord->fNumPixels);
  std::transform(fRecord->fPixels, fRecord->fPixels + fRecord->fNumPixels, words.begin(),
                 [](const _PixelNumber& pixel) { return pixel.fPixelNumber; });
  fNPixels = words.size();
  fPixelWord = words.data();
  b.WriteClassBuffer(Class(), this);
  fPixelWord = nullptr;
}

void TMirrorPixelList::ReadRecord(TBuffer& b) {
  MrRecordReader reader(b, Class());
  if (reader.GetVersion() == Class_Version()) {
    ReadCurrentVersion(reader);
    return;
  }
  fNPixels = 0;
  const Int_t limit = reader.BytesLeft() / sizeof(UInt_t);
  reader.ReadByDescription(this);
  if (reader.CheckCount("fNPixels", fNPixels, limit) && reader.CheckArray("fPixelWord", fPixelWord, fNPixels))
    Unpack(fPixelWord);
  delete[] fPixelWord;
  fPixelWord = nullptr;
}

void TMirrorPixelList::ReadCurrentVersion(MrRecordReader& reader) {
  reader.ReadObject(this);
  reader >> fNPixels;
  if (!reader.CheckCount("fNPixels", fNPixels, reader.BytesLeft() / sizeof(UInt_t))) return;
  std::vector<UInt_t> words(fNPixels);
  reader.ReadArray("fPixelWord", words.data(), fNPixels);
  if (reader.IsComplete()) Unpack(words.data());
}

/// Fills the record from the form on file, whose count has been checked.
void TMirrorPixelList::Unpack(const UInt_t* words) {
  Clear();
  Reserve(fNPixels);
  std::transform(words, words + fNPixels, fRecord->fPixels, [](UInt_t word) {
    _PixelNumber pixel;
    pixel.fPixelNumber = word;
    return pixel;
  });
  fRecord->fNumPixels = fNPixels;
}
