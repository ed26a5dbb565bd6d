#ifndef StnEvent_StnPixelData_h
#define StnEvent_StnPixelData_h

#include <MrEvent/MiPixelData.h>
#include <VdUtil/VdNumbering.h>

#include <TObject.h>

#include <iostream>

/// The pixel data of a station event: one slot for each mirror, with that mirror's pixel data or nothing. Whatever is
/// in a slot belongs to this object.
class TStnPixelData : public TObject {
 public:
  /// Answer of `GetFirstTriggeredTimeBin` for a mirror without data.
  static constexpr int kNoTrigger = -1;

  /// No data for any mirror.
  TStnPixelData();
  /// Deep copy.
  TStnPixelData(const TStnPixelData& rhs);
  /// Deep copy; the data of mirrors that `rhs` lacks are deleted.
  TStnPixelData& operator=(const TStnPixelData& rhs);
  ~TStnPixelData() override;

  /// Declared for the interface's sake only: it is not defined, so a comparison does not link.
  bool operator==(const TStnPixelData& rhs) const;

  /// Stores a copy of the data for mirror `mirror_id` (1 to 6), or with `is_owner` the object itself. False, with a
  /// message, if the id is illegal (the object stays the caller's in any case) or the mirror has data already (the
  /// object is deleted if `is_owner`). False, without a message, for a null that is not handed over.
  bool AddPixelData(TMirrorPixelData* pixel_data, UInt_t mirror_id, bool is_owner = false);

  /// Deletes the data of all mirrors.
  void Clear(Option_t* option = "") override;
  /// Prints versions and the mirrors with data to `ostr`; the mirrors' data themselves go to `std::cout`.
  void Show(std::ostream& ostr = std::cout);

  /// First triggered time bin of the pixel from `first_bin` to `last_bin` (inclusive, 0 to 99), as
  /// `TMirrorPixelData` has it; `kNoTrigger` if there are no data for the pixel's mirror, or no pixel.
  int GetFirstTriggeredTimeBin(_VdPixelNumber* vdpixel, UInt_t first_bin = 0,
                               UInt_t last_bin = VdUtil::Vd::kMI_NSLT_BINS - 1) const;
  /// Number of pixels of the station triggered from `start_slice` to `end_slice` (inclusive, 0 to 99).
  UInt_t GetNumberOfTriggeredPixels(UInt_t start_slice = 0, UInt_t end_slice = VdUtil::Vd::kMI_NSLT_BINS - 1) const;
  /// The same for one mirror (1 to 6; an error message and 0 for others).
  UInt_t GetNumberOfTriggeredPixels(UInt_t mirror_id, UInt_t start_slice, UInt_t end_slice) const;
  /// The data of mirror `mirror_id` (1 to 6), which stay the container's; null if there are none, and with an error
  /// message if the id is illegal.
  TMirrorPixelData* GetPixelData(UInt_t mirror_id) const;

 private:
  static void CopySlot(TMirrorPixelData*& slot, const TMirrorPixelData* source);

  Version_t fStreamerVersion;                               //! version read from file
  TMirrorPixelData* fPixelData[VdUtil::Vd::kSTN_NMIRRORS];  // Pointers to PixelData obj.

  ClassDefOverride(TStnPixelData, 2)  // pixel data of the mirrors of a station
};

#endif
