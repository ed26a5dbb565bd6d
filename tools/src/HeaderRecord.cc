#include "HeaderRecord.h"

#include "HeaderNames.h"

#include <VdUtil/VdNumbering.h>

#include <nlohmann/json.hpp>

#include <vector>

namespace StnTools {
namespace {

using Json = nlohmann::ordered_json;
using Header = TStnEventHeader;

Json GetTime(const VdRoot::TTimeStamp* stamp) { return stamp ? Json(stamp->AsString("i")) : Json(); }

/// What `get` gives for each mirror.
template <class Get>
Json PerMirror(Get get) {
  Json values = Json::array();
  for (UInt_t mirror = 1; mirror <= VdUtil::Vd::kSTN_NMIRRORS; ++mirror)
    values.push_back(get(mirror));
  return values;
}

template <auto kGet>
Json PerMirror(const Header& header) {
  return PerMirror([&header](UInt_t mirror) { return Json((header.*kGet)(mirror)); });
}

Json GetRawTimes(const Header& header) {
  return PerMirror([&header](UInt_t mirror) { return GetTime(header.GetRawMirrorTimeStamp(mirror)); });
}

template <int kIndex>
Json GetCorrection(const Header& header) {
  Float_t values[2];
  header.GetTimeCorrectionParameters(&values[0], &values[1]);
  return values[kIndex];
}

const struct {
  const char* fName;
  Json (*fGet)(const Header& header);
} kFields[] = {
    {"fEventNumber", [](const Header& h) { return Json(h.GetEventNo()); }},
    {"fStnNumber", [](const Header& h) { return Json(h.GetStnNo()); }},
    {"fEventClass", [](const Header& h) { return Json(Int_t(h.GetEventClass())); }},
    {"fEventType", [](const Header& h) { return Json(Int_t(h.GetEventType())); }},
    {"fMirrorDataBits", [](const Header& h) { return Json(h.GetMirrorDataBits()); }},
    {"fMirrorStatus", [](const Header& h) { return Json(h.GetMirrorStatusBits()); }},
    {"fRunNo", [](const Header& h) { return Json(h.GetRunNo()); }},
    {"fTriggerSource",
     [](const Header& h) {
       return PerMirror([&h](UInt_t mirror) { return Json(UInt_t(h.GetTriggerSource(mirror))); });
     }},
    {"fStatusBits", [](const Header& h) { return Json(UInt_t(h.GetStatusBits())); }},
    {"fTimeStamp", [](const Header& h) { return GetTime(h.GetTimeStamp()); }},
    {"fTimeCorrectionQuality", [](const Header& h) { return Json(Int_t(h.GetTimeCorrectionQuality())); }},
    {"fT10Mhz", GetCorrection<0>},
    {"fOffset", GetCorrection<1>},
    {"fMirrorTimeOffset", PerMirror<&Header::GetMirrorTimeOffset>},
    {"fRawMirrorTime", GetRawTimes},
    {"fTriggerTimeStamp", PerMirror<&Header::GetTriggerTimeStamp>},
    {"fDeadTimeCounter", PerMirror<&Header::GetDeadTimeCounter>},
    {"fVetoTimeCounter", [](const Header& h) { return Json(h.GetVetoTimeCounter()); }},
    {"fRunTimeCounter", PerMirror<&Header::GetRunTimeCounter>},
    {"fStnDaqDeadTime", [](const Header& h) { return Json(h.GetStnDaqDeadTime()); }},
    {"fMirrorDaqDeadTime", PerMirror<&Header::GetMirrorDaqDeadTime>},
    {"fMirrorNSkippedTriggers", PerMirror<&Header::GetMirrorNSkippedTriggers>},
    {"fMirrorEventLabel", PerMirror<&Header::GetMirrorEventLabel>},
    {"fT3Id", [](const Header& h) { return Json(h.GetT3Id()); }},
    {"fT3TimeAtGround", [](const Header& h) { return GetTime(h.GetT3TimeStamp()); }},
    {"fNRejectedT3", [](const Header& h) { return Json(h.GetNRejectedT3()); }},
    {"fTotalT3DeadTime", [](const Header& h) { return Json(h.GetTotalT3DeadTime()); }},
    {"eventClass", [](const Header& h) { return Json(GetShortName(h.GetEventClass())); }},
    {"eventType", [](const Header& h) { return Json(GetShortName(h.GetEventType())); }},
    {"timeCorrectionQuality", [](const Header& h) { return Json(GetShortName(h.GetTimeCorrectionQuality())); }},
};

Json GetRecord(UInt_t entry, const Header& header) {
  Json record = {{"entry", entry}};
  for (const auto& field : kFields)
    record[field.fName] = field.fGet(header);
  return record;
}

// No name and no value has a comma or a quote mark in it.
std::string FormatLine(const std::vector<std::string>& cells) {
  std::string line;
  for (const auto& cell : cells)
    line += (line.empty() ? "" : ",") + cell;
  return line + "\n";
}

std::string FormatCell(const Json& value) {
  if (value.is_null()) return "";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

}  // namespace

std::string FormatJsonLine(UInt_t entry, const TStnEventHeader& header) {
  return GetRecord(entry, header).dump() + "\n";
}

std::string FormatCsvHead() {
  std::vector<std::string> names;
  const Json record = GetRecord(0, TStnEventHeader());
  for (const auto& [name, value] : record.items()) {
    if (!value.is_array()) names.push_back(name);
    for (size_t i = 0; value.is_array() && i < value.size(); ++i)
      names.push_back(name + "_" + std::to_string(i + 1));
  }
  return FormatLine(names);
}

std::string FormatCsvLine(UInt_t entry, const TStnEventHeader& header) {
  std::vector<std::string> cells;
  for (const Json& value : GetRecord(entry, header)) {
    if (!value.is_array()) cells.push_back(FormatCell(value));
    for (size_t i = 0; value.is_array() && i < value.size(); ++i)
      cells.push_back(FormatCell(value[i]));
  }
  return FormatLine(cells);
}

}  // namespace StnTools
