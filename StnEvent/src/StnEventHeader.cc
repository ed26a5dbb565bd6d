#include <StnEvent/StnEventHeader.h>

#include <StnEvent/StnEvent.h>

#include <MrEvent/FadcData.h>
#include <MrEvent/MrRecordCheck.h>
#include <VdUtil/ErrorLogger.h>
#include <VdUtil/TimeConvert.h>
#include <VdUtil/VdConfig.h>
#include <VdUtil/VdNumbering.h>

#include <TBuffer.h>
#include <TClass.h>
#include <TString.h>

#include <algorithm>
#include <cctype>
#include <iomanip>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <VdUtil/Assertions.h>

using VdRoot::TTimeStamp;

ClassImp(TStnEventHeader);

// Filled by the first look-up.
static std::map<TStnEventHeader::EEventClass, std::string> gEventClassMap;
static std::map<TStnEventHeader::EEventType, std::string> gEventTypeMap;

namespace {

constexpr UInt_t kNMirrors = 6;

/// The time of a header that has none: GPS second 0.
TTimeStamp GetZeroStamp() { return TTimeStamp(VdUtil::TimeConvert::GetUnixTimeFromGPSTime(0), 0); }

// The endings of the messages about a mirror id. Their differences are old, and log readers match them.
constexpr const char* kIllegalPassed = ") - illegal Mirror id passed !";
constexpr const char* kIllegalPassedAfterComma = ",) - illegal Mirror id passed !";
constexpr const char* kIllegalSpecified = ") - illegal Mirror id specified !";
constexpr const char* kIllegalPassedInLowerCase = "): illegal mirror id passed !";

/// Whether there is a mirror of that number; if not, logs an error of the two texts with the number between them.
bool IsMirrorId(UInt_t mirror_id, const char* before, const char* after) {
  if (mirror_id >= 1 && mirror_id <= kNMirrors) return true;
  VD_ERROR << before << mirror_id << after << std::endl;
  return false;
}

template <class T>
T GetSlot(const T (&slots)[kNMirrors], UInt_t mirror_id, const char* before, const char* after) {
  return IsMirrorId(mirror_id, before, after) ? slots[mirror_id - 1] : T();
}

template <class T>
void SetSlot(T (&slots)[kNMirrors], const T& value, UInt_t mirror_id, const char* before, const char* after) {
  if (IsMirrorId(mirror_id, before, after)) slots[mirror_id - 1] = value;
}

void SetMirrorBit(UChar_t& bits, UInt_t mirror_id, const char* before) {
  if (IsMirrorId(mirror_id, before, kIllegalPassed)) bits |= 1u << (mirror_id - 1);
}

template <class T, UInt_t N>
void CopyArray(const T (&from)[N], T (&to)[N]) {
  std::copy(std::begin(from), std::end(from), std::begin(to));
}

template <class T, UInt_t N>
void FillArray(T (&array)[N], const T& value) {
  std::fill(std::begin(array), std::end(array), value);
}

/// Whether a time correction parameter lies in its range, as a NaN does; if not, logs an error.
template <class T>
bool IsPlausible(const char* argument, T value, double low, double high) {
  const bool is_outside = value < low || value > high;
  if (is_outside)
    VD_ERROR << "TStnEventHeader::SetTimeCorrectionParameters() - value '" << value << "' passed for '" << argument
             << "' is not plausible !" << std::endl;
  return !is_outside;
}

/// The low 32 bits of a number truncated to 64 bits; 0 for a NaN and for what 64 bits cannot hold.
UInt_t Truncate(double number) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  return number > -kLimit && number < kLimit ? static_cast<UInt_t>(static_cast<Long64_t>(number)) : 0;
}

template <class Key>
const char* FindText(const std::map<Key, std::string>& texts, Key key, const char* not_found) {
  const auto entry = texts.find(key);
  return entry != texts.end() ? entry->second.c_str() : not_found;
}

// ---- The form on file

constexpr Version_t kFirstReadableVersion = 4;
constexpr Version_t kLastHandReadVersion = 8;
constexpr UInt_t kByteCountV5 = 239;

// Damage can make ROOT take 4 bytes more for the version of the TObject part and 2 more for a reference. Any record of
// the old versions is longer than that.
constexpr Int_t kObjectSize = 10;
constexpr Int_t kMaxObjectSize = kObjectSize + 6;
constexpr Int_t kMinFrameSize = 6;
constexpr Int_t kChecksumSize = 4;
constexpr Int_t kTimeStampSize = 8;

/// Bytes from here to the end of the buffer.
Int_t GetBytesLeft(const TBuffer& buffer) { return buffer.BufferSize() - buffer.Length(); }

/// Bytes of the frame that ROOT is going to take here: byte count and version, and a checksum behind version 0 or below.
Int_t GetFrameSize(TBuffer& buffer) {
  if (GetBytesLeft(buffer) < kMinFrameSize) return kMinFrameSize;
  const Int_t start = buffer.Length();
  const Version_t version = buffer.ReadVersionNoCheckSum();
  const Int_t size = buffer.Length() - start + (version > 0 ? 0 : kChecksumSize);
  buffer.SetBufferOffset(start);
  return size;
}

