#ifndef tools_HeaderRecord_h
#define tools_HeaderRecord_h

#include <StnEvent/StnEventHeader.h>

#include <string>

namespace StnTools {

/// One event header as a line of JSON: `entry`; every field by its name on file, arrays with mirror i + 1 at index i;
/// then the names of class, type and quality as `eventClass`, `eventType` and `timeCorrectionQuality`. Times are texts
/// as "2024-05-17T16:53:03.859905908Z", UTC; the raw time of a mirror without data is null. Counters and dead times are
/// in units of 100 ns, offsets in ns, `fTotalT3DeadTime` in s.
std::string FormatJsonLine(UInt_t entry, const TStnEventHeader& header);

/// Names of the columns of the same as comma-separated values. An array has a column for each mirror,
/// `fMirrorTimeOffset_1` to `fMirrorTimeOffset_6`.
std::string FormatCsvHead();

/// The values of these columns; nothing stands for null.
std::string FormatCsvLine(UInt_t entry, const TStnEventHeader& header);

}  // namespace StnTools

#endif
