// What all targets have in common: libFuzzer calls these two.

#include "Target.h"

#include <VdUtil/ErrorLogger.h>

#include <TError.h>
#include <TFile.h>
#include <TSystem.h>
#include <TSystemDirectory.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <iostream>
#include <memory>
#include <string>

namespace {

constexpr size_t kRoom = 1 << 20;  // a multiple of the page size; longer inputs are left out

/// Memory that ends where the process may not read. ROOT is built without sanitizers, and so is seen to read too far.
char* MakeRoom() {
  const size_t page = sysconf(_SC_PAGESIZE);
  void* room = mmap(nullptr, kRoom + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  mprotect(static_cast<char*>(room) + kRoom, page, PROT_NONE);
  return static_cast<char*>(room);
}

/// The descriptions of all class versions, which ROOT takes from any file that it opens.
void LearnOldVersions() {
  TSystemDirectory folder("old", OLD_GOLDEN_FILES);
  const std::unique_ptr<TList> files(folder.GetListOfFiles());
  for (const TObject* file : *files) {
    const std::string name = file->GetName();
    if (name.find(".root") != std::string::npos) TFile((std::string(OLD_GOLDEN_FILES "/") + name).c_str());
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // ROOT's handlers would hide a crash.
  gSystem->ResetSignals();
  LearnOldVersions();
  // What the readers say about bad input is right, and too much of it.
  gErrorIgnoreLevel = kFatal;
  VdUtil::ErrorLogger::GetInstance().SetStream(nullptr);
  std::cout.setstate(std::ios::failbit);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static char* const room = MakeRoom();
  if (size > kRoom) return 0;
  char* const input = room + kRoom - size;
  std::memcpy(input, data, size);
  ReadInput(input, size);
  return 0;
}
