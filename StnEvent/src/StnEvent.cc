#include <StnEvent/StnEvent.h>

#include <MrEvent/FadcData.h>
#include <MrEvent/MiFadcData.h>
#include <MrEvent/MiPixelData.h>
#include <MrEvent/MiPixelList.h>
#include <MrEvent/MrEvent.h>
#include <MrEvent/MrRecordCheck.h>
#include <VdRoot/TTimeStamp.h>
#include <VdUtil/ErrorLogger.h>
#include <VdUtil/TimeConvert.h>
#include <VdUtil/VdGeometry.h>
#include <VdUtil/VdNumbering.h>

#include <TBuffer.h>
#include <TClass.h>

#include <iomanip>
#include <memory>
#include <string>

#include <VdUtil/Assertions.h>

using VdRoot::TTimeStamp;
using VdUtil::TimeConvert;
using VdUtil::Vd;

ClassImp(TStnEvent);

UInt_t TStnEvent::fgPrintLevel = 0;

/// Where a mirror event comes from.
struct TStnEvent::MirrorPlace {
  UInt_t fStn;
  UInt_t fMirror;
};

/// One transition of the event class, when a mirror with this label comes in.
struct _LabelClassMapEntry {
  TStnEventHeader::EEventClass fInitialClass;
  TMirrorEventHeader::EMrEventLabel fLabel;
  TStnEventHeader::EEventClass fFinalClass;
};

// clang-format off
// One row: an initial class and, label by label, the class that follows.
#define LABEL_ROW(initial, unlabelled, accepted, muon, candidate, shower, random, many_pixels, rejected) \
  {TStnEventHeader::initial, TMirrorEventHeader::kUnlabelled, TStnEventHeader::unlabelled},              \
  {TStnEventHeader::initial, TMirrorEventHeader::kAcceptedEvent, TStnEventHeader::accepted},             \
  {TStnEventHeader::initial, TMirrorEventHeader::kMuonEvent, TStnEventHeader::muon},                     \
  {TStnEventHeader::initial, TMirrorEventHeader::kShowerCandidate, TStnEventHeader::candidate},          \
  {TStnEventHeader::initial, TMirrorEventHeader::kShowerEvent, TStnEventHeader::shower},                 \
  {TStnEventHeader::initial, TMirrorEventHeader::kRandomEvent, TStnEventHeader::random},                 \
  {TStnEventHeader::initial, TMirrorEventHeader::kManyPixelEvent, TStnEventHeader::many_pixels},         \
  {TStnEventHeader::initial, TMirrorEventHeader::kRejected, TStnEventHeader::rejected}

const _LabelClassMapEntry gLabelClassMap[72] = {
    //        initial class,       unlabelled,          accepted,            muon,             candidate,        shower,    random,           many pixels,      rejected
    LABEL_ROW(kUnClassified,       kUnClassified,       kUnhandledSignature, kIsMuon,          kShowerCandidate, kIsShower, kNoise,           kLargeEvent,      kRejected),
    LABEL_ROW(kUnhandledSignature, kUnhandledSignature, kUnhandledSignature, kIsMuon,          kShowerCandidate, kIsShower, kNoise,           kLargeEvent,      kUnhandledSignature),
    LABEL_ROW(kIsMuon,             kIsMuon,             kIsMuon,             kIsMuon,          kShowerCandidate, kIsShower, kMuonAndNoise,    kIsMuon,          kIsMuon),
    LABEL_ROW(kMuonAndNoise,       kMuonAndNoise,       kMuonAndNoise,       kMuonAndNoise,    kShowerCandidate, kIsShower, kMuonAndNoise,    kMuonAndNoise,    kMuonAndNoise),
    LABEL_ROW(kShowerCandidate,    kShowerCandidate,    kShowerCandidate,    kShowerCandidate, kShowerCandidate, kIsShower, kShowerCandidate, kShowerCandidate, kShowerCandidate),
    LABEL_ROW(kIsShower,           kIsShower,           kIsShower,           kIsShower,        kIsShower,        kIsShower, kIsShower,        kIsShower,        kIsShower),
    LABEL_ROW(kNoise,              kNoise,              kUnhandledSignature, kIsMuon,          kShowerCandidate, kIsShower, kNoise,           kLargeEvent,      kNoise),
    LABEL_ROW(kLargeEvent,         kLargeEvent,         kLargeEvent,         kLargeEvent,      kShowerCandidate, kIsShower, kLargeEvent,      kLargeEvent,      kLargeEvent),
    LABEL_ROW(kRejected,           kUnClassified,       kUnhandledSignature, kIsMuon,          kShowerCandidate, kIsShower, kNoise,           kLargeEvent,      kRejected),
};
// clang-format on
#undef LABEL_ROW

