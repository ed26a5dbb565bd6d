#ifndef MirrorEvents_h
#define MirrorEvents_h

#include <MrEvent/MrEvent.h>
#include <VdUtil/VdNumbering.h>

#include <memory>
#include <vector>

/// What a mirror event of a test holds; `MakeMirrorEvent` builds it. The counters that are not named here follow from
/// `fCounter`.
struct MirrorSpec {
  UInt_t fStn = 1;
  UInt_t fMirror = 1;
  std::vector<UInt_t> fPixels = {1, 24, 480};  // each gets a trigger bit and a trace
  TMirrorEventHeader::EMrEventLabel fLabel = TMirrorEventHeader::kMuonEvent;
  TMirrorEventHeader::EMrEventType fType = TMirrorEventHeader::kPhysicsEvent;
  UInt_t fGpsSec = 1000000000;
  UInt_t fNanoSec = 5000;
  ULong64_t fCounter = 100;  // run time; veto, dead and DAQ dead time and skipped triggers are 1, 2, 3 and 4 more
  Version_t fVersion = TMirrorEventHeader::kCurrentVersion;
};

/// A pixel of a mirror of a station.
inline _PixelNumber MakePixel(UInt_t stn, UInt_t mirror, UInt_t pixel_no) {
  _PixelNumber pixel;
  pixel.fPixelNumber = 0;
  VdUtil::Vd::SetPixelNo(&pixel, pixel_no);
  VdUtil::Vd::SetMirrorNo(&pixel, mirror);
  VdUtil::Vd::SetStnNo(&pixel, stn);
  return pixel;
}

/// The installation pixel of the same.
inline _VdPixelNumber MakeVdPixel(UInt_t stn, UInt_t mirror, UInt_t pixel_no) {
  _PixelNumber pixel = MakePixel(stn, mirror, pixel_no);
  return _VdPixelNumber(&pixel);
}

/// The sample that a test trace holds in a bin.
inline UInt_t MakeSample(UInt_t pixel_no, UInt_t bin) { return (7 * pixel_no + 3 * bin) & 0xFFF; }

/// A trace of 1000 bins, the samples from 100 to 199, and monitoring values that follow from the pixel.
inline std::unique_ptr<TFADCData> MakeTrace(UInt_t stn, UInt_t mirror, UInt_t pixel_no) {
  auto trace = std::make_unique<TFADCData>();
  TFADCData::_FADCDataRec* record = trace->GetRecord();
  record->fPixelNumber = MakePixel(stn, mirror, pixel_no);
  record->fMonitor.fActualThreshold = 1000 + pixel_no;
  record->fTraceInfo.fStartBin = 100;
  record->fTraceInfo.fEndBin = 199;
  record->fTraceInfo.fResolution = TFADCData::kFADC_RESOLUTION_1000_BINS;
  for (UInt_t bin = 100; bin <= 199; ++bin)
    record->fFadcData[bin].fWord = MakeSample(pixel_no, bin);
  return trace;
}

/// Puts pixels with a trigger bit (slice = pixel number modulo 100) and a trace each into a mirror event. Their numbers
/// name neither station nor mirror: to label them is the business of who adds the event.
inline void AddPixels(TMirrorEvent* event, const std::vector<UInt_t>& pixel_nos) {
  for (const UInt_t pixel_no : pixel_nos) {
    _PixelNumber pixel = MakePixel(0, 0, pixel_no);
    event->GetPixelList()->AddPixel(&pixel);
    event->GetPixelData()->SetTriggered(&pixel, pixel_no % 100);
    event->GetFADCData()->SetPixelFADCData(&pixel, MakeTrace(0, 0, pixel_no).get());
  }
}

/// Fills the header of a mirror event.
inline void FillHeader(TMirrorEventHeader* header, const MirrorSpec& spec) {
  header->SetVersion(spec.fVersion);
  header->SetStnNo(spec.fStn);
  header->SetMirrorNo(spec.fMirror);
  header->SetEventLabel(spec.fLabel);
  header->SetEventType(spec.fType);
  header->SetTriggerSource(TMirrorEventHeader::kInternalTrigger);
  header->SetTriggerTimeStamp(0x1000 + spec.fMirror);
  header->SetNextPageTime(spec.fGpsSec);
  header->SetNextPageNanoTime(spec.fNanoSec);
  header->SetRunTimeCounter(spec.fCounter);
  header->SetVetoTimeCounter(spec.fCounter + 1);
  header->SetDeadTimeCounter(spec.fCounter + 2);
  header->SetDaqDeadTime(spec.fCounter + 3);
  header->SetNumSkippedTriggers(static_cast<UInt_t>(spec.fCounter + 4));
}

/// A mirror event as the readout of that mirror would deliver it.
inline std::unique_ptr<TMirrorEvent> MakeMirrorEvent(const MirrorSpec& spec) {
  auto event = std::make_unique<TMirrorEvent>();
  FillHeader(event->GetEventHeader(), spec);
  AddPixels(event.get(), spec.fPixels);
  return event;
}

/// The same with everything but station and mirror left as it is.
inline std::unique_ptr<TMirrorEvent> MakeMirrorEvent(UInt_t stn, UInt_t mirror) {
  MirrorSpec spec;
  spec.fStn = stn;
  spec.fMirror = mirror;
  return MakeMirrorEvent(spec);
}

#endif
