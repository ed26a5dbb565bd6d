#include "CommandLine.h"
#include "InputFile.h"

#include <iostream>
#include <vector>

namespace {

using namespace StnTools;

struct Options {
  std::string fInput;
  bool fFile = false;
  bool fHeader = false;
  bool fTrailer = false;
  std::vector<UInt_t> fEvents;

  bool IsAnythingChosen() const { return fFile || fHeader || fTrailer || !fEvents.empty(); }
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.fInput, "station file to read")->required();
  app.add_flag("--file", options.fFile, "show the file itself");
  app.add_flag("--header", options.fHeader, "show the run header");
  app.add_option("--event", options.fEvents, "show the event at this entry, counted from 0; may be repeated")
      ->type_name("ENTRY")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  app.add_flag("--trailer", options.fTrailer, "show the run trailer");
}

// Files of runs that were not ended well have no trailer; that is worth a word, not an error, if nobody asked for it.
void ShowOverview(InputFile& file) {
  file.Show(std::cout);
  if (file.HasRunHeader()) {
    file.ReadRunHeader()->Show(std::cout);
  } else {
    std::cout << "(no run header)" << std::endl;
  }
  if (file.HasRunTrailer()) {
    file.ReadRunTrailer()->Show(std::cout);
  } else {
    std::cout << "(no run trailer)" << std::endl;
  }
}

void ShowChosen(const Options& options, InputFile& file) {
  for (UInt_t entry : options.fEvents)
    file.RequireEntry(entry);
  if (options.fFile) file.Show(std::cout);
  if (options.fHeader) file.ReadRunHeader()->Show(std::cout);
  for (UInt_t entry : options.fEvents)
    file.ReadEvent(entry)->Show(std::cout);
  if (options.fTrailer) file.ReadRunTrailer()->Show(std::cout);
}

int Show(const Options& options) {
  GuardAgainstCrash("stn-show", options.fInput.c_str());
  InputFile file("stn-show", options.fInput);
  if (options.IsAnythingChosen()) {
    ShowChosen(options, file);
  } else {
    ShowOverview(file);
  }
  return file.GetState();
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("stn-show",
                    "Shows what a station file holds: by default the file itself, its run header and its run trailer.",
                    AddOptions, Show, argc, argv);
}
