#ifndef tools_FileName_h
#define tools_FileName_h

#include <string>

namespace StnTools {

/// Is this the address of a file on a server, as "https://server/run.root", and no name?
bool IsAddress(const std::string& path);

/// Throws with `kUsage` if `path` is an address.
void RequireName(const std::string& path);

/// The name under which ROOT opens the file `path` and no other. ROOT reads more than a name from `~`, `file:` and blanks
/// at the beginning; the name given back begins otherwise. Throws with `kUsage` for names that cannot be said so.
std::string GetRootName(const std::string& path);

/// Throws unless a new file may be made in two steps: written under the name `GetPartName(path)`, and then renamed. What
/// exists under one of the names is left alone, with `kCannotWrite`, unless it is a plain file and `force` is true.
void RequireNewName(const std::string& path, bool force);

/// Throws with `kUsage` if the file that is read would be overwritten while the other is written, under either of its
/// two names.
void RequireOtherFile(const std::string& input, const std::string& output);

/// The name of a file that is not finished.
std::string GetPartName(const std::string& path);

/// Takes away what was written under the name of the unfinished file; nothing happens if there is none.
void RemovePart(const std::string& path);

/// Gives the finished file its name, in place of one that had it, so that it stays when the power fails. Throws with
/// `kCannotWrite` if it could not be done; nothing is left of it then.
void FinishPart(const std::string& path);

}  // namespace StnTools

#endif
