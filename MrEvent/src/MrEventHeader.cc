#include <MrEvent/MrEventHeader.h>

ClassImp(TMirrorEventHeader);

TMirrorEventHeader::TMirrorEventHeader() : fData(), fRecord(&fData) { fData.fVersion = kCurrentVersion; }

TMirrorEventHeader::TMirrorEventHeader(const TMirrorEventHeader& rhs)
    : TObject(rhs), fData(*rhs.fRecord), fRecord(&fData) {}

TMirrorEventHeader& TMirrorEventHeader::operator=(const TMirrorEventHeader& rhs) {
  if (this != &rhs) *fRecord = *rhs.fRecord;
  return *this;
}

bool TMirrorEventHeader::IsOldTimingFormat() const { return GetVersion() <= kLastOldTimingVersion; }

void TMirrorEventHeader::SetTimeCorrectionParameters(Float_t t10, Float_t offset) {
  fRecord->fT10Mhz = t10;
  fRecord->fOffset = offset;
}

void TMirrorEventHeader::GetTimeCorrectionParameters(Float_t* t10, Float_t* offset) const {
  if (t10) *t10 = fRecord->fT10Mhz;
  if (offset) *offset = fRecord->fOffset;
}

std::string TMirrorEventHeader::GetVerboseEventLabel(EMrEventLabel label) {
  static constexpr struct {
    EMrEventLabel fLabel;
    const char* fName;
  } kNames[] = {{kUnlabelled, "Unlabelled"},         {kAcceptedEvent, "AcceptedEvent"},
                {kMuonEvent, "MuonEvent"},           {kShowerCandidate, "ShowerCandidate"},
                {kShowerEvent, "ShowerEvent"},       {kRandomEvent, "RandomEvent"},
                {kManyPixelEvent, "ManyPixelEvent"}, {kRejected, "Rejected"}};
  for (const auto& entry : kNames)
    if (entry.fLabel == label) return entry.fName;
  return "Unknown";
}

void TMirrorEventHeader::Clear(Option_t*) { *this = TMirrorEventHeader(); }

void TMirrorEventHeader::Show(std::ostream& ostr) const {
  const UInt_t mirror = VdUtil::Vd::GetVdMirrorNo(GetMirrorNumber()) ? GetMirrorNo() : 0;
  ostr << "--- TMirrorEventHeader ---" << std::endl
       << " Format version     : " << GetVersion() << std::endl
       << " Station, mirror    : " << GetStnNo() << ", " << mirror << std::endl
       << " Run number         : " << GetRunNo() << std::endl
       << " Event number       : " << GetEventNo() << std::endl
       << " Event type         : " << GetEventType() << std::endl
       << " Event label        : " << GetEventLabel() << " (" << GetVerboseEventLabel(GetEventLabel()) << ")"
       << std::endl
       << " Trigger number     : " << GetTriggerNo() << std::endl
       << " Trigger source     : " << GetTriggerSource() << std::endl
       << " Trigger time stamp : " << GetTriggerTimeStamp() << std::endl
       << " Next page time     : " << GetNextPageTime() << " s, " << GetNextPageNanoTime() << " ns" << std::endl
       << " Next page delay    : " << GetNextPageDelay() << std::endl
       << " 10 MHz cycle       : " << fRecord->fT10Mhz << " ns" << std::endl
       << " Second offset      : " << fRecord->fOffset << " ns" << std::endl
       << " T3 identifier      : " << GetT3Id() << std::endl
       << " Dead time          : " << GetDeadTimeCounter() << " * 100 ns" << std::endl
       << " Run time           : " << GetRunTimeCounter() << " * 100 ns" << std::endl
       << " Veto time          : " << GetVetoTimeCounter() << " * 100 ns" << std::endl
       << " DAQ dead time      : " << GetDaqDeadTime() << " * 100 ns" << std::endl
       << " Skipped triggers   : " << GetNumSkippedTriggers() << std::endl
       << "--------------------" << std::endl;
}
