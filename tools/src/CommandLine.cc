#include "CommandLine.h"

#include "ExitCode.h"
#include "ToolError.h"

#include <StnEvent/StnEventVersion.h>

#include <cstdio>
#include <iostream>

namespace StnTools {

const char* const kExitCodeHelp =
    "Exit codes: 0 fine; 1 the file is damaged or incomplete, or a check failed; 2 wrong command line; 3 the input\n"
    "cannot be opened or is no station file; 4 the output exists or could not be written whole.";

int RunApp(CLI::App& app, int argc, char** argv, const std::function<int()>& work) {
  app.footer(kExitCodeHelp);
  app.set_version_flag("--version", app.get_name() + " (" + kStnEventVersionString + ")");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kFine : kUsage;
  }
  try {
    int code = work();
    if (!std::cout.flush()) throw ToolError(kCannotWrite, "the output could not be written");
    return code;
  } catch (const ToolError& error) {
    std::cerr << app.get_name() << ": " << error.what() << std::endl;
    return error.GetCode();
  } catch (const std::exception& error) {
    std::cerr << app.get_name() << ": " << error.what() << std::endl;
    return kDamage;
  }
}

int EndUnexpectedly(const char* name) noexcept {
  std::fprintf(stderr, "%s: out of memory, or an error in the program\n", name);
  return kDamage;
}

}  // namespace StnTools