void LogMismatch(const std::string& operation, const char* field, Long64_t found, Long64_t expected, const char* unit) {
  VD_ERROR << "TStnEventHeader::" << operation << "() - " << field << ": found " << found << " " << unit
           << ", expected " << expected << " !" << std::endl;
}

/// Reads the fields of one old record in their order, each only if the record's version has it. ROOT reads past the end
/// of a buffer and trusts the counts in it, so both are checked here. After the first mismatch, which is logged, all
/// fields keep the values that they have.
class FieldReader {
 public:
  FieldReader(TBuffer& buffer, Version_t version) : fBuffer(buffer), fVersion(version) {}

  /// Whether the buffer holds so many bytes more.
  bool Holds(const char* field, Int_t bytes) {
    const Int_t left = GetBytesLeft(fBuffer);
    return !fFailed && (left >= bytes || Refuse(field, left, bytes, "bytes"));
  }

  template <class T>
  void Read(const char* field, T& value, Version_t since = kFirstReadableVersion) {
    if (fVersion >= since && Holds(field, sizeof(value))) fBuffer >> value;
  }

  template <class T, Int_t N>
  bool Read(const char* field, T (&values)[N], Version_t since = kFirstReadableVersion) {
    if (fVersion < since || !AcceptCount(field, N) || !Holds(field, sizeof(values))) return false;
    fBuffer.ReadFastArray(values, N);
    return true;
  }

  void Read(const char* field, TTimeStamp& stamp) {
    if (Holds(field, GetFrameSize(fBuffer) + kTimeStampSize)) stamp.Streamer(fBuffer);
  }

  template <Int_t N>
  void Read(const char* field, TTimeStamp (&stamps)[N]) {
    for (auto& stamp : stamps)
      Read(field, stamp);
  }

  /// Counters that are on file as pairs of 32-bit words, the low one first.
  template <Int_t N>
  void ReadWords(const char* field, ULong64_t (&counters)[N]) {
    UInt_t words[2 * N] = {};
    if (!Read(field, words)) return;
    for (Int_t i = 0; i < N; ++i)
      counters[i] = static_cast<ULong64_t>(words[2 * i + 1]) << 32 | words[2 * i];
  }

 private:
  /// Up to version 4 each array of numbers follows its element count.
  bool AcceptCount(const char* field, Int_t expected) {
    if (fVersion > 4) return true;
    Int_t count = 0;
    if (!Holds(field, sizeof(count))) return false;
    fBuffer >> count;
    return count == expected || Refuse(field, count, expected, "elements");
  }

  bool Refuse(const char* field, Int_t found, Int_t expected, const char* unit) {
    LogMismatch("StreamerV" + std::to_string(fVersion), field, found, expected, unit);
    fFailed = true;
    return false;
  }

  TBuffer& fBuffer;
  Version_t fVersion;
  bool fFailed = false;
};

/// Writes bytes to `std::cout`, 16 to the line, in hexadecimal and as characters.
void BufferShow(const std::vector<UChar_t>& bytes) {
  constexpr size_t kBytesPerLine = 16;
  for (size_t line = 0; line < bytes.size(); line += kBytesPerLine) {
    const size_t end = std::min(line + kBytesPerLine, bytes.size());
    for (size_t i = line; i < end; ++i)
      std::cout << " " << std::hex << std::setfill('0') << std::setw(2) << UInt_t(bytes[i]) << std::dec
                << std::setfill(' ');
    std::cout << std::string(3 * (line + kBytesPerLine - end), ' ') << "   ";
    for (size_t i = line; i < end; ++i)
      std::cout << (std::isprint(bytes[i]) ? static_cast<char>(bytes[i]) : '.');
    std::cout << std::endl;
  }
  std::cout << std::endl;
}

/// Dumps a record of version 5 that is not one, and leaves the buffer at its end. A record without a byte count has no
/// known end, and is dumped as an empty one.
void DumpBadV5(TBuffer& R__b, UInt_t R__c) {
  VD_FATAL << "TStnEventHeader::Streamer() - Error: R__c= " << R__c << " doesn't match for V5, reading aborted!"
           << std::endl;
  const UInt_t size = R__c < sizeof(Version_t) ? 0 : R__c - sizeof(Version_t);
  std::vector<UChar_t> bytes(std::min<UInt_t>(size, GetBytesLeft(R__b)));
  for (auto& byte : bytes)
    R__b >> byte;
  BufferShow(bytes);
}

/// Whether the buffer holds what a record claims; if not, logs an error and leaves the buffer at its end.
bool HoldsRecord(TBuffer& R__b, const char* field, Long64_t bytes) {
  if (GetBytesLeft(R__b) >= bytes) return true;
  LogMismatch("Streamer", field, GetBytesLeft(R__b), bytes, "bytes");
  R__b.SetBufferOffset(R__b.BufferSize());
  return false;
}

}  // namespace

TStnEventHeader::TStnEventHeader()
    : fStnNumber(static_cast<UChar_t>(VdUtil::VdConfig::GetInstance().GetStnId())),
      fTimeStamp(GetZeroStamp()),
      fT3TimeAtGround(GetZeroStamp()) {
  FillArray(fRawMirrorTime, GetZeroStamp());
}

