#include "FlatEvent.h"

#include "Workload.h"

#include <algorithm>

namespace StnBench {

using VdUtil::Vd;

void FlatEvent::Fill(TStnEvent& event) {
  FillHeader(*event.GetEventHeader());
  FillT3(*event.GetT3Data());
  FillPixels(event);
  FillTriggers(*event.GetPixelData());
  FillTraces(event);
}

void FlatEvent::FillHeader(const TStnEventHeader& header) {
  fEventNo = header.GetEventNo();
  fStation = header.GetStnNo();
  fEventClass = header.GetEventClass();
  fEventType = header.GetEventType();
  fMirrorDataBits = header.GetMirrorDataBits();
  fMirrorStatus = header.GetMirrorStatusBits();
  fRun = header.GetRunNo();
  fStatusBits = header.GetStatusBits();
  fSec = header.GetTimeStamp()->GetSec();
  fNanoSec = header.GetTimeStamp()->GetNanoSec();
  fTimeQuality = header.GetTimeCorrectionQuality();
  header.GetTimeCorrectionParameters(&fT10, &fOffset);
  fVetoTime = header.GetVetoTimeCounter();
  fStnDaqDeadTime = header.GetStnDaqDeadTime();
  fT3Id = header.GetT3Id();
  fT3Sec = header.GetT3TimeStamp()->GetSec();
  fT3NanoSec = header.GetT3TimeStamp()->GetNanoSec();
  fRejectedT3 = header.GetNRejectedT3();
  fT3DeadTime = header.GetTotalT3DeadTime();
  for (unsigned mirror = 1; mirror <= 6; ++mirror)
    FillMirror(header, mirror);
}

void FlatEvent::FillMirror(const TStnEventHeader& header, unsigned mirror) {
  const unsigned i = mirror - 1;
  const auto* raw = header.GetRawMirrorTimeStamp(mirror);
  fTriggerSource[i] = header.GetTriggerSource(mirror);
  fMirrorTimeOffset[i] = header.GetMirrorTimeOffset(mirror);
  fRawSec[i] = raw ? raw->GetSec() : 0;
  fRawNanoSec[i] = raw ? raw->GetNanoSec() : 0;
  fTriggerTimeStamp[i] = header.GetTriggerTimeStamp(mirror);
  fDeadTime[i] = header.GetDeadTimeCounter(mirror);
  fRunTime[i] = header.GetRunTimeCounter(mirror);
  fMirrorDaqDeadTime[i] = header.GetMirrorDaqDeadTime(mirror);
  fSkippedTriggers[i] = header.GetMirrorNSkippedTriggers(mirror);
  fLabel[i] = header.GetMirrorEventLabel(mirror);
}

void FlatEvent::FillT3(const TStnT3Data& t3) {
  fT3Pixels = t3.GetNPixels();
  fT3Theta = t3.GetSDPTheta();
  fT3Phi = t3.GetSDPPhi();
  fT3Azimuth = t3.GetAzimuthAtGround();
  fT3Time = t3.GetTimeAtGround();
  fT3Signal = t3.GetTotalSignal();
}

void FlatEvent::FillPixels(TStnEvent& event) {
  fPixelBits = {};
  TStnPixelList* list = event.GetPixelList();
  for (unsigned i = 0; i < list->GetNumPixels(); ++i) {
    const unsigned bit = Vd::GetStnPixelNo(list->GetPixel(i)) - 1;
    fPixelBits[bit / 32] |= 1U << bit % 32;
  }
}

void FlatEvent::FillTriggers(const TStnPixelData& data) {
  fTriggeredPixel.clear();
  fTriggerWords.clear();
  for (unsigned mirror = 1; mirror <= 6; ++mirror) {
    const TMirrorPixelData* of_mirror = data.GetPixelData(mirror);
    if (!of_mirror) continue;
    for (unsigned pixel = 0; pixel < Vd::kMI_NEXTPIXELS; ++pixel) {
      const auto& words = of_mirror->GetRecord()->fTrigger[pixel];
      if (std::all_of(std::begin(words), std::end(words), [](unsigned word) { return word == 0; })) continue;
      fTriggeredPixel.push_back((mirror - 1) * Vd::kMI_NEXTPIXELS + pixel + 1);
      fTriggerWords.insert(fTriggerWords.end(), std::begin(words), std::end(words));
    }
  }
}

void FlatEvent::FillTraces(const TStnEvent& event) {
  for (auto* values : {&fTracePixel, &fTraceInfo, &fPrevThreshold, &fActualThreshold, &fActualRate})
    values->clear();
  fTraceStartTime.clear();
  fMean.clear();
  fVariance.clear();
  fSamples.clear();
  ForEachTrace(event, [this](const TFADCData& trace) {
    const auto& record = *trace.GetRecord();
    fTracePixel.push_back(record.fPixelNumber.fPixelNumber);
    fTraceInfo.push_back(record.fTraceInfo.fWord);
    fTraceStartTime.push_back(record.fTraceStartTime);
    fPrevThreshold.push_back(record.fMonitor.fPrevThreshold);
    fActualThreshold.push_back(record.fMonitor.fActualThreshold);
    fActualRate.push_back(record.fMonitor.fActualRate);
    fMean.push_back(record.fMonitor.fMean);
    fVariance.push_back(record.fMonitor.fVariance);
    const auto* first = &record.fFadcData[trace.GetStartBin()].fWord;
    fSamples.insert(fSamples.end(), first, first + trace.GetTraceLength());
  });
}

std::uint64_t FlatEvent::SumSamples() const {
  std::uint64_t sum = 0;
  std::size_t first = 0;
  for (const std::uint32_t word : fTraceInfo) {
    TFADCData::_FADCTraceInfoRec info;
    info.fWord = word;
    const std::uint16_t* words = fSamples.data() + first;
    const unsigned n = info.fEndBin + 1 - info.fStartBin;
    std::uint32_t of_trace = 0;
    for (unsigned i = 0; i < n; ++i)
      of_trace += words[i] & 0xFFF;
    sum += of_trace;
    first += n;
  }
  return sum;
}

}  // namespace StnBench
