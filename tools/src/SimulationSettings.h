#ifndef tools_SimulationSettings_h
#define tools_SimulationSettings_h

#include <MrEvent/FadcData.h>

#include <cstdint>
#include <vector>

namespace StnTools {

/// What a simulated run is like.
struct SimulationSettings {
  UInt_t fStation = 1;             ///< 1 to 5
  UInt_t fRun = 1;                 ///< run number
  std::uint64_t fSeed = 1;         ///< decides everything that is left to chance
  UInt_t fStartTime = 1400000000;  ///< GPS second in which the run starts; the default is 2024-05-17 16:53:02 UTC
  std::vector<UInt_t> fMirrors;    ///< mirrors in the DAQ, ascending; empty stands for all of the station
  double fT3Fraction = 0.5;        ///< part of the showers that get a T3, 0 to 1
  double fMissingFraction = 0.05;  ///< part of the mirror events that get lost on the way, 0 to 1
  UInt_t fPixels = 0;              ///< pixels of each mirror, 1 to 480; 0 leaves it to the trigger of each pixel
  /// Bins of a trace: 1000 or 2000.
  TFADCData::FADCTraceResolution fResolution = TFADCData::kFADC_RESOLUTION_1000_BINS;

  /// Workloads of a fixed size for measurements, in which every event is a shower and all mirrors deliver the same
  /// number of pixels: 1 mirror with 8 pixels and 6 with 40, both of 1000 bins, and 6 with 200 of 2000 bins.
  static SimulationSettings Light();
  static SimulationSettings Middle();
  static SimulationSettings Heavy();

  /// Throws `std::invalid_argument`, with a text for the user, for a value that does not exist.
  void Check() const;

  /// The mirrors in the DAQ, ascending.
  std::vector<UInt_t> GetDaqMirrors() const;

  /// Number of bins of a trace.
  UInt_t GetNBins() const { return TFADCData::GetNFADCBins(fResolution); }
};

}  // namespace StnTools

#endif
