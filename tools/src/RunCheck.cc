#include "RunCheck.h"

#include <MrEvent/FadcData.h>
#include <VdUtil/VdNumbering.h>

#include <memory>
#include <string>

namespace StnTools {
namespace {

using VdRoot::TTimeStamp;
using VdUtil::Vd;

const char* const kHeaderBranch = "fEventHeader";

bool IsSet(const TTimeStamp& time) { return time.GetSec() != 0; }

std::string GetText(const TTimeStamp& time) { return std::to_string(time.GetSec()) + " s"; }

Finding MakeFinding(Finding::Kind kind, const char* what, const std::string& expected, const std::string& found) {
  Finding finding;
  finding.fKind = kind;
  finding.fWhat = what;
  finding.fExpected = expected;
  finding.fFound = found;
  return finding;
}

}  // namespace

void RunCheck::Begin(std::unique_ptr<TStnRunHeader> header, std::unique_ptr<TStnRunTrailer> trailer) {
  fHeader = std::move(header);
  fTrailer = std::move(trailer);
  if (!fHeader)
    fReport(MakeFinding(Finding::kNote, "RunHeader", "a record", "none, the run was not begun as it should be"));
  if (!fTrailer) fReport(MakeFinding(Finding::kNote, "RunTrailer", "a record", "none, the run was not ended"));
  if (!fHeader) return;
  fRunNo = fHeader->GetRunNo();
  // What nobody set is that of the computer on which the run was written.
  fStnNo = fRunNo == 0 ? 0 : fHeader->GetStnNo();
}

void RunCheck::Check(std::uint64_t entry, TStnEvent& event) {
  CheckHeader(entry, *event.GetEventHeader());
  CheckTime(entry, *event.GetEventHeader());
  CheckTraces(entry, event);
}

void RunCheck::CheckHeader(std::uint64_t entry, const TStnEventHeader& header) {
  if (fRunNo == 0) fRunNo = header.GetRunNo();
  if (fStnNo == 0) fStnNo = header.GetStnNo();
  RequireEqual("run number", fRunNo, header.GetRunNo(), entry);
  RequireEqual("station", fStnNo, header.GetStnNo(), entry);
  std::uint64_t number = header.GetEventNo();
  if (fLastNumber && number <= *fLastNumber) {
    Finding finding = MakeFinding(Finding::kNote, "event number", "more than " + std::to_string(*fLastNumber),
                                  std::to_string(number));
    finding.fEntry = entry;
    finding.fBranch = kHeaderBranch;
    fReport(finding);
  }
  fLastNumber = number;
}

void RunCheck::CheckTime(std::uint64_t entry, const TStnEventHeader& header) {
  const TTimeStamp& time = *header.GetTimeStamp();
  if (!fTrailer || !IsSet(time) || !IsSet(fTrailer->GetStartTime()) || !IsSet(fTrailer->GetStopTime())) return;
  if (time.GetSec() >= fTrailer->GetStartTime().GetSec() && time.GetSec() <= fTrailer->GetStopTime().GetSec()) return;
  Finding finding =
      MakeFinding(Finding::kNote, "time", GetText(fTrailer->GetStartTime()) + " to " + GetText(fTrailer->GetStopTime()),
                  GetText(time));
  finding.fEntry = entry;
  finding.fBranch = kHeaderBranch;
  fReport(finding);
}

void RunCheck::CheckTraces(std::uint64_t entry, TStnEvent& event) {
  const TStnEventHeader& header = *event.GetEventHeader();
  std::unique_ptr<TIterator> next(event.GetFADCData()->GetIterator());
  UInt_t reported = 0;
  while (const auto* trace = static_cast<const TFADCData*>(next->Next())) {
    _PixelNumber pixel = trace->GetRecord()->fPixelNumber;
    UInt_t mirror = Vd::GetMirrorNo(&pixel);
    if (header.IsMirrorDataPresent(mirror) || mirror == reported) continue;
    Finding finding = MakeFinding(Finding::kIsDamaged, "mirror of a trace", "one of the header's mirrors",
                                  "mirror " + std::to_string(mirror));
    finding.fEntry = entry;
    finding.fBranch = "fFADCData";
    fReport(finding);
    reported = mirror;
  }
}

void RunCheck::End(std::uint64_t n_events) {
  if (fTrailer) RequireEqual("events by the run trailer", fTrailer->GetNEvents(), n_events, {});
}

void RunCheck::RequireEqual(const char* what, std::uint64_t expected, std::uint64_t found,
                            const std::optional<std::uint64_t>& entry) {
  if (expected == found || expected == 0 || (found == 0 && entry)) return;
  Finding finding = MakeFinding(Finding::kIsDamaged, what, std::to_string(expected), std::to_string(found));
  finding.fEntry = entry;
  if (entry) finding.fBranch = kHeaderBranch;
  fReport(finding);
}

}  // namespace StnTools
