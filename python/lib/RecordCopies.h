#ifndef python_RecordCopies_h
#define python_RecordCopies_h

#include "Records.h"

#include <MrEvent/FadcData.h>
#include <MrEvent/MiPixelData.h>
#include <StnEvent/StnEvent.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <memory>

namespace StnPython {

HeaderRecord CopyHeader(const TStnEventHeader& header);
RunHeaderRecord CopyRunHeader(const TStnRunHeader& header);
RunTrailerRecord CopyRunTrailer(const TStnRunTrailer& trailer);

/// Bins of a trace from the first to the last; 0 if the last lies before the first.
std::uint32_t GetNSamples(const TFADCData& trace);
/// A trace but for its samples. `header` is that of its event; without the time of its mirror the trace has none.
TraceRecord CopyTrace(const TFADCData& trace, TStnEventHeader& header);
/// Copies the words of a trace's bins, 0 for a bin that has none. Returns the end of the copy.
std::uint16_t* CopyWords(const TFADCData& trace, std::uint16_t* words);

/// The bits of a pixel list, one for each station pixel. `TStnPixelList::GetPixel` would end the process if the bits of
/// a damaged list do not match its count.
const UInt_t* GetPixelBits(const TStnPixelList& list);

/// Calls `use` with each trace, by ascending station pixel number.
template <class Use>
void ForEachTrace(const TStnFADCData& traces, Use use) {
  const std::unique_ptr<TIterator> next(traces.GetIterator());
  while (const TObject* trace = next->Next())
    use(*static_cast<const TFADCData*>(trace));
}

/// Calls `use` with the station pixel number of each pixel in the list, in ascending order.
template <class Use>
void ForEachPixel(const TStnPixelList& list, Use use) {
  const UInt_t* const bits = GetPixelBits(list);
  for (UInt_t i = 0; i < VdUtil::Vd::kSTN_NEXTPIXELS; ++i)
    if (bits[i / 32] >> i % 32 & 1) use(static_cast<std::int32_t>(i + 1));
}

inline std::uint32_t CountPixels(const TStnPixelList& list) {
  std::uint32_t count = 0;
  ForEachPixel(list, [&](std::int32_t) { ++count; });
  return count;
}

/// Calls `use` with the station pixel number and the trigger words of each pixel that has a trigger bit.
template <class Use>
void ForEachTriggered(const TStnPixelData& data, Use use) {
  for (UInt_t mirror = 1; mirror <= VdUtil::Vd::kSTN_NMIRRORS; ++mirror) {
    const TMirrorPixelData* const pixels = data.GetPixelData(mirror);
    if (!pixels) continue;
    for (UInt_t i = 0; i < VdUtil::Vd::kMI_NEXTPIXELS; ++i) {
      const auto& words = pixels->GetRecord()->fTrigger[i];
      if (words[0] | words[1] | words[2] | words[3])
        use(static_cast<std::int32_t>((mirror - 1) * VdUtil::Vd::kMI_NEXTPIXELS + i + 1), words);
    }
  }
}

}  // namespace StnPython

#endif