TStnEventHeader::TStnEventHeader(const TStnEventHeader& rhs) : TObject(rhs) { *this = rhs; }

TStnEventHeader& TStnEventHeader::operator=(const TStnEventHeader& rhs) {
  if (this == &rhs) return *this;
  fEventNumber = rhs.fEventNumber;
  fStnNumber = rhs.fStnNumber;
  fEventClass = rhs.fEventClass;
  fEventType = rhs.fEventType;
  fMirrorDataBits = rhs.fMirrorDataBits;
  fMirrorStatus = rhs.fMirrorStatus;
  fRunNo = rhs.fRunNo;
  CopyArray(rhs.fTriggerSource, fTriggerSource);
  fStatusBits = rhs.fStatusBits;
  fTimeStamp = rhs.fTimeStamp;
  fSecStartOffset = rhs.fSecStartOffset;
  fSecEndOffset = rhs.fSecEndOffset;
  fTicksPerSecond = rhs.fTicksPerSecond;
  fPPSPhase = rhs.fPPSPhase;
  fTimeCorrectionQuality = rhs.fTimeCorrectionQuality;
  fT10Mhz = rhs.fT10Mhz;
  fOffset = rhs.fOffset;
  CopyArray(rhs.fMirrorTimeOffset, fMirrorTimeOffset);
  CopyArray(rhs.fRawMirrorTime, fRawMirrorTime);
  CopyArray(rhs.fTriggerTimeStamp, fTriggerTimeStamp);
  CopyArray(rhs.fDeadTimeCounter, fDeadTimeCounter);
  CopyArray(rhs.fVetoTimeCounter, fVetoTimeCounter);
  CopyArray(rhs.fRunTimeCounter, fRunTimeCounter);
  fStnDaqDeadTime = rhs.fStnDaqDeadTime;
  CopyArray(rhs.fMirrorDaqDeadTime, fMirrorDaqDeadTime);
  CopyArray(rhs.fMirrorNSkippedTriggers, fMirrorNSkippedTriggers);
  CopyArray(rhs.fMirrorEventLabel, fMirrorEventLabel);
  fT3Id = rhs.fT3Id;
  fT3TimeAtGround = rhs.fT3TimeAtGround;
  fNRejectedT3 = rhs.fNRejectedT3;
  fTotalT3DeadTime = rhs.fTotalT3DeadTime;
  return *this;
}

TStnEventHeader::~TStnEventHeader() {}

// Not in the header: the interpreter sees the dictionary's shape of this member, in which they would not compile.
ULong64_t TStnEventHeader::GetVetoTimeCounter() const { return fVetoTimeCounter[0]; }
void TStnEventHeader::SetVetoTimeCounter(ULong64_t veto_ctr) { fVetoTimeCounter[0] = veto_ctr; }

// ---- Values of a mirror

void TStnEventHeader::SetMirrorPresent(UInt_t mirror_id) {
  SetMirrorBit(fMirrorStatus, mirror_id, "TStnEventHeader::SetMirrorPresent(");
}

void TStnEventHeader::SetMirrorDataPresent(UInt_t mirror_id) {
  SetMirrorBit(fMirrorDataBits, mirror_id, "TStnEventHeader::SetMirrorDataPresent(");
}

void TStnEventHeader::SetMirrorNSkippedTriggers(UInt_t n, UInt_t mirror_id) {
  SetSlot(fMirrorNSkippedTriggers, n, mirror_id, "TStnEventHeader::SetMirrorNSkippedTriggers(", kIllegalPassed);
}

void TStnEventHeader::SetMirrorEventLabel(Int_t label, UInt_t mirror_id) {
  SetSlot(fMirrorEventLabel, label, mirror_id, "TStnEventHeader::SetMirrorEventLabel(", kIllegalPassed);
}

void TStnEventHeader::SetMirrorDaqDeadTime(ULong64_t t, UInt_t mirror_id) {
  SetSlot(fMirrorDaqDeadTime, t, mirror_id, "TStnEventHeader::SetMirrorDaqDeadTime(", kIllegalPassed);
}

void TStnEventHeader::SetDeadTimeCounter(ULong64_t t, UInt_t mirror_id) {
  SetSlot(fDeadTimeCounter, t, mirror_id, "TStnEventHeader::SetDeadTimeCounter(,", kIllegalPassed);
}

void TStnEventHeader::SetRunTimeCounter(ULong64_t t, UInt_t mirror_id) {
  SetSlot(fRunTimeCounter, t, mirror_id, "TStnEventHeader::SetRunTimeCounter(,", kIllegalPassed);
}

void TStnEventHeader::SetTriggerSource(TMirrorEventHeader::EMiTriggerSource src, UInt_t mirror_id) {
  if (TStnEvent::fgPrintLevel > 0)
    VD_DEBUG << "TStnEventHeader::SetTriggerSource() - src= " << std::hex << UInt_t(src) << std::dec
             << ", id= " << mirror_id << std::endl;
  SetSlot(fTriggerSource, static_cast<UChar_t>(src), mirror_id, "TStnEventHeader::SetTriggerSource(,", kIllegalPassed);
}

