#ifndef VdUtil_TimeConvert_h
#define VdUtil_TimeConvert_h

#include <ctime>
#include <iostream>
#include <string>
#include <vector>

#include <RtypesCore.h>

namespace VdUtil {

/// Converts between GPS seconds (since 1980-01-06 00:00:00 UTC, leap seconds counted) and Unix seconds, with the leap
/// seconds up to the last one, 2016-12-31 (IERS Bulletin C 52). Another table can be read from a file.
///
/// Results are modulo 2^32. GPS seconds from 2^32 - 315964800 upwards stand for the times between the Unix epoch and the
/// GPS epoch, when no leap seconds count. Of the two seconds that an inserted leap second makes of one Unix second, the
/// conversion to GPS seconds gives the later one: 23:59:60 has the Unix second of the 00:00:00 that follows it.
///
/// Any number of threads may convert at a time, but not while a table is being read.
class TimeConvert {
 public:
  /// One line of the table of leap seconds.
  struct _LeapSecondEntryRec {
    UInt_t fGPSTime;       // GPS second from which the entry holds
    UInt_t fNLeapSeconds;  // leap seconds in force from then on
  };
  /// The same under another name.
  typedef _LeapSecondEntryRec LeapSecondEntryRec;

  /// The Unix second of the GPS epoch.
  static constexpr UInt_t kGPSEpoch = 315964800;

  /// The Unix second of a GPS second, and the other way round, by the leap seconds of the table.
  static UInt_t GetUnixTimeFromGPSTime(UInt_t gps);
  static UInt_t GetGPSTimeFromUnixTime(UInt_t unix_time);
  /// The Unix second of now.
  static UInt_t GetUnixTime() { return static_cast<UInt_t>(time(0)); }
  /// The GPS second of now.
  static UInt_t GetGPSTime() { return GetGPSTimeFromUnixTime(GetUnixTime()); }

  /// Date as "2016-12-31".
  static std::string GetISODate(const tm& date);
  /// Time of day as "23:59:60", or "23:59:60Z" with the mark for UTC.
  static std::string GetISOTime(const tm& date, bool with_zone = false);
  /// Date and time in UTC, in the format of `strftime`; "2016-12-31 23:59:60 UTC" with an empty format. Inserted seconds
  /// are shown as such.
  static std::string GetTimeStringFromGPSTime(UInt_t gps, std::string format = "");
  /// The same for a Unix second, which never shows an inserted second.
  static std::string GetTimeStringFromUnixTime(UInt_t unix_time, std::string format = "");

  /// Writes the table in the form that `ReadLeapSecondTable` reads.
  static void PrintLeapSecondTable(std::ostream& ostr = std::cout);
  /// Reads a table from a text file: a line for each entry with the UTC date from which it holds and the leap seconds in
  /// force from then on, as "2017-01-01 18". Empty lines, and what follows a '#', don't count. The first entry is
  /// "1980-01-06 0"; dates rise, and the count changes by one from line to line. A file that can't be read or breaks these
  /// rules gives an error message and false, and the table in use stays.
  static bool ReadLeapSecondTable(std::string filename);

 protected:
  static std::vector<_LeapSecondEntryRec>& fLeapSecondTable;  // by rising GPS second, beginning with 0

  /// Leap seconds in force at a GPS second.
  static UInt_t GetLeapSeconds(UInt_t gps);
  /// The date in the format of `strftime`; an empty text for null.
  static std::string GetFormattedFromTm(const tm* date, std::string format);
  /// Whether the GPS second is an inserted one, 23:59:60.
  static bool IsLeapBoundary(UInt_t gps);
  /// Puts the built-in table in force.
  static void InitLeapSecondTable();
  /// Order of entries by time.
  static bool LeapSecondEntryLess(const _LeapSecondEntryRec& a, const _LeapSecondEntryRec& b) {
    return a.fGPSTime < b.fGPSTime;
  }
};

}  // namespace VdUtil

typedef VdUtil::TimeConvert::_LeapSecondEntryRec _LeapSecondEntryRec;
typedef VdUtil::TimeConvert::LeapSecondEntryRec LeapSecondEntryRec;

#endif
