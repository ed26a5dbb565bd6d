#include <StnEvent/StnRunHeader.h>

#include <MrEvent/MrEventVersion.h>
#include <StnEvent/StnEventVersion.h>
#include <VdUtil/VdConfig.h>
#include <VdUtil/VdNumbering.h>

using VdRoot::TTimeStamp;
using VdUtil::Vd;

ClassImp(TStnRunHeader);

namespace {

constexpr UInt_t GetVersionCode(UInt_t version, UInt_t sub_version, UInt_t sub_sub_version) {
  return version << 16 | sub_version << 8 | sub_sub_version;
}

constexpr UInt_t kStnEventCode = GetVersionCode(kStnEventVersion, kStnEventSubVersion, kStnEventSubSubVersion);
constexpr UInt_t kMrEventCode = GetVersionCode(kMrEventVersion, kMrEventSubVersion, kMrEventSubSubVersion);

}  // namespace

TStnRunHeader::TStnRunHeader() { TStnRunHeader::Clear(""); }

TStnRunHeader::TStnRunHeader(const TStnRunHeader& rhs) : TObject(rhs) { *this = rhs; }

TStnRunHeader& TStnRunHeader::operator=(const TStnRunHeader& rhs) {
  if (this == &rhs) return *this;
  fStnNumber = rhs.fStnNumber;
  fMirrorStatus = rhs.fMirrorStatus;
  fRunNo = rhs.fRunNo;
  fStartTime = rhs.fStartTime;
  fUserName = rhs.fUserName;
  fComment = rhs.fComment;
  fEvbVersion = rhs.fEvbVersion;
  fStnEventVersion = rhs.fStnEventVersion;
  fMrEventVersion = rhs.fMrEventVersion;
  fReadoutVersion = rhs.fReadoutVersion;
  return *this;
}

void TStnRunHeader::Clear(Option_t*) {
  fStnNumber = VdUtil::VdConfig::GetInstance().GetStnId();
  fMirrorStatus = 0;
  fRunNo = 0;
  fStartTime = TTimeStamp(0, 0);
  SetVersionInformation();
  fUserName = "default";
  fComment = "not set";
}

void TStnRunHeader::SetVersionInformation() {
  fReadoutVersion = 0;
  fEvbVersion = 0;
  fMrEventVersion = kMrEventCode;
  fStnEventVersion = kStnEventCode;
}

// Analysis programs rely on the answer for every mirror; the trailer's operation of this name does look at the bit.
Bool_t TStnRunHeader::IsMirrorPresent(UInt_t) { return kTRUE; }

void TStnRunHeader::SetMirrorPresent(UInt_t mirror_id) {
  if (mirror_id - 1 < Vd::kSTN_NMIRRORS) fMirrorStatus |= 1U << (mirror_id - 1);
}

const std::string TStnRunHeader::GetVersionCodeVerbosely(UInt_t code) {
  if (code == 0) return "'unknown'";
  return std::to_string((code & 0xff0000) >> 16) + "." + std::to_string((code & 0xff00) >> 8) + "." +
         std::to_string(code & 0xff);
}

void TStnRunHeader::Show(std::ostream& ostr) {
  ostr << "--- TStnRunHeader for Stn " << static_cast<UInt_t>(fStnNumber) << " ---" << std::endl;
  ostr << " RUN started at  : " << fStartTime.AsString("") << std::endl;
  ostr << " RUN id          : " << fRunNo << std::endl;
  ostr << " Mirrors present : ";
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    if (fMirrorStatus >> (mirror - 1) & 1U) ostr << mirror << " ";
  }
  ostr << std::endl;
  ostr << " Users name      : " << fUserName << std::endl;
  ostr << " RUN comment     : " << fComment << std::endl;
  ostr << " Software versions used: " << std::endl;
  ostr << "  - MrEvent " << GetVersionCodeVerbosely(fMrEventVersion) << std::endl;
  ostr << "  - StnEvent " << GetVersionCodeVerbosely(fStnEventVersion) << std::endl;
  ostr << "  - MiReadout " << GetVersionCodeVerbosely(fReadoutVersion) << std::endl;
  ostr << "  - Evb/MiApps " << GetVersionCodeVerbosely(fEvbVersion) << std::endl;
}