void TStnEventHeader::SetTriggerTimeStamp(UInt_t timestamp, UInt_t mirror_id) {
  SetSlot(fTriggerTimeStamp, timestamp, mirror_id, "TStnEventHeader::SetTriggerTimeStamp(", kIllegalPassed);
}

void TStnEventHeader::SetRawMirrorTime(UInt_t mirror_id, const TTimeStamp& t) {
  SetSlot(fRawMirrorTime, t, mirror_id, "TStnEventHeader::SetRawMirrorTime(", kIllegalPassedAfterComma);
}

ULong64_t TStnEventHeader::GetDeadTimeCounter(UInt_t mirror_id) const {
  return GetSlot(fDeadTimeCounter, mirror_id, "TStnEventHeader::GetDeadTimeCounter(", kIllegalPassed);
}

ULong64_t TStnEventHeader::GetRunTimeCounter(UInt_t mirror_id) const {
  return GetSlot(fRunTimeCounter, mirror_id, "TStnEventHeader::GetRunTimeCounter(", kIllegalPassed);
}

UInt_t TStnEventHeader::GetTriggerTimeStamp(UInt_t mirror_id) const {
  return GetSlot(fTriggerTimeStamp, mirror_id, "TStnEventHeader::GetTriggerTimeStamp(", kIllegalSpecified);
}

TMirrorEventHeader::EMiTriggerSource TStnEventHeader::GetTriggerSource(UInt_t mirror_id) const {
  return static_cast<TMirrorEventHeader::EMiTriggerSource>(
      GetSlot(fTriggerSource, mirror_id, "TStnEventHeader::GetTriggerSource(", kIllegalSpecified));
}

const TTimeStamp* TStnEventHeader::GetRawMirrorTimeStamp(UInt_t mirror_id) const {
  if (!IsMirrorId(mirror_id, "TStnEventHeader::GetRawMirrorTimeStamp(", kIllegalPassedInLowerCase)) return nullptr;
  return IsMirrorDataPresent(mirror_id) ? &fRawMirrorTime[mirror_id - 1] : nullptr;
}

UInt_t TStnEventHeader::GetMirrorTimeOffset(UInt_t mirror_id) const {
  return GetSlot(fMirrorTimeOffset, mirror_id, "TStnEventHeader::GetMirrorTimeOffset(", kIllegalPassedInLowerCase);
}

UInt_t TStnEventHeader::GetMirrorNSkippedTriggers(UInt_t mirror_id) const {
  return GetSlot(fMirrorNSkippedTriggers, mirror_id, "TStnEventHeader::GetMirrorNSkippedTriggers(",
                 kIllegalPassedInLowerCase);
}

Int_t TStnEventHeader::GetMirrorEventLabel(UInt_t mirror_id) const {
  return GetSlot(fMirrorEventLabel, mirror_id, "TStnEventHeader::GetMirrorEventLabel(", kIllegalPassedInLowerCase);
}

ULong64_t TStnEventHeader::GetMirrorDaqDeadTime(UInt_t mirror_id) const {
  return GetSlot(fMirrorDaqDeadTime, mirror_id, "TStnEventHeader::GetMirrorDaqDeadTime(", kIllegalPassedInLowerCase);
}

// ---- Names

const char* TStnEventHeader::GetVerboseEventClass(EEventClass event_class) {
  static bool first = true;
  if (first) {
    gEventClassMap.insert({{kUnClassified, "'Unclassified'"},
                           {kNoPhysicsEvent, "'NoPhys'"},
                           {kLargeEvent, "'Large Event'"},
                           {kUnhandledSignature, "'Unhandled Signature'"},
                           {kEmpty, "'Empty'"},
                           {kIsMuon, "'Muon'"},
                           {kLongMuon, "'Long Muon'"},
                           {kCloseShower, "'Close Shower'"},
                           {kNoise, "'Noise'"},
                           {kMuonAndNoise, "'Muon + Noise'"},
                           {kVetoedEvent, "'Veto'"},
                           {kShowerCandidate, "'Shower Candidate'"},
                           {kHorizontalShower, "'Horizontal Shower'"},
                           {kIsShower, "'Shower'"},
                           {kUBANoise, "'UBA T3 noise'"},
                           {kUserDefined2, "'User defined 2'"},
                           {kUserDefined3, "'User defined 3'"},
                           {kUserDefined4, "'User defined 4'"},
                           {kRejected, "'Rejected'"},
                           {kInvalidClass, "'Invalid event class'"}});
    first = false;
  }
  return FindText(gEventClassMap, event_class, "'Invalid event class'");
}

const char* TStnEventHeader::GetVerboseEventType(EEventType type) {
  static bool first = true;
  if (first) {
    gEventTypeMap.insert({{kUnknown, "'Unknown'"},
                          {kPhysics, "'Physics - Int or L/R trigger'"},
                          {kCalibration, "'Calibration - Ext trigger'"},
                          {kSimulated, "'Simulated - Sw trigger'"},
                          {kLaserOffset, "'Laser Offset'"},
                          {kFlasherOffset, "'Flasher Offset'"},
                          {kCalibrationOffset, "'Calibration Offset'"},
                          {kLidarOffset, "'Lidar Offset'"},
                          {kAPFOffset, "'APF Offset'"},
                          {kInvalidType, "'Invalid'"}});
    first = false;
  }
  // Unlike the answer for a class it has no quote marks: it tells a value that is no type from the invalid type.
  return FindText(gEventTypeMap, type, "Invalid Type");
}

