#ifndef old_Fields_h
#define old_Fields_h

#include "Rule.h"

#include <StnEvent/StnEventHeader.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// Since when the fields of the records exist, what was written into them, and how today's classes give them. All
/// values are compared as texts, an array's separated by blanks.
namespace old_files {

template <typename T>
std::string Text(T value) {
  std::ostringstream stream;
  stream.precision(17);
  stream << +value;
  return stream.str();
}
inline std::string Text(const VdRoot::TTimeStamp& time) { return Text(time.GetSec()) + "." + Text(time.GetNanoSec()); }

/// `text` of each index below `n`.
template <typename GetText>
std::string Join(unsigned n, GetText get_text) {
  std::string all;
  for (unsigned i = 0; i < n; ++i)
    all += (i ? " " : "") + get_text(i);
  return all;
}

inline std::string WrittenTime(const Rule& rule, const std::string& member, Rule::Place place, unsigned index = 0) {
  return Text(rule.Seconds(member, place, index)) + "." + Text(rule.NanoSeconds(member, place, index));
}
template <typename T>
std::string WrittenArray(const Rule& rule, const std::string& member, Rule::Place place, unsigned n) {
  return Join(n, [&](unsigned i) { return Text(rule.As<T>(member, place, i)); });
}
/// 64-bit counters that are on file as words of 32 bits, the low one first.
inline std::string WrittenCounters(const Rule& rule, const std::string& member, Rule::Place place, unsigned n) {
  return Join(n, [&](unsigned i) {
    return Text(rule.As<UInt_t>(member, place, 2 * i) | ULong64_t(rule.As<UInt_t>(member, place, 2 * i + 1)) << 32);
  });
}

/// A field of the event header.
struct HeaderField {
  std::string fName;
  int fSince;             // version in which it came
  unsigned fBytes;        // its size on file
  unsigned fCount = 1;    // its elements
  int fTrusted = fSince;  // version from which what is on file is used
  std::function<std::string(const Rule&, Rule::Place)> fWritten = nullptr;
  std::function<std::string(const Rule&, Rule::Place)> fWrittenIn9 = nullptr;  // where version 9 was narrower
  std::function<std::string(TStnEventHeader&)> fRead = nullptr;
  std::function<std::string(Rule::Place)> fMissing = nullptr;

