#ifndef tools_EntryGaps_h
#define tools_EntryGaps_h

#include <cstdint>
#include <string>
#include <vector>

namespace StnTools {

/// Events that are not whole, put together where one after the other lacks the same.
class EntryGaps {
 public:
  struct Gap {
    std::uint64_t fFirst;
    std::uint64_t fLast;
    std::string fMissing;  ///< as "traces, T3 record"

    /// "event 3" or "events 3 to 5".
    std::string GetName() const {
      std::string first = std::to_string(fFirst);
      return fFirst == fLast ? "event " + first : "events " + first + " to " + std::to_string(fLast);
    }
  };

  /// Adds an event; in ascending order.
  void Add(std::uint64_t entry, const std::string& missing) {
    bool goes_on = !fGaps.empty() && fGaps.back().fLast + 1 == entry && fGaps.back().fMissing == missing;
    if (goes_on)
      fGaps.back().fLast = entry;
    else
      fGaps.push_back({entry, entry, missing});
  }

  const std::vector<Gap>& Get() const { return fGaps; }

 private:
  std::vector<Gap> fGaps;
};

}  // namespace StnTools

#endif
