#include "RecordFile.h"

#include "ByteReader.h"
#include "FileName.h"
#include "FileFrame.h"
#include "ToolError.h"

#include <RZip.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>

namespace StnTools {
namespace {

const std::uint64_t kFirstRecord = 100;
// Longer than any key: the longest names in one are paths.
const std::uint64_t kMostKeyBytes = 10000;
// Number of bytes, version, length of the object, date, length of the key, cycle; two places of four bytes each; three
// texts.
const std::uint64_t kLeastKeyBytes = 29;
const std::uint64_t kSeekOffset = 18;
const std::uint64_t kScanBytes = 1 << 20;
// From this version of a key on, places take eight bytes.
const int kLargeKeyVersion = 1000;
const int kNewestKeyVersion = 4;
// ROOT's buffers can't hold more.
const std::uint64_t kMostObjectBytes = (1ULL << 30) - 2;

bool IsClassName(const std::string& name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char c) {
    return std::isalnum(c) || std::strchr("_:<>,* ", c) != nullptr;
  });
}

// What a basket's key has in addition: version, size of the buffer, room for entries, entries, end of the last, flag.
bool ReadBasketKey(ByteReader& key, Record& record) {
  key.Skip(2);
  std::int64_t buffer_size = key.Signed(4);
  std::int64_t room = key.Signed(4);
  std::int64_t n_entries = key.Signed(4);
  std::int64_t last = key.Signed(4);
  key.Skip(1);
  record.fNEntries = static_cast<std::uint32_t>(n_entries);
  record.fLast = static_cast<std::uint64_t>(last);
  // Negative sizes announce a form that station files do not have.
  return buffer_size >= 0 && room >= 0 && n_entries >= 0 && last >= 0;
}

// False if the key is none, whatever stands there.
bool ReadKeyAt(std::uint64_t seek, ByteReader key, Record& record) {
  record.fSeek = seek;
  std::int64_t size = key.Signed(4);
  std::int64_t version = key.Signed(2);
  record.fObjectSize = key.Number(4);
  key.Skip(4);
  record.fKeySize = key.Number(2);
  record.fCycle = static_cast<int>(key.Number(2));
  std::size_t place_size = version > kLargeKeyVersion ? 8 : 4;
  std::uint64_t own_place = key.Number(place_size);
  key.Skip(place_size);
  record.fClass = key.Text();
  record.fName = key.Text();
  record.fTitle = key.Text();
  if (own_place != seek || version < 1 || version % kLargeKeyVersion > kNewestKeyVersion) return false;
  if (!IsClassName(record.fClass) || record.fObjectSize > kMostObjectBytes) return false;
  if (record.IsBasket() && !ReadBasketKey(key, record)) return false;
  record.fSize = static_cast<std::uint64_t>(std::max<std::int64_t>(size, 0));
  return key.IsGood() && key.GetPosition() == record.fKeySize && record.fKeySize <= record.fSize;
}

// Does one of ROOT's compressed blocks begin here, and how long is it? Zero sizes stand for no.
struct BlockSizes {
  int fPacked = 0;
  int fUnpacked = 0;
};

BlockSizes ReadBlockHeader(const std::string& packed, std::size_t position) {
  BlockSizes sizes;
  if (packed.size() - position <= ROOT::Internal::kZipHeaderSize) return sizes;
  const auto* block = reinterpret_cast<const unsigned char*>(packed.data()) + position;
  if (R__unzip_header(&sizes.fPacked, block, &sizes.fUnpacked) != 0) return {};
  return sizes;
}

// The blocks must fill what is there and yield what was promised, to the byte; this is found out before room is made.
bool AreSizesRight(const std::string& packed, std::uint64_t object_size) {
  std::size_t position = 0;
  std::uint64_t unpacked = 0;
  while (position < packed.size()) {
    BlockSizes sizes = ReadBlockHeader(packed, position);
    if (sizes.fPacked <= 0) return false;
    position += static_cast<std::size_t>(sizes.fPacked);
    unpacked += static_cast<std::uint64_t>(sizes.fUnpacked);
  }
  return position == packed.size() && unpacked == object_size;
}

bool Unpack(const std::string& packed, char* target) {
  for (std::size_t position = 0; position < packed.size();) {
    BlockSizes sizes = ReadBlockHeader(packed, position);
    const auto* block = reinterpret_cast<const unsigned char*>(packed.data()) + position;
    int n_unpacked = 0;
    R__unzip(&sizes.fPacked, block, &sizes.fUnpacked, reinterpret_cast<unsigned char*>(target), &n_unpacked);
    if (n_unpacked != sizes.fUnpacked) return false;
    position += static_cast<std::size_t>(sizes.fPacked);
    target += sizes.fUnpacked;
  }
  return true;
}

FileFrame ReadFrame(const std::string& path) {
  RequireName(path);
  return ReadFileFrame(path);
}

}  // namespace

RecordFile::RecordFile(const std::string& path) : fPath(path), fFrame(ReadFrame(path)), fSize(fFrame.fSize) {
  fDescriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fDescriptor < 0)
    throw ToolError(kCannotOpen, path + " cannot be opened: " + std::strerror(errno) + "; check its permissions");
  Walk();
}