namespace {

/// Ids are counted from 1; the unsigned subtraction refuses 0 as well.
bool IsMirrorId(UInt_t mirror_id) { return mirror_id - 1 < Vd::kSTN_NMIRRORS; }

/// A word of zero is what a mirror's list answers where it holds no pixel.
bool IsPixel(const _PixelNumber* pixel) { return pixel != nullptr && (pixel->fPixelNumber & 0xFFFF) != 0; }

/// Seven statements on purpose: readers of the log know this layout, in which several prefixes share a line because
/// only four statements end it and two do nothing but change the fill character.
void DumpCounters(TMirrorEventHeader* from, UInt_t mirror) {
  VD_DEBUG << "TStnEvent::AddEvent() - "
           << "Setting TrgSrc & VETO/Dead time for mi_no= " << mirror << " ..." << std::endl;
  VD_DEBUG << std::setfill('0');
  VD_DEBUG << "                        "
           << "TrgSrc: 0x" << std::hex << std::setw(2) << static_cast<Int_t>(from->GetTriggerSource()) << std::dec;
  VD_DEBUG << std::setfill(' ');
  VD_DEBUG << "  RunTime: " << std::setw(20) << from->GetRunTimeCounter() << std::endl;
  VD_DEBUG << " VetoTime: " << std::setw(20) << from->GetVetoTimeCounter() << std::endl;
  VD_DEBUG << "                                    "
           << " DeadTime: " << std::setw(20) << from->GetDeadTimeCounter() << std::endl;
}

TStnEventHeader::EEventType GetStnEventType(TMirrorEventHeader::EMrEventType type) {
  switch (type) {
    case TMirrorEventHeader::kUnknownEvent:
      return TStnEventHeader::kUnknown;
    case TMirrorEventHeader::kPhysicsEvent:
      return TStnEventHeader::kPhysics;
    case TMirrorEventHeader::kCalibrationEvent:
      return TStnEventHeader::kCalibration;
    case TMirrorEventHeader::kSimulatedEvent:
      return TStnEventHeader::kSimulated;
  }
  return TStnEventHeader::kInvalidType;
}

/// The object is not handed to the caller, and nobody deletes it: event builders rely on their pointer staying null.
TMirrorEvent* CreateUnownedMirrorEvent() { return new TMirrorEvent(); }

void SetPlace(_PixelNumber* pixel, UInt_t stn, UInt_t mirror) {
  if (!IsPixel(pixel)) return;
  Vd::SetStnNo(pixel, stn);
  Vd::SetMirrorNo(pixel, mirror);
}

/// The station's container gives a removed trace up, so it is deleted here once the mirror has its copy.
void MoveTrace(TStnFADCData* from, TMirrorFADCData* to, _PixelNumber* pixel) {
  const std::unique_ptr<const TFADCData> trace(from->GetFADCData(pixel));
  if (!trace) return;
  to->SetPixelFADCData(pixel, trace.get());
  from->RemoveFADCData(trace.get());
}

/// The slot decides: a record labelled otherwise is relabelled and stays where it is.
void CorrectPlace(TMirrorPixelData* record, UInt_t stn, UInt_t mirror) {
  if (record->GetStnNo() == stn && record->GetMirrorNo() == mirror) return;
  if (TStnEvent::fgPrintLevel != 0) {
    VD_WARNING << "TStnEvent::DoCorrections() - "
               << "corrected TMirrorPixelData::(stn_id,mirror_id) from "
               << "(" << record->GetStnNo() << "," << record->GetMirrorNo() << ") to (" << stn << "," << mirror << ")!"
               << std::endl;
  }
  record->SetStnNo(stn);
  record->SetMirrorNo(mirror);
}

/// What stands in front of a record on file.
struct RecordFrame {
  Version_t fVersion = 0;
  UInt_t fStart = 0;
  UInt_t fByteCount = 0;
};

bool Refuse(TBuffer& buffer, const char* field, UInt_t found, const std::string& expected) {
  VD_ERROR << "TStnEvent::Streamer() - " << field << ": found " << found << ", expected " << expected << std::endl;
  buffer.SetBufferOffset(buffer.BufferSize());
  return false;
}

/// False, with an error logged and the buffer at its end, if the buffer cannot hold the record.
bool ReadFrame(TBuffer& buffer, RecordFrame* frame) {
  // The byte count, the version, and a checksum that ROOT reads as well when the version is 0 or below.
  const UInt_t frame_size = 10;
  // The version and the TObject part, which every version of the class has.
  const UInt_t least = 12;
  const UInt_t held = buffer.BufferSize() - buffer.Length();
  if (held < frame_size) return Refuse(buffer, "bytes in the buffer", held, "at least " + std::to_string(frame_size));
  frame->fVersion = buffer.ReadVersion(&frame->fStart, &frame->fByteCount);
  const UInt_t most = held - sizeof(frame->fByteCount);
  if (frame->fByteCount >= least && frame->fByteCount <= most) return true;
  return Refuse(buffer, "byte count", frame->fByteCount, std::to_string(least) + " to " + std::to_string(most));
}

}  // namespace

