#ifndef VdUtil_VdNumbering_h
#define VdUtil_VdNumbering_h

namespace VdUtil {

/// Numbers of stations, mirrors and pixels; a class used as a namespace.
///
/// All numbers count from 1; 0 means none, or an illegal number. Stations are 1 to 5, the mirrors of a station 1 to 6,
/// the pixels of a mirror 1 to 480. Larger numbers follow from these:
/// - station pixel number, 1 to 2880: (mirror - 1) * 480 + mirror pixel number
/// - installation pixel number, 1 to 14400: (station - 1) * 2880 + station pixel number
/// - installation mirror number, 1 to 30: (station - 1) * 6 + mirror
/// - camera position: column 1 to 20, row 1 to 24; mirror pixel number = (column - 1) * 24 + row
///
/// ROOT has no dictionaries for unions, so Python sees the records as untyped memory and can't tell overloads apart. There
/// the overload must be named: `Vd.GetPixelNo.__overload__("const VdUtil::Vd::_VdPixelNumber*")(pixel)`.
class Vd {
 public:
  static constexpr unsigned int kVD_FIRST_STN = 1;       ///< first station number
  static constexpr unsigned int kVD_LAST_STN = 5;        ///< last station number
  static constexpr unsigned int kSTN_NMIRRORS = 6;       ///< mirror slots of a station, used or not
  static constexpr unsigned int kMI_NEXTPIXELS = 480;    ///< pixel channels of a mirror
  static constexpr unsigned int kSTN_NEXTPIXELS = 2880;  ///< pixel channels of a station, 6 * 480
  static constexpr unsigned int kMI_NSLT_BINS = 100;     ///< time bins of a pixel's trigger record, numbered 0 to 99
  static constexpr unsigned int kMI_NCOLUMNS = 20;       ///< columns of a camera
  static constexpr unsigned int kMI_NROWS = 24;          ///< rows of a camera

  /// A pixel of one mirror of one station. The low 16 bits count.
  union _PixelNumber {
    int fPixelNumber;  // the whole word
    struct {
      unsigned int fPixelNo : 9;   // mirror pixel number
      unsigned int fMirrorNo : 3;  // mirror inside the station, 1 to 6
      unsigned int fStnNo : 3;     // station, 1 to 5
      unsigned int fTrigger : 1;   // trigger flag of the pixel
    } fBits;
  };

  /// A pixel of the whole installation. Only the low 16 bits count: copies take these and leave the rest of the target.
  union _VdPixelNumber {
    short fPixelNumber;  // the whole number
    struct {
      unsigned int fPixelNo : 14;  // installation pixel number
      unsigned int fBit0 : 1;      // spare flag
      unsigned int fBit1 : 1;      // spare flag
    } fBits;

    /// The number 0, or a copy of the low 16 bits.
    _VdPixelNumber() : fPixelNumber(0) {}
    _VdPixelNumber(const _VdPixelNumber& other) : fPixelNumber(other.fPixelNumber) {}
    /// The installation pixel of a pixel with station and mirror, as `GetVdPixelNumber` gives it.
    _VdPixelNumber(_PixelNumber pixel) : _VdPixelNumber(&pixel) {}
    /// The same; 0 for a null pointer.
    _VdPixelNumber(const _PixelNumber* pixel);
    _VdPixelNumber& operator=(const _VdPixelNumber& other) {
      fPixelNumber = other.fPixelNumber;
      return *this;
    }
  };

  /// A mirror of the installation: the low byte counts.
  union _MirrorNumber {
    short fMirrorNumber;  // the whole number
    struct {
      unsigned int fMirrorNo : 5;  // installation mirror number
      unsigned int fStnNo : 3;     // station, 1 to 5
    } fBits;
  };

  typedef _VdPixelNumber VdPixelNumberRec;  ///< the record by value
  typedef _VdPixelNumber* VdPixelNumber;    ///< the record as interfaces pass it
  typedef _PixelNumber* PixelNumber;        ///< the record as interfaces pass it

  // All accessors answer 0 for a null pointer, and setters ignore it.

