#include <StnEvent/StnPixelList.h>

#include <MrEvent/MiPixelList.h>
#include <MrEvent/MrRecordCheck.h>
#include <StnEvent/StnEvent.h>
#include <VdUtil/ErrorLogger.h>
#include <VdUtil/VdConfig.h>

#include <TBuffer.h>
#include <TClass.h>
#include <TStreamerElement.h>
#include <TVirtualStreamerInfo.h>

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <string>

using VdUtil::Vd;

ClassImp(TStnPixelList);

namespace {

// One bit for each station pixel. Every vector has at least so many words, whatever size a file gave it.
const UInt_t kNWords = Vd::kSTN_NEXTPIXELS / 32;

bool IsStnPixel(UInt_t stn_pixel) { return stn_pixel >= 1 && stn_pixel <= Vd::kSTN_NEXTPIXELS; }

bool Refuse(const std::string& field, const std::string& found, const std::string& expected) {
  return MrRecordCheck::Refuse(TStnPixelList::Class(), field, found, expected);
}

/// Whether the buffer holds what `TBuffer::ReadVersion` reads: two bytes, or six with a byte count, but it looks at four
/// in any case. Versions of 0 and below bring a checksum.
bool HasFrame(const TBuffer& buffer) {
  const auto* bytes = reinterpret_cast<const UChar_t*>(buffer.Buffer()) + buffer.Length();
  const Int_t left = buffer.BufferSize() - buffer.Length();
  const bool has_count = left >= 4 && (bytes[0] & 0x40) != 0;
  const bool has_checksum = has_count && left >= 6 && ((bytes[4] & 0x80) != 0 || (bytes[4] == 0 && bytes[5] == 0));
  const Int_t size = has_checksum ? 10 : has_count ? 6 : 4;
  return left >= size || Refuse("frame", std::to_string(left) + " bytes", "at least " + std::to_string(size));
}

bool HasVersion2(MrRecordCheck check) {
  UInt_t n_pixels, n_words;
  return check.SkipObject() && check.SkipNumber("fNPixels", &n_pixels) &&
         check.SkipNumber("fPixelVectorSize", &n_words) && check.SkipItems("fPixelVectorSize", n_words, sizeof(UInt_t));
}

bool IsPixelVector(const TStreamerElement& element) {
  const auto* array = dynamic_cast<const TStreamerBasicPointer*>(&element);
  return array && array->GetType() == TVirtualStreamerInfo::kOffsetP + TVirtualStreamerInfo::kUInt &&
         std::string(array->GetCountName()) == "fPixelVectorSize";
}

/// Whether a description of another version says what this class needs: numbers, then the vector behind its size.
bool HasVector(const TVirtualStreamerInfo* description) {
  if (!description) return true;  // ROOT reports that, and skips the record
  bool has_size = false;
  for (const TObject* object : *description->GetElements()) {
    const auto& element = *static_cast<const TStreamerElement*>(object);
    const std::string name = element.GetName();
    if (has_size && IsPixelVector(element)) return true;
    if (!element.IsBase() && element.IsA() != TStreamerBasicType::Class())
      return Refuse(name, "a member of unknown size before fPixelVector", "numbers only");
    has_size |= name == "fPixelVectorSize" && element.GetType() == TVirtualStreamerInfo::kUInt;
  }
  return Refuse("fPixelVector", "none in the description of the record", "an array of fPixelVectorSize words");
}
}  // namespace

TStnPixelList::TStnPixelList()
    : fStreamerVersion(0),
      fStnNo(VdUtil::VdConfig::GetInstance().GetStnId() - 1),
      fNPixels(0),
      fPixelVectorSize(kNWords) {
  if (TStnEvent::fgPrintLevel > 1) {
    VD_DEBUG << "Vd::kSTN_NEXTPIXELS= " << Vd::kSTN_NEXTPIXELS << std::endl;
    VD_DEBUG << "fPixelVectorSize=    " << fPixelVectorSize << std::endl;
  }
  fPixelVector = new UInt_t[kNWords]();
}

TStnPixelList::TStnPixelList(const TStnPixelList& rhs)
    : TObject(rhs),
      fStreamerVersion(0),
      fStnNo(rhs.fStnNo),
      fNPixels(0),
      fPixelVectorSize(rhs.fPixelVectorSize),
      fPixelVector(new UInt_t[rhs.GetNWords()]()) {
  *this = rhs;
}