TStnEvent::TStnEvent() {
  if (fgPrintLevel > 1) VD_DEBUG << "TStnEvent::TStnEvent()" << std::endl;
}

TStnEvent::TStnEvent(const TStnEvent& rhs) : TObject(rhs) { *this = rhs; }

// clang-format off
TStnEvent& TStnEvent::operator=(const TStnEvent& rhs) {
  if (this == &rhs) return *this;
  if (rhs.fEventHeader) *GetEventHeader() = *rhs.fEventHeader; else SafeDelete(fEventHeader);
  if (rhs.fPixelData) *GetPixelData() = *rhs.fPixelData; else SafeDelete(fPixelData);
  if (rhs.fPixelList) *GetPixelList() = *rhs.fPixelList; else SafeDelete(fPixelList);
  if (rhs.fFADCData) *GetFADCData() = *rhs.fFADCData; else SafeDelete(fFADCData);
  SetTriggerData(rhs.fTriggerData);
  if (rhs.fT3Data) *GetT3Data() = *rhs.fT3Data; else SafeDelete(fT3Data);
  if (rhs.fGeometryData) *GetGeometryData() = *rhs.fGeometryData; else SafeDelete(fGeometryData);
  return *this;
}
// clang-format on

TStnEvent::~TStnEvent() {
  if (fgPrintLevel > 1) VD_DEBUG << "TStnEvent::~TStnEvent()" << std::endl;
  delete fPixelData;
  delete fPixelList;
  delete fFADCData;
  delete fEventHeader;
  delete fTriggerData;
  delete fT3Data;
  delete fGeometryData;
}

void TStnEvent::Clear(Option_t*) {
  SafeDelete(fEventHeader);
  SafeDelete(fFADCData);
  SafeDelete(fPixelList);
  SafeDelete(fPixelData);
  SafeDelete(fTriggerData);
  SafeDelete(fT3Data);
  SafeDelete(fGeometryData);
}

void TStnEvent::Reset() { TStnEvent::Clear(); }

