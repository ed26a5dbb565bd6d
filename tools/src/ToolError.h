#ifndef tools_ToolError_h
#define tools_ToolError_h

#include "ExitCode.h"

#include <stdexcept>
#include <string>

namespace StnTools {

/// Ends a program: its text, which names the file, what is wrong and what to do next, becomes one line on the standard
/// error stream, its code the answer to the shell.
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode code, const std::string& text) : std::runtime_error(text), fCode(code) {}

  ExitCode GetCode() const { return fCode; }

 private:
  ExitCode fCode;
};

}  // namespace StnTools

#endif
