#include <VdUtil/VdGeometry.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include <VdUtil/VdNumbering.h>

namespace VdUtil {

namespace {

// Nominal values, in degrees; see the class.
constexpr double kStnSpacing = 72;
constexpr double kMirrorSpacing = 30;
constexpr double kElevation = 16;

std::uint32_t Hash(double value) {
  value += 0.0;  // the two zeros are the same direction
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof(bits));
  bits *= 0x9E3779B97F4A7C15u;  // 2^64 / golden ratio: spreads the few bits that differ over the upper half
  return static_cast<std::uint32_t>(bits >> 32);
}

}  // namespace

VdGeometry::_CameraPointingRec::_CameraPointingRec(double azimuth, double elevation)
    : fAzimuth(azimuth), fElevation(elevation) {
  CalculateHash();
}

unsigned int VdGeometry::_CameraPointingRec::CalculateHash() {
  fHashValue = 31 * Hash(fAzimuth) + Hash(fElevation);
  return fHashValue;
}

VdGeometry::_StnGeometryRec VdGeometry::GetStnGeometry(unsigned int stn_no) {
  const bool known = Vd::GetStnLastMirrorNo(stn_no) > 0;
  return {0, 0, 0, 0, known ? (stn_no - 1) * kStnSpacing : 0};
}

void VdGeometry::GetTelescopeAxis(unsigned int vd_mirror_no, double& azimuth, double& elevation) {
  azimuth = elevation = 0;
  // Number 0 wraps to a station that does not exist, which has no mirrors.
  const unsigned int stn = (vd_mirror_no - 1) / Vd::kSTN_NMIRRORS + 1;
  const unsigned int mirror = (vd_mirror_no - 1) % Vd::kSTN_NMIRRORS + 1;
  const unsigned int last = Vd::GetStnLastMirrorNo(stn);
  if (mirror > last) return;
  const double centre = (last + 1) / 2.0;
  azimuth = std::fmod(GetStnGeometry(stn).fAngleToEast + (mirror - centre) * kMirrorSpacing + 360, 360);
  elevation = kElevation;
}

}  // namespace VdUtil