TStnEventHeader* TStnEvent::GetEventHeader() {
  if (fEventHeader == nullptr) fEventHeader = new TStnEventHeader();
  return fEventHeader;
}

TStnFADCData* TStnEvent::GetFADCData() {
  if (fFADCData == nullptr) fFADCData = new TStnFADCData(Vd::kSTN_NEXTPIXELS);
  return fFADCData;
}

TStnGeometryData* TStnEvent::GetGeometryData() {
  if (fGeometryData == nullptr) fGeometryData = new TStnGeometryData();
  return fGeometryData;
}

TStnPixelData* TStnEvent::GetPixelData() {
  if (fPixelData == nullptr) fPixelData = new TStnPixelData();
  return fPixelData;
}

TStnTriggerData* TStnEvent::GetTriggerData() {
  if (fTriggerData == nullptr) fTriggerData = new TStnTriggerData();
  return fTriggerData;
}

TStnT3Data* TStnEvent::GetT3Data() {
  if (fT3Data == nullptr) fT3Data = new TStnT3Data();
  return fT3Data;
}

TMirrorFADCData* TStnEvent::GetMirrorFADCData(UInt_t mirror_id) {
  if (!IsMirrorId(mirror_id)) {
    VD_ERROR << "TStnEvent::GetMirrorFADCData(" << mirror_id << "): illegal mirror id passed !" << std::endl;
    return nullptr;
  }
  if (GetEventHeader()->IsMirrorDataPresent(mirror_id)) {
    VD_SEVERE << "TStnEvent::GetMirrorFADCData() not yet implemented !" << std::endl;
  }
  return nullptr;
}

TStnPixelList* TStnEvent::GetPixelList() {
  static Int_t warning_printed = 0;

  if (fPixelList == nullptr) fPixelList = new TStnPixelList();
  // 0 is a list made in this process. Every list that was read is mended, those of today's version 4 included.
  const Version_t version = fPixelList->fStreamerVersion;
  if (version < 1 || version > 4) return fPixelList;

  const UInt_t stn = GetEventHeader()->GetStnNo();
  if (fgPrintLevel != 0 && warning_printed == 0) {
    VD_WARNING << "TStnEvent::GetPixelList() - "
               << "using workaround for TStnPixelList::fStnNo," << std::endl
               << "                          - "
               << "setting fStnNo= " << stn << " from event header !" << std::endl;
    warning_printed = 1;
  }
  fPixelList->SetStnNo(stn);
  return fPixelList;
}

// A record that is given to its own event stays: deleting it first would leave nothing to copy.
void TStnEvent::SetGeometryData(TStnGeometryData* data) {
  if (data == fGeometryData) return;
  SafeDelete(fGeometryData);
  if (data != nullptr) fGeometryData = new TStnGeometryData(*data);
}

void TStnEvent::SetTriggerData(TStnTriggerData* data) {
  if (data == fTriggerData) return;
  SafeDelete(fTriggerData);
  if (data != nullptr) fTriggerData = new TStnTriggerData(*data);
}

void TStnEvent::SetT3Data(TStnT3Data* data) {
  if (data == fT3Data) return;
  SafeDelete(fT3Data);
  if (data != nullptr) fT3Data = new TStnT3Data(*data);
}

void TStnEvent::Show(std::ostream& ostr) {
  if (fgPrintLevel > 1) ostr << "TStnEvent::Show()" << std::endl;
  ostr << "--- TStnEvent for Stn " << GetEventHeader()->GetStnNo() << " ---" << std::endl;
  ostr << " Streamer version: " << fStreamerVersion << std::endl;
  ostr << " Class version   : " << Class_Version() << std::endl;
  ostr << std::endl;
  ostr << "The following (optional) sub-objects are present:" << std::endl;
  if (fPixelData != nullptr) ostr << "\tTStnPixelData ..." << std::endl;
  if (fTriggerData != nullptr) ostr << "\tTStnTriggerData ..." << std::endl;
  if (fT3Data != nullptr) ostr << "\tTStnT3Data ..." << std::endl;
  if (fGeometryData != nullptr) ostr << "\tTStnGeometryData ..." << std::endl;
  ostr << std::endl;
  GetEventHeader()->Show(ostr);
  GetPixelData()->Show(ostr);
  GetPixelList()->Show(ostr);
  GetFADCData()->Show(ostr);
  if (fTriggerData != nullptr) fTriggerData->Show(ostr);
  if (fT3Data != nullptr) fT3Data->Show(ostr);
  if (fGeometryData != nullptr) fGeometryData->Show(ostr, GetEventHeader()->GetStnNo());
}

