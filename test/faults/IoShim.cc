#include "IoShim.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

IoShim::Settings gSettings;
int gNCalls = 0;
int gNFailures = 0;
int gLog = -1;

const char* GetText(const char* name, const char* otherwise) {
  const char* text = getenv(name);
  return text ? text : otherwise;
}

int GetNumber(const char* name) { return atoi(GetText(name, "0")); }

/// Reads the environment when the library is loaded.
const struct Environment {
  Environment() {
    IoShim::Settings settings;
    settings.fFile = GetText("IO_SHIM_FILE", nullptr);
    settings.fCall = GetText("IO_SHIM_CALL", "");
    settings.fNth = GetNumber("IO_SHIM_NTH");
    settings.fLasting = GetNumber("IO_SHIM_LASTING") != 0;
    settings.fError = GetNumber("IO_SHIM_ERROR");
    settings.fLog = GetText("IO_SHIM_LOG", nullptr);
    IoShim::Set(settings);
  }
} gEnvironment;

template <typename Function>
Function GetNext(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

bool IsMeant(const char* path) { return gSettings.fFile && strstr(path, gSettings.fFile); }

bool IsMeant(int file) {
  if (!gSettings.fFile || file == gLog) return false;
  char link[64];
  char path[PATH_MAX + 1] = {};
  snprintf(link, sizeof(link), "/proc/self/fd/%d", file);
  return readlink(link, path, PATH_MAX) > 0 && IsMeant(path);
}

bool IsToFail(const char* call) {
  if (strcmp(call, gSettings.fCall) != 0) return false;
  ++gNCalls;
  if (gNCalls != gSettings.fNth && !(gSettings.fLasting && gNCalls > gSettings.fNth)) return false;
  ++gNFailures;
  return true;
}

/// One entry of the log: the kind of call, two numbers, and bytes.
void TakeDown(char kind, std::int64_t place, std::int64_t length, const void* bytes) {
  if (gLog < 0) return;
  const std::int64_t numbers[] = {place, length};
  syscall(SYS_write, gLog, &kind, 1);
  syscall(SYS_write, gLog, numbers, sizeof(numbers));
  if (bytes) syscall(SYS_write, gLog, bytes, length);
}

int Fail() {
  errno = gSettings.fError;
  return -1;
}

}  // namespace

void IoShim::Set(const Settings& settings) {
  gSettings = settings;
  gNCalls = gNFailures = 0;
  if (settings.fLog) gLog = open(settings.fLog, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
}

int IoShim::GetNFailures() { return gNFailures; }

extern "C" {

ssize_t write(int file, const void* bytes, size_t length) {
  static const auto next = GetNext<ssize_t (*)(int, const void*, size_t)>("write");
  if (!IsMeant(file)) return next(file, bytes, length);
  const bool is_to_fail = IsToFail("write");
  if (is_to_fail && gSettings.fError != 0) return Fail();
  if (is_to_fail) length /= 2;
  TakeDown('W', lseek(file, 0, SEEK_CUR), static_cast<std::int64_t>(length), bytes);
  return next(file, bytes, length);
}

int fsync(int file) {
  static const auto next = GetNext<int (*)(int)>("fsync");
  if (!IsMeant(file)) return next(file);
  if (IsToFail("fsync")) return Fail();
  TakeDown('S', 0, 0, nullptr);
  return next(file);
}

int close(int file) {
  static const auto next = GetNext<int (*)(int)>("close");
  const bool is_to_fail = IsMeant(file) && IsToFail("close");
  const int result = next(file);
  return is_to_fail ? Fail() : result;
}

int rename(const char* from, const char* to) {
  static const auto next = GetNext<int (*)(const char*, const char*)>("rename");
  if (!IsMeant(from)) return next(from, to);
  if (IsToFail("rename")) return Fail();
  TakeDown('R', 0, 0, nullptr);
  return next(from, to);
}

}  // extern "C"
