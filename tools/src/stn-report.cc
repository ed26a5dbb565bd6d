#include "Browser.h"
#include "CommandLine.h"
#include "InputFile.h"
#include "Page.h"
#include "ProgressBar.h"
#include "RunSummary.h"
#include "ToolError.h"

#include <StnEvent/StnEventVersion.h>

namespace {

using namespace StnTools;

const PictureSize kFigure = {1400, 2250};

struct Options {
  std::string fInput;
  std::string fOutput;
  std::string fPng;
  bool fHeaders = false;
  bool fForce = false;
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.fInput, "station file to read")->required();
  app.add_flag("--headers", options.fHeaders, "read event headers only, which is far faster: no pixel occupancy then");
  app.add_option("-o,--output", options.fOutput, "page to write (default: the standard output)")->type_name("HTML");
  app.add_option("--png", options.fPng, "draw the page into this picture, by Chromium, for papers")->type_name("PNG");
  app.add_flag("-f,--force", options.fForce, "replace what exists");
}

void AddEvent(InputFile& file, UInt_t entry, bool is_whole, RunSummary& summary) {
  try {
    if (!is_whole) return summary.AddHeader(file.ReadEventHeader(entry));
    TStnEvent& event = *file.ReadEvent(entry);
    summary.AddHeader(*event.GetEventHeader());
    summary.AddPixels(*event.GetPixelList());
  } catch (const ToolError& error) {
    summary.AddUnreadable(error.what());
  }
}

std::string FormatRunHeader(InputFile& file) {
  if (!file.HasRunHeader()) return "null";
  const auto header = file.ReadRunHeader();
  return R"({"run":)" + std::to_string(header->GetRunNo()) + R"(,"station":)" + std::to_string(header->GetStnNo()) +
         R"(,"start":)" + FormatJsonText(header->GetStartTime().AsString("i")) + R"(,"user":)" +
         FormatJsonText(header->GetUserName().Data()) + R"(,"comment":)" +
         FormatJsonText(header->GetUserComment().Data()) + "}";
}

std::string FormatRunTrailer(InputFile& file) {
  if (!file.HasRunTrailer()) return "null";
  const auto trailer = file.ReadRunTrailer();
  return R"({"events":)" + std::to_string(trailer->GetNEvents()) + R"(,"stop":)" +
         FormatJsonText(trailer->GetStopTime().AsString("i")) + R"(,"seconds":)" +
         std::to_string(trailer->GetTotalTime()) + "}";
}

std::string MakePage(const Options& options, InputFile& file, const RunSummary& summary) {
  const std::string json = R"({"file":)" + FormatJsonText(options.fInput) + R"(,"isRecovered":)" +
                           (file.GetState() == kFine ? "false" : "true") + R"(,"version":)" +
                           FormatJsonText(kStnEventVersionString) + R"(,"header":)" + FormatRunHeader(file) +
                           R"(,"trailer":)" + FormatRunTrailer(file) + R"(,"summary":)" + summary.FormatJson() + "}";
  return FillPage(kReportPage, "Report of " + options.fInput, json);
}

int Report(const Options& options) {
  GuardAgainstCrash("stn-report", options.fInput.c_str());
  InputFile file("stn-report", options.fInput);
  RunSummary summary;
  {
    ProgressBar progress(file.GetNEvents());
    for (UInt_t entry = 0; entry < file.GetNEvents(); ++entry) {
      AddEvent(file, entry, !options.fHeaders, summary);
      progress.Show(entry + 1);
    }
  }
  const std::string page = MakePage(options, file, summary);
  if (!options.fPng.empty()) DrawPage(page, options.fPng, options.fForce, kFigure);
  if (options.fPng.empty() || !options.fOutput.empty()) WritePage(options.fOutput, options.fForce, page);
  return summary.HasUnreadable() ? kDamage : file.GetState();
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("stn-report",
                    "Makes one page that shows a run at a glance: rate, classes, mirrors, dead times, pixels, offsets.",
                    AddOptions, Report, argc, argv);
}
