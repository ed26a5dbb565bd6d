#ifndef tools_CommandLine_h
#define tools_CommandLine_h

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace StnTools {

/// What stands below the options in each program's help: the exit codes.
extern const char* const kExitCodeHelp;

/// Adds `--version` to a program's options, reads the command line, and then does `work`, whose result is the exit code.
/// Help and mistakes in the command line are dealt with before anything of ROOT is touched. An error ends in one line on
/// the standard error stream.
int RunApp(CLI::App& app, int argc, char** argv, const std::function<int()>& work);

/// Answers `kDamage` after a line that says that something went wrong that nobody thought of.
int EndUnexpectedly(const char* name) noexcept;

/// A whole program: `add_options` ties the command line to the options, `work` does what they ask for.
template <typename Options>
int RunProgram(const char* name, const char* description, void (*add_options)(CLI::App&, Options&),
               int (*work)(const Options&), int argc, char** argv) {
  try {
    Options options;
    CLI::App app(description, name);
    add_options(app, options);
    return RunApp(app, argc, argv, [work, &options] { return work(options); });
  } catch (...) {
    return EndUnexpectedly(name);
  }
}

}  // namespace StnTools

#endif
