#include "CommandLine.h"
#include "EventSelection.h"
#include "RunCopy.h"

namespace {

using namespace StnTools;

struct Options {
  std::string fInput;
  std::string fOutput;
  EventSelection fSelection;
  bool fForce = false;
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("IN", options.fInput, "station file to read")->required();
  app.add_option("OUT", options.fOutput, "station file to write")->required();
  options.fSelection.AddOptions(app);
  app.add_flag("-f,--force", options.fForce, "replace OUT if it exists");
}

int Split(const Options& options) {
  return RunCopy("stn-split", {options.fInput}, options.fOutput, options.fForce).Run([&options](InputFile& file) {
    return options.fSelection.Choose(file);
  });
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram(
      "stn-split",
      "Writes some events of a station file to another: a range of entries, or those that are selected "
      "by their headers. Every event is read back from the new file and compared before the file gets its "
      "name.",
      AddOptions, Split, argc, argv);
}