const char* TStnEventHeader::GetVerboseTimeCorrectionQuality(ETimeCorrectionQuality quality) {
  switch (quality) {
    case kCorrectionNotSet:
      return "'NotSet'";
    case kAveragedPeriod:
      return "'Averaged'";
    case kFullQuality:
      return "'Full'";
    default:
      return "'Unknown'";
  }
}

TMirrorEventHeader::EMrEventType TStnEventHeader::GetMirrorEventType(EEventType type) {
  switch (type) {
    case kCalibration:
      return TMirrorEventHeader::kCalibrationEvent;
    case kSimulated:
      return TMirrorEventHeader::kSimulatedEvent;
    case kPhysics:
    case kLaserOffset:
    case kFlasherOffset:
    case kCalibrationOffset:
    case kLidarOffset:
    case kAPFOffset:
      return TMirrorEventHeader::kPhysicsEvent;
    default:
      return TMirrorEventHeader::kUnknownEvent;
  }
}

// ---- Times

void TStnEventHeader::SetTimeStamp(UInt_t sec, UInt_t nsec) { fTimeStamp = TTimeStamp(TTimeStamp::FromGPS(sec, nsec)); }

void TStnEventHeader::SetTimeStamp(const TTimeStamp* datime) {
  if (datime) fTimeStamp = *datime;
}

void TStnEventHeader::SetT3TimeStamp(UInt_t sec, UInt_t nsec) {
  fT3TimeAtGround = TTimeStamp(TTimeStamp::FromGPS(sec, nsec));
}

void TStnEventHeader::SetT3TimeStamp(const TTimeStamp* t3) {
  if (t3) fT3TimeAtGround = *t3;
}

void TStnEventHeader::SetTimeCorrectionParameters(Short_t start_offset, Short_t end_offset, UInt_t ticks_per_sec,
                                                  UInt_t pps_phase) {
  // The number of ticks may be 1 % off its nominal value.
  if (!IsPlausible("start_offset", start_offset, -128, 127) || !IsPlausible("end_offset", end_offset, -128, 127) ||
      !IsPlausible("ticks_per_sec", ticks_per_sec, 79200000, 80800000) ||
      !IsPlausible("phase", pps_phase, 0, 100))  // not the argument's name, but what log readers know
    return;
  fSecStartOffset = start_offset;
  fSecEndOffset = end_offset;
  fTicksPerSecond = ticks_per_sec;
  fPPSPhase = pps_phase;
  ConvertTimeCorrectionParameters();
  SetTimeCorrectionQuality(kAveragedPeriod);
}

void TStnEventHeader::SetTimeCorrectionParameters(Float_t t10, Float_t offset) {
  // The largest offset is the sum of the largest second start and phase of a measured second, 127 + 100.
  if (!IsPlausible("T10", t10, 50.0, 150.0) || !IsPlausible("offset", offset, -128.0, 227.0)) return;
  fT10Mhz = t10;
  fOffset = offset;
  SetTimeCorrectionQuality(kAveragedPeriod);
}

void TStnEventHeader::GetTimeCorrectionParameters(Float_t* t10, Float_t* offset) const {
  assert(t10 != __null && offset != __null);
  *t10 = fT10Mhz;
  *offset = fOffset;
}

void TStnEventHeader::ConvertTimeCorrectionParameters() {
  const Int_t span = fSecEndOffset + static_cast<Int_t>(kNanoSecPerSecond) - fSecStartOffset;
  // Eight ticks of the 80 MHz clock are one 10 MHz cycle.
  fT10Mhz = static_cast<Float_t>(static_cast<double>(span) / static_cast<double>(fTicksPerSecond) * 8.0);
  fOffset = static_cast<Float_t>(static_cast<double>(fPPSPhase) + static_cast<double>(fSecStartOffset));
}

Bool_t TStnEventHeader::IsTimeCorrectionSet() {
  // The setter accepts 50 itself, this test does not.
  if (fT10Mhz <= 50.0 || fT10Mhz > 150.0) {
    if (fSecStartOffset == 0 && fSecEndOffset == 0 && fTicksPerSecond == kTicksPerSecond && fPPSPhase == 0) {
      if (TStnEvent::fgPrintLevel > 0)
        VD_WARNING << "TStnEventHeader::IsTimeCorrectionSet() - raw time correction parameters are set to defaults !"
                   << std::endl;
      return kFALSE;
    }
    ConvertTimeCorrectionParameters();
  }
  return fT10Mhz > 50.0;
}

