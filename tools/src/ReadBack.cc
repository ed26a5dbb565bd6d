#include "ReadBack.h"

#include "ProgressBar.h"
#include "ToolError.h"

namespace StnTools {
namespace {

void RequireEqual(const std::string& path, UInt_t entry, const EventChecksum& written, const EventChecksum& read) {
  for (int part = 0; part < kNParts; ++part) {
    if (written[part] == read[part]) continue;
    throw ToolError(kDamage, path + ": the " + GetPartName(static_cast<EventPart>(part)) + " of event " +
                                 std::to_string(entry) + " did not come back as written (" +
                                 FormatChecksum(written[part]) + " before, " + FormatChecksum(read[part]) + " now)");
  }
}

}  // namespace

ChecksumList ReadChecksums(InputFile& file) {
  ChecksumList read;
  ProgressBar progress(file.GetNEvents());
  for (UInt_t entry = 0; entry < file.GetNEvents(); ++entry) {
    read.Add(ComputeChecksum(*file.ReadEvent(entry)));
    progress.Show(entry + 1);
  }
  return read;
}

void RequireEqual(const std::string& path, const ChecksumList& written, const ChecksumList& read) {
  if (written.GetSize() != read.GetSize()) {
    throw ToolError(kDamage, path + " has " + std::to_string(read.GetSize()) + " events, but " +
                                 std::to_string(written.GetSize()) + " were written");
  }
  for (UInt_t entry = 0; entry < read.GetSize(); ++entry)
    RequireEqual(path, entry, written.Get(entry), read.Get(entry));
}

}  // namespace StnTools
