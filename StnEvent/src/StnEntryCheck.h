#ifndef StnEvent_StnEntryCheck_h
#define StnEvent_StnEntryCheck_h

#include <Rtypes.h>

class TBranch;

/// Whether one entry of a sub-branch of the event, in memory or loaded from the file here, stands in the bytes that its
/// basket has for it: byte counts, tags and counts in a damaged one would lead ROOT out of them. If not, an error message
/// says what does not fit. Entries that ROOT refuses by itself are called sound, and so are branches of plain numbers.
bool IsEntrySound(TBranch& branch, Long64_t entry);

#endif
