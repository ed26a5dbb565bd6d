#ifndef RecordBuffers_h
#define RecordBuffers_h

#include <TBufferFile.h>
#include <TClass.h>
#include <TMemFile.h>
#include <TObjArray.h>
#include <TStreamerInfo.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <vector>

/// The bytes of one object's record.
typedef std::vector<char> Bytes;

template <class T>
Bytes ToBytes(T& object) {
  TBufferFile b(TBuffer::kWrite);
  object.Streamer(b);
  return Bytes(b.Buffer(), b.Buffer() + b.Length());
}

/// Memory that ends where the process may not read: one byte too many ends the test.
class GuardedBytes {
 public:
  explicit GuardedBytes(const Bytes& bytes) : fSize(bytes.size()) {
    const size_t page = sysconf(_SC_PAGESIZE);
    fRoom = (fSize / page + 1) * page;
    fMemory =
        static_cast<char*>(mmap(nullptr, fRoom + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(fMemory + fRoom, page, PROT_NONE);
    fMapped = fRoom + page;
    std::copy(bytes.begin(), bytes.end(), Data());
  }
  ~GuardedBytes() { munmap(fMemory, fMapped); }
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;
  char* Data() { return fMemory + fRoom - fSize; }

 private:
  size_t fSize;
  size_t fRoom;
  size_t fMapped;
  char* fMemory;
};

/// Streams bytes into an object, and gives the place where the buffer was left.
template <class T>
Int_t FromBytes(const Bytes& bytes, T& object) {
  GuardedBytes memory(bytes);
  TBufferFile b(TBuffer::kRead, bytes.size(), memory.Data(), kFALSE);
  object.Streamer(b);
  return b.Length();
}

/// Overwrites a big-endian number in a record.
inline void Put(Bytes& bytes, size_t offset, UInt_t value, size_t size) {
  for (size_t i = 0; i < size; ++i)
    bytes[offset + i] = value >> 8 * (size - 1 - i);
}

/// The record behind another one's bytes, so that its end is not the end of the buffer.
inline Bytes Followed(Bytes bytes) {
  bytes.resize(bytes.size() + 64, '\x55');
  return bytes;
}

/// The first bytes of a record, with a byte count that says so.
inline Bytes Shortened(const Bytes& bytes, size_t size) {
  Bytes first(bytes.begin(), bytes.begin() + size);
  if (size >= 6) Put(first, 0, 0x40000000 | UInt_t(size - 4), 4);
  return first;
}

/// Gives the class a further version, described as its own version is, for records of a later time. Answers its number.
inline Version_t DescribeNextVersion(TClass* cl) {
  const Version_t next = cl->GetClassVersion() + 1;
  if (cl->GetStreamerInfos()->GetSize() > next && cl->GetStreamerInfos()->At(next)) return next;
  auto* info = static_cast<TStreamerInfo*>(cl->GetStreamerInfo()->Clone());
  info->SetClassVersion(next);
  info->SetClass(cl);
  info->BuildOld();
  const_cast<TObjArray*>(cl->GetStreamerInfos())->AddAtAndExpand(info, next);
  return next;
}

/// Writes an object to a file in memory and reads it back; empty when it does not come back.
template <class T>
std::unique_ptr<T> ThroughFile(T& object) {
  TMemFile file("through.root", "RECREATE");
  file.WriteTObject(&object, "object");
  return std::unique_ptr<T>(file.Get<T>("object"));
}

#endif
