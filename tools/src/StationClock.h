#ifndef tools_StationClock_h
#define tools_StationClock_h

#include <Rtypes.h>

#include <cstdint>

namespace StnTools {

/// What a station measures of its clock in one second, as `TStnEventHeader::SetTimeCorrectionParameters` takes it.
struct SecondMeasurement {
  Short_t fStartOffset;    ///< ns by which the second's strobe came after the pulse of the receiver
  Short_t fEndOffset;      ///< the same for the strobe that ended the second
  UInt_t fTicksPerSecond;  ///< ticks of the 80 MHz clock between the two strobes
  UInt_t fPPSPhase;        ///< ns from the true second to the pulse of the receiver
};

/// A time as GPS second and nanoseconds.
struct GpsTime {
  UInt_t fSec;
  UInt_t fNanoSec;
};

/// The clock of a station: a quartz of nominally 80 MHz, off by up to 20 parts in a million and drifting with the
/// temperature of the hour, and second strobes that wander around the true second. The mirrors count its tenth of a
/// microsecond and know nothing of all that, so their times need the station's correction.
class StationClock {
 public:
  /// The seed decides how far the quartz is off and where the strobes wander.
  explicit StationClock(std::uint64_t seed);

  /// What the station measures in the GPS second `sec`.
  SecondMeasurement Measure(UInt_t sec) const;

  /// What a mirror's counter makes of a true time: 100 ns for each full count since the second's strobe. The time must
  /// lie behind the strobe of its second, that is at least 128 + 100 ns in it.
  GpsTime Count(const GpsTime& true_time) const;

 private:
  Short_t GetStrobeOffset(UInt_t sec) const;

  double fPhase;   // of the wandering strobe and of the temperature, in radian
  double fOffset;  // of the quartz, in parts of its frequency
};

}  // namespace StnTools

#endif