/// The station is not copied: a list keeps that of its own event.
TStnPixelList& TStnPixelList::operator=(const TStnPixelList& rhs) {
  if (this == &rhs) return *this;
  // Only a list that was read with more words than a station has needs a larger vector.
  if (rhs.GetNWords() > GetNWords()) ReplaceVector(new UInt_t[rhs.GetNWords()]);
  fNPixels = rhs.fNPixels;
  fPixelVectorSize = rhs.fPixelVectorSize;
  std::copy_n(rhs.fPixelVector, rhs.GetNWords(), fPixelVector);
  fPixelList = rhs.fPixelList;
  fStreamerVersion = rhs.fStreamerVersion;
  return *this;
}

TStnPixelList::~TStnPixelList() { delete[] fPixelVector; }

bool TStnPixelList::operator==(const TStnPixelList& rhs) const {
  if (this == &rhs) return true;
  for (UInt_t element = 0; element < fPixelVectorSize; ++element) {
    if (fPixelVector[element] != rhs.GetWord(element)) return false;
  }
  return true;
}

/// Words allocated: a size from a file can be smaller.
UInt_t TStnPixelList::GetNWords() const { return std::max(fPixelVectorSize, kNWords); }

/// A word of the vector, 0 beyond its end: the position of the last station pixel lies in the word after the last.
UInt_t TStnPixelList::GetWord(UInt_t element) const { return element < GetNWords() ? fPixelVector[element] : 0; }

void TStnPixelList::ReplaceVector(UInt_t* words) {
  delete[] fPixelVector;
  fPixelVector = words;
}

/// One position above the one that `AddPixel` sets. `TestPixel` and `RemovePixel` have always worked on that position,
/// and callers count on what they do, so there is no subtraction of 1 here.
void TStnPixelList::GetPosition(_VdPixelNumber* pixel, UInt_t* element, UInt_t* bit) const {
  const UInt_t stn_pixel = Vd::GetStnPixelNo(pixel);
  *element = stn_pixel / 32;
  *bit = stn_pixel % 32;
}

bool TStnPixelList::TestPixel(_VdPixelNumber* pixel) {
  UInt_t element, bit;
  GetPosition(pixel, &element, &bit);
  if (element >= fPixelVectorSize || Vd::GetStnPixelNo(pixel) == 0) return false;
  return fPixelVector[element] >> bit & 1;
}

void TStnPixelList::AddPixel(_VdPixelNumber* pixel) {
  _VdPixelNumber none;
  if (!pixel) pixel = &none;
  if (TStnEvent::fgPrintLevel) {
    VD_INFO << "TStnPixelList::AddPixel((" << Vd::GetStnNo(pixel) << "," << Vd::GetStnMirrorNo(pixel)
            << ")=" << Vd::GetMirrorNo(pixel) << "," << Vd::GetPixelNo(pixel) << ") ..." << std::endl;
  }
  const UInt_t stn_pixel = Vd::GetStnPixelNo(pixel);
  if (!IsStnPixel(stn_pixel)) {
    VD_WARNING << "TStnPixelList::AddPixel() - tried to add illegal pixel " << Vd::GetPixelNo(pixel) << " - ignored!"
               << std::endl;
    return;
  }
  if (Vd::GetStnNo(pixel) - 1 != fStnNo) {
    // No blank before "from": log readers match this text.
    VD_WARNING << "TStnPixelList::AddPixel() - tried to add pixel " << Vd::GetPixelNo(pixel) << "from illegal Stn "
               << Vd::GetStnNo(pixel) << " - ignored!" << std::endl;
    return;
  }
  fPixelList.clear();
  SetPixel(stn_pixel);
}

void TStnPixelList::SetPixel(UInt_t stn_pixel) {
  const UInt_t element = (stn_pixel - 1) / 32;
  UInt_t& word = fPixelVector[element];
  const UInt_t mask = 1U << (stn_pixel - 1) % 32;
  if (word & mask) {
    VD_WARNING << "TStnPixelList::AddPixel(" << stn_pixel << ") - "
               << "tried to add pixel again to list - ignored!" << std::endl;
    return;
  }
  word |= mask;
  ++fNPixels;
  // A list that was read with fewer words grows, or the next writer would leave the pixel out.
  if (element >= fPixelVectorSize) fPixelVectorSize = kNWords;
}

