#include "EventChecksum.h"

#include <cstdio>
#include <cstring>
#include <memory>

namespace StnTools {
namespace {

using VdUtil::Vd;

void Add(Checksum& sum, const VdRoot::TTimeStamp* stamp) {
  sum.Add(std::uint64_t(stamp != nullptr));
  if (stamp == nullptr) return;
  sum.Add(static_cast<std::uint64_t>(stamp->GetSec()));
  sum.Add(static_cast<std::uint64_t>(stamp->GetNanoSec()));
}

void AddMirror(Checksum& sum, const TStnEventHeader& header, UInt_t mirror) {
  Add(sum, header.GetRawMirrorTimeStamp(mirror));
  for (std::uint64_t value :
       {std::uint64_t(header.GetTriggerSource(mirror)), std::uint64_t(header.GetMirrorTimeOffset(mirror)),
        std::uint64_t(header.GetTriggerTimeStamp(mirror)), std::uint64_t(header.GetDeadTimeCounter(mirror)),
        std::uint64_t(header.GetRunTimeCounter(mirror)), std::uint64_t(header.GetMirrorDaqDeadTime(mirror)),
        std::uint64_t(header.GetMirrorNSkippedTriggers(mirror)), std::uint64_t(header.GetMirrorEventLabel(mirror))}) {
    sum.Add(value);
  }
}

void AddT3(Checksum& sum, const TStnT3Data& t3) {
  sum.Add(std::uint64_t(t3.GetNPixels()));
  sum.Add(t3.GetSDPTheta());
  sum.Add(t3.GetSDPPhi());
  sum.Add(t3.GetAzimuthAtGround());
  sum.Add(std::uint64_t(t3.GetTimeAtGround()));
  sum.Add(t3.GetTotalSignal());
}

void AddHeader(Checksum& sum, const TStnEventHeader& header) {
  for (std::uint64_t value :
       {std::uint64_t(header.GetEventNo()), std::uint64_t(header.GetStnNo()), std::uint64_t(header.GetEventClass()),
        std::uint64_t(header.GetEventType()), std::uint64_t(header.GetMirrorDataBits()),
        std::uint64_t(header.GetMirrorStatusBits()), std::uint64_t(header.GetRunNo()),
        std::uint64_t(header.GetStatusBits()), std::uint64_t(header.GetTimeCorrectionQuality()),
        std::uint64_t(header.GetVetoTimeCounter()), std::uint64_t(header.GetStnDaqDeadTime()),
        std::uint64_t(header.GetT3Id()), std::uint64_t(header.GetNRejectedT3())}) {
    sum.Add(value);
  }
  Float_t t10 = 0;
  Float_t offset = 0;
  header.GetTimeCorrectionParameters(&t10, &offset);
  sum.Add(t10);
  sum.Add(offset);
  sum.Add(header.GetTotalT3DeadTime());
  Add(sum, header.GetTimeStamp());
  Add(sum, header.GetT3TimeStamp());
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror)
    AddMirror(sum, header, mirror);
}

void AddPixelList(Checksum& sum, TStnPixelList& list) {
  sum.Add(std::uint64_t(list.GetStnNo()));
  sum.Add(std::uint64_t(list.GetNumPixels()));
  for (UInt_t i = 0; i < list.GetNumPixels(); ++i)
    sum.Add(std::uint64_t(Vd::GetPixelNo(list.GetPixel(i))));
}

void AddMirrorPixelData(Checksum& sum, const TMirrorPixelData& data) {
  const TMirrorPixelData::_MirrorPixelDataRec& record = *data.GetRecord();
  sum.Add(std::uint64_t(record.fUnused));
  sum.Add(std::uint64_t(record.fMirrorNumber.fMirrorNumber));
  for (const auto& pixel : record.fTrigger) {
    for (UInt_t word : pixel)
      sum.Add(std::uint64_t(word));
  }
}

void AddPixelData(Checksum& sum, const TStnPixelData& data) {
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    const TMirrorPixelData* of_mirror = data.GetPixelData(mirror);
    sum.Add(std::uint64_t(of_mirror != nullptr));
    if (of_mirror != nullptr) AddMirrorPixelData(sum, *of_mirror);
  }
}

void AddTrace(Checksum& sum, const TFADCData::_FADCDataRec& record) {
  sum.Add(std::uint64_t(record.fPixelNumber.fPixelNumber));
  sum.Add(std::uint64_t(record.fTraceInfo.fWord));
  sum.Add(record.fTraceStartTime);
  sum.Add(std::uint64_t(record.fMonitor.fPrevThreshold));
  sum.Add(std::uint64_t(record.fMonitor.fActualThreshold));
  sum.Add(std::uint64_t(record.fMonitor.fActualRate));
  sum.Add(record.fMonitor.fMean);
  sum.Add(record.fMonitor.fVariance);
  for (const auto& word : record.fFadcData)
    sum.Add(std::uint64_t(word.fWord));
}

void AddTraces(Checksum& sum, const TStnFADCData& traces) {
  sum.Add(std::uint64_t(traces.GetNTraces()));
  std::unique_ptr<TIterator> next(traces.GetIterator());
  while (const TObject* trace = next->Next())
    AddTrace(sum, *static_cast<const TFADCData*>(trace)->GetRecord());
}

}  // namespace

void Checksum::Add(std::uint64_t value) {
  fValue = (fValue ^ value) * 0x100000001b3ULL;
  // Carries the upper bits back down, which multiplication alone never does.
  fValue ^= fValue >> 32;
}

void Checksum::Add(double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  Add(bits);
}

const char* GetPartName(EventPart part) {
  static const char* const names[kNParts] = {"header", "pixel list", "pixel data", "traces"};
  return names[part];
}

EventChecksum ComputeChecksum(TStnEvent& event) {
  std::array<Checksum, kNParts> sums;
  AddHeader(sums[kHeader], *event.GetEventHeader());
  if (event.GetEventHeader()->GetT3Id() != 0) AddT3(sums[kHeader], *event.GetT3Data());
  AddPixelList(sums[kPixelList], *event.GetPixelList());
  AddPixelData(sums[kPixelData], *event.GetPixelData());
  AddTraces(sums[kTraces], *event.GetFADCData());
  EventChecksum checksum;
  for (int part = 0; part < kNParts; ++part)
    checksum[part] = sums[part].GetValue();
  return checksum;
}

std::string FormatChecksum(std::uint64_t checksum) {
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(checksum));
  return text;
}

}  // namespace StnTools
