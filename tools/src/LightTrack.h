#ifndef tools_LightTrack_h
#define tools_LightTrack_h

#include <Rtypes.h>

#include <map>
#include <vector>

namespace StnTools {

/// Photoelectrons that the pixels of one camera are expected to give, bin by bin, by mirror pixel number 1 to 480. A
/// pixel that sees no light has no entry.
using CameraLight = std::map<UInt_t, std::vector<float>>;

/// A spot of light that moves in a straight line over the cameras of a station, which stand side by side: mirror 1 has
/// columns 0 to 20 of this plane, mirror 2 the next 20. Rows go from 0 at the lower edge to 24. One unit is one pixel,
/// and time counts in FADC bins of 100 ns from the beginning of the page.
struct LightTrack {
  double fColumn;       ///< where the spot is at the start
  double fRow;          ///< the same
  double fColumnSpeed;  ///< pixels in a bin
  double fRowSpeed;     ///< pixels in a bin
  double fStart;        ///< bin in which the spot appears
  double fDuration;     ///< bins until it is gone
  double fMaximum;      ///< photoelectrons in a bin, all pixels together, at the brightest moment

  /// Photoelectrons in a bin at time `bin`: a parabola that is 0 at both ends of the track.
  double GetBrightness(double bin) const;

  /// The light of the track in the cameras of mirrors 1 to `n_mirrors`, for a page of `n_bins` bins. What falls beside
  /// the cameras or behind the page's end is lost.
  std::vector<CameraLight> Project(UInt_t n_mirrors, UInt_t n_bins) const;
};

/// Mirror pixel number of the pixel at a column and row, each counted from 0 at the lower left; 0 outside the camera.
UInt_t GetPixelAt(int column, int row);

const int kCameraColumns = 20;
const int kCameraRows = 24;

}  // namespace StnTools

#endif
