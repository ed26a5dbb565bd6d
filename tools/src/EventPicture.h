#ifndef tools_EventPicture_h
#define tools_EventPicture_h

#include <StnEvent/StnEvent.h>

#include <string>

namespace StnTools {

/// One event as JSON text, with all that a page needs to draw it:
/// - `entry`; `header`, the fields that `FormatJsonLine` gives; `labels`, the names of the six mirrors' labels;
/// - `pixels`, those that are in the pixel list, have a trace or a trigger slice, by ascending station pixel number
///   `number`, with `mirror`, `pixel` in the mirror, `column`, `row`, `listed`, trigger `slices` of the mirror's record
///   (0 to 99, ranges that include both ends), and `trace`, which is null if there is none.
///
/// A trace has `first` and `size`, the bins that follow; `samples` as `TraceView::EncodeSamples` gives them; `triggers`
/// and `changes`, bins with flags; `pedestal` and `signal` in FADC counts; `bins` of its resolution; and `time`, that of
/// its first trigger bin, corrected, in ns after the event's first; null if no bin has a trigger.
std::string FormatPicture(UInt_t entry, TStnEvent& event);

}  // namespace StnTools

#endif
