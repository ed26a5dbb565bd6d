#ifndef MrEvent_MiPixelData_h
#define MrEvent_MiPixelData_h

#include <VdUtil/VdNumbering.h>

#include <Rtypes.h>
#include <TObject.h>

#include <iostream>

class MrRecordReader;

/// Trigger bits of one mirror's pixels: for each of the 480 channels 100 time slices, 0 to 99.
class TMirrorPixelData : public TObject {
 public:
  /// Answer of GetFirstTriggeredTimeBin when nothing is triggered.
  static constexpr int kNoTrigger = -1;
  /// Words of 32 slices for each pixel: 100 slices, and 28 spare bits in the last word.
  static constexpr UInt_t kNWords = 4;

  /// The data. Bit s % 32 of fTrigger[n - 1][s / 32] is slice s of the pixel with number n in its mirror.
  struct _MirrorPixelDataRec {
    /// A word without meaning, station and mirror, and the slices.
    UInt_t fUnused;
    _MirrorNumber fMirrorNumber;
    UInt_t fTrigger[VdUtil::Vd::kMI_NEXTPIXELS][kNWords];
  };

  /// No pixel triggered, mirror number 0.
  TMirrorPixelData();
  TMirrorPixelData(const TMirrorPixelData& rhs);
  /// Deep copy of the record; the TObject part stays.
  TMirrorPixelData& operator=(const TMirrorPixelData& rhs);
  ~TMirrorPixelData() override;

  /// The mirror of the installation, inside this object.
  _MirrorNumber* GetMirrorNumber() const { return &fRecord->fMirrorNumber; }
  /// Copies the whole number; a null pointer is ignored.
  void SetMirrorNumber(_MirrorNumber* number) {
    if (number) fRecord->fMirrorNumber = *number;
  }
  /// Station, 1 to 5.
  UInt_t GetStnNo() const { return VdUtil::Vd::GetStnNo(&fRecord->fMirrorNumber); }
  /// Sets the station; to be called before SetMirrorNo.
  void SetStnNo(unsigned int stn_no) { VdUtil::Vd::SetStnNo(&fRecord->fMirrorNumber, stn_no); }
  /// Mirror inside the station, 1 to 6.
  UInt_t GetMirrorNo() const { return VdUtil::Vd::GetMirrorNo(&fRecord->fMirrorNumber); }
  /// Sets the mirror inside the station; to be called after SetStnNo.
  void SetMirrorNo(unsigned int mirror_no) { VdUtil::Vd::SetMirrorNo(&fRecord->fMirrorNumber, mirror_no); }

  /// Sets or clears the trigger bit of a pixel, column 1 to 20 and row 1 to 24, in a slice 0 to 99. Anything outside
  /// is refused with an error message.
  void SetTriggered(UInt_t column, UInt_t row, UInt_t slice, bool on = true);
  /// The same for the channel that a pixel number names.
  void SetTriggered(_PixelNumber* pixel, UInt_t slice, bool on = true) {
    SetTriggered(VdUtil::Vd::GetColumnNo(pixel), VdUtil::Vd::GetRowNo(pixel), slice, on);
  }

  /// First triggered slice of a pixel among start_slice to end_slice, both included and cut at 99; kNoTrigger when
  /// there is none or no such pixel.
  int GetFirstTriggeredTimeBin(UInt_t column, UInt_t row, UInt_t start_slice, UInt_t end_slice) const;
  /// The same for the channel that a pixel number names.
  int GetFirstTriggeredTimeBin(_PixelNumber* pixel, UInt_t start_slice, UInt_t end_slice) const {
    return GetFirstTriggeredTimeBin(VdUtil::Vd::GetColumnNo(pixel), VdUtil::Vd::GetRowNo(pixel), start_slice,
                                    end_slice);
  }

  /// Number of pixels with a triggered slice among start_slice to end_slice, both included and cut at 99.
  UInt_t GetNumberOfTriggeredPixels(UInt_t start_slice, UInt_t end_slice) const;

  /// The data themselves.
  const _MirrorPixelDataRec* GetRecord() const { return fRecord; }
  _MirrorPixelDataRec* GetRecord() { return fRecord; }

  /// Back to a new object: no pixel triggered, mirror number 0.
  void Clear(Option_t* option = "") override;
  /// Prints station and mirror, and for each pixel with a trigger in the first n slices a line with its column, row and
  /// those slices, as 1 and dot.
  void Show(std::ostream& ostr = std::cout, UInt_t n = VdUtil::Vd::kMI_NSLT_BINS) const;

 private:
  void ShowPixels(std::ostream& ostr, UInt_t n_slices) const;
  void WriteRecord(TBuffer& b);
  void ReadRecord(TBuffer& b);
  void ReadCurrentVersion(MrRecordReader& reader);
  bool CheckCounts(MrRecordReader& reader) const;
  void Unpack(MrRecordReader& reader, const UShort_t* pixel_no, const UInt_t* words);

  _MirrorPixelDataRec* fRecord;  //!

  // Form on file, in use during streaming only.
  UInt_t fUnused = 0;              // word without meaning
  UInt_t fMirrorNumber = 0;        // station and mirror number
  Int_t fNTriggered = 0;           // number of pixels with a trigger bit
  Int_t fNTriggerWords = 0;        // four words for each of these pixels
  UShort_t* fPixelNo = nullptr;    //[fNTriggered] number of each of these pixels in its mirror, from 1
  UInt_t* fTriggerWord = nullptr;  //[fNTriggerWords] slices, the first in the lowest bit of the first word

  ClassDefOverride(TMirrorPixelData, 1)
};

#endif