void TStnPixelList::AddPixelList(TMirrorPixelList* list) {
  if (!list) return;
  if (TStnEvent::fgPrintLevel) {
    VD_INFO << "TMirrorPixelList contains " << list->GetNumPixels() << " pixels !" << std::endl;
  }
  for (UInt_t i = 0; i < list->GetNumPixels(); ++i) {
    _VdPixelNumber* pixel = Vd::GetVdPixelNumber(list->GetPixel(i));
    AddPixel(pixel);
    if (TStnEvent::fgPrintLevel) {
      VD_INFO << "TStnPixelList::AddPixelList(seq=" << fNPixels << "): " << Vd::GetPixelNo(pixel) << ","
              << Vd::GetStnPixelNo(pixel) << "," << Vd::GetMirrorPixelNo(pixel) << std::endl;
    }
  }
}

/// The expanded list is left alone: a caller who walks over it goes on with the pixels that it had.
void TStnPixelList::RemovePixel(_VdPixelNumber* pixel) {
  _VdPixelNumber none;
  if (!pixel) pixel = &none;
  UInt_t element, bit;
  GetPosition(pixel, &element, &bit);
  const UInt_t stn_pixel = Vd::GetStnPixelNo(pixel);
  if (!IsStnPixel(stn_pixel)) {
    VD_WARNING << "Tried to remove illegal pixel " << Vd::GetPixelNo(pixel) << std::endl;
    return;
  }
  const UInt_t mask = 1U << bit;
  // Notices nothing but bit 0 of an empty word. The counts of lists depend on this test, so it stays as narrow.
  const UInt_t is_word_empty = GetWord(element) == 0;
  if (is_word_empty & mask) {
    VD_WARNING << "TStnPixelList::RemovePixel(" << stn_pixel << "): "
               << "Tried to remove non-existing pixel from the list !" << std::endl;
    return;
  }
  // Always inside the vector: only bit 0 of a word can lie beyond, and that word counts as empty.
  fPixelVector[element] &= ~mask;
  --fNPixels;
}

void TStnPixelList::ConstructPixelList() {
  _VdPixelNumber pixel;
  fPixelList.clear();
  for (UInt_t i = 0; i < Vd::kSTN_NEXTPIXELS; ++i) {
    if (!(fPixelVector[i / 32] >> i % 32 & 1)) continue;
    if (TStnEvent::fgPrintLevel > 1) VD_INFO << "Pixel " << i << " is set !" << std::endl;
    Vd::SetPixelNo(&pixel, i + 1);
    Vd::SetStnNo(&pixel, fStnNo + 1);
    if (TStnEvent::fgPrintLevel > 1) {
      VD_INFO << "TStnPixelList:: adding pixel " << i << " as no. " << fPixelList.size() << std::endl;
    }
    fPixelList.push_back(pixel);
  }
  if (fPixelList.size() == fNPixels) return;
  VD_FATAL << "TStnPixelList::ConstructPixelList() - "
           << "Size mismatch whilst constructing of internal PixelList !" << std::endl;
  VD_FATAL << "Size= " << fPixelList.size() << " vs. expected size= " << fNPixels << std::endl;
  exit(1);
}

_VdPixelNumber* TStnPixelList::GetPixel(unsigned int i) {
  if (i >= fNPixels) return nullptr;
  if (fPixelList.empty()) ConstructPixelList();
  return i < fPixelList.size() ? &fPixelList[i] : nullptr;
}

void TStnPixelList::SetStnNo(unsigned int stn_no) {
  if (TStnEvent::fgPrintLevel) VD_INFO << "TStnPixelList::SetStnNo(" << stn_no << ")" << std::endl;
  if (stn_no < Vd::kVD_FIRST_STN || stn_no > Vd::kVD_LAST_STN) {
    VD_WARNING << "TStnPixelList::SetStnNo(" << stn_no << ") - "
               << "StnNo is outside valid range " << Vd::kVD_FIRST_STN << " .. " << Vd::kVD_LAST_STN << " !"
               << std::endl;
    return;
  }
  fStnNo = stn_no - 1;
}

