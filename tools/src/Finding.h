#ifndef tools_Finding_h
#define tools_Finding_h

#include <cstdint>
#include <optional>
#include <string>

namespace StnTools {

/// Something in a file that is not as it should be.
struct Finding {
  enum Kind {
    kNote,       ///< worth a word, but the data are all there
    kIsDamaged,  ///< data are missing, wrong, or contradict each other
  };

  Kind fKind = kIsDamaged;
  std::string fWhat;                        ///< what was looked at
  std::string fExpected;                    ///< what should have been there
  std::string fFound;                       ///< what is there
  std::optional<std::uint64_t> fEntry;      ///< of an event, counted from 0, or of the first of several
  std::optional<std::uint64_t> fLastEntry;  ///< of the last of several
  std::string fBranch;                      ///< of an event; empty if more than one is meant

  /// In one line, as "event 3, fFADCData: content: expected ..., found ...".
  std::string GetText() const;

  /// As a JSON object: "kind" ("note" or "damage"), "entry", "last_entry" and "branch" where there
  /// is one, "what", "expected", "found".
  std::string GetJson() const;
  static Finding FromJson(const std::string& text);
};

}  // namespace StnTools

#endif
