#include "HeaderTable.h"

#include "HeaderNames.h"

#include <VdUtil/VdNumbering.h>

#include <iomanip>
#include <sstream>
#include <vector>

namespace StnTools {
namespace {

struct Column {
  const char* fName;
  int fWidth;
  bool fIsNumber;  // numbers stand at the right of their column
};

const Column kColumns[] = {
    {"entry", 7, true},    {"event", 8, true},    {"GPS sec", 10, true}, {"ns", 9, true},
    {"UTC", 30, false},    {"type", 12, false},   {"class", 19, false},  {"mirrors", 7, false},
    {"T3", 5, true},       {"quality", 8, false}, {"offset 1", 8, true}, {"offset 2", 8, true},
    {"offset 3", 8, true}, {"offset 4", 8, true}, {"offset 5", 8, true}, {"offset 6", 8, true},
};

std::string FormatLine(const std::vector<std::string>& cells) {
  std::ostringstream line;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i != 0) line << "  ";
    line << (kColumns[i].fIsNumber ? std::right : std::left) << std::setw(kColumns[i].fWidth) << cells[i];
  }
  std::string text = line.str();
  return text.substr(0, text.find_last_not_of(' ') + 1) + "\n";
}

std::string GetMirrors(const TStnEventHeader& header) {
  std::string mirrors;
  for (UInt_t mirror = 1; mirror <= VdUtil::Vd::kSTN_NMIRRORS; ++mirror) {
    mirrors += header.IsMirrorDataPresent(mirror) ? std::to_string(mirror) : "-";
  }
  return mirrors;
}

}  // namespace

std::string FormatTableHead() {
  std::vector<std::string> names;
  std::vector<std::string> rules;
  for (const Column& column : kColumns) {
    names.emplace_back(column.fName);
    rules.emplace_back(column.fWidth, '-');
  }
  return FormatLine(names) + FormatLine(rules);
}

std::string FormatTableRow(UInt_t entry, const TStnEventHeader& header) {
  const VdRoot::TTimeStamp& time = *header.GetTimeStamp();
  std::vector<std::string> cells = {std::to_string(entry),
                                    std::to_string(header.GetEventNo()),
                                    std::to_string(time.GetGPSSec()),
                                    std::to_string(time.GetNanoSec()),
                                    time.AsString("i"),
                                    GetShortName(header.GetEventType()),
                                    GetShortName(header.GetEventClass()),
                                    GetMirrors(header),
                                    header.GetT3Id() == 0 ? "-" : std::to_string(header.GetT3Id()),
                                    GetShortName(header.GetTimeCorrectionQuality())};
  for (UInt_t mirror = 1; mirror <= VdUtil::Vd::kSTN_NMIRRORS; ++mirror) {
    cells.push_back(header.IsMirrorDataPresent(mirror) ? std::to_string(header.GetMirrorTimeOffset(mirror)) : "-");
  }
  return FormatLine(cells);
}

}  // namespace StnTools
