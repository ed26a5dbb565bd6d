#include "RunSummary.h"

#include "HeaderNames.h"

#include <nlohmann/json.hpp>

namespace StnTools {
namespace {

using Json = nlohmann::ordered_json;
using VdUtil::Vd;

// In ns, leap seconds included.
Long64_t GetTime(const VdRoot::TTimeStamp& stamp) { return stamp.GetGPSSec() * 1000000000LL + stamp.GetNanoSec(); }

// Values without a name share an entry, so that a file full of them can't fill the memory.
template <typename Enum>
Int_t GetNamed(Enum value, Enum invalid) {
  return GetShortName(value) == GetShortName(static_cast<Enum>(-2)) ? Int_t(invalid) : Int_t(value);
}

// The mirror with the earliest uncorrected time, of equal ones the first, whose offset means nothing; 0 for none.
UInt_t FindEarliest(const TStnEventHeader& header) {
  UInt_t earliest = 0;
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    if (!header.IsMirrorDataPresent(mirror)) continue;
    const bool is_earlier =
        earliest == 0 || *header.GetRawMirrorTimeStamp(mirror) < *header.GetRawMirrorTimeStamp(earliest);
    if (is_earlier) earliest = mirror;
  }
  return earliest;
}

template <typename Enum>
Json FormatNames(const std::map<Int_t, ULong64_t>& counts) {
  Json list = Json::array();
  for (const auto& [value, count] : counts)
    list.push_back({{"value", value}, {"name", GetShortName(static_cast<Enum>(value))}, {"count", count}});
  return list;
}

template <typename Counter>
Json GetGrowth(const Counter& counter, double unit) {
  if (!counter.fIsSet || counter.fFell) return nullptr;
  return static_cast<double>(counter.fLast - counter.fFirst) * unit;
}

// Of the counters of 100 ns, in s.
const double kCount = 1e-7;

}  // namespace

void RunSummary::Counter::Add(ULong64_t value) {
  if (!fIsSet) fFirst = fLast = value;
  fIsSet = true;
  if (value < fLast) fFell = true;
  fLast = value;
}

void RunSummary::AddHeader(const TStnEventHeader& header) {
  ++fNEvents;
  AddTime(*header.GetTimeStamp());
  ++fClasses[GetNamed(header.GetEventClass(), TStnEventHeader::kInvalidClass)];
  ++fTypes[GetNamed(header.GetEventType(), TStnEventHeader::kInvalidType)];
  ++fQualities[GetNamed(header.GetTimeCorrectionQuality(), TStnEventHeader::kUnknownQuality)];
  if (header.GetT3Id() != 0) ++fNT3;
  if (header.IsRejectedT3()) ++fNRejectedT3;
  fVeto.Add(header.GetVetoTimeCounter());
  fStnDaq.Add(header.GetStnDaqDeadTime());
  AddMirrors(header);
}

void RunSummary::AddTime(const VdRoot::TTimeStamp& stamp) {
  const Long64_t time = GetTime(stamp);
  const bool is_near = !fHasTime || (time >= GetTime(fFirst) - kLongestPause && time <= GetTime(fLast) + kLongestPause);
  if (time <= 0 || !is_near) {
    ++fNMisplaced;
    return;
  }
  if (!fHasTime) fOrigin = fFirst = fLast = stamp;
  fHasTime = true;
  if (stamp < fFirst) fFirst = stamp;
  if (fLast < stamp) fLast = stamp;
  // An event that comes late, as its mirrors were slow, is one of the first bin.
  const Long64_t since = time - GetTime(fOrigin);
  fRate.Add(since > 0 ? static_cast<ULong64_t>(since) : 0);
}

