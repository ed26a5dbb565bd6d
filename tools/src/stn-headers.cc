#include "CommandLine.h"
#include "EventSelection.h"
#include "HeaderRecord.h"
#include "HeaderTable.h"

#include <algorithm>
#include <iostream>

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
  EventSelection fSelection;
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.fInput, "station file to read")->required();
  app.add_option("--format", options.fFormat, "a table for people, or every field as CSV or as lines of JSON")
      ->check(CLI::IsMember({"table", "csv", "jsonl"}))
      ->capture_default_str();
  options.fSelection.AddOptions(app);
}

int ShowHeaders(const Options& options) {
  GuardAgainstCrash("stn-headers", options.fInput.c_str());
  InputFile file("stn-headers", options.fInput);
  options.fSelection.RequireBegin(file);
  const Format& format = GetFormat(options.fFormat);
  std::cout << format.fHead();
  options.fSelection.Visit(
      file, [&format](UInt_t entry, const TStnEventHeader& header) { std::cout << format.fLine(entry, header); });
  return file.GetState();
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram(
      "stn-headers",
      "Lists the event headers of a station file, one line each, without reading anything else of the events.",
      AddOptions, ShowHeaders, argc, argv);
}
