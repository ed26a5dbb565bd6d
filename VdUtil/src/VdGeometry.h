#ifndef VdUtil_VdGeometry_h
#define VdUtil_VdGeometry_h

namespace VdUtil {

/// Nominal geometry of the installation. Azimuths count from east through north, 0 to 360 degrees; elevations from the
/// horizon.
///
/// The values are nominal, chosen for a regular arrangement, and not surveyed. The stations look in directions 72 degrees
/// apart, station 1 to the east. The mirrors of a station stand side by side, their axes 30 degrees apart in azimuth
/// around the station's own direction, mirror 1 at the least azimuth, all 16 degrees above the horizon.
class VdGeometry {
 public:
  /// Direction of a camera's axis.
  struct _CameraPointingRec {
    /// What `CalculateHash` gave, then the angles.
    unsigned int fHashValue;
    double fAzimuth;    // degrees
    double fElevation;  // degrees

    /// A direction, in degrees, with its hash.
    _CameraPointingRec() : _CameraPointingRec(0, 0) {}
    _CameraPointingRec(double azimuth, double elevation);
    /// Sets `fHashValue` from the two angles, and gives it: equal directions have equal values.
    unsigned int CalculateHash();
  };

  /// Place of a station: angles in degrees, altitudes in metres above sea level.
  struct _StnGeometryRec {
    /// As above, in this order: longitude, latitude, altitude by GPS, altitude of the floor.
    double fLongitude;
    double fLatitude;
    double fGPSAltitude;
    double fFloorAltitude;
    double fAngleToEast;  // the station's own direction
  };

  /// The place of a station, 1 to 5. Only the direction is known, the rest is 0; all is 0 for another number.
  static _StnGeometryRec GetStnGeometry(unsigned int stn_no);

  /// Axis of a mirror, by its installation mirror number, 1 to 30, in degrees. Both values are 0 for a mirror that its
  /// station lacks and for another number.
  static void GetTelescopeAxis(unsigned int vd_mirror_no, double& azimuth, double& elevation);
};

}  // namespace VdUtil

#endif
