#ifndef tools_FileFrame_h
#define tools_FileFrame_h

#include <cstdint>
#include <string>

namespace StnTools {

/// What the first bytes of a file tell before ROOT is asked.
struct FileFrame {
  std::uint64_t fSize;  ///< bytes that are there
  std::uint64_t fEnd;   ///< bytes that a ROOT file says it has; 0 if it is none, or if its writer has not ended it
  int fCompression;     ///< ROOT's setting for what is written to it; 1 if the file names none that exists

  /// Did the file have more bytes once?
  bool IsCutShort() const { return fEnd > fSize; }
};

/// Looks at a file. Throws a `ToolError` with `kCannotOpen` if it is missing, no plain file, cannot be read, is empty,
/// or does not begin as a ROOT file does, and with `kDamage` if it ends before it tells more.
FileFrame ReadFileFrame(const std::string& path);

}  // namespace StnTools

#endif