Bool_t TStnEventHeader::DoTimeCorrection(UInt_t sec_in, Int_t nsec_in, UInt_t* sec_out, UInt_t* nsec_out) {
  assert(sec_out != __null && nsec_out != __null);
  if (IsTimeCorrectionSet()) {
    const double t = static_cast<double>(nsec_in) * static_cast<double>(fT10Mhz) / 100.0 + static_cast<double>(fOffset);
    *sec_out = t < 0.0 ? sec_in - 1 : sec_in;
    *nsec_out = Truncate(t < 0.0 ? t + 1000000000.0 : t);
    return kTRUE;
  }
  if (TStnEvent::fgPrintLevel > 0)
    VD_WARNING << "TStnEventHeader::DoTimeCorrection() - excact time calculation is not possible !" << std::endl;
  *sec_out = nsec_in < 0 ? sec_in - 1 : sec_in;
  *nsec_out = nsec_in < 0 ? nsec_in + kNanoSecPerSecond : nsec_in;
  return kFALSE;
}

void TStnEventHeader::AdjustMirrorTimes() {
  TTimeStamp earliest(0x7fffffff, 0);
  UInt_t first = 1;  // stands if no mirror is earlier than the last second of all
  for (UInt_t i = 0; i < kNMirrors; ++i) {
    if (!IsMirrorDataPresent(i + 1) || !(fRawMirrorTime[i] < earliest)) continue;
    earliest = fRawMirrorTime[i];
    first = i;
  }
  UInt_t sec = 0, nsec = 0;
  DoTimeCorrection(earliest.GetGPSSec(), earliest.GetNanoSec(), &sec, &nsec);
  SetTimeStamp(sec, nsec);
  for (UInt_t i = 0; i < kNMirrors; ++i)
    if (IsMirrorDataPresent(i + 1) && i != first) AdjustMirrorTimeOffset(i);
}

void TStnEventHeader::AdjustMirrorTimeOffset(UInt_t index) {
  UInt_t sec = 0, nsec = 0;
  DoTimeCorrection(fRawMirrorTime[index].GetGPSSec(), fRawMirrorTime[index].GetNanoSec(), &sec, &nsec);
  const UInt_t fold = fTimeStamp.GetGPSSec() >= static_cast<time_t>(sec) ? 0 : kNanoSecPerSecond;
  fMirrorTimeOffset[index] = nsec + fold - static_cast<UInt_t>(fTimeStamp.GetNanoSec());
}

UInt_t TStnEventHeader::GetFADCBinTime(const TFADCData* fadc, UInt_t bin) {
  UInt_t sec = 0, nsec = 0;
  GetBinTime("TStnEventHeader::GetFADCBinTime() - ", fadc, bin, &sec, &nsec);
  return sec;
}

UInt_t TStnEventHeader::GetFADCBinNanoTime(const TFADCData* fadc, UInt_t bin) {
  UInt_t sec = 0, nsec = 0;
  GetBinTime("TStnEventHeader::GetFADCBinNanoTime() - ", fadc, bin, &sec, &nsec);
  return nsec;
}

void TStnEventHeader::GetBinTime(const char* prefix, const TFADCData* fadc, UInt_t bin, UInt_t* sec, UInt_t* nsec) {
  const UInt_t n = fadc ? fadc->GetNFADCBins() : 0;
  if (bin >= n) {
    VD_ERROR << prefix << "the specified bin " << bin << " is not valid !" << std::endl;
    return;
  }
  const UInt_t mirror = VdUtil::Vd::GetMirrorNo(fadc->GetPixelNumber());
  if (mirror < 1 || mirror > kNMirrors) return;
  // The raw time is that of the end of the trace; a bin takes 100 ns of the mirror's clock.
  const TTimeStamp& raw = fRawMirrorTime[mirror - 1];
  const Int_t nano = static_cast<Int_t>(static_cast<UInt_t>(raw.GetNanoSec()) - 100 * (n - bin));
  DoTimeCorrection(raw.GetGPSSec(), nano, sec, nsec);
}

// ---- Reading and writing

void TStnEventHeader::Streamer(TBuffer& R__b) {
  if (R__b.IsReading())
    ReadRecord(R__b);
  else
    Class()->WriteBuffer(R__b, this);
}

void TStnEventHeader::ReadRecord(TBuffer& R__b) {
  if (!HoldsRecord(R__b, "frame", GetFrameSize(R__b))) return;
  UInt_t R__s = 0, R__c = 0;
  const Version_t R__v = R__b.ReadVersion(&R__s, &R__c);
  fStreamerVersion = R__v;
  if (TStnEvent::fgPrintLevel > 0)
    VD_DEBUG << "TStnEventHeader::Streamer() - R__v= " << R__v << " R__s= " << R__s << " R__c= " << R__c << std::endl;
  if (R__v > kLastHandReadVersion)
    ReadByDescription(R__b, R__v, R__s, R__c);
  else if (R__v == 5 && R__c != kByteCountV5)
    DumpBadV5(R__b, R__c);
  else
    ReadByHand(R__b, R__v, R__s, R__c);
}

void TStnEventHeader::ReadByDescription(TBuffer& R__b, Version_t R__v, UInt_t R__s, UInt_t R__c) {
  // A record without a byte count can take all that is left.
  const Long64_t rest = R__c == 0 ? GetBytesLeft(R__b) : Long64_t(R__c) - Long64_t(sizeof(R__v));
  if (!HoldsRecord(R__b, "byte count", rest)) return;
  const auto end = static_cast<UInt_t>(R__b.Length() + std::max(rest, 0LL));
  if (MrRecordCheck(R__b, end, Class()).HasMembers(R__v))
    Class()->ReadBuffer(R__b, this, R__v, R__s, R__c);
  else
    R__b.SetBufferOffset(static_cast<Int_t>(end));
}