// ---------------------------------------------------------------------------------------------- adding a mirror event

bool TStnEvent::AddEvent(TMirrorEvent* event, bool force) {
  if (event == nullptr) {
    VD_ERROR << "TStnEvent::AddEvent() - no mirror event was passed !" << std::endl;
    return false;
  }
  TMirrorEventHeader* from = event->GetEventHeader();
  const MirrorPlace place = {Vd::GetStnNo(from->GetMirrorNumber()), Vd::GetMirrorNo(from->GetMirrorNumber())};
  if (!AcceptMirror(place, force)) return false;

  AddHeaderValues(from, place.fMirror);
  AddEventType(from);
  AddEventLabel(from, place.fMirror);
  AddMirrorTime(from, place.fMirror);
  AddPixelData(event, from, place.fMirror);
  AddPixels(event, place);
  return true;
}

bool TStnEvent::AcceptMirror(const MirrorPlace& place, bool force) {
  if (fgPrintLevel != 0) {
    VD_DEBUG << "TStnEvent::AddEvent() - "
             << "adding data from stn= " << place.fStn << ", mirror= " << place.fMirror << std::endl;
  }
  TStnEventHeader* header = GetEventHeader();
  if (header->GetMirrorDataBits() == 0) header->SetStnNo(place.fStn);
  if (header->GetStnNo() != place.fStn) {
    VD_ERROR << "TStnEvent::AddEvent() - "
             << "trying to add data from wrong stn " << place.fStn << " !" << std::endl;
    return false;
  }
  if (!header->IsMirrorDataPresent(place.fMirror)) return true;
  if (!force) {
    VD_ERROR << "TStnEvent::AddEvent() - "
             << "cannot add data for telescope " << place.fMirror << " a second time!" << std::endl;
    return false;
  }
  VD_WARNING << "TStnEvent::AddEvent() - "
             << "adding data for telescope " << place.fMirror << " again ..." << std::endl;
  return true;
}

void TStnEvent::AddHeaderValues(TMirrorEventHeader* from, UInt_t mirror) {
  TStnEventHeader* header = GetEventHeader();
  header->SetMirrorPresent(mirror);
  header->SetMirrorDataPresent(mirror);
  if (fgPrintLevel != 0) DumpCounters(from, mirror);
  header->SetTriggerSource(from->GetTriggerSource(), mirror);
  header->SetRunTimeCounter(from->GetRunTimeCounter(), mirror);
  header->SetDeadTimeCounter(from->GetDeadTimeCounter(), mirror);
  header->SetVetoTimeCounter(from->GetVetoTimeCounter());
  header->SetTriggerTimeStamp(from->GetTriggerTimeStamp(), mirror);
  header->SetMirrorDaqDeadTime(from->GetDaqDeadTime(), mirror);
  header->SetMirrorNSkippedTriggers(from->GetNumSkippedTriggers(), mirror);
}

void TStnEvent::AddEventType(TMirrorEventHeader* from) {
  TStnEventHeader* header = GetEventHeader();
  if (header->GetEventType() == TStnEventHeader::kUnknown) header->SetEventType(GetStnEventType(from->GetEventType()));
}

