#include <VdUtil/VdNumbering.h>

namespace VdUtil {

namespace {

constexpr unsigned int kVD_NEXTPIXELS = Vd::kVD_LAST_STN * Vd::kSTN_NEXTPIXELS;

bool IsStn(unsigned int stn) { return stn >= Vd::kVD_FIRST_STN && stn <= Vd::kVD_LAST_STN; }
bool IsMirror(unsigned int mirror) { return mirror >= 1 && mirror <= Vd::kSTN_NMIRRORS; }
bool IsPixel(unsigned int pixel) { return pixel >= 1 && pixel <= Vd::kMI_NEXTPIXELS; }

/// The pixel inside its mirror counted from 0; negative when it is none.
int PixelIndex(const Vd::_PixelNumber* pixel) {
  const unsigned int number = Vd::GetPixelNo(pixel);
  return IsPixel(number) ? static_cast<int>(number) - 1 : -1;
}

}  // namespace

Vd::_VdPixelNumber::_VdPixelNumber(const _PixelNumber* pixel) : fPixelNumber(0) {
  const unsigned int stn_pixel = GetStnPixelNo(pixel);
  if (stn_pixel == 0 || !IsStn(Vd::GetStnNo(pixel))) return;
  Vd::SetPixelNo(this, (Vd::GetStnNo(pixel) - 1) * kSTN_NEXTPIXELS + stn_pixel);
}

unsigned int Vd::GetStnPixelNo(const _VdPixelNumber* pixel) {
  const unsigned int number = GetPixelNo(pixel);
  return number >= 1 && number <= kVD_NEXTPIXELS ? (number - 1) % kSTN_NEXTPIXELS + 1 : 0;
}

unsigned int Vd::GetStnPixelNo(const _PixelNumber* pixel) {
  if (PixelIndex(pixel) < 0 || !IsMirror(GetMirrorNo(pixel))) return 0;
  return (GetMirrorNo(pixel) - 1) * kMI_NEXTPIXELS + GetPixelNo(pixel);
}

unsigned int Vd::GetStnMirrorNo(const _VdPixelNumber* pixel) {
  const unsigned int stn_pixel = GetStnPixelNo(pixel);
  return stn_pixel ? (stn_pixel - 1) / kMI_NEXTPIXELS + 1 : 0;
}

unsigned int Vd::GetMirrorNo(const _VdPixelNumber* pixel) { return GetStnMirrorNo(pixel); }

unsigned int Vd::GetMirrorPixelNo(const _VdPixelNumber* pixel) {
  const unsigned int stn_pixel = GetStnPixelNo(pixel);
  return stn_pixel ? (stn_pixel - 1) % kMI_NEXTPIXELS + 1 : 0;
}

Vd::_VdPixelNumber* Vd::GetVdPixelNumber(const _PixelNumber* pixel) {
  static thread_local _VdPixelNumber record;
  record = _VdPixelNumber(pixel);
  return &record;
}

Vd::_PixelNumber* Vd::GetPixelNumber(const _VdPixelNumber* pixel) {
  static thread_local _PixelNumber record;
  record.fPixelNumber = 0;
  if (GetStnPixelNo(pixel) == 0) return &record;
  SetPixelNo(&record, GetMirrorPixelNo(pixel));
  SetMirrorNo(&record, GetMirrorNo(pixel));
  SetStnNo(&record, GetStnNo(pixel));
  return &record;
}

unsigned int Vd::GetColumnNo(const _PixelNumber* pixel) {
  const int index = PixelIndex(pixel);
  return index < 0 ? 0 : index / kMI_NROWS + 1;
}

unsigned int Vd::GetRowNo(const _PixelNumber* pixel) {
  const int index = PixelIndex(pixel);
  return index < 0 ? 0 : index % kMI_NROWS + 1;
}

unsigned int Vd::GetStnLastMirrorNo(unsigned int stn) {
  static constexpr unsigned int kLastMirror[] = {0, 6, 6, 6, 6, 3};
  return IsStn(stn) ? kLastMirror[stn] : 0;
}

unsigned int Vd::GetVdMirrorNo(unsigned int stn, unsigned int mirror) {
  return IsStn(stn) && IsMirror(mirror) ? (stn - 1) * kSTN_NMIRRORS + mirror : 0;
}

void Vd::SetStnNo(_VdPixelNumber* pixel, unsigned int stn) {
  const unsigned int stn_pixel = GetStnPixelNo(pixel);
  SetPixelNo(pixel, stn_pixel && IsStn(stn) ? (stn - 1) * kSTN_NEXTPIXELS + stn_pixel : 0);
}

void Vd::SetStnNo(_MirrorNumber* number, unsigned int stn) {
  if (!number) return;
  number->fMirrorNumber = 0;
  number->fBits.fStnNo = IsStn(stn) ? stn : 0;
}

void Vd::SetMirrorNo(_MirrorNumber* number, unsigned int mirror) {
  if (!number) return;
  number->fBits.fMirrorNo = GetVdMirrorNo(GetStnNo(number), mirror);
}

}  // namespace VdUtil
