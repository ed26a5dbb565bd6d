#ifndef tools_ExitCode_h
#define tools_ExitCode_h

namespace StnTools {

/// What every program of this folder answers to the shell.
enum ExitCode {
  kFine = 0,         ///< done, and nothing wrong was seen
  kDamage = 1,       ///< the file is damaged or incomplete, or a check failed; what could be read was shown
  kUsage = 2,        ///< the command line asks for something that does not exist or contradicts itself
  kCannotOpen = 3,   ///< an input is missing, cannot be opened, or is no station file
  kCannotWrite = 4,  ///< the output exists already or could not be written whole; nothing is left under its name
};

}  // namespace StnTools

#endif