void TStnEvent::AddEventLabel(TMirrorEventHeader* from, UInt_t mirror) {
  const TMirrorEventHeader::EMrEventLabel label = from->GetEventLabel();
  GetEventHeader()->SetMirrorEventLabel(label, mirror);
  ConvertMirrorEventLabel(label);
}

void TStnEvent::ConvertMirrorEventLabel(TMirrorEventHeader::EMrEventLabel label) {
  TStnEventHeader* header = GetEventHeader();
  const TStnEventHeader::EEventClass initial = header->GetEventClass();
  for (const _LabelClassMapEntry& entry : gLabelClassMap) {
    if (entry.fInitialClass == initial && entry.fLabel == label) return header->SetEventClass(entry.fFinalClass);
  }
  // Without the name of the operation, unlike the other messages: log readers know it so.
  VD_ERROR << "Initial StnEvent class= " << TStnEventHeader::GetVerboseEventClass(initial)
           << ", MrEventLabel= " << TMirrorEventHeader::GetVerboseEventLabel(label) << " --> final class= ???"
           << std::endl;
}

void TStnEvent::AddMirrorTime(TMirrorEventHeader* from, UInt_t mirror) {
  TStnEventHeader* header = GetEventHeader();
  const TTimeStamp raw_time(TTimeStamp::FromGPS(from->GetNextPageTime(), from->GetNextPageNanoTime()));
  if (from->IsOldTimingFormat()) {
    if (fgPrintLevel != 0) {
      VD_WARNING << "TMirrorEventHeader::Version() = " << from->GetVersion() << " --> old timing format !!!"
                 << std::endl;
    }
    // Old times are corrected already. These parameters make the correction the identity.
    header->SetTimeCorrectionParameters(100.0F, 0.0F);
    header->SetTimeCorrectionQuality(TStnEventHeader::kFullQuality);
  }
  header->SetRawMirrorTime(mirror, raw_time);
  header->AdjustMirrorTimes();
}

void TStnEvent::AddPixelData(TMirrorEvent* event, TMirrorEventHeader* from, UInt_t mirror) {
  if (fgPrintLevel != 0) {
    VD_DEBUG << "TStnEvent::AddEvent() - "
             << "adding pixel data for Mirror " << mirror << " ..." << std::endl;
  }
  TMirrorPixelData* pixel_data = event->GetPixelData();
  pixel_data->SetMirrorNumber(from->GetMirrorNumber());
  GetPixelData()->AddPixelData(pixel_data, mirror, false);
}

void TStnEvent::AddPixels(TMirrorEvent* event, const MirrorPlace& place) {
  TMirrorPixelList* list = event->GetPixelList();
  for (UInt_t i = 0; i < list->GetNumPixels(); ++i)
    SetPlace(list->GetPixel(i), place.fStn, place.fMirror);

  TStnPixelList* stn_list = GetPixelList();
  stn_list->SetStnNo(place.fStn);
  stn_list->AddPixelList(event->GetPixelList());

  TStnFADCData* traces = GetFADCData();
  TMirrorFADCData* mirror_traces = event->GetFADCData();
  for (UInt_t i = 0; i < list->GetNumPixels(); ++i) {
    const std::unique_ptr<TFADCData> trace(mirror_traces->GetPixelFADCData(list->GetPixel(i)));
    if (!trace) continue;
    SetPlace(trace->GetPixelNumber(), place.fStn, place.fMirror);
    traces->AddFADCData(trace.get(), false);
  }
}

// -------------------------------------------------------------------------------------------- removing a mirror event

