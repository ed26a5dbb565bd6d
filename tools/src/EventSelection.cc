#include "EventSelection.h"

#include <algorithm>

namespace StnTools {

void EventSelection::AddOptions(CLI::App& app) {
  app.add_option("--first", fFirst, "first entry to look at, counted from 0")->capture_default_str();
  app.add_option("--count", fCount, "number of entries to look at (default: all)");
  fHeaders.AddOptions(app);
}

void EventSelection::RequireBegin(const InputFile& file) const {
  if (fFirst > 0) file.RequireEntry(fFirst);
}

void EventSelection::Visit(InputFile& file, const Visitor& visit) const {
  RequireBegin(file);
  const UInt_t end = fFirst + std::min(fCount, file.GetNEvents() - fFirst);
  for (UInt_t entry = fFirst; entry < end; ++entry) {
    const TStnEventHeader& header = file.ReadEventHeader(entry);
    if (fHeaders.Matches(header)) visit(entry, header);
  }
}

std::vector<UInt_t> EventSelection::Choose(InputFile& file) const {
  std::vector<UInt_t> entries;
  Visit(file, [&entries](UInt_t entry, const TStnEventHeader&) { entries.push_back(entry); });
  return entries;
}

}  // namespace StnTools
