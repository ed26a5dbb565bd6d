#include "Finding.h"

#include "EntryGaps.h"

#include <nlohmann/json.hpp>

namespace StnTools {
namespace {

const char* const kKindNames[] = {"note", "damage"};

std::optional<std::uint64_t> GetNumber(const nlohmann::json& json, const char* key) {
  if (!json.contains(key)) return {};
  return json[key].get<std::uint64_t>();
}

}  // namespace

std::string Finding::GetText() const {
  std::string place = fEntry ? EntryGaps::Gap{*fEntry, fLastEntry.value_or(*fEntry), ""}.GetName() : "";
  if (!fBranch.empty()) place += (place.empty() ? "" : ", ") + fBranch;
  return (place.empty() ? "" : place + ": ") + fWhat + ": expected " + fExpected + ", found " + fFound;
}

std::string Finding::GetJson() const {
  nlohmann::ordered_json json;
  json["kind"] = kKindNames[fKind];
  if (fEntry) json["entry"] = *fEntry;
  if (fLastEntry) json["last_entry"] = *fLastEntry;
  if (!fBranch.empty()) json["branch"] = fBranch;
  json["what"] = fWhat;
  json["expected"] = fExpected;
  json["found"] = fFound;
  // A damaged file may hold any bytes for a name.
  return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

Finding Finding::FromJson(const std::string& text) {
  const nlohmann::json json = nlohmann::json::parse(text);
  Finding finding;
  finding.fKind = json.at("kind") == kKindNames[kNote] ? kNote : kIsDamaged;
  finding.fWhat = json.at("what");
  finding.fExpected = json.at("expected");
  finding.fFound = json.at("found");
  finding.fBranch = json.value("branch", "");
  finding.fEntry = GetNumber(json, "entry");
  finding.fLastEntry = GetNumber(json, "last_entry");
  return finding;
}

}  // namespace StnTools
