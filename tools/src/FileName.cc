#include "FileName.h"

#include "ToolError.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace StnTools {
namespace {

namespace fs = std::filesystem;

// ROOT takes what follows one of these for options, a place inside a file, or a variable of the environment.
const char* const kUnsayable = "?#$";

bool IsSayable(const std::string& path) {
  return path.find_first_of(kUnsayable) == std::string::npos && path.find(":/") == std::string::npos &&
         path.back() != ' ';
}

void RequireFree(const std::string& path, bool force, const std::string& advice) {
  std::error_code error;
  // Not where a link leads to: what is there is somebody else's.
  const fs::file_status status = fs::symlink_status(path, error);
  if (!fs::exists(status)) return;
  if (!fs::is_regular_file(status))
    throw ToolError(kCannotWrite, path + " exists and is no plain file; choose another name");
  if (!force) throw ToolError(kCannotWrite, path + " exists already" + advice);
}

bool IsSameFile(const std::string& first, const std::string& second) {
  struct stat one;
  struct stat other;
  if (stat(first.c_str(), &one) != 0 || stat(second.c_str(), &other) != 0) return false;
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// A new name is on disk only when its folder is. Not every file system can be told so; the others need not be.
void SyncFolder(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  const int file = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file < 0) return;
  fsync(file);
  close(file);
}

}  // namespace

bool IsAddress(const std::string& path) {
  const std::size_t end = path.find("://");
  return end != std::string::npos && end > 0 && path.compare(0, end, "file") != 0 &&
         std::all_of(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(end),
                     [](unsigned char letter) { return std::islower(letter) || std::isdigit(letter); });
}

void RequireName(const std::string& path) {
  if (IsAddress(path))
    throw ToolError(kUsage, path + " is an address; copy the file first, this program needs all of it");
}

std::string GetRootName(const std::string& path) {
  if (path.empty()) return path;
  if (!IsSayable(path)) {
    throw ToolError(kUsage, path +
                                " cannot be used: ROOT reads more than a name from ? # $ :/ and from a blank at the "
                                "end; choose another name");
  }
  const bool has_meaning = std::strchr("~ ", path.front()) || path.find(':') != std::string::npos;
  return has_meaning && path.front() != '/' ? "./" + path : path;
}

void RequireNewName(const std::string& path, bool force) {
  RequireFree(path, force, "; choose another name, or --force to replace it");
  RequireFree(GetPartName(path), force,
              ", left by a program that was ended or is still at work; save what is in it, or --force to replace it");
}

void RequireOtherFile(const std::string& input, const std::string& output) {
  for (const std::string& written : {output, GetPartName(output)}) {
    if (!IsSameFile(input, written)) continue;
    throw ToolError(kUsage, input + " would be overwritten, as the output is first called " + GetPartName(output) +
                                "; choose another name for OUT");
  }
}

std::string GetPartName(const std::string& path) { return path + ".part"; }

void RemovePart(const std::string& path) { unlink(GetPartName(path).c_str()); }

void FinishPart(const std::string& path) {
  if (std::rename(GetPartName(path).c_str(), path.c_str()) != 0) {
    const std::string reason = std::strerror(errno);
    RemovePart(path);
    throw ToolError(kCannotWrite,
                    path + " could not be written (" + reason + ") and was not kept; choose another place");
  }
  SyncFolder(path);
}

}  // namespace StnTools