void TStnEventHeader::ReadByHand(TBuffer& R__b, Version_t R__v, UInt_t R__s, UInt_t R__c) {
  switch (R__v) {
    case 4:
      StreamerV4(R__b);
      break;
    case 5:
      StreamerV5(R__b);
      break;
    case 6:
      StreamerV6(R__b);
      break;
    case 7:
      StreamerV7(R__b);
      break;
    case 8:
      StreamerV8(R__b);
      break;
    default:
      VD_ERROR << "TStnEventHeader::Streamer() - version " << R__v << " not streamable !" << std::endl;
  }
  if (R__v >= kFirstReadableVersion) R__b.CheckByteCount(R__s, R__c, IsA());
  FillMissingFields(R__v);
}

void TStnEventHeader::StreamerV4(TBuffer& R__b) { ReadFields(R__b, 4); }
void TStnEventHeader::StreamerV5(TBuffer& R__b) { ReadFields(R__b, 5); }
void TStnEventHeader::StreamerV6(TBuffer& R__b) { ReadFields(R__b, 6); }
void TStnEventHeader::StreamerV7(TBuffer& R__b) { ReadFields(R__b, 7); }
void TStnEventHeader::StreamerV8(TBuffer& R__b) { ReadFields(R__b, 8); }

// All fields in their order on file; a number tells the first version that has the field, if that is not version 4.
void TStnEventHeader::ReadFields(TBuffer& R__b, Version_t version) {
  FieldReader in(R__b, version);
  if (in.Holds("TObject", kMaxObjectSize)) TObject::Streamer(R__b);
  if (TStnEvent::fgPrintLevel > 0) VD_DEBUG << "TStnEventHeader::StreamerV" << version << "() - " << std::endl;
  in.Read("fEventNumber", fEventNumber);
  in.Read("fStnNumber", fStnNumber);
  in.Read("fEventClass", fEventClass);
  in.Read("fEventType", fEventType);
  in.Read("fMirrorDataBits", fMirrorDataBits);
  in.Read("fMirrorStatus", fMirrorStatus);
  in.Read("fRunNo", fRunNo);
  in.Read("fTriggerSource", fTriggerSource);
  in.Read("fStatusBits", fStatusBits, 7);
  in.Read("fTimeStamp", fTimeStamp);
  in.Read("fTimeCorrectionQuality", fTimeCorrectionQuality, 6);
  in.Read("fT10Mhz", fT10Mhz);
  in.Read("fOffset", fOffset);
  in.Read("fMirrorTimeOffset", fMirrorTimeOffset);
  in.Read("fRawMirrorTime", fRawMirrorTime);
  in.Read("fTriggerTimeStamp", fTriggerTimeStamp, 6);
  in.ReadWords("fDeadTimeCounter", fDeadTimeCounter);
  in.ReadWords("fVetoTimeCounter", fVetoTimeCounter);
  in.Read("fStnDaqDeadTime", fStnDaqDeadTime, 7);
  in.Read("fMirrorDaqDeadTime", fMirrorDaqDeadTime, 7);
  in.Read("fMirrorNSkippedTriggers", fMirrorNSkippedTriggers, 7);
  in.Read("fMirrorEventLabel", fMirrorEventLabel, 8);
  in.Read("fT3Id", fT3Id);
  in.Read("fT3TimeAtGround", fT3TimeAtGround);
  in.Read("fNRejectedT3", fNRejectedT3, 7);
  in.Read("fTotalT3DeadTime", fTotalT3DeadTime, 7);
}

// Gives the fields that a version did not have their values.
void TStnEventHeader::FillMissingFields(Version_t version) {
  if (version <= 5) {
    SetTimeCorrectionQuality(IsTimeCorrectionSet() ? kFullQuality : kCorrectionNotSet);
    FillArray(fTriggerTimeStamp, 0u);
  }
  if (version <= 6) {
    fStatusBits = 0;
    fStnDaqDeadTime = 0;
    FillArray<ULong64_t>(fMirrorDaqDeadTime, 0);
    FillArray(fMirrorNSkippedTriggers, 0u);
    // Versions 4 to 6 do hold the T3 identity, but it is given up together with the rest of the T3 values.
    fT3Id = 0;
    fT3TimeAtGround = GetZeroStamp();
    fNRejectedT3 = 0;
    fTotalT3DeadTime = 0;
  }
  if (version <= 7) FillArray(fMirrorEventLabel, 0);
}

// ---- Print-out

void TStnEventHeader::Show(std::ostream& ostr) const {
  ShowIdentity(ostr);
  ShowT3(ostr);
  ShowTrigger(ostr);
  ShowMirrors(ostr);
  ShowTimeCorrection(ostr);
  if (fNRejectedT3 != 0)
    ostr << " T3 rejected totally: " << fNRejectedT3 << " accumulated T3-CKAS dead time: " << fTotalT3DeadTime
         << " [s]\n";
  ostr << "---------------------------------" << std::endl;
}

