#ifndef tools_CommandLine_h
#define tools_CommandLine_h

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace StnTools {

/// What stands below the options in each program's help: the exit codes.
extern const char* const kExitCodeHelp;

/// Runs a program: adds `--version`, reads the command line, and then does `work`, whose result is the exit code. Help
/// and mistakes in the command line are dealt with before anything of ROOT is touched. An error ends in one line on the
/// standard error stream.
int RunProgram(CLI::App& app, int argc, char** argv, const std::function<int()>& work);

}  // namespace StnTools

#endif
