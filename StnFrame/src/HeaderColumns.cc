#include <StnFrame/HeaderColumns.h>

#include <StnEvent/StnEventHeader.h>
#include <VdUtil/VdNumbering.h>

#include <string>
#include <type_traits>

namespace StnEvent::RDF {
namespace {

using Header = TStnEventHeader;
using ROOT::RVec;
using VdUtil::Vd;

Long64_t GetUnixNanoSec(const VdRoot::TTimeStamp& stamp) {
  return Long64_t(stamp.GetSec()) * Header::kNanoSecPerSecond + stamp.GetNanoSec();
}

/// What a getter gives for each mirror.
template <auto kGet>
auto PerMirror(const Header& header) {
  RVec<decltype((header.*kGet)(1))> values(Vd::kSTN_NMIRRORS);
  for (UInt_t i = 0; i < values.size(); ++i)
    values[i] = (header.*kGet)(i + 1);
  return values;
}

RVec<UInt_t> GetTriggerSources(const Header& header) {
  const auto sources = PerMirror<&Header::GetTriggerSource>(header);
  return RVec<UInt_t>(sources.begin(), sources.end());
}

RVec<Long64_t> GetRawMirrorTimes(const Header& header) {
  RVec<Long64_t> values(Vd::kSTN_NMIRRORS);
  for (UInt_t i = 0; i < values.size(); ++i) {
    const auto* time = header.GetRawMirrorTimeStamp(i + 1);
    values[i] = time ? GetUnixNanoSec(*time) : kNoTime;
  }
  return values;
}

Float_t GetT10(const Header& header) {
  Float_t t10 = 0, offset = 0;
  header.GetTimeCorrectionParameters(&t10, &offset);
  return t10;
}

Float_t GetOffset(const Header& header) {
  Float_t t10 = 0, offset = 0;
  header.GetTimeCorrectionParameters(&t10, &offset);
  return offset;
}

}  // namespace

ROOT::RDF::RNode HeaderColumns(ROOT::RDF::RNode node) {
  // ROOT makes code for each type of callable, so these are plain functions: few types for many columns.
  const auto define = [&node](const char* name, auto get) { node = node.Define(name, get, {"fEventHeader"}); };
  define(
      "fEventNumber", +[](const Header& h) { return h.GetEventNo(); });
  define(
      "fStnNumber", +[](const Header& h) { return h.GetStnNo(); });
  define(
      "fEventClass", +[](const Header& h) { return Int_t(h.GetEventClass()); });
  define(
      "fEventType", +[](const Header& h) { return Int_t(h.GetEventType()); });
  define(
      "fMirrorDataBits", +[](const Header& h) { return h.GetMirrorDataBits(); });
  define(
      "fMirrorStatus", +[](const Header& h) { return h.GetMirrorStatusBits(); });
  define(
      "fRunNo", +[](const Header& h) { return h.GetRunNo(); });
  define("fTriggerSource", &GetTriggerSources);
  define(
      "fStatusBits", +[](const Header& h) { return UInt_t(h.GetStatusBits()); });
  define(
      "fTimeStamp", +[](const Header& h) { return GetUnixNanoSec(*h.GetTimeStamp()); });
  define(
      "fTimeCorrectionQuality", +[](const Header& h) { return Int_t(h.GetTimeCorrectionQuality()); });
  define("fT10Mhz", &GetT10);
  define("fOffset", &GetOffset);
  define("fMirrorTimeOffset", &PerMirror<&Header::GetMirrorTimeOffset>);
  define("fRawMirrorTime", &GetRawMirrorTimes);
  define("fTriggerTimeStamp", &PerMirror<&Header::GetTriggerTimeStamp>);
  define("fDeadTimeCounter", &PerMirror<&Header::GetDeadTimeCounter>);
  define(
      "fVetoTimeCounter", +[](const Header& h) { return h.GetVetoTimeCounter(); });
  define("fRunTimeCounter", &PerMirror<&Header::GetRunTimeCounter>);
  define(
      "fStnDaqDeadTime", +[](const Header& h) { return h.GetStnDaqDeadTime(); });
  define("fMirrorDaqDeadTime", &PerMirror<&Header::GetMirrorDaqDeadTime>);
  define("fMirrorNSkippedTriggers", &PerMirror<&Header::GetMirrorNSkippedTriggers>);
  define("fMirrorEventLabel", &PerMirror<&Header::GetMirrorEventLabel>);
  define(
      "fT3Id", +[](const Header& h) { return h.GetT3Id(); });
  define(
      "fT3TimeAtGround", +[](const Header& h) { return GetUnixNanoSec(*h.GetT3TimeStamp()); });
  define(
      "fNRejectedT3", +[](const Header& h) { return h.GetNRejectedT3(); });
  define(
      "fTotalT3DeadTime", +[](const Header& h) { return h.GetTotalT3DeadTime(); });
  return node;
}

}  // namespace StnEvent::RDF
