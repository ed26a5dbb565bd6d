#ifndef PixelLists_h
#define PixelLists_h

#include <StnEvent/StnPixelList.h>
#include <VdUtil/VdNumbering.h>

#include <sstream>
#include <string>
#include <vector>

/// A pixel of a station.
inline _VdPixelNumber MakeStnPixel(UInt_t stn, UInt_t stn_pixel) {
  _VdPixelNumber pixel;
  VdUtil::Vd::SetPixelNo(&pixel, (stn - 1) * 2880 + stn_pixel);
  return pixel;
}

/// A list of one station, by station pixel numbers and with what is protected in reach.
template <UInt_t Stn>
class TListOf : public TStnPixelList {
 public:
  TListOf() { SetStnNo(Stn); }
  explicit TListOf(const std::vector<UInt_t>& stn_pixels) : TListOf() {
    for (UInt_t stn_pixel : stn_pixels)
      Add(stn_pixel);
  }
  void Add(UInt_t stn_pixel, UInt_t stn = Stn) {
    _VdPixelNumber pixel = MakeStnPixel(stn, stn_pixel);
    AddPixel(&pixel);
  }
  void Remove(UInt_t stn_pixel) {
    _VdPixelNumber pixel = MakeStnPixel(Stn, stn_pixel);
    RemovePixel(&pixel);
  }
  bool Test(UInt_t stn_pixel) {
    _VdPixelNumber pixel = MakeStnPixel(Stn, stn_pixel);
    return TestPixel(&pixel);
  }
  /// Installation pixel number at an index, 0 for none.
  UInt_t At(UInt_t i) { return VdUtil::Vd::GetPixelNo(GetPixel(i)); }
  /// All station pixels of the list.
  std::vector<UInt_t> GetPixels() {
    std::vector<UInt_t> pixels;
    for (UInt_t i = 0; i < GetNumPixels(); ++i)
      pixels.push_back(VdUtil::Vd::GetStnPixelNo(GetPixel(i)));
    return pixels;
  }
  std::string GetText() {
    std::ostringstream text;
    Show(text);
    return text.str();
  }
  using TStnPixelList::ConstructPixelList;
  using TStnPixelList::GetPosition;
  using TStnPixelList::SetStnNo;
};

#endif