  /// Mirror pixel number, 1 to 480.
  static unsigned int GetPixelNo(const _PixelNumber* pixel) { return pixel ? pixel->fPixelNumber & 0x1FF : 0; }
  /// Mirror inside the station, 1 to 6.
  static unsigned int GetMirrorNo(const _PixelNumber* pixel) { return pixel ? pixel->fBits.fMirrorNo : 0; }
  /// Station, 1 to 5.
  static unsigned int GetStnNo(const _PixelNumber* pixel) { return pixel ? pixel->fBits.fStnNo : 0; }
  /// Station, 1 to 5.
  static unsigned int GetStnNo(const _MirrorNumber* mirror) { return Byte(mirror) >> 5; }
  /// Installation mirror number, 1 to 30.
  static unsigned int GetVdMirrorNo(const _MirrorNumber* mirror) { return Byte(mirror) & 0x1F; }
  /// Mirror inside the station, 1 to 6; without meaning for a record that holds no mirror.
  static unsigned int GetMirrorNo(const _MirrorNumber* mirror) {
    return mirror ? (GetVdMirrorNo(mirror) - 1) % kSTN_NMIRRORS + 1 : 0;
  }
  /// Station, 1 to 5; without meaning for pixel number 0.
  static unsigned int GetStnNo(const _VdPixelNumber* pixel) {
    return pixel ? (GetPixelNo(pixel) - 1) / kSTN_NEXTPIXELS + 1 : 0;
  }
  /// Installation pixel number, 1 to 14400; not the pixel inside a mirror.
  static unsigned int GetPixelNo(const _VdPixelNumber* pixel) { return pixel ? pixel->fPixelNumber & 0x3FFF : 0; }
  /// Sets the station, taken modulo 8, and nothing else.
  static void SetStnNo(_PixelNumber* pixel, unsigned int stn) {
    if (pixel) pixel->fBits.fStnNo = stn & 7;
  }
  /// Sets the mirror inside the station, taken modulo 8, and nothing else.
  static void SetMirrorNo(_PixelNumber* pixel, unsigned int mirror) {
    if (pixel) pixel->fBits.fMirrorNo = mirror & 7;
  }
  /// Sets the mirror pixel number, taken modulo 512, and nothing else.
  static void SetPixelNo(_PixelNumber* pixel, unsigned int pixel_no) {
    if (pixel) pixel->fBits.fPixelNo = pixel_no & 0x1FF;
  }
  /// Sets the installation pixel number, taken modulo 16384; the two spare flags stay.
  static void SetPixelNo(_VdPixelNumber* pixel, unsigned int pixel_no) {
    if (pixel) pixel->fBits.fPixelNo = pixel_no & 0x3FFF;
  }

  // The accessors below answer 0 also for a record whose numbers are outside their ranges.

  /// Station pixel number, 1 to 2880.
  static unsigned int GetStnPixelNo(const _VdPixelNumber* pixel);
  /// Station pixel number, 1 to 2880, from mirror and pixel; the station may be missing.
  static unsigned int GetStnPixelNo(const _PixelNumber* pixel);
  /// Mirror inside the station, 1 to 6.
  static unsigned int GetStnMirrorNo(const _VdPixelNumber* pixel);
  /// Mirror inside the station, 1 to 6.
  static unsigned int GetMirrorNo(const _VdPixelNumber* pixel);
  /// Mirror pixel number, 1 to 480.
  static unsigned int GetMirrorPixelNo(const _VdPixelNumber* pixel);
  /// The installation pixel of a pixel with station and mirror; a record of value 0 when there is none. The record
  /// belongs to the library, one for each thread, and holds until that thread's next call.
  static _VdPixelNumber* GetVdPixelNumber(const _PixelNumber* pixel);
  /// The inverse conversion, with the trigger flag off and the same rules for the record.
  static _PixelNumber* GetPixelNumber(const _VdPixelNumber* pixel);
  /// Column in the camera, 1 to 20.
  static unsigned int GetColumnNo(const _PixelNumber* pixel);
  /// Row in the camera, 1 to 24.
  static unsigned int GetRowNo(const _PixelNumber* pixel);
  /// Number of the last mirror of a station: 6 for stations 1 to 4, 3 for station 5, 0 for a station that does not exist.
  static unsigned int GetStnLastMirrorNo(unsigned int stn);
  /// Installation mirror number, 1 to 30, of a station, 1 to 5, and a mirror inside it, 1 to 6; otherwise 0.
  static unsigned int GetVdMirrorNo(unsigned int stn, unsigned int mirror);
  /// Moves the pixel to station `stn`, 1 to 5, keeping the station pixel number and the spare flags. The number becomes 0
  /// when there is no such pixel.
  static void SetStnNo(_VdPixelNumber* pixel, unsigned int stn);
  /// Begins a mirror number with its station, 1 to 5 (otherwise 0), and no mirror. The record may be uninitialised.
  static void SetStnNo(_MirrorNumber* number, unsigned int stn);
  /// Completes a mirror number, whose station is set, with the mirror inside that station, 1 to 6; the mirror becomes 0
  /// when there is no such mirror.
  static void SetMirrorNo(_MirrorNumber* number, unsigned int mirror);

 private:
  static unsigned int Byte(const _MirrorNumber* mirror) { return mirror ? mirror->fMirrorNumber & 0xFF : 0; }
};

}  // namespace VdUtil

typedef VdUtil::Vd::_PixelNumber _PixelNumber;
typedef VdUtil::Vd::_VdPixelNumber _VdPixelNumber;
typedef VdUtil::Vd::_MirrorNumber _MirrorNumber;
typedef VdUtil::Vd::VdPixelNumberRec VdPixelNumberRec;
typedef VdUtil::Vd::VdPixelNumber VdPixelNumber;
typedef VdUtil::Vd::PixelNumber PixelNumber;

#endif
