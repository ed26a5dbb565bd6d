#ifndef StnFrame_HeaderColumns_h
#define StnFrame_HeaderColumns_h

#include <ROOT/RDataFrame.hxx>

#include <limits>

/// Station files in ROOT's data frames.
namespace StnEvent::RDF {

/// The raw time of a mirror without data; NumPy reads it as "not a time".
constexpr Long64_t kNoTime = std::numeric_limits<Long64_t>::min();

/// The data frame of `StnEventTree` with one more column for each field of the event header, under the field's name on
/// file: `fEventNumber`, `fTimeStamp`, `fDeadTimeCounter` and so on. Works on a chain of files whose headers are of
/// different versions, and with implicit multi-threading; only baskets of headers are read.
///
/// | fields | type of the column |
/// |---|---|
/// | whole numbers of 8 to 32 bits | `UInt_t`, or `Int_t` where they have a sign; `fT3Id` `UShort_t` |
/// | `fT10Mhz`, `fOffset` (ns), `fTotalT3DeadTime` (s) | `Float_t` |
/// | counters and dead times (100 ns) | `ULong64_t`, whole also where the file has pairs of words |
/// | times | `Long64_t`, nanoseconds since 1970-01-01 UTC without leap seconds |
/// | six values, one for each mirror | `ROOT::RVec` of the type above, mirror `i + 1` at index `i` |
///
/// Values are those of `TStnEventFile::ReadEventHeader`. `fRawMirrorTime` is `kNoTime` for mirrors without data. Throws
/// `std::runtime_error` if the data frame lacks the column `fEventHeader`, or has one of the new columns already.
ROOT::RDF::RNode HeaderColumns(ROOT::RDF::RNode node);

}  // namespace StnEvent::RDF

#endif