RecordFile::~RecordFile() { close(fDescriptor); }

void RecordFile::Walk() {
  for (std::uint64_t seek = kFirstRecord; seek < fSize;)
    seek = WalkOn(seek);
}

// Past the record, the free space or the damage that lies here.
std::uint64_t RecordFile::WalkOn(std::uint64_t seek) {
  if (std::uint64_t free_size = GetFreeSize(seek)) return seek + free_size;
  std::optional<Record> record = ReadKey(seek);
  if (record) {
    fRecords.push_back(*record);
    if (IsPlausible(record->GetEnd())) return record->GetEnd();
    // The size in this key is wrong, or the next key: the search begins inside this record to pass over neither.
    seek += record->fKeySize;
  }
  std::uint64_t next = FindKey(seek + 1);
  std::uint64_t begin = record ? record->GetEnd() : seek;
  if (begin < next) fLost.push_back({begin, next});
  return next;
}

bool RecordFile::IsPlausible(std::uint64_t seek) const {
  return seek == fSize || GetFreeSize(seek) > 0 || ReadKey(seek).has_value();
}

std::int64_t RecordFile::ReadRecordSize(std::uint64_t seek) const {
  std::string bytes = ReadBytes(seek, 4);
  return ByteReader(bytes.data(), bytes.size()).Signed(4);
}

// Free space begins with its size as a negative number, and ends where something else that is known begins.
std::uint64_t RecordFile::GetFreeSize(std::uint64_t seek) const {
  std::int64_t size = ReadRecordSize(seek);
  if (size >= 0) return 0;
  // A file that became shorter may have bytes behind its end, which it gave up.
  if (seek == fFrame.fEnd) return fSize - seek;
  std::uint64_t end = seek + static_cast<std::uint64_t>(-size);
  return end == fSize || ReadRecordSize(end) < 0 || ReadKey(end) ? end - seek : 0;
}

std::optional<Record> RecordFile::ReadKey(std::uint64_t seek) const {
  Record record;
  std::string bytes = ReadBytes(seek, kMostKeyBytes);
  if (!ReadKeyAt(seek, ByteReader(bytes.data(), bytes.size()), record)) return {};
  record.fIsWhole = record.GetEnd() <= fSize;
  return record;
}

// Where a key that is not before a place may begin, past a hole in a file that has one there. Its first bytes can be
// zeros at the end of the hole.
std::uint64_t RecordFile::SkipHole(std::uint64_t seek) const {
  off_t data = lseek(fDescriptor, static_cast<off_t>(seek), SEEK_DATA);
  if (data < 0 && errno == ENXIO) return fSize;  // the hole goes on to the end
  return data < 0 ? seek
                  : std::max(seek, static_cast<std::uint64_t>(data) - std::min<std::uint64_t>(data, kLeastKeyBytes));
}

// The first key at or behind a place, else the end of the file.
std::uint64_t RecordFile::FindKey(std::uint64_t seek) const {
  for (seek = SkipHole(seek); seek + kLeastKeyBytes <= fSize; seek = SkipHole(seek + kScanBytes)) {
    std::string bytes = ReadBytes(seek, kScanBytes + kLeastKeyBytes);
    std::uint64_t place = ByteReader(bytes.data() + kSeekOffset, 8).Number(8);
    for (std::uint64_t i = 0; i < kScanBytes && i + kLeastKeyBytes <= bytes.size(); ++i) {
      if ((place >> 32 == seek + i || place == seek + i) && ReadKey(seek + i)) return seek + i;
      place = place << 8 | static_cast<unsigned char>(bytes[i + kSeekOffset + 8]);
    }
  }
  return fSize;
}

std::optional<std::vector<char>> RecordFile::Read(const Record& record) const {
  if (!record.fIsWhole) return {};
  std::string key = ReadBytes(record.fSeek, record.fKeySize);
  std::string packed = ReadBytes(record.fSeek + record.fKeySize, record.fSize - record.fKeySize);
  if (key.size() + packed.size() != record.fSize) return {};
  // Sizes that agree tell that there is no compression.
  bool is_packed = packed.size() != record.fObjectSize;
  if (is_packed && !AreSizesRight(packed, record.fObjectSize)) return {};
  std::vector<char> bytes(key.begin(), key.end());
  bytes.resize(record.fKeySize + record.fObjectSize);
  char* content = bytes.data() + record.fKeySize;
  if (is_packed) {
    if (!Unpack(packed, content)) return {};
  } else {
    std::copy(packed.begin(), packed.end(), content);
  }
  return bytes;
}

// What is there of it.
std::string RecordFile::ReadBytes(std::uint64_t seek, std::uint64_t size) const {
  if (seek >= fSize) return {};
  std::string bytes(std::min(size, fSize - seek), '\0');
  std::size_t n_read = 0;
  while (n_read < bytes.size()) {
    ssize_t n = pread(fDescriptor, &bytes[n_read], bytes.size() - n_read, static_cast<off_t>(seek + n_read));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    n_read += static_cast<std::size_t>(n);
  }
  bytes.resize(n_read);
  return bytes;
}

}  // namespace StnTools
