#include "FileFrame.h"

#include "ToolError.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace StnTools {
namespace {

// A ROOT file opens with "root", then its version, the place of its first record and its end, high byte first. From
// this version on, files above 2 GB, the end takes eight bytes.
const std::uint64_t kLargeFileVersion = 1000000;
const std::uint64_t kFrameBytes = 20;

std::uint64_t GetNumber(const unsigned char* bytes, int n) {
  std::uint64_t number = 0;
  for (int i = 0; i < n; ++i)
    number = number << 8 | bytes[i];
  return number;
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
  unsigned char bytes[kFrameBytes] = {};
  file.read(reinterpret_cast<char*>(bytes), kFrameBytes);
  if (std::memcmp(bytes, "root", 4) != 0) {
    throw ToolError(kCannotOpen, path + " is not a ROOT file; name a station file");
  }
  if (size < kFrameBytes) throw ToolError(kDamage, path + " is cut short; copy or write it again");
  bool is_large = GetNumber(bytes + 4, 4) >= kLargeFileVersion;
  return {size, GetNumber(bytes + 12, is_large ? 8 : 4)};
}

}  // namespace StnTools
