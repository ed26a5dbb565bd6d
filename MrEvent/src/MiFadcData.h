#ifndef MrEvent_MiFadcData_h
#define MrEvent_MiFadcData_h

#include <MrEvent/FadcData.h>
#include <VdUtil/VdNumbering.h>

#include <Rtypes.h>
#include <TObject.h>

#include <iostream>

class TObjArray;

/// The traces of one mirror, by column (1 to 20) and row (1 to 24) of its camera.
class TMirrorFADCData : public TObject {
 public:
  /// Records of the library of traces, under the names that users of this class know.
  typedef TFADCData::_FADCDataRec _FADCDataRec;

  /// The data: the trace of a pixel at its number in the mirror less 1, null for a pixel without one.
  struct _MirrorFADCDataRec {
    /// Number of traces, and where they are.
    UInt_t fNumTraces;
    _FADCDataRec* fTrace[VdUtil::Vd::kMI_NEXTPIXELS];
  };

  /// No traces.
  TMirrorFADCData();
  TMirrorFADCData(const TMirrorFADCData& rhs);
  /// Deep copy of all traces; the TObject part stays.
  TMirrorFADCData& operator=(const TMirrorFADCData& rhs);
  ~TMirrorFADCData() override;

  /// Number of pixels that have a trace.
  UInt_t GetNumTraces() const { return fRecord->fNumTraces; }

  /// True when the pixel has a trace; false also for a column or row outside the camera.
  bool IsValidPixel(UInt_t column, UInt_t row) const { return _GetFADCData(column, row) != nullptr; }

  /// The record of the pixel, which stays this object's; null when there is none.
  _FADCDataRec* _GetFADCData(UInt_t column, UInt_t row) const;
  _FADCDataRec* GetFADCData(UInt_t column, UInt_t row) const { return _GetFADCData(column, row); }

  /// A new TFADCData, which the caller deletes and which refers to the pixel's record in this object: writing to it
  /// changes the mirror's trace. Null for a pixel without a trace.
  TFADCData* GetPixelFADCData(UInt_t column, UInt_t row) const {
    return IsValidPixel(column, row) ? new TFADCData(GetFADCData(column, row)) : nullptr;
  }
  /// The same for the channel that a pixel number names.
  TFADCData* GetPixelFADCData(_PixelNumber* pixel) const {
    return GetPixelFADCData(VdUtil::Vd::GetColumnNo(pixel), VdUtil::Vd::GetRowNo(pixel));
  }

  /// Puts a copy of the trace at the pixel, in place of one that stands there. A pixel word of zero, which stands for no
  /// pixel, is ignored like a null pointer; a null trace and a pixel outside the camera are refused with an error message.
  void SetPixelFADCData(_PixelNumber* pixel, const TFADCData* trace);

  /// Deletes all traces.
  void Clear(Option_t* option = "") override;
  /// Prints the number of traces, and column, row and bins of each.
  void Show(std::ostream& ostr = std::cout) const;

 private:
  void SetTrace(UInt_t index, const _FADCDataRec& trace);
  void WriteRecord(TBuffer& b);
  void ReadRecord(TBuffer& b);

  _MirrorFADCDataRec fData;     //!
  _MirrorFADCDataRec* fRecord;  //!

  TObjArray* fTraces = nullptr;  // traces of the mirror, in use during streaming only

  ClassDefOverride(TMirrorFADCData, 1)
};

#endif
