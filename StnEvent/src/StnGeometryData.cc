#include <StnEvent/StnGeometryData.h>

#include <VdUtil/ErrorLogger.h>
#include <VdUtil/VdConfig.h>

#include <algorithm>
#include <stdexcept>

using VdUtil::Vd;
using VdUtil::VdGeometry;

ClassImp(TStnGeometryData);

namespace {

bool IsStn(unsigned int stn_no) { return stn_no >= Vd::kVD_FIRST_STN && stn_no <= Vd::kVD_LAST_STN; }
bool IsTelescope(unsigned int telescope_id) { return telescope_id >= 1 && telescope_id <= Vd::kSTN_NMIRRORS; }

/// Nominal axis of a mirror of a station.
void GetNominalAxis(unsigned int stn_no, unsigned int mirror, float& azimuth, float& elevation) {
  _MirrorNumber number;
  double table_azimuth = 0;
  double table_elevation = 0;
  Vd::SetStnNo(&number, stn_no);
  Vd::SetMirrorNo(&number, mirror);
  VdGeometry::GetTelescopeAxis(Vd::GetVdMirrorNo(&number), table_azimuth, table_elevation);
  azimuth = static_cast<float>(table_azimuth);
  elevation = static_cast<float>(table_elevation);
}

}  // namespace

TStnGeometryData::TStnGeometryData() { TStnGeometryData::Reset(); }

/// Asks for all six mirrors, also those that the station lacks, which `SetAxisDirection` does not.
TStnGeometryData::TStnGeometryData(unsigned int stn_no) {
  if (!IsStn(stn_no)) {
    // Speaks of two arguments: log readers match this text.
    VD_ERROR << "TStnGeometryData(int,int) - stn number " << stn_no << " is outside valid range!" << std::endl;
    throw std::logic_error("stn number is outside valid range");
  }
  TStnGeometryData::Reset();
  for (unsigned int mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    GetNominalAxis(stn_no, mirror, fAxisAzimuth[mirror - 1], fAxisElevation[mirror - 1]);
  }
}

TStnGeometryData::~TStnGeometryData() = default;

void TStnGeometryData::Reset() {
  std::fill(std::begin(fAxisAzimuth), std::end(fAxisAzimuth), kInvalidValue);
  std::fill(std::begin(fAxisElevation), std::end(fAxisElevation), kInvalidValue);
}

void TStnGeometryData::SetAxisDirection() { SetAxisDirection(VdUtil::VdConfig::GetInstance().GetStnId()); }

void TStnGeometryData::SetAxisDirection(unsigned int stn_id) {
  if (!IsStn(stn_id)) {
    VD_ERROR << "TStnGeometryData::SetAxisDirection() - "
             << "stn id " << stn_id << " is outside valid range!" << std::endl;
    throw std::logic_error("Stn id is outside valid range");
  }
  for (unsigned int mirror = 1; mirror <= Vd::GetStnLastMirrorNo(stn_id); ++mirror) {
    float azimuth, elevation;
    GetNominalAxis(stn_id, mirror, azimuth, elevation);
    SetAxisDirection(mirror, azimuth, elevation);
  }
}

void TStnGeometryData::SetAxisDirection(unsigned int telescope_id, float azimuth, float elevation) {
  if (!IsTelescope(telescope_id)) {
    VD_ERROR << "TStnGeometryData::SetAxisDirection() - "
             << "telescope id " << telescope_id << " is outside valid range!" << std::endl;
    return;
  }
  fAxisAzimuth[telescope_id - 1] = azimuth;
  fAxisElevation[telescope_id - 1] = elevation;
}

void TStnGeometryData::GetAxisDirection(unsigned int telescope_id, float& azimuth, float& elevation) {
  if (!IsTelescope(telescope_id)) {
    VD_ERROR << "TStnGeometryData::GetAxisDirection() - "
             << "telescope id " << telescope_id << " is outside valid range!" << std::endl;
    azimuth = elevation = kInvalidValue;
    return;
  }
  azimuth = fAxisAzimuth[telescope_id - 1];
  elevation = fAxisElevation[telescope_id - 1];
}

void TStnGeometryData::GetAxisDirection(unsigned int telescope_id, VdGeometry::_CameraPointingRec& pointing) {
  float azimuth, elevation;
  GetAxisDirection(telescope_id, azimuth, elevation);
  pointing.fAzimuth = azimuth;
  pointing.fElevation = elevation;
}

void TStnGeometryData::Show(std::ostream& ostr, unsigned int stn_no) {
  // The last station has half as many telescopes as the others.
  const unsigned int n_telescopes = stn_no < Vd::kVD_LAST_STN ? Vd::kSTN_NMIRRORS : Vd::kSTN_NMIRRORS / 2;
  ostr << "--- TStnGeometryData ---" << std::endl;
  for (unsigned int i = 1; i <= n_telescopes; ++i) {
    ostr << " (az,el)[" << i << "]=      (" << fAxisAzimuth[i - 1] << "," << fAxisElevation[i - 1] << ")" << std::endl;
  }
  ostr << "------------------------" << std::endl;
}
