#ifndef tools_ReadBack_h
#define tools_ReadBack_h

#include "ChecksumList.h"
#include "InputFile.h"

#include <string>

namespace StnTools {

/// Reads every event of a file and computes its checksums. Throws as `InputFile::ReadEvent`.
ChecksumList ReadChecksums(InputFile& file);

/// Throws with `kDamage` unless the events that were read from `path` are those that were written to it.
void RequireEqual(const std::string& path, const ChecksumList& written, const ChecksumList& read);

}  // namespace StnTools

#endif