void RunSummary::AddMirrors(const TStnEventHeader& header) {
  const UInt_t earliest = FindEarliest(header);
  for (UInt_t id = 1; id <= Vd::kSTN_NMIRRORS; ++id) {
    Mirror& mirror = fMirrors[id - 1];
    if (header.IsMirrorPresent(id)) ++mirror.fStatus;
    if (!header.IsMirrorDataPresent(id)) continue;
    ++mirror.fEvents;
    mirror.fDead.Add(header.GetDeadTimeCounter(id));
    mirror.fDaq.Add(header.GetMirrorDaqDeadTime(id));
    mirror.fSkipped.Add(header.GetMirrorNSkippedTriggers(id));
    auto label = static_cast<TMirrorEventHeader::EMrEventLabel>(header.GetMirrorEventLabel(id));
    ++mirror.fLabels[TMirrorEventHeader::GetVerboseEventLabel(label)];
    if (id == earliest) {
      ++mirror.fEarliest;
    } else {
      AddOffset(mirror, header.GetMirrorTimeOffset(id));
    }
  }
}

void RunSummary::AddOffset(Mirror& mirror, UInt_t offset) {
  if (offset >= kLargestOffset) {
    ++mirror.fFarOffsets;
    return;
  }
  ++mirror.fNOffsets;
  mirror.fOffsetSum += offset;
  mirror.fOffsets.Add(offset);
}

void RunSummary::AddPixels(TStnPixelList& pixels) {
  ++fNWithPixels;
  for (UInt_t i = 0; i < pixels.GetNumPixels(); ++i) {
    const UInt_t number = Vd::GetStnPixelNo(pixels.GetPixel(i));
    if (number != 0) ++fOccupancy[number - 1];
  }
}

void RunSummary::AddUnreadable(const std::string& reason) {
  if (fNUnreadable++ == 0) fReason = reason;
}

std::string RunSummary::FormatJson() const {
  const auto stamp = [this](const VdRoot::TTimeStamp& time) { return fHasTime ? Json(time.AsString("i")) : Json(); };
  Json mirrors = Json::array();
  for (size_t i = 0; i < fMirrors.size(); ++i) {
    const Mirror& mirror = fMirrors[i];
    const double n_offsets = static_cast<double>(mirror.fNOffsets);
    mirrors.push_back({{"mirror", i + 1},
                       {"events", mirror.fEvents},
                       {"status", mirror.fStatus},
                       {"earliest", mirror.fEarliest},
                       {"dead", GetGrowth(mirror.fDead, kCount)},
                       {"daq", GetGrowth(mirror.fDaq, kCount)},
                       {"skipped", GetGrowth(mirror.fSkipped, 1.)},
                       {"labels", mirror.fLabels},
                       {"offset",
                        {{"mean", mirror.fNOffsets == 0 ? Json() : Json(mirror.fOffsetSum / n_offsets)},
                         {"width", mirror.fOffsets.GetWidth()},
                         {"counts", mirror.fOffsets.GetCounts()},
                         {"far", mirror.fFarOffsets}}}});
  }
  const Json summary = {
      {"events", fNEvents},
      {"unreadable", fNUnreadable},
      {"reason", fReason},
      {"first", stamp(fFirst)},
      {"last", stamp(fLast)},
      {"span", fHasTime ? static_cast<double>(GetTime(fLast) - GetTime(fFirst)) * 1e-9 : 0.},
      {"misplaced", fNMisplaced},
      {"rate", {{"width", static_cast<double>(fRate.GetWidth()) * 1e-9}, {"counts", fRate.GetCounts()}}},
      {"classes", FormatNames<TStnEventHeader::EEventClass>(fClasses)},
      {"types", FormatNames<TStnEventHeader::EEventType>(fTypes)},
      {"qualities", FormatNames<TStnEventHeader::ETimeCorrectionQuality>(fQualities)},
      {"t3", {{"events", fNT3}, {"rejected", fNRejectedT3}}},
      {"veto", GetGrowth(fVeto, kCount)},
      {"stationDaq", GetGrowth(fStnDaq, kCount)},
      {"mirrors", mirrors},
      {"occupancy", {{"events", fNWithPixels}, {"counts", fOccupancy}}},
  };
  return summary.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace StnTools
