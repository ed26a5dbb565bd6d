#include "CommandLine.h"
#include "RunCopy.h"

#include <numeric>

namespace {

using namespace StnTools;

struct Options {
  std::vector<std::string> fInputs;
  std::string fOutput;
  bool fForce = false;
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("IN", options.fInputs, "station files of one run, in the order in which their events shall stand")
      ->required();
  app.add_option("-o,--output", options.fOutput, "station file to write")->required()->type_name("OUT");
  app.add_flag("-f,--force", options.fForce, "replace OUT if it exists");
}

std::vector<UInt_t> ChooseAll(InputFile& file) {
  std::vector<UInt_t> entries(file.GetNEvents());
  std::iota(entries.begin(), entries.end(), 0);
  return entries;
}

int Merge(const Options& options) {
  return RunCopy("stn-merge", options.fInputs, options.fOutput, options.fForce).Run(ChooseAll);
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("stn-merge",
                    "Joins station files of one run. Every event is read back from the new file and compared before "
                    "the file gets its name.",
                    AddOptions, Merge, argc, argv);
}
