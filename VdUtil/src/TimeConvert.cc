#include <VdUtil/TimeConvert.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>

#include <VdUtil/ErrorLogger.h>

namespace VdUtil {

namespace {

typedef TimeConvert::_LeapSecondEntryRec Entry;
typedef std::vector<Entry> Table;

/// An entry that begins at a date of UTC; midnight, in Unix seconds.
constexpr Entry MakeEntry(UInt_t midnight, UInt_t n_leap_seconds) {
  return {midnight - TimeConvert::kGPSEpoch + n_leap_seconds, n_leap_seconds};
}

// GPS - UTC since the GPS epoch: International Earth Rotation and Reference Systems Service (IERS), Bulletin C, numbers
// up to 52, as collected in the file Leap_Second.dat (TAI - UTC, of which GPS - UTC is 19 less).
constexpr Entry kLeapSeconds[] = {
    MakeEntry(315964800, 0),    // 1980-01-06
    MakeEntry(362793600, 1),    // 1981-07-01
    MakeEntry(394329600, 2),    // 1982-07-01
    MakeEntry(425865600, 3),    // 1983-07-01
    MakeEntry(489024000, 4),    // 1985-07-01
    MakeEntry(567993600, 5),    // 1988-01-01
    MakeEntry(631152000, 6),    // 1990-01-01
    MakeEntry(662688000, 7),    // 1991-01-01
    MakeEntry(709948800, 8),    // 1992-07-01
    MakeEntry(741484800, 9),    // 1993-07-01
    MakeEntry(773020800, 10),   // 1994-07-01
    MakeEntry(820454400, 11),   // 1996-01-01
    MakeEntry(867715200, 12),   // 1997-07-01
    MakeEntry(915148800, 13),   // 1999-01-01
    MakeEntry(1136073600, 14),  // 2006-01-01
    MakeEntry(1230768000, 15),  // 2009-01-01
    MakeEntry(1341100800, 16),  // 2012-07-01
    MakeEntry(1435708800, 17),  // 2015-07-01
    MakeEntry(1483228800, 18),  // 2017-01-01
};

// From here on a GPS second is a wrapped number of a time before the GPS epoch.
constexpr UInt_t kFirstBeforeEpoch = 0u - TimeConvert::kGPSEpoch;

constexpr time_t kLastUnixTime = 0xFFFFFFFF;
const char kDefaultFormat[] = "%Y-%m-%d %H:%M:%S UTC";

// Made at first use and never destroyed: static objects of other libraries and exit handlers log with the time.
Table& GetTable() {
  static Table& table = *new Table(std::begin(kLeapSeconds), std::end(kLeapSeconds));
  return table;
}

UInt_t GetFirstUnixTime(const Entry& entry) { return entry.fGPSTime + TimeConvert::kGPSEpoch - entry.fNLeapSeconds; }

tm GetTm(time_t unix_time) {
  tm date;
  gmtime_r(&unix_time, &date);
  return date;
}

/// Reads "2017-01-01 18"; false when the text is something else or the date does not exist.
bool ParseEntry(const std::string& text, Entry& entry) {
  tm date = {};
  int count = 0;
  std::string rest;
  std::istringstream line(text);
  if (!(line >> std::get_time(&date, "%Y-%m-%d") >> count) || line >> rest) return false;
  const int day = date.tm_mday;
  const time_t midnight = timegm(&date);
  entry = MakeEntry(static_cast<UInt_t>(midnight), count);
  return date.tm_mday == day && count >= 0 && midnight >= TimeConvert::kGPSEpoch && midnight <= kLastUnixTime;
}

/// Why an entry can't follow those before it; null when it can.
const char* FindFault(const Table& before, const Entry& entry) {
  if (before.empty()) return entry.fGPSTime || entry.fNLeapSeconds ? "the first entry is not 1980-01-06 0" : nullptr;
  if (GetFirstUnixTime(entry) <= GetFirstUnixTime(before.back())) return "the date does not rise";
  const UInt_t last = before.back().fNLeapSeconds;
  return entry.fNLeapSeconds + 1 == last || entry.fNLeapSeconds == last + 1 ? nullptr
                                                                            : "the count does not change by one";
}

/// Adds the entry in a line of the file, if there is one; gives the fault, or null.
const char* ReadLine(std::string line, Table& table) {
  line.erase(std::min(line.find('#'), line.size()));
  if (line.find_first_not_of(" \t\r") == std::string::npos) return nullptr;
  Entry entry;
  if (!ParseEntry(line, entry)) return "neither a comment nor a date with a count";
  const char* fault = FindFault(table, entry);
  table.push_back(entry);
  return fault;
}

bool Complain(const std::string& place, const char* fault) {
  VD_ERROR << "TimeConvert::ReadLeapSecondTable() - " << place << ": " << fault << ", the table in use stays"
           << std::endl;
  return false;
}

}  // namespace

std::vector<Entry>& TimeConvert::fLeapSecondTable = GetTable();

UInt_t TimeConvert::GetLeapSeconds(UInt_t gps) {
  if (gps >= kFirstBeforeEpoch) return 0;
  const Table& table = GetTable();
  const auto next = std::upper_bound(table.begin(), table.end(), Entry{gps, 0}, LeapSecondEntryLess);
  return std::prev(next)->fNLeapSeconds;
}

UInt_t TimeConvert::GetUnixTimeFromGPSTime(UInt_t gps) { return gps + kGPSEpoch - GetLeapSeconds(gps); }

UInt_t TimeConvert::GetGPSTimeFromUnixTime(UInt_t unix_time) {
  if (unix_time < kGPSEpoch) return unix_time - kGPSEpoch;
  const Table& table = GetTable();
  const auto is_earlier = [](UInt_t time, const Entry& entry) { return time < GetFirstUnixTime(entry); };
  const auto next = std::upper_bound(table.begin(), table.end(), unix_time, is_earlier);
  return unix_time - kGPSEpoch + std::prev(next)->fNLeapSeconds;
}

bool TimeConvert::IsLeapBoundary(UInt_t gps) { return GetLeapSeconds(gps + 1) > GetLeapSeconds(gps); }

std::string TimeConvert::GetISODate(const tm& date) { return GetFormattedFromTm(&date, "%Y-%m-%d"); }

std::string TimeConvert::GetISOTime(const tm& date, bool with_zone) {
  return GetFormattedFromTm(&date, with_zone ? "%H:%M:%SZ" : "%H:%M:%S");
}

std::string TimeConvert::GetTimeStringFromGPSTime(UInt_t gps, std::string format) {
  const bool inserted = IsLeapBoundary(gps);
  tm date = GetTm(GetUnixTimeFromGPSTime(gps) - inserted);
  date.tm_sec += inserted;
  return GetFormattedFromTm(&date, format.empty() ? kDefaultFormat : format);
}

std::string TimeConvert::GetTimeStringFromUnixTime(UInt_t unix_time, std::string format) {
  const tm date = GetTm(unix_time);
  return GetFormattedFromTm(&date, format.empty() ? kDefaultFormat : format);
}

std::string TimeConvert::GetFormattedFromTm(const tm* date, std::string format) {
  if (!date) return "";
  // strftime answers 0 for a buffer that is too small and for an empty text alike: one character more tells them apart.
  format += '.';
  std::string text(64, '\0');
  size_t length;
  while ((length = strftime(&text[0], text.size(), format.c_str(), date)) == 0)
    text.resize(2 * text.size());
  text.resize(length - 1);
  return text;
}

void TimeConvert::PrintLeapSecondTable(std::ostream& ostr) {
  for (const Entry& entry : GetTable())
    ostr << GetTimeStringFromGPSTime(entry.fGPSTime, "%Y-%m-%d ") << entry.fNLeapSeconds << "  # GPS second "
         << entry.fGPSTime << std::endl;
}

bool TimeConvert::ReadLeapSecondTable(std::string filename) {
  std::ifstream file(filename);
  if (!file) return Complain(filename, std::strerror(errno));
  Table table;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number)
    if (const char* fault = ReadLine(line, table)) return Complain(filename + ":" + std::to_string(number), fault);
  if (table.empty()) return Complain(filename, "no entries");
  GetTable().swap(table);
  return true;
}

void TimeConvert::InitLeapSecondTable() { GetTable().assign(std::begin(kLeapSeconds), std::end(kLeapSeconds)); }

}  // namespace VdUtil
