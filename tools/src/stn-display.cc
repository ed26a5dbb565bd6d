#include "Browser.h"
#include "CommandLine.h"
#include "EventPicture.h"
#include "InputFile.h"
#include "Page.h"
#include "ToolError.h"

#include <StnEvent/StnEventVersion.h>

#include <deque>

namespace {

using namespace StnTools;

// A page that a phone still opens: events are added up to so many bytes.
const size_t kEnoughBytes = 16000000;
const PictureSize kFigure = {1600, 900};

struct Options {
  std::string fInput;
  std::string fOutput;
  std::string fPng;
  UInt_t fEvent = 0;
  UInt_t fCount = 20;
  bool fForce = false;
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.fInput, "station file to read")->required();
  app.add_option("-e,--event", options.fEvent, "event to show first, by its entry, counted from 0")
      ->type_name("ENTRY")
      ->capture_default_str();
  app.add_option("-n,--count", options.fCount,
                 "events in the page, the asked one in the middle; fewer if the page would be larger than 16 MB")
      ->check(CLI::Range(1, 1000))
      ->capture_default_str();
  app.add_option("-o,--output", options.fOutput, "page to write (default: the standard output)")->type_name("HTML");
  app.add_option("--png", options.fPng, "draw the event into this picture, by Chromium, for papers")->type_name("PNG");
  app.add_flag("-f,--force", options.fForce, "replace what exists");
}

/// Reads the asked event and as many neighbours as fit, in turns behind and before.
class Events {
 public:
  Events(InputFile& file, UInt_t asked) : fFile(file), fFirst(asked), fEnd(asked + 1) {
    fTexts.push_back(FormatPicture(asked, *file.ReadEvent(asked)));
    fBytes = fTexts.front().size();
  }

  void Surround(UInt_t count) {
    const UInt_t asked = fFirst;
    while (fTexts.size() < count && fBytes < kEnoughBytes && (fFirst > 0 || fEnd < fFile.GetNEvents())) {
      const bool is_turn = fEnd - 1 - asked <= asked - fFirst;
      if (fEnd < fFile.GetNEvents() && (is_turn || fFirst == 0)) {
        fTexts.push_back(Read(fEnd++));
        fBytes += fTexts.back().size();
      } else {
        fTexts.push_front(Read(--fFirst));
        fBytes += fTexts.front().size();
      }
    }
  }

  std::string Format() const {
    std::string list;
    for (const std::string& text : fTexts)
      list += (list.empty() ? "" : ",\n") + text;
    return "[" + list + "]";
  }

  bool IsDamaged() const { return fIsDamaged; }

 private:
  // A neighbour that can't be read does not take the others away.
  std::string Read(UInt_t entry) {
    try {
      return FormatPicture(entry, *fFile.ReadEvent(entry));
    } catch (const ToolError& error) {
      fIsDamaged = true;
      return R"({"entry":)" + std::to_string(entry) + R"(,"error":)" + FormatJsonText(error.what()) + "}";
    }
  }

  InputFile& fFile;
  UInt_t fFirst;
  UInt_t fEnd;
  std::deque<std::string> fTexts;
  size_t fBytes;
  bool fIsDamaged = false;
};

std::string MakePage(const Options& options, const InputFile& file, const Events& events) {
  const std::string json = R"({"file":)" + FormatJsonText(options.fInput) + R"(,"eventsOnFile":)" +
                           std::to_string(file.GetNEvents()) + R"(,"asked":)" + std::to_string(options.fEvent) +
                           R"(,"version":)" + FormatJsonText(kStnEventVersionString) + R"(,"events":)" +
                           events.Format() + "}";
  return FillPage(kDisplayPage, "Event " + std::to_string(options.fEvent) + " of " + options.fInput, json);
}

int Display(const Options& options) {
  GuardAgainstCrash("stn-display", options.fInput.c_str());
  InputFile file("stn-display", options.fInput);
  Events events(file, options.fEvent);
  if (!options.fPng.empty()) DrawPage(MakePage(options, file, events), options.fPng, options.fForce, kFigure);
  if (!options.fPng.empty() && options.fOutput.empty()) return file.GetState();
  events.Surround(options.fCount);
  WritePage(options.fOutput, options.fForce, MakePage(options, file, events));
  return events.IsDamaged() ? kDamage : file.GetState();
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("stn-display",
                    "Makes one page of events of a station file, to be looked at in any browser, without a network:\n"
                    "cameras coloured by time or signal, and the trace of each pixel.",
                    AddOptions, Display, argc, argv);
}
