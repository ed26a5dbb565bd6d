#include "CommandLine.h"
#include "HeaderRecord.h"
#include "HeaderSelection.h"
#include "HeaderTable.h"
#include "InputFile.h"

#include <algorithm>
#include <iostream>
#include <limits>

namespace {

using namespace StnTools;

/// A way to write headers.
struct Format {
  const char* fName;
  std::string (*fHead)();
  std::string (*fLine)(UInt_t entry, const TStnEventHeader& header);
};

const Format kFormats[] = {
    {"table", FormatTableHead, FormatTableRow},
    {"csv", FormatCsvHead, FormatCsvLine},
    {"jsonl", [] { return std::string(); }, FormatJsonLine},
};

const Format& GetFormat(const std::string& name) {
  return *std::find_if(std::begin(kFormats), std::end(kFormats),
                       [&name](auto& format) { return format.fName == name; });
}

struct Options {
  std::string fInput;
  std::string fFormat = "table";
  HeaderSelection fSelection;
  UInt_t fFirst = 0;
  UInt_t fCount = std::numeric_limits<UInt_t>::max();
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.fInput, "station file to read")->required();
  app.add_option("--first", options.fFirst, "first entry to look at, counted from 0")->capture_default_str();
  app.add_option("--count", options.fCount, "number of entries to look at (default: all)");
  app.add_option("--format", options.fFormat, "a table for people, or every field as CSV or as lines of JSON")
      ->check(CLI::IsMember({"table", "csv", "jsonl"}))
      ->capture_default_str();
  options.fSelection.AddOptions(app);
}

int ShowHeaders(const Options& options) {
  GuardAgainstCrash("stn-headers", options.fInput.c_str());
  InputFile file("stn-headers", options.fInput);
  if (options.fFirst > 0) file.RequireEntry(options.fFirst);
  UInt_t end = options.fFirst + std::min(options.fCount, file.GetNEvents() - options.fFirst);
  const Format& format = GetFormat(options.fFormat);
  std::cout << format.fHead();
  for (UInt_t entry = options.fFirst; entry < end; ++entry) {
    const TStnEventHeader& header = file.ReadEventHeader(entry);
    if (options.fSelection.Matches(header)) std::cout << format.fLine(entry, header);
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
