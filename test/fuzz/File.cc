// Whole files: a file object, its run records, and its events one by one, headers alone first.

#include "Target.h"

#include <StnEvent/StnEventFile.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <string>

namespace {

constexpr UInt_t kMaxEvents = 10;

/// A file in memory that has a name.
class NamedFile {
 public:
  NamedFile(const char* data, size_t size) : fDescriptor(memfd_create("input", 0)) {
    if (write(fDescriptor, data, size) != static_cast<ssize_t>(size)) abort();
  }
  ~NamedFile() { close(fDescriptor); }
  NamedFile(const NamedFile&) = delete;
  NamedFile& operator=(const NamedFile&) = delete;
  std::string GetName() const { return "/proc/self/fd/" + std::to_string(fDescriptor); }

 private:
  int fDescriptor;
};

void ReadHeaders(TStnEventFile& file) {
  TStnEventHeader* header = nullptr;
  for (UInt_t i = 0; i < kMaxEvents && file.ReadEventHeader(&header); ++i)
    Use(*header);
}

void ReadEvents(TStnEventFile& file) {
  TStnEvent* event = nullptr;
  file.Rewind();
  for (UInt_t i = 0; i < kMaxEvents && file.ReadEvent(&event); ++i)
    Use(*event);
  delete event;
}

void ReadRun(TStnEventFile& file) {
  TStnRunHeader* header = nullptr;
  TStnRunTrailer* trailer = nullptr;
  if (file.ReadRunHeader(&header)) Use(*header);
  if (file.ReadRunTrailer(&trailer)) Use(*trailer);
  delete header;
  delete trailer;
}

}  // namespace

void ReadInput(char* data, size_t size) {
  const NamedFile input(data, size);
  TStnEventFile file(input.GetName().c_str());
  if (file.IsZombie()) return;
  ReadRun(file);
  ReadHeaders(file);
  ReadEvents(file);
}
