#ifndef tools_HeaderTable_h
#define tools_HeaderTable_h

#include <StnEvent/StnEventHeader.h>

#include <string>

namespace StnTools {

/// Head of the table of event headers: the names of its columns, and below them a line.
std::string FormatTableHead();

/// The line of one event: entry and event number; corrected time as GPS second, nanoseconds and UTC; type and class;
/// mirrors with data by their numbers, "-" for each of the others; T3 identifier, "-" without one; quality of the time
/// correction; and the time offset of each mirror with data in ns, "-" for the others. Columns stand two blanks apart;
/// a value too long for its column moves the rest of its line.
std::string FormatTableRow(UInt_t entry, const TStnEventHeader& header);

}  // namespace StnTools

#endif
