#ifndef tools_HeaderNames_h
#define tools_HeaderNames_h

#include <StnEvent/StnEventHeader.h>

#include <string>

namespace StnTools {

/// Names of classes, types and qualities as one reads them in a table: without the quote marks and the explanations
/// that those of the library have, as "Shower" and "Physics".
std::string GetShortName(TStnEventHeader::EEventClass event_class);
std::string GetShortName(TStnEventHeader::EEventType type);
std::string GetShortName(TStnEventHeader::ETimeCorrectionQuality quality);

}  // namespace StnTools

#endif
