#include "RecordCopies.h"

#include <VdUtil/TimeConvert.h>
#include <VdUtil/VdNumbering.h>

#include <TClass.h>

using VdUtil::Vd;

namespace StnPython {
namespace {

constexpr Time kNanoSecPerSecond = 1000000000;

Time ToTime(const VdRoot::TTimeStamp& stamp) {
  return static_cast<Time>(stamp.GetSec()) * kNanoSecPerSecond + stamp.GetNanoSec();
}

/// Fills an array with the values of a getter that takes a mirror id.
template <class T, class Getter>
void FillPerMirror(T (&values)[Vd::kSTN_NMIRRORS], Getter get) {
  for (UInt_t i = 0; i < Vd::kSTN_NMIRRORS; ++i)
    values[i] = static_cast<T>(get(i + 1));
}

Time GetTimeOfFirstSample(const TFADCData& trace, TStnEventHeader& header) {
  const UInt_t mirror = Vd::GetMirrorNo(trace.GetPixelNumber());
  const bool is_mirror = mirror >= 1 && mirror <= Vd::kSTN_NMIRRORS;
  const UInt_t bin = trace.GetStartBin();
  if (!is_mirror || !header.IsMirrorDataPresent(mirror) || bin >= trace.GetNFADCBins()) return kNoTime;
  const UInt_t seconds = VdUtil::TimeConvert::GetUnixTimeFromGPSTime(header.GetFADCBinTime(&trace, bin));
  return seconds * kNanoSecPerSecond + header.GetFADCBinNanoTime(&trace, bin);
}

}  // namespace

HeaderRecord CopyHeader(const TStnEventHeader& header) {
  HeaderRecord record{};
  record.fEventNumber = header.GetEventNo();
  record.fStnNumber = static_cast<std::uint8_t>(header.GetStnNo());
  record.fEventClass = header.GetEventClass();
  record.fEventType = header.GetEventType();
  record.fMirrorDataBits = static_cast<std::uint8_t>(header.GetMirrorDataBits());
  record.fMirrorStatus = static_cast<std::uint8_t>(header.GetMirrorStatusBits());
  record.fRunNo = header.GetRunNo();
  FillPerMirror(record.fTriggerSource, [&](UInt_t id) { return header.GetTriggerSource(id); });
  record.fStatusBits = header.GetStatusBits();
  record.fTimeStamp = ToTime(*header.GetTimeStamp());
  record.fTimeCorrectionQuality = header.GetTimeCorrectionQuality();
  header.GetTimeCorrectionParameters(&record.fT10Mhz, &record.fOffset);
  FillPerMirror(record.fMirrorTimeOffset, [&](UInt_t id) { return header.GetMirrorTimeOffset(id); });
  FillPerMirror(record.fRawMirrorTime, [&](UInt_t id) {
    const VdRoot::TTimeStamp* const stamp = header.GetRawMirrorTimeStamp(id);
    return stamp ? ToTime(*stamp) : kNoTime;
  });
  FillPerMirror(record.fTriggerTimeStamp, [&](UInt_t id) { return header.GetTriggerTimeStamp(id); });
  FillPerMirror(record.fDeadTimeCounter, [&](UInt_t id) { return header.GetDeadTimeCounter(id); });
  record.fVetoTimeCounter = header.GetVetoTimeCounter();
  FillPerMirror(record.fRunTimeCounter, [&](UInt_t id) { return header.GetRunTimeCounter(id); });
  record.fStnDaqDeadTime = header.GetStnDaqDeadTime();
  FillPerMirror(record.fMirrorDaqDeadTime, [&](UInt_t id) { return header.GetMirrorDaqDeadTime(id); });
  FillPerMirror(record.fMirrorNSkippedTriggers, [&](UInt_t id) { return header.GetMirrorNSkippedTriggers(id); });
  FillPerMirror(record.fMirrorEventLabel, [&](UInt_t id) { return header.GetMirrorEventLabel(id); });
  record.fT3Id = header.GetT3Id();
  record.fT3TimeAtGround = ToTime(*header.GetT3TimeStamp());
  record.fNRejectedT3 = header.GetNRejectedT3();
  record.fTotalT3DeadTime = header.GetTotalT3DeadTime();
  return record;
}

RunHeaderRecord CopyRunHeader(const TStnRunHeader& header) {
  RunHeaderRecord record{};
  record.fRunNo = header.GetRunNo();
  record.fStnNo = header.GetStnNo();
  record.fMirrorStatus = header.GetMirrorStatus();
  record.fStartTime = ToTime(header.GetStartTime());
  record.fEvbVersion = header.GetEvbVersion();
  record.fStnEventVersion = header.GetStnEventVersion();
  record.fMrEventVersion = header.GetMrEventVersion();
  record.fReadoutVersion = header.GetReadoutVersion();
  record.fUserName = header.GetUserName().Data();
  record.fComment = header.GetUserComment().Data();
  return record;
}

RunTrailerRecord CopyRunTrailer(const TStnRunTrailer& trailer) {
  RunTrailerRecord record{};
  record.fMirrorStatus = trailer.GetMirrorStatus();
  record.fNEvents = trailer.GetNEvents();
  record.fVetoTimeCounter = trailer.GetVetoTimeCounter();
  FillPerMirror(record.fDeadTimeCounter, [&](UInt_t id) { return trailer.GetDeadTimeCounter(id); });
  FillPerMirror(record.fLifeTimeCounter, [&](UInt_t id) { return trailer.GetLifeTimeCounter(id); });
  FillPerMirror(record.fMirrorDaqDeadTime, [&](UInt_t id) { return trailer.GetMirrorDaqDeadTime(id); });
  FillPerMirror(record.fMirrorNSkippedTriggers, [&](UInt_t id) { return trailer.GetMirrorNSkippedTriggers(id); });
  record.fStnDaqDeadTime = trailer.GetStnDaqDeadTime();
  record.fNT3 = trailer.GetNumberOfT3();
  record.fNRejectedT3 = trailer.GetNumberOfRejectedT3();
  record.fTotalT3DeadTime = trailer.GetTotalT3DeadTime();
  record.fStartTime = ToTime(trailer.GetStartTime());
  record.fStopTime = ToTime(trailer.GetStopTime());
  record.fTotalTime = trailer.GetTotalTime();
  return record;
}

std::uint32_t GetNSamples(const TFADCData& trace) {
  return trace.GetStartBin() <= trace.GetEndBin() ? trace.GetTraceLength() : 0;
}

TraceRecord CopyTrace(const TFADCData& trace, TStnEventHeader& header) {
  const auto& monitor = trace.GetRecord()->fMonitor;
  TraceRecord record{};
  record.fPixel = static_cast<std::int32_t>(Vd::GetStnPixelNo(trace.GetPixelNumber()));
  record.fMirror = static_cast<std::int32_t>(Vd::GetMirrorNo(trace.GetPixelNumber()));
  record.fMirrorPixel = static_cast<std::int32_t>(Vd::GetPixelNo(trace.GetPixelNumber()));
  record.fStartBin = static_cast<std::int32_t>(trace.GetStartBin());
  record.fEndBin = static_cast<std::int32_t>(trace.GetEndBin());
  record.fNBins = static_cast<std::int32_t>(trace.GetNFADCBins());
  record.fNSamples = static_cast<std::int32_t>(GetNSamples(trace));
  record.fTime = GetTimeOfFirstSample(trace, header);
  record.fTraceStartTime = trace.GetTraceStartTime();
  record.fPrevThreshold = monitor.fPrevThreshold;
  record.fActualThreshold = monitor.fActualThreshold;
  record.fActualRate = monitor.fActualRate;
  record.fMean = monitor.fMean;
  record.fVariance = monitor.fVariance;
  return record;
}

std::uint16_t* CopyWords(const TFADCData& trace, std::uint16_t* words) {
  const UInt_t first = trace.GetStartBin();
  for (UInt_t bin = first; bin < first + GetNSamples(trace); ++bin)
    *words++ = bin < TFADCData::kNFADCWords ? trace.GetRecord()->fFadcData[bin].fWord : 0;
  return words;
}

const UInt_t* GetPixelBits(const TStnPixelList& list) {
  static const Long_t offset = TStnPixelList::Class()->GetDataMemberOffset("fPixelVector");
  return *reinterpret_cast<UInt_t* const*>(reinterpret_cast<const char*>(&list) + offset);
}

}  // namespace StnPython
