#ifndef fuzz_Use_h
#define fuzz_Use_h

#include <StnEvent/StnEvent.h>

#include <TClass.h>

#include <bitset>
#include <iostream>
#include <memory>

/// What programs do with an object that they have read. Whatever stood on file, it must do no harm.
inline void Use(const TStnEventHeader& header) {
  TStnEventHeader copy(header);
  copy.AdjustMirrorTimes();
  copy.Show(std::cout);
}

/// Whether count and bits of a list agree. Where they don't, `GetPixel` ends the process, as is its promise.
inline bool IsConsistent(const TStnPixelList& list) {
  const Long_t offset = TStnPixelList::Class()->GetDataMemberOffset("fPixelVector");
  const UInt_t* words = *reinterpret_cast<UInt_t* const*>(reinterpret_cast<const char*>(&list) + offset);
  size_t n = 0;
  for (UInt_t i = 0; i < VdUtil::Vd::kSTN_NEXTPIXELS / 32; ++i)
    n += std::bitset<32>(words[i]).count();
  return n == list.GetNumPixels();
}

inline void Use(const TStnPixelList& list) {
  TStnPixelList copy(list);
  _VdPixelNumber pixel;
  for (UInt_t n = 1; n <= VdUtil::Vd::kSTN_NEXTPIXELS; n += 31) {
    VdUtil::Vd::SetPixelNo(&pixel, n);
    copy.TestPixel(&pixel);
  }
  if (IsConsistent(copy)) copy.Show(std::cout);
}

inline void Use(const TStnFADCData& traces) {
  const TStnFADCData copy(traces);
  const std::unique_ptr<TIterator> next(copy.GetIterator());
  while (const TObject* trace = next->Next())
    static_cast<const TFADCData*>(trace)->Show(std::cout);
  copy.Show(std::cout);
}

inline void Use(const TStnPixelData& data) {
  TStnPixelData copy(data);
  copy.Show(std::cout);
}

inline void Use(TStnEvent& event) {
  TStnEvent copy(event);
  if (!IsConsistent(*copy.GetPixelList())) return;
  copy.Show(std::cout);
  copy.Clear();
}

inline void Use(const VdRoot::TTimeStamp& stamp) {
  VdRoot::TTimeStamp copy(stamp);
  copy.Normalize();
  std::cout << copy.AsString() << copy.AsString("g");
}

/// All other records only show themselves.
template <class T>
void Use(const T& record) {
  T copy(record);
  copy.Show(std::cout);
}

#endif
