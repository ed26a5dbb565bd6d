#include "FileFrame.h"

#include "ByteReader.h"
#include "ToolError.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace StnTools {
namespace {

// A ROOT file opens with "root", then its version, the place of its first record and its end, high byte first. From
// this version on, files above 2 GB, the end takes eight bytes.
const std::uint64_t kLargeFileVersion = 1000000;
const std::uint64_t kFrameBytes = 20;
const std::uint64_t kFirstRecord = 100;

// What the header of a file says: version, place of the first record, end, places of the free space and of its list, sizes
// of these and of the name, size of a place, compression.
FileFrame ReadHeader(std::uint64_t size, ByteReader header) {
  const std::uint64_t first_setting_that_does_not_exist = 600;
  header.Skip(4);
  std::size_t place_size = header.Number(4) >= kLargeFileVersion ? 8 : 4;
  header.Skip(4);
  std::uint64_t end = header.Number(place_size);
  header.Skip(place_size + 13);
  std::uint64_t setting = header.Number(4);
  bool is_setting = header.IsGood() && setting < first_setting_that_does_not_exist;
  return {size, end, is_setting ? static_cast<int>(setting) : 1};
}

std::uint64_t GetFileSize(const std::string& path) {
  struct stat info;
  if (stat(path.c_str(), &info) != 0) {
    if (errno == ENOENT) throw ToolError(kCannotOpen, path + " does not exist; check the name");
    throw ToolError(kCannotOpen, path + " cannot be opened: " + std::strerror(errno) + "; check the name");
  }
  if (S_ISDIR(info.st_mode)) throw ToolError(kCannotOpen, path + " is a directory; name a station file in it");
  return static_cast<std::uint64_t>(info.st_size);
}

}  // namespace

FileFrame ReadFileFrame(const std::string& path) {
  std::uint64_t size = GetFileSize(path);
  std::ifstream file(path, std::ios::binary);
  if (!file)
    throw ToolError(kCannotOpen, path + " cannot be opened: " + std::strerror(errno) + "; check its permissions");
  if (size == 0) throw ToolError(kCannotOpen, path + " is empty; write or copy it again");
  char bytes[kFirstRecord] = {};
  file.read(bytes, kFirstRecord);
  if (std::memcmp(bytes, "root", 4) != 0) {
    throw ToolError(kCannotOpen, path + " is not a ROOT file; name a station file");
  }
  if (size < kFrameBytes) throw ToolError(kDamage, path + " is cut short; copy or write it again");
  return ReadHeader(size, ByteReader(bytes, std::min(size, kFirstRecord)));
}

}  // namespace StnTools
