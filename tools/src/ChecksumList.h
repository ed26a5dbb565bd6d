#ifndef tools_ChecksumList_h
#define tools_ChecksumList_h

#include "EventChecksum.h"

#include <string>
#include <vector>

namespace StnTools {

/// The checksums of the events of a run, in the order of the events, and their form on disk: a JSON object with
/// "format", "events" (for each event its four checksums as hexadecimal digits, in the order of `EventPart`) and
/// "combined".
class ChecksumList {
 public:
  /// Reads a list. Throws a `ToolError` with `kCannotOpen` if the file is missing or holds none.
  static ChecksumList Read(const std::string& path);

  /// Writes the list. Throws a `ToolError` with `kCannotWrite` if that fails.
  void Write(const std::string& path) const;

  void Add(const EventChecksum& checksum) { fEvents.push_back(checksum); }
  size_t GetSize() const { return fEvents.size(); }
  const EventChecksum& Get(size_t i) const { return fEvents.at(i); }

  /// One checksum over all.
  std::uint64_t GetCombined() const;

 private:
  std::vector<EventChecksum> fEvents;
};

}  // namespace StnTools

#endif
