#include "HeaderSelection.h"

#include "HeaderNames.h"

#include <VdUtil/VdNumbering.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <limits>
#include <regex>

namespace StnTools {
namespace {

using VdRoot::TTimeStamp;

[[noreturn]] void Refuse(const std::string& text, const std::string& wanted) {
  throw CLI::ValidationError("'" + text + "' is not " + wanted);
}

/// A text of digits only; throws if it is more than 32 bits hold.
UInt_t ToNumber(const std::string& digits) {
  const unsigned long long number = digits.size() > 10 ? ~0ULL : std::stoull(digits);
  if (number > std::numeric_limits<UInt_t>::max()) Refuse(digits, "a number of 32 bits");
  return static_cast<UInt_t>(number);
}

/// The digits behind a decimal point as nanoseconds.
Int_t ToNanoSec(std::string digits) {
  digits.resize(9, '0');
  return std::stoi(digits);
}

TTimeStamp ParseDate(const std::smatch& match) {
  const auto get = [&match](int group) { return match[group].matched ? std::stoi(match[group]) : 0; };
  std::tm date = {};
  date.tm_year = get(1) - 1900;
  date.tm_mon = get(2) - 1;
  date.tm_mday = get(3);
  date.tm_hour = get(4);
  date.tm_min = get(5);
  date.tm_sec = get(6);
  const std::tm asked = date;
  const time_t second = timegm(&date);
  // What there is not, as a 30th of February, comes back as another date.
  if (date.tm_mon != asked.tm_mon || date.tm_mday != asked.tm_mday || date.tm_hour != asked.tm_hour ||
      date.tm_min != asked.tm_min || date.tm_sec != asked.tm_sec || second > std::numeric_limits<Int_t>::max())
    Refuse(match[0], "a date and time of day that a time stamp can hold");
  return TTimeStamp(second, ToNanoSec(match[7]));
}

bool IsSameName(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

/// The value from 0 to 99 with that name, all that there are; the last of them stands for every illegal value.
template <class Value>
Int_t ParseName(const std::string& text, const char* what, Value invalid) {
  if (std::regex_match(text, std::regex("-?[0-9]{1,9}"))) return std::stoi(text);
  std::string names;
  for (Int_t value = 0; value <= invalid; ++value) {
    const std::string name = GetShortName(static_cast<Value>(value));
    if (value != invalid && name == GetShortName(static_cast<Value>(-1))) continue;
    if (IsSameName(name, text)) return value;
    names += (names.empty() ? "" : ", ") + name;
  }
  Refuse(text, std::string("an event ") + what + "; these are: " + names + ", and their numbers");
}

/// The bits of a mirror or a range of mirrors.
UInt_t ParseMirrors(const std::string& text) {
  const auto [first, last] = ParseRange(text);
  if (first < 1 || last > VdUtil::Vd::kSTN_NMIRRORS) Refuse(text, "a mirror, 1 to 6");
  return ((1U << last) - 1) & ~((1U << (first - 1)) - 1);
}

bool IsAmong(const std::vector<std::pair<UInt_t, UInt_t>>& wanted, UInt_t value) {
  const auto is_in = [value](const auto& range) { return range.first <= value && value <= range.second; };
  return wanted.empty() || std::any_of(wanted.begin(), wanted.end(), is_in);
}

bool IsAmong(const std::set<Int_t>& wanted, Int_t value) { return wanted.empty() || wanted.count(value) != 0; }

}  // namespace

std::pair<UInt_t, UInt_t> ParseRange(const std::string& text) {
  std::smatch match;
  if (!std::regex_match(text, match, std::regex("([0-9]+)(?:-([0-9]+))?")))
    Refuse(text, "a number or a range as 10-20");
  const UInt_t first = ToNumber(match[1]);
  const UInt_t last = match[2].matched ? ToNumber(match[2]) : first;
  if (last < first) Refuse(text, "a range from the lower number to the higher");
  return {first, last};
}

TTimeStamp ParseTime(const std::string& text) {
  std::smatch match;
  if (std::regex_match(text, match, std::regex("([0-9]{1,10})(?:\\.([0-9]{1,9}))?")))
    return TTimeStamp(TTimeStamp::FromGPS(ToNumber(match[1]), static_cast<UInt_t>(ToNanoSec(match[2]))));
  static const std::regex kDate(
      "([0-9]{4})-([0-9]{2})-([0-9]{2})"
      "(?:[T ]([0-9]{2}):([0-9]{2})(?::([0-9]{2})(?:\\.([0-9]{1,9}))?)?)?Z?");
  if (!std::regex_match(text, match, kDate)) Refuse(text, "a GPS second or a time in UTC as 2024-05-17T16:53:03");
  return ParseDate(match);
}

Int_t ParseClass(const std::string& text) { return ParseName(text, "class", TStnEventHeader::kInvalidClass); }

Int_t ParseType(const std::string& text) { return ParseName(text, "type", TStnEventHeader::kInvalidType); }

void HeaderSelection::AddOptions(CLI::App& app) {
  using Texts = std::vector<std::string>;
  const auto add_list = [&app](const char* name, const char* values, const char* description, auto take) {
    const auto take_all = [take](const Texts& texts) { std::for_each(texts.begin(), texts.end(), take); };
    app.add_option_function<Texts>(name, take_all, description)
        ->delimiter(',')
        ->type_name(values)
        ->expected(1)
        ->take_all()
        ->group("Selection");
  };
  const auto add_time = [&app](const char* name, const char* description, std::optional<TTimeStamp>& time) {
    const auto take = [&time](const std::string& text) { time = ParseTime(text); };
    app.add_option_function<std::string>(name, take, description)->type_name("TIME")->group("Selection");
  };
  add_list("--run", "RUN,...", "only events of these runs, as 4711 or 10-20",
           [this](const std::string& text) { fRuns.push_back(ParseRange(text)); });
  add_list("--number", "NUMBER,...", "only events with these numbers, as 17 or 10-20",
           [this](const std::string& text) { fNumbers.push_back(ParseRange(text)); });
  add_time("--from", "only events at or after this time: a GPS second, or UTC as 2024-05-17T16:53:03", fFrom);
  add_time("--until", "only events before this time", fUntil);
  add_list("--class", "CLASS,...", "only events of these classes, by name as in the table or by number",
           [this](const std::string& text) { fClasses.insert(ParseClass(text)); });
  add_list("--type", "TYPE,...", "only events of these types, by name or number",
           [this](const std::string& text) { fTypes.insert(ParseType(text)); });
  add_list("--mirror", "MIRROR,...", "only events with data of all these mirrors",
           [this](const std::string& text) { fMirrorBits |= ParseMirrors(text); });
}

bool HeaderSelection::Matches(const TStnEventHeader& header) const {
  return IsAmong(fRuns, header.GetRunNo()) && IsAmong(fNumbers, header.GetEventNo()) &&
         IsAmong(fClasses, header.GetEventClass()) && IsAmong(fTypes, header.GetEventType()) &&
         (header.GetMirrorDataBits() & fMirrorBits) == fMirrorBits && !(fFrom && *header.GetTimeStamp() < *fFrom) &&
         (!fUntil || *header.GetTimeStamp() < *fUntil);
}

}  // namespace StnTools
