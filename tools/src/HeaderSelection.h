#ifndef tools_HeaderSelection_h
#define tools_HeaderSelection_h

#include <StnEvent/StnEventHeader.h>
#include <VdRoot/TTimeStamp.h>

#include <CLI/CLI.hpp>

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace StnTools {

/// Which events a user wants, by their headers alone. Without any condition every event is wanted; of several
/// conditions all must hold, of several values in one any.
class HeaderSelection {
 public:
  /// Adds the options `--run`, `--number`, `--from`, `--until`, `--class`, `--type` and `--mirror` to a program. A value
  /// that can't be understood is a mistake in the command line.
  void AddOptions(CLI::App& app);

  /// Is the event of this header wanted?
  bool Matches(const TStnEventHeader& header) const;

 private:
  /// First and last number.
  using Range = std::pair<UInt_t, UInt_t>;

  std::vector<Range> fRuns;
  std::vector<Range> fNumbers;
  std::set<Int_t> fClasses;
  std::set<Int_t> fTypes;
  UInt_t fMirrorBits = 0;  // all of these have to be there
  std::optional<VdRoot::TTimeStamp> fFrom;
  std::optional<VdRoot::TTimeStamp> fUntil;
};

/// "17" or "10-20" as first and last number. Throws `CLI::ValidationError` for anything else.
std::pair<UInt_t, UInt_t> ParseRange(const std::string& text);

/// A point in time, given as a GPS second ("1400000000", also with a fraction) or as date and time in UTC
/// ("2024-05-17T16:53:03", also with a fraction, a blank instead of the T, a Z at the end, or without the time of day).
/// Fractions have up to nine digits. Throws `CLI::ValidationError` for anything else.
VdRoot::TTimeStamp ParseTime(const std::string& text);

/// The value of an event class or type with that short name (see `GetShortName`; capitals and small letters count the
/// same), or the number itself. Throws `CLI::ValidationError` with all names for anything else.
Int_t ParseClass(const std::string& text);
Int_t ParseType(const std::string& text);

}  // namespace StnTools

#endif
