#ifndef StnEvent_StnGeometryData_h
#define StnEvent_StnGeometryData_h

#include <VdUtil/VdGeometry.h>
#include <VdUtil/VdNumbering.h>

#include <TObject.h>

#include <iostream>

/// Where the telescopes of a station pointed when an event was taken: azimuth and elevation of each axis, in degrees as
/// `VdUtil::VdGeometry` gives them, in single precision. Telescopes are numbered 1 to 6.
class TStnGeometryData : public TObject {
 public:
  /// Azimuth and elevation of a telescope that has no axis.
  static constexpr Float_t kInvalidValue = 0.0F;

  /// All values `kInvalidValue`.
  TStnGeometryData();
  /// The nominal axes of all six telescopes of station `stn_no`. Throws `std::logic_error`, after an error message, if
  /// the station is outside 1 to 5.
  TStnGeometryData(unsigned int stn_no);
  TStnGeometryData(const TStnGeometryData&) = default;
  TStnGeometryData& operator=(const TStnGeometryData&) = default;
  ~TStnGeometryData() override;

  /// Axis of telescope `telescope_id`. Outside 1 to 6 an error message, and `kInvalidValue` for both.
  virtual void GetAxisDirection(unsigned int telescope_id, float& azimuth, float& elevation);
  /// The same into `pointing`, whose hash value is left as it is.
  virtual void GetAxisDirection(unsigned int telescope_id, VdUtil::VdGeometry::_CameraPointingRec& pointing);
  /// Sets all values to `kInvalidValue`.
  virtual void Reset();
  /// Takes the nominal axes of the station of this host (`VdUtil::VdConfig`).
  virtual void SetAxisDirection();
  /// Takes the nominal axes of the telescopes that station `stn_id` has; those of others stay as they are. Throws
  /// `std::logic_error`, after an error message, if the station is outside 1 to 5.
  virtual void SetAxisDirection(unsigned int stn_id);
  /// Sets the axis of telescope `telescope_id`. Outside 1 to 6 an error message and no change.
  virtual void SetAxisDirection(unsigned int telescope_id, float azimuth, float elevation);
  /// Prints the axes: six, or the first three if `stn_no` is 5 or above.
  virtual void Show(std::ostream& ostr = std::cout, unsigned int stn_no = VdUtil::Vd::kVD_FIRST_STN);

 private:
  float fAxisAzimuth[VdUtil::Vd::kSTN_NMIRRORS];    // axis azimuth values
  float fAxisElevation[VdUtil::Vd::kSTN_NMIRRORS];  // axis elevation values

  ClassDefOverride(TStnGeometryData, 1)  // axes of the telescopes of a station
};

#endif