  /// Text of the field in a header that does not have it.
  HeaderField&& WhenMissing(std::function<std::string(Rule::Place)> missing) && {
    fMissing = std::move(missing);
    return std::move(*this);
  }
  HeaderField&& TrustedSince(int version) && {
    fTrusted = version;
    return std::move(*this);
  }
};

inline std::string MemberOfHeader(const std::string& field) { return "TStnEventHeader::" + field; }
inline std::string Zeros(unsigned n) {
  return Join(n, [](unsigned) { return std::string("0"); });
}

/// A number, with the type that it has on file.
template <typename T, typename Get>
HeaderField Number(const char* name, int since, Get get) {
  HeaderField field{name, since, sizeof(T)};
  field.fWritten = [name](const Rule& rule, Rule::Place place) {
    return Text(rule.As<T>(MemberOfHeader(name), place));
  };
  field.fRead = [get](TStnEventHeader& header) { return Text(static_cast<T>(get(header))); };
  field.fMissing = [](Rule::Place) { return Zeros(1); };
  return field;
}

/// A number for each mirror, with the type that it has on file.
template <typename T, typename Get>
HeaderField Numbers(const char* name, int since, Get get) {
  HeaderField field{name, since, 6 * sizeof(T), 6};
  field.fWritten = [name](const Rule& rule, Rule::Place place) {
    return WrittenArray<T>(rule, MemberOfHeader(name), place, 6);
  };
  field.fWrittenIn9 = [name](const Rule& rule, Rule::Place place) {
    return WrittenArray<UShort_t>(rule, MemberOfHeader(name), place, 6);
  };
  field.fRead = [get](TStnEventHeader& header) {
    return Join(6, [&](unsigned i) { return Text(static_cast<T>(get(header, i + 1))); });
  };
  field.fMissing = [](Rule::Place) { return Zeros(6); };
  return field;
}

/// Counters of 64 bits that stand as 32-bit words on file.
template <typename Get>
HeaderField Counters(const char* name, unsigned n, Get get) {
  HeaderField field{name, 4, n * unsigned(sizeof(ULong64_t)), n};
  field.fWritten = [name, n](const Rule& rule, Rule::Place place) {
    return WrittenCounters(rule, MemberOfHeader(name), place, n);
  };
  field.fRead = [get, n](TStnEventHeader& header) {
    return Join(n, [&](unsigned i) { return Text(get(header, i + 1)); });
  };
  return field;
}

/// A time stamp takes 14 bytes: byte count, version, seconds and nanoseconds.
constexpr unsigned kTimeBytes = 14;

template <typename Get>
HeaderField Time(const char* name, Get get) {
  HeaderField field{name, 4, kTimeBytes};
  field.fWritten = [name](const Rule& rule, Rule::Place place) {
    return WrittenTime(rule, MemberOfHeader(name), place);
  };
  field.fRead = [get](TStnEventHeader& header) { return Text(*get(header)); };
  // The GPS epoch.
  field.fMissing = [](Rule::Place) { return std::string("315964800.0"); };
  return field;
}

/// Raw times are given for mirrors in the event only.
inline HeaderField RawTimes() {
  HeaderField field{"fRawMirrorTime", 4, 6 * kTimeBytes, 6};
  field.fWritten = [](const Rule& rule, Rule::Place place) {
    return Join(6, [&](unsigned i) {
      const bool is_present = Rule::MirrorBits(place.fEvent) >> i & 1;
      return is_present ? WrittenTime(rule, MemberOfHeader("fRawMirrorTime"), place, i) : "-";
    });
  };
  field.fRead = [](TStnEventHeader& header) {
    return Join(6, [&](unsigned i) {
      const auto* time = header.GetRawMirrorTimeStamp(i + 1);
      return time ? Text(*time) : "-";
    });
  };
  return field;
}

inline Float_t GetT10(TStnEventHeader& header) {
  Float_t t10 = 0, offset = 0;
  header.GetTimeCorrectionParameters(&t10, &offset);
  return t10;
}
inline Float_t GetOffset(TStnEventHeader& header) {
  Float_t t10 = 0, offset = 0;
  header.GetTimeCorrectionParameters(&t10, &offset);
  return offset;
}

/// All fields, in their order on file.
inline const std::vector<HeaderField>& GetHeaderFields() {
  using H = TStnEventHeader&;
  // Before there was a quality, parameters that could be used stood for the best one; the second event has none.
  const auto quality = [](Rule::Place place) { return std::string(place.fEvent == 1 ? "-1" : "2"); };
  static const std::vector<HeaderField> kFields = {
      Number<UInt_t>("fEventNumber", 4, [](H h) { return h.GetEventNo(); }),
      Number<UChar_t>("fStnNumber", 4, [](H h) { return h.GetStnNo(); }),
      Number<Int_t>("fEventClass", 4, [](H h) { return h.GetEventClass(); }),
      Number<Int_t>("fEventType", 4, [](H h) { return h.GetEventType(); }),
      Number<UChar_t>("fMirrorDataBits", 4, [](H h) { return h.GetMirrorDataBits(); }),
      Number<UChar_t>("fMirrorStatus", 4, [](H h) { return h.GetMirrorStatusBits(); }),
      Number<UInt_t>("fRunNo", 4, [](H h) { return h.GetRunNo(); }),
      Numbers<UChar_t>("fTriggerSource", 4, [](H h, UInt_t mirror) { return h.GetTriggerSource(mirror); }),
      Number<UInt_t>("fStatusBits", 7, [](H h) { return h.GetStatusBits(); }),
      Time("fTimeStamp", [](H h) { return h.GetTimeStamp(); }),
      Number<Int_t>("fTimeCorrectionQuality", 6, [](H h) { return h.GetTimeCorrectionQuality(); }).WhenMissing(quality),
      Number<Float_t>("fT10Mhz", 4, GetT10),
      Number<Float_t>("fOffset", 4, GetOffset),
      Numbers<UInt_t>("fMirrorTimeOffset", 4, [](H h, UInt_t mirror) { return h.GetMirrorTimeOffset(mirror); }),
      RawTimes(),
      Numbers<UInt_t>("fTriggerTimeStamp", 6, [](H h, UInt_t mirror) { return h.GetTriggerTimeStamp(mirror); }),
      Counters("fDeadTimeCounter", 6, [](H h, UInt_t mirror) { return h.GetDeadTimeCounter(mirror); }),
      Counters("fVetoTimeCounter", 1, [](H h, UInt_t) { return h.GetVetoTimeCounter(); }),
      Numbers<ULong64_t>("fRunTimeCounter", 9, [](H h, UInt_t mirror) { return h.GetRunTimeCounter(mirror); }),
      Number<ULong64_t>("fStnDaqDeadTime", 7, [](H h) { return h.GetStnDaqDeadTime(); }),
      Numbers<ULong64_t>("fMirrorDaqDeadTime", 7, [](H h, UInt_t mirror) { return h.GetMirrorDaqDeadTime(mirror); }),
      Numbers<UInt_t>("fMirrorNSkippedTriggers", 7,
                      [](H h, UInt_t mirror) { return h.GetMirrorNSkippedTriggers(mirror); }),
      Numbers<Int_t>("fMirrorEventLabel", 8, [](H h, UInt_t mirror) { return h.GetMirrorEventLabel(mirror); }),
      // Versions 4 to 6 hold these two, but they are given up with the rest of the T3 values.
      Number<UShort_t>("fT3Id", 4, [](H h) { return h.GetT3Id(); }).TrustedSince(7),
      Time("fT3TimeAtGround", [](H h) { return h.GetT3TimeStamp(); }).TrustedSince(7),
      Number<UInt_t>("fNRejectedT3", 7, [](H h) { return h.GetNRejectedT3(); }),
      Number<Float_t>("fTotalT3DeadTime", 7, [](H h) { return h.GetTotalT3DeadTime(); }),
  };
  return kFields;
}

/// What the frame of a header says: 2 bytes of version, 10 of the `TObject`, and the fields.
inline unsigned GetHeaderByteCount(int version) {
  unsigned bytes = 2 + 10;
  for (const auto& field : GetHeaderFields()) {
    if (field.fSince > version) continue;
    bytes += field.fBytes;
    const bool is_array = field.fCount > 1 || field.fName == "fVetoTimeCounter";
    if (version == 4 && is_array && field.fName != "fRawMirrorTime") bytes += sizeof(Int_t);
    if (version == 9 && field.fName == "fMirrorNSkippedTriggers") bytes -= 6 * sizeof(UShort_t);
  }
  return bytes;
}

// ---- Run records

using Texts = std::vector<std::pair<std::string, std::string>>;

inline Texts GetRunHeader(const TStnRunHeader& header) {
  return {{"fStnNumber", Text(header.GetStnNo())},
          {"fMirrorStatus", Text(header.GetMirrorStatus())},
          {"fRunNo", Text(header.GetRunNo())},
          {"fStartTime", Text(header.GetStartTime())},
          {"fUserName", header.GetUserName().Data()},
          {"fComment", header.GetUserComment().Data()},
          {"fEvbVersion", Text(header.GetEvbVersion())},
          {"fStnEventVersion", Text(header.GetStnEventVersion())},
          {"fMrEventVersion", Text(header.GetMrEventVersion())},
          {"fReadoutVersion", Text(header.GetReadoutVersion())}};
}

template <typename T>
std::pair<std::string, std::string> Written(const Rule& rule, const std::string& member, unsigned n = 1) {
  return {member.substr(member.rfind(':') + 1), WrittenArray<T>(rule, member, {}, n)};
}
inline std::pair<std::string, std::string> WrittenTimeOf(const Rule& rule, const std::string& member) {
  return {member.substr(member.rfind(':') + 1), WrittenTime(rule, member, {})};
}

inline Texts WrittenRunHeader(const Rule& rule) {
  return {Written<UChar_t>(rule, "TStnRunHeader::fStnNumber"),
          Written<UChar_t>(rule, "TStnRunHeader::fMirrorStatus"),
          Written<UInt_t>(rule, "TStnRunHeader::fRunNo"),
          WrittenTimeOf(rule, "TStnRunHeader::fStartTime"),
          {"fUserName", "TStnRunHeader::fUserName"},
          {"fComment", "TStnRunHeader::fComment"},
          Written<UInt_t>(rule, "TStnRunHeader::fEvbVersion"),
          Written<UInt_t>(rule, "TStnRunHeader::fStnEventVersion"),
          Written<UInt_t>(rule, "TStnRunHeader::fMrEventVersion"),
          Written<UInt_t>(rule, "TStnRunHeader::fReadoutVersion")};
}

template <typename Get>
std::string PerMirror(Get get) {
  return Join(6, [&](unsigned i) { return Text(get(i + 1)); });
}

inline Texts GetRunTrailer(const TStnRunTrailer& run) {
  return {{"fMirrorStatus", Text(run.GetMirrorStatus())},
          {"fNEvents", Text(run.GetNEvents())},
          {"fVetoTimeCounter", Text(run.GetVetoTimeCounter())},
          {"fDeadTimeCounter", PerMirror([&](UInt_t mirror) { return run.GetDeadTimeCounter(mirror); })},
          {"fLifeTimeCounter", PerMirror([&](UInt_t mirror) { return run.GetLifeTimeCounter(mirror); })},
          {"fMirrorDaqDeadTime", PerMirror([&](UInt_t mirror) { return run.GetMirrorDaqDeadTime(mirror); })},
          {"fMirrorNSkippedTriggers", PerMirror([&](UInt_t mirror) { return run.GetMirrorNSkippedTriggers(mirror); })},
          {"fStnDaqDeadTime", Text(run.GetStnDaqDeadTime())},
          {"fNT3", Text(run.GetNumberOfT3())},
          {"fNRejectedT3", Text(run.GetNumberOfRejectedT3())},
          {"fTotalT3DeadTime", Text(run.GetTotalT3DeadTime())},
          {"fStartTime", Text(run.GetStartTime())},
          {"fStopTime", Text(run.GetStopTime())},
          {"fTotalTime", Text(run.GetTotalTime())}};
}

/// The length of the run is there since version 3; before, it is 0 as in a new object.
inline Texts WrittenRunTrailer(const Rule& rule, int version) {
  return {Written<UChar_t>(rule, "TStnRunTrailer::fMirrorStatus"),
          Written<UInt_t>(rule, "TStnRunTrailer::fNEvents"),
          Written<ULong64_t>(rule, "TStnRunTrailer::fVetoTimeCounter"),
          Written<ULong64_t>(rule, "TStnRunTrailer::fDeadTimeCounter", 6),
          Written<UInt_t>(rule, "TStnRunTrailer::fLifeTimeCounter", 6),
          Written<ULong64_t>(rule, "TStnRunTrailer::fMirrorDaqDeadTime", 6),
          Written<UInt_t>(rule, "TStnRunTrailer::fMirrorNSkippedTriggers", 6),
          Written<ULong64_t>(rule, "TStnRunTrailer::fStnDaqDeadTime"),
          Written<UInt_t>(rule, "TStnRunTrailer::fNT3"),
          Written<UInt_t>(rule, "TStnRunTrailer::fNRejectedT3"),
          Written<Float_t>(rule, "TStnRunTrailer::fTotalT3DeadTime"),
          WrittenTimeOf(rule, "TStnRunTrailer::fStartTime"),
          WrittenTimeOf(rule, "TStnRunTrailer::fStopTime"),
          version >= 3 ? Written<UInt_t>(rule, "TStnRunTrailer::fTotalTime") : std::make_pair("fTotalTime", "0")};
}

}  // namespace old_files

#endif
