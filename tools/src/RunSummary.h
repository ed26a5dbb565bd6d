#ifndef tools_RunSummary_h
#define tools_RunSummary_h

#include "GrowingHistogram.h"

#include <StnEvent/StnEvent.h>

#include <array>
#include <map>
#include <string>
#include <vector>

namespace StnTools {

/// A run at a glance, gathered event by event in constant memory.
class RunSummary {
 public:
  /// Bins of the histograms of time and of offsets.
  static constexpr UInt_t kNTimeBins = 120;
  static constexpr UInt_t kNOffsetBins = 60;
  /// An event that lies further from those before it than this, in ns, is counted apart: its time can't be right.
  static constexpr Long64_t kLongestPause = 86400LL * 1000000000;
  /// Likewise an offset, in ns, from which on a mirror can't belong to the same event.
  static constexpr UInt_t kLargestOffset = 1000000000;

  /// Adds what the header of the next event tells.
  void AddHeader(const TStnEventHeader& header);
  /// Adds the pixels of an event to the occupancy.
  void AddPixels(TStnPixelList& pixels);
  /// Notes that an event could not be read, and why.
  void AddUnreadable(const std::string& reason);
  bool HasUnreadable() const { return fNUnreadable != 0; }

  /// All of it as JSON text:
  /// - `events`, `unreadable`, `reason` of the first that was; `first` and `last`, the earliest and the latest time as
  ///   texts, null without events; `span`, from one to the other in s; `misplaced`, events that lie more than a day away
  ///   from the others or have no time;
  /// - `rate`, events by time: `width` of a bin in s and `counts`, from `first` on;
  /// - `classes`, `types` and `qualities`: `value`, `name` and `count` each, by value;
  /// - `t3`: events with a T3 and with a rejected one; `veto` and `stationDaq`: what these counters grew by, in s;
  /// - `mirrors`: `mirror`, `events` with its data, `status`, events with it in the DAQ, `earliest`, events in which it
  ///   was the first, `dead`, `daq` and `skipped`, what the counters grew by, in s and triggers, null if one fell;
  ///   `labels`; `offset` of the events in which it was not the first: `mean` in ns, histogram of `width` ns and
  ///   `counts`, and `far`, the number of a second and more;
  /// - `occupancy`: `events` whose pixels were added, and for each station pixel the number of those that it was in.
  std::string FormatJson() const;

 private:
  /// A counter that should only grow.
  struct Counter {
    bool fIsSet = false;
    bool fFell = false;
    ULong64_t fFirst = 0;
    ULong64_t fLast = 0;

    void Add(ULong64_t value);
  };
  struct Mirror {
    ULong64_t fEvents = 0;
    ULong64_t fStatus = 0;
    ULong64_t fEarliest = 0;
    Counter fDead;
    Counter fDaq;
    Counter fSkipped;
    std::map<std::string, ULong64_t> fLabels;
    ULong64_t fNOffsets = 0;
    ULong64_t fFarOffsets = 0;
    double fOffsetSum = 0.;
    GrowingHistogram fOffsets{kNOffsetBins, 10};
  };
  using Names = std::map<Int_t, ULong64_t>;

  void AddTime(const VdRoot::TTimeStamp& stamp);
  void AddMirrors(const TStnEventHeader& header);
  void AddOffset(Mirror& mirror, UInt_t offset);

  ULong64_t fNEvents = 0;
  ULong64_t fNUnreadable = 0;
  std::string fReason;
  ULong64_t fNMisplaced = 0;
  VdRoot::TTimeStamp fOrigin;  // of the rate: the time of the first event
  VdRoot::TTimeStamp fFirst;
  VdRoot::TTimeStamp fLast;
  bool fHasTime = false;
  GrowingHistogram fRate{kNTimeBins, 1000000000};
  Names fClasses;
  Names fTypes;
  Names fQualities;
  ULong64_t fNT3 = 0;
  ULong64_t fNRejectedT3 = 0;
  Counter fVeto;
  Counter fStnDaq;
  std::array<Mirror, VdUtil::Vd::kSTN_NMIRRORS> fMirrors;
  ULong64_t fNWithPixels = 0;
  std::vector<ULong64_t> fOccupancy = std::vector<ULong64_t>(VdUtil::Vd::kSTN_NEXTPIXELS);
};

}  // namespace StnTools

#endif
