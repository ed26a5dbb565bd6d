#include "ChecksumList.h"

#include "FileName.h"
#include "ToolError.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace StnTools {
namespace {

const char* const kFormat = "stn-checksums 1";

EventChecksum ParseEvent(const nlohmann::json& event) {
  EventChecksum checksum;
  for (int part = 0; part < kNParts; ++part) {
    checksum[part] = std::stoull(event.at(part).get<std::string>(), nullptr, 16);
  }
  return checksum;
}

nlohmann::ordered_json FormatEvent(const EventChecksum& checksum) {
  auto event = nlohmann::ordered_json::array();
  for (std::uint64_t part : checksum)
    event.push_back(FormatChecksum(part));
  return event;
}

}  // namespace

ChecksumList ChecksumList::Read(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw ToolError(kCannotOpen, path + " cannot be opened: " + std::strerror(errno) + "; check the name");
  ChecksumList list;
  try {
    nlohmann::json json = nlohmann::json::parse(file);
    if (json.at("format") != kFormat) throw std::invalid_argument("format");
    for (const nlohmann::json& event : json.at("events"))
      list.Add(ParseEvent(event));
    if (json.at("combined") != FormatChecksum(list.GetCombined())) throw std::invalid_argument("combined");
  } catch (const std::exception&) {
    throw ToolError(kCannotOpen, path + " is no list of checksums; name one written by stn-simulate --checksums");
  }
  return list;
}

void ChecksumList::Write(const std::string& path) const {
  nlohmann::ordered_json json;
  json["format"] = kFormat;
  json["events"] = nlohmann::ordered_json::array();
  for (const EventChecksum& event : fEvents)
    json["events"].push_back(FormatEvent(event));
  json["combined"] = FormatChecksum(GetCombined());
  std::ofstream file(GetPartName(path));
  file << json.dump(1) << '\n';
  file.close();
  if (!file) {
    const std::string reason = std::strerror(errno);
    RemovePart(path);
    throw ToolError(kCannotWrite, path + " could not be written: " + reason);
  }
  FinishPart(path);
}

std::uint64_t ChecksumList::GetCombined() const {
  Checksum sum;
  for (const EventChecksum& event : fEvents) {
    for (std::uint64_t part : event)
      sum.Add(part);
  }
  return sum.GetValue();
}

}  // namespace StnTools