void TStnEventHeader::ShowIdentity(std::ostream& ostr) const {
  ostr << "--- TStnEventHeader for Stn " << GetStnNo() << " ---\n"
       << " Streamer version: " << fStreamerVersion << "\n"
       << " Class version   : " << Class_Version() << "\n"
       << " Recorded at     : " << fTimeStamp.AsString("") << "\n"
       << " RUN number      : " << fRunNo << "\n"
       << " Timestamp       : " << std::setw(10) << fTimeStamp.GetGPSSec() << " [s] " << std::setw(10)
       << fTimeStamp.GetNanoSec() << " [ns] (corrected)\n"
       << " Event number    : " << std::setw(10) << fEventNumber << "\n"
       << " Status bits     : 0x" << std::hex << std::setfill('0') << std::setw(8) << fStatusBits << std::dec
       << std::setfill(' ') << " = ";
  for (Int_t bit = 31; bit >= 0; --bit)
    ostr << (fStatusBits >> bit & 1) << (bit % 8 == 0 ? " " : "");
  ostr << "\n";
}

void TStnEventHeader::ShowT3(std::ostream& ostr) const {
  ostr << " Assigned T3 Id  : " << std::setw(10) << fT3Id << (fT3Id == 0 ? "   (no T3 !)\n" : "   (T3 !!!)\n");
  if (fT3Id == 0) return;
  ostr << " TimeAtGround    : " << std::setw(10) << fT3TimeAtGround.GetGPSSec() << " [s] " << std::setw(10)
       << fT3TimeAtGround.GetNanoSec() << " [ns] ((un)corrected ?)\n"
       << " rejected by T3-CKAS VETO: " << (IsRejectedT3() ? "YES" : "NO") << "\n";
}

void TStnEventHeader::ShowTrigger(std::ostream& ostr) const {
  std::string sources = " TriggerSources  : ";
  for (UInt_t i = 0; i < GetNMirrors(); ++i)
    sources += IsMirrorDataPresent(i + 1) ? TString::Format(" 0x%02x", fTriggerSource[i]).Data() : " --- ";
  ostr << " Event type      : " << GetVerboseEventType(GetEventType()) << "\n"
       << " Event class     : " << GetVerboseEventClass(GetEventClass()) << "\n"
       << sources << "\n"
       << " accum VETO time: " << std::setw(20) << fVetoTimeCounter[0] << " [* 100 ns]\n";
  if (fStnDaqDeadTime != 0) ostr << " Stn DAQ Dead time : " << std::setw(20) << fStnDaqDeadTime << " [* 100 ns]\n";
}

void TStnEventHeader::ShowMirrors(std::ostream& ostr) const {
  std::string in_daq, in_event;
  for (UInt_t id = 1; id <= GetNMirrors(); ++id) {
    if (IsMirrorPresent(id)) in_daq += " " + std::to_string(id);
    if (IsMirrorDataPresent(id)) in_event += " " + std::to_string(id);
  }
  ostr << " The following Mirrors participated in the DAQ  :" << in_daq << "\n"
       << " The following Mirrors are present in this event:" << in_event << "\n";
  for (UInt_t i = 0; i < GetNMirrors(); ++i)
    if (IsMirrorDataPresent(i + 1)) ShowMirror(ostr, i);
}

void TStnEventHeader::ShowMirror(std::ostream& ostr, UInt_t index) const {
  const UInt_t id = index + 1;
  const TTimeStamp& raw = fRawMirrorTime[index];
  ostr << " Time Offset[" << id << "]  : " << std::setw(10) << fMirrorTimeOffset[index] << " [ns]\n"
       << " Timestamp[" << id << "]    : " << std::setw(10) << raw.GetGPSSec() << " [s] " << std::setw(10)
       << raw.GetNanoSec() << " [ns] (uncorrected)\n"
       << " TrgTimeStamp[" << id << "] : " << std::hex << std::setw(10) << fTriggerTimeStamp[index] << std::dec
       << " hex\n"
       << " Dead time[" << id << "]    : " << std::setw(20) << fDeadTimeCounter[index] << " [* 100 ns]\n"
       << "  Run time[" << id << "]    : " << std::setw(20) << fRunTimeCounter[index] << " [* 100 ns]\n";
  if (fMirrorDaqDeadTime[index] > 0)
    ostr << " DaqDead time[" << id << "] : " << std::setw(20) << fMirrorDaqDeadTime[index] << " [* 100 ns]\n";
  if (fMirrorNSkippedTriggers[index] != 0)
    ostr << " Skpd triggers[" << id << "]: " << fMirrorNSkippedTriggers[index] << "\n";
}

void TStnEventHeader::ShowTimeCorrection(std::ostream& ostr) const {
  const bool is_set = fTimeCorrectionQuality != kCorrectionNotSet;
  if (fT10Mhz > 50.0 || is_set)
    ostr << " Time correction quality: " << GetVerboseTimeCorrectionQuality(GetTimeCorrectionQuality()) << "\n";
  if (is_set)
    ostr << " T_10MHz        : " << std::setw(10) << fT10Mhz << " [ns]\n"
         << " Sec_Offset     : " << std::setw(10) << fOffset << " [ns]\n";
}
