#include "HeaderNames.h"

namespace StnTools {
namespace {

// The names stand in quote marks, and the longer ones explain themselves behind a dash.
std::string Shorten(const std::string& name) {
  std::string bare = name.front() == '\'' ? name.substr(1, name.size() - 2) : name;
  return bare.substr(0, bare.find(" - "));
}

}  // namespace

std::string GetShortName(TStnEventHeader::EEventClass event_class) {
  return Shorten(TStnEventHeader::GetVerboseEventClass(event_class));
}

std::string GetShortName(TStnEventHeader::EEventType type) {
  return Shorten(TStnEventHeader::GetVerboseEventType(type));
}

std::string GetShortName(TStnEventHeader::ETimeCorrectionQuality quality) {
  return Shorten(TStnEventHeader::GetVerboseTimeCorrectionQuality(quality));
}

}  // namespace StnTools
