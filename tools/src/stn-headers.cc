#include "CommandLine.h"
#include "HeaderTable.h"
#include "InputFile.h"

#include <algorithm>
#include <iostream>
#include <limits>

namespace {

using namespace StnTools;

struct Options {
  std::string fInput;
  UInt_t fFirst = 0;
  UInt_t fCount = std::numeric_limits<UInt_t>::max();
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.fInput, "station file to read")->required();
  app.add_option("--first", options.fFirst, "entry of the first header, counted from 0")->capture_default_str();
  app.add_option("--count", options.fCount, "number of headers (default: all)");
}

int ShowHeaders(const Options& options) {
  GuardAgainstCrash("stn-headers", options.fInput.c_str());
  InputFile file("stn-headers", options.fInput);
  if (options.fFirst > 0) file.RequireEntry(options.fFirst);
  UInt_t end = options.fFirst + std::min(options.fCount, file.GetNEvents() - options.fFirst);
  std::cout << FormatTableHead();
  for (UInt_t entry = options.fFirst; entry < end; ++entry) {
    std::cout << FormatTableRow(entry, file.ReadEventHeader(entry));
  }
  return file.GetState();
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram(
      "stn-headers",
      "Lists the event headers of a station file, one line each, without reading anything else of the events.",
      AddOptions, ShowHeaders, argc, argv);
}