/// The expanded list stays: with a count of 0 nothing of it can be reached, and the next pixel added empties it.
void TStnPixelList::Clear(Option_t*) {
  fStreamerVersion = 0;
  fNPixels = 0;
  fPixelVectorSize = kNWords;
  std::fill_n(fPixelVector, kNWords, 0);
}

void TStnPixelList::Show(std::ostream& ostr) {
  ostr << "--- TStnPixelList ---" << std::endl;
  ostr << " Stn number      : " << fStnNo + 1 << std::endl;
  ostr << " Number of pixels: " << fNPixels << std::endl;
  ostr << " Streamer version: " << fStreamerVersion << std::endl;
  ostr << " Class version   : " << Class_Version() << std::endl;
  ostr << " Pixel numbers   : ";
  for (UInt_t i = 0; i < fNPixels; ++i) {
    const _VdPixelNumber* pixel = GetPixel(i);
    // An expanded list that is older than the bits can be shorter than the count.
    if (!pixel) break;
    if (i != 0 && i % 10 == 0) ostr << std::endl << std::string(19, ' ');
    ostr << std::setw(6) << Vd::GetPixelNo(pixel);
  }
  ostr << std::endl << "---------------------" << std::endl;
}

void TStnPixelList::Streamer(TBuffer& b) {
  if (b.IsReading()) {
    ReadRecord(b);
    if (TStnEvent::fgPrintLevel > 1) {
      VD_INFO << "TStnPixelList::Streamer() - "
              << "read fStreamerVersion= " << fStreamerVersion << ", fStnNo= " << fStnNo << std::endl;
    }
    return;
  }
  Class()->WriteBuffer(b, this);
  if (TStnEvent::fgPrintLevel > 1) {
    VD_INFO << "TStnPixelList::Streamer() - "
            << "wrote fStnNo= " << fStnNo << std::endl;
  }
}

/// A record that does not hold what it says is left at its end, and this object as it was.
void TStnPixelList::ReadRecord(TBuffer& b) {
  const UInt_t size = b.BufferSize();
  if (!HasFrame(b)) return b.SetBufferOffset(size);
  UInt_t start, count;
  const Version_t version = b.ReadVersion(&start, &count);
  if (version < 2) {
    fStreamerVersion = version;
    // Says 1 for lower versions too: log readers match this text.
    VD_ERROR << "TStnPixelList::Streamer() - version == 1 not streamable !" << std::endl;
    return;
  }
  const UInt_t limit = size - start - sizeof(UInt_t);
  if (count > limit) {
    Refuse("byte count", std::to_string(count), "at most " + std::to_string(limit));
    return b.SetBufferOffset(size);
  }
  const UInt_t end = count ? start + sizeof(UInt_t) + count : size;
  MrRecordCheck check(b, end, Class());
  const bool is_whole = version == 2
                            ? HasVersion2(check)
                            : HasVector(MrRecordCheck::FindDescription(Class(), version)) && check.HasMembers(version);
  if (!is_whole) return b.SetBufferOffset(end);
  fStreamerVersion = version;
  if (version == 2) {
    ReadVersion2(b, start, count);
  } else {
    ReadDescribed(b, version, start, count);
  }
}

/// For every version above 2 the description in the file decides.
void TStnPixelList::ReadDescribed(TBuffer& b, Version_t version, UInt_t start, UInt_t count) {
  Class()->ReadBuffer(b, this, version, start, count);
  if (fPixelVectorSize >= kNWords) return;
  auto* words = new UInt_t[kNWords]();
  std::copy_n(fPixelVector, fPixelVectorSize, words);
  ReplaceVector(words);
}

/// Version 2 has no station. It keeps the one of this host, until the event mends it from its header.
void TStnPixelList::ReadVersion2(TBuffer& b, UInt_t start, UInt_t count) {
  TObject::Streamer(b);
  if (TStnEvent::fgPrintLevel) VD_INFO << "TStnPixelList::Streamer() - fix for version= 2 !" << std::endl;
  b >> fNPixels;
  b >> fPixelVectorSize;
  ReplaceVector(new UInt_t[GetNWords()]());
  b.ReadFastArray(fPixelVector, fPixelVectorSize);
  b.CheckByteCount(start, count, Class());
}