bool TStnEvent::RemoveEvent(UInt_t mirror_id, TMirrorEvent** evptr) {
  if (!IsMirrorId(mirror_id)) {
    VD_ERROR << "TStnEvent::RemoveEvent() - mirror_id " << mirror_id << " is invalid!" << std::endl;
    return false;
  }
  if (evptr == nullptr) {
    VD_ERROR << "TStnEvent::RemoveEvent() - 'evptr' is not specified!" << std::endl;
    return false;
  }
  TMirrorEvent* event = *evptr;
  if (event == nullptr) {
    VD_WARNING << "TStnEvent::RemoveEvent() - 'evptr' is NULL, "
               << "TMirrorEvent will be created!" << std::endl;
    event = CreateUnownedMirrorEvent();
  }
  VD_WARNING << "TStnEvent::RemoveEvent() - is incompletely implemented!" << std::endl;

  FillMirrorHeader(event->GetEventHeader(), mirror_id);
  ClearMirrorSlots(mirror_id);
  GetEventHeader()->AdjustMirrorTimes();
  RemovePixelData(event, mirror_id);
  RemovePixels(event, mirror_id);
  return false;
}

void TStnEvent::FillMirrorHeader(TMirrorEventHeader* to, UInt_t mirror) {
  // The station event does not keep the mirrors' own delays.
  const UShort_t next_page_delay = 700;
  TStnEventHeader* header = GetEventHeader();
  to->SetStnNo(header->GetStnNo());
  to->SetMirrorNo(mirror);
  to->SetRunNo(header->GetRunNo());
  to->SetEventNo(header->GetEventNo());
  to->SetTriggerNo(header->GetEventNo());
  to->SetTriggerSource(header->GetTriggerSource(mirror));
  to->SetT3Id(header->GetT3Id());
  if (const TTimeStamp* raw_time = header->GetRawMirrorTimeStamp(mirror)) {
    // Converted twice: GetGPSSec() answers GPS seconds already. Users of the rebuilt events allow for it.
    to->SetNextPageTime(TimeConvert::GetGPSTimeFromUnixTime(raw_time->GetGPSSec()));
    to->SetNextPageNanoTime(raw_time->GetNanoSec());
  }
  to->SetTriggerTimeStamp(header->GetTriggerTimeStamp(mirror));
  to->SetNextPageDelay(next_page_delay);
  Float_t t10 = 0;
  Float_t offset = 0;
  header->GetTimeCorrectionParameters(&t10, &offset);
  to->SetTimeCorrectionParameters(t10, offset);
  to->SetDaqDeadTime(header->GetMirrorDaqDeadTime(mirror));
  to->SetRunTimeCounter(header->GetRunTimeCounter(mirror));
  to->SetDeadTimeCounter(header->GetDeadTimeCounter(mirror));
  to->SetVetoTimeCounter(header->GetVetoTimeCounter());
  to->SetNumSkippedTriggers(header->GetMirrorNSkippedTriggers(mirror));
  to->SetEventType(TStnEventHeader::GetMirrorEventType(header->GetEventType()));
  to->SetEventLabel(static_cast<TMirrorEventHeader::EMrEventLabel>(header->GetMirrorEventLabel(mirror)));
}

// The status bit, the veto counter, the event type and the event class stay: a mirror that is taken out was there.
void TStnEvent::ClearMirrorSlots(UInt_t mirror) {
  const UInt_t slot = mirror - 1;
  TStnEventHeader* header = GetEventHeader();
  header->fRunTimeCounter[slot] = 0;
  header->fDeadTimeCounter[slot] = 0;
  header->fMirrorDataBits &= ~(1U << slot);
  header->fMirrorTimeOffset[slot] = 0;
  header->fMirrorDaqDeadTime[slot] = 0;
  header->fMirrorNSkippedTriggers[slot] = 0;
  header->fMirrorEventLabel[slot] = 0;
  header->fRawMirrorTime[slot] = TTimeStamp(TimeConvert::GetUnixTimeFromGPSTime(0), 0);
  header->fTriggerSource[slot] = 0;
  header->fTriggerTimeStamp[slot] = 0;
}

void TStnEvent::RemovePixelData(TMirrorEvent* event, UInt_t mirror) {
  TStnPixelData* pixel_data = GetPixelData();
  const TMirrorPixelData* record = pixel_data->GetPixelData(mirror);
  if (record != nullptr) *event->GetPixelData() = *record;
  // The slot is taken, so this warns and the record stays: callers know both.
  pixel_data->AddPixelData(nullptr, mirror, false);
}

