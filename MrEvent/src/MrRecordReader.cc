#include <MrEvent/MrRecordReader.h>

#include <MrEvent/MrRecordCheck.h>

#include <TClass.h>
#include <TObjArray.h>
#include <TObject.h>

#include <algorithm>

MrRecordReader::MrRecordReader(TBuffer& b, TClass* cl) : fBuffer(b), fClass(cl), fEnd(b.BufferSize()) {
  // Byte count, version, and the checksum that a version of 0 or below would bring in.
  if (HasBytes("frame", 10)) ReadFrame();
}

MrRecordReader::~MrRecordReader() { fBuffer.SetBufferOffset(fEnd); }

void MrRecordReader::ReadFrame() {
  fVersion = fBuffer.ReadVersion(&fStart, &fByteCount, fClass);
  const Long64_t room = Long64_t(fBuffer.BufferSize()) - fStart - Long64_t(sizeof(fByteCount));
  const Long64_t used = std::max(fBuffer.Length() - fStart, UInt_t(6)) - sizeof(fByteCount);
  if (fByteCount < used || fByteCount > room) {
    Fail("byte count", fByteCount, std::to_string(used) + " to " + std::to_string(room));
    return;
  }
  fEnd = fStart + fByteCount + sizeof(fByteCount);
}

void MrRecordReader::ReadObject(TObject* object) {
  if (!HasBytes("TObject", 10)) return;
  // Version (2 bytes), unique id (4), bits (4); the streamer reads more when these say so.
  const char* bytes = fBuffer.Buffer() + fBuffer.Length();
  if (bytes[0] != 0) {
    Fail("version of TObject", UChar_t(bytes[0]) * 256 + UChar_t(bytes[1]), "below 256");
    return;
  }
  const bool is_referenced = (bytes[9] & TObject::kIsReferenced) != 0;
  if (HasBytes("TObject", is_referenced ? 12 : 10)) object->TObject::Streamer(fBuffer);
}

bool MrRecordReader::CheckCount(const char* field, Int_t count, Int_t limit) {
  if (!fIsGood) return false;
  return (count >= 0 && count <= limit) || Fail(field, count, "0 to " + std::to_string(limit));
}

bool MrRecordReader::CheckArray(const char* field, const void* array, Int_t count) {
  return count == 0 || array || Fail(field, 0, "1");
}

UChar_t* MrRecordReader::ReadBytes(const char* field, Int_t count) {
  if (!BeginArray(field, count, 1) || count == 0) return nullptr;
  char* bytes = fBuffer.Buffer() + fBuffer.Length();
  fBuffer.SetBufferOffset(fBuffer.Length() + count);
  return reinterpret_cast<UChar_t*>(bytes);
}

bool MrRecordReader::IsComplete() {
  if (!fIsGood) return false;
  return BytesLeft() == 0 || Fail("bytes at the end of record", BytesLeft(), "0");
}

void MrRecordReader::ReadByDescription(void* object) {
  if (!fIsGood) return;
  const TObjArray* infos = fClass->GetStreamerInfos();
  if (fVersion < 1 || fVersion >= infos->GetSize() || !infos->At(fVersion)) {
    Fail("version", fVersion, "1 to " + std::to_string(fClass->GetClassVersion()) + ", or one that the file describes");
    return;
  }
  fIsGood = MrRecordCheck(fBuffer, fEnd, fClass).HasMembers(fVersion);
  if (fIsGood) fBuffer.ReadClassBuffer(fClass, object, fVersion, fStart, fByteCount);
}

bool MrRecordReader::Fail(const char* field, Long64_t found, const std::string& expected) {
  return fIsGood = MrRecordCheck::Refuse(fClass, field, std::to_string(found), expected);
}

bool MrRecordReader::HasBytes(const char* field, Long64_t size) {
  if (!fIsGood) return false;
  return BytesLeft() >= size || Fail(field, BytesLeft(), "at least " + std::to_string(size) + " bytes");
}

/// A counted array begins with a byte that tells whether there is one.
bool MrRecordReader::BeginArray(const char* field, Int_t count, Long64_t item_size) {
  if (!HasBytes(field, 1 + count * item_size)) return false;
  UChar_t has_array;
  fBuffer >> has_array;
  return has_array == (count > 0) || Fail(field, has_array, count > 0 ? "1" : "0");
}
