#ifndef IoShim_h
#define IoShim_h

/// Stands between a program and its system calls: those on files with a certain name fail when told, or are written
/// down. Linked into a test it is set by `IoShim::Set`; preloaded into a program, by the variables of the environment
/// that stand beside the members.
namespace IoShim {

struct Settings {
  const char* fFile = nullptr;  ///< IO_SHIM_FILE: part of the path of the files that are meant; none: nothing happens
  const char* fCall = "";       ///< IO_SHIM_CALL: the call that fails: write, fsync, close or rename
  int fNth = 0;                 ///< IO_SHIM_NTH: which of these calls, counted from 1
  bool fLasting = false;        ///< IO_SHIM_LASTING: also all later calls of this kind
  int fError = 0;  ///< IO_SHIM_ERROR: what the call sets errno to; 0: a write takes half of the bytes instead
  const char* fLog = nullptr;  ///< IO_SHIM_LOG: file that takes down what reaches the system, in order
};

/// Begins anew with these settings.
void Set(const Settings& settings);
/// How many calls failed since then.
int GetNFailures();

}  // namespace IoShim

#endif
