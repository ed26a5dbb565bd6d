#ifndef MrEvent_MrRecordReader_h
#define MrEvent_MrRecordReader_h

#include <MrEvent/MrNumber.h>

#include <Rtypes.h>
#include <TBuffer.h>

#include <string>

class TClass;
class TObject;

/// Reads one object's record from a buffer by hand, in the order on file. Each size is compared with what is left of the
/// record and of the buffer before it is used. The first that does not fit gives an error message, and after it nothing
/// more is read. Whatever happened, the destructor leaves the buffer at the end of the record.
class MrRecordReader {
 public:
  /// Reads the frame of the record, which has a byte count and the version.
  MrRecordReader(TBuffer& b, TClass* cl);
  ~MrRecordReader();
  MrRecordReader(const MrRecordReader&) = delete;
  MrRecordReader& operator=(const MrRecordReader&) = delete;

  /// False from the first failure on.
  bool IsGood() const { return fIsGood; }
  /// Version of the record.
  Version_t GetVersion() const { return fVersion; }
  /// What the record still holds.
  Long64_t BytesLeft() const { return Long64_t(fEnd) - fBuffer.Length(); }

  /// Reads the TObject part.
  void ReadObject(TObject* object);

  /// Reads a basic value; it stays as it is when the record has no more.
  template <class T>
  MrRecordReader& operator>>(T& value) {
    if (HasBytes("end of record", sizeof(T))) fBuffer >> value;
    return *this;
  }

  /// Reads several basic values, one after the other; all stay as they are when the record has not all of them.
  template <class... T>
  void ReadValues(T&... values) {
    if (!HasBytes("end of record", (... + sizeof(T)))) return;
    const char* bytes = fBuffer.Buffer() + fBuffer.Length();
    (TakeNumber(bytes, values), ...);
    fBuffer.SetBufferOffset(bytes - fBuffer.Buffer());
  }

  /// Checks a count that was read: 0 to `limit`.
  bool CheckCount(const char* field, Int_t count, Int_t limit);

  /// Checks that the description's reader made an array of a count that is not 0.
  bool CheckArray(const char* field, const void* array, Int_t count);

  /// Reads a counted array whose count was checked, into room for that many.
  template <class T>
  void ReadArray(const char* field, T* array, Int_t count) {
    if (BeginArray(field, count, sizeof(T)) && count > 0) fBuffer.ReadFastArray(array, count);
  }
  /// The bytes of a counted array whose count was checked, where they stand in the buffer; null when there are none.
  UChar_t* ReadBytes(const char* field, Int_t count);

  /// True when nothing failed and the record has been read to its end.
  bool IsComplete();

  /// Reads an object of a version other than the class's own by the description that the file has of it.
  void ReadByDescription(void* object);

  /// Reports a value that does not fit.
  bool Fail(const char* field, Long64_t found, const std::string& expected);

 private:
  bool HasBytes(const char* field, Long64_t size);
  bool BeginArray(const char* field, Int_t count, Long64_t item_size);
  void ReadFrame();

  TBuffer& fBuffer;
  TClass* fClass;
  bool fIsGood = true;
  Version_t fVersion = 0;
  UInt_t fStart = 0;
  UInt_t fByteCount = 0;
  Int_t fEnd;
};

#endif