// Each loop makes one pass past the end, where the lists answer null or a zero word: no pixel.
void TStnEvent::RemovePixels(TMirrorEvent* event, UInt_t mirror) {
  TStnPixelList* stn_list = GetPixelList();
  TMirrorPixelList* list = event->GetPixelList();
  for (UInt_t i = 0; _VdPixelNumber* pixel = stn_list->GetPixel(i); ++i) {
    if (Vd::GetMirrorNo(pixel) == mirror) list->AddPixel(Vd::GetPixelNumber(pixel));
  }

  TStnFADCData* traces = GetFADCData();
  TMirrorFADCData* mirror_traces = event->GetFADCData();
  for (UInt_t i = 0; i <= list->GetNumPixels(); ++i) {
    if (IsPixel(list->GetPixel(i))) MoveTrace(traces, mirror_traces, list->GetPixel(i));
  }

  for (UInt_t i = 0; i <= list->GetNumPixels(); ++i) {
    if (IsPixel(list->GetPixel(i))) stn_list->RemovePixel(Vd::GetVdPixelNumber(list->GetPixel(i)));
  }
}

// ------------------------------------------------------------------------------------------------ reading and mending

void TStnEvent::Streamer(TBuffer& R__b) {
  if (R__b.IsReading()) {
    ReadRecord(R__b);
  } else {
    TStnEvent::Class()->WriteBuffer(R__b, this, "");
  }
}

void TStnEvent::ReadRecord(TBuffer& R__b) {
  // A record that the file lacks must not be left over from the last event. The other four are ROOT's to replace.
  SafeDelete(fTriggerData);
  SafeDelete(fT3Data);
  SafeDelete(fGeometryData);

  RecordFrame frame;
  if (!ReadFrame(R__b, &frame)) return;
  fStreamerVersion = frame.fVersion;
  if (fgPrintLevel != 0) {
    VD_DEBUG << "TStnEvent::Streamer() - R__v= " << frame.fVersion << " R__s= " << frame.fStart
             << " R__c= " << frame.fByteCount << std::endl;
  }
  // Events of the future are not ours to mend.
  const bool is_known = frame.fVersion <= TStnEvent::Class_Version();
  if (!is_known) VD_WARNING << "TStnEvent::Streamer() - no corrections applied" << std::endl;
  const UInt_t end = frame.fStart + sizeof(frame.fByteCount) + frame.fByteCount;
  if (!MrRecordCheck(R__b, end, Class()).HasMembers(frame.fVersion))
    return R__b.SetBufferOffset(static_cast<Int_t>(end));
  TStnEvent::Class()->ReadBuffer(R__b, this, frame.fVersion, frame.fStart, frame.fByteCount);
  if (is_known) DoCorrections(this);
}

void TStnEvent::DoCorrections(TStnEvent* event) {
  assert(event != __null);
  TStnPixelData* pixel_data = event->GetPixelData();
  const UInt_t stn = event->GetEventHeader()->GetStnNo();
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    TMirrorPixelData* record = pixel_data->GetPixelData(mirror);
    if (record == nullptr) continue;
    CorrectPlace(record, stn, mirror);
    if (fgPrintLevel > 1) record->Show(std::cout, 100);
  }
  // Station 5 has no six telescopes to fill in: its record stays absent.
  if (event->fGeometryData == nullptr && stn != 5) event->AddNominalDirections();
}

void TStnEvent::AddNominalDirections() {
  TStnGeometryData* geometry = GetGeometryData();
  const UInt_t stn = GetEventHeader()->GetStnNo();
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    Double_t azimuth = 0;
    Double_t elevation = 0;
    VdUtil::VdGeometry::GetTelescopeAxis(Vd::kSTN_NMIRRORS * (stn - 1) + mirror, azimuth, elevation);
    geometry->SetAxisDirection(mirror, static_cast<Float_t>(azimuth), static_cast<Float_t>(elevation));
  }
}
