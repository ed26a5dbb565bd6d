#ifndef VdRoot_TTimeStamp_h
#define VdRoot_TTimeStamp_h

#include <ctime>

#include <Rtypes.h>

#include <VdUtil/TimeConvert.h>

/// Seconds and nanoseconds of the system. ROOT has a type of this name too, and it is the same.
typedef struct timespec timespec_t;

namespace VdRoot {

/// A point in time, as it is kept in files: Unix seconds and nanoseconds, in UTC. It has ROOT's name for such a class but
/// not its base, and takes 14 bytes on file.
class TTimeStamp {
 public:
  /// The present moment.
  TTimeStamp();
  /// The low 32 bits of both numbers, normalized.
  TTimeStamp(const timespec_t& ts) : fSec(static_cast<Int_t>(ts.tv_sec)), fNanoSec(static_cast<Int_t>(ts.tv_nsec)) {
    Normalize();
  }
  /// The low 32 bits of the Unix seconds, and nanoseconds, normalized.
  TTimeStamp(const time_t& t, Int_t nsec) : fSec(static_cast<Int_t>(t)), fNanoSec(nsec) { Normalize(); }
  TTimeStamp(const TTimeStamp& other) = default;
  virtual ~TTimeStamp() {}
  TTimeStamp& operator=(const TTimeStamp& other);

  /// Unix seconds of a GPS second, and the nanoseconds as they are, also when they make up seconds of their own. A stamp of
  /// it answers `GetGPSSec` with `sec`; for an inserted leap second with the next.
  static timespec_t FromGPS(UInt_t sec, UInt_t nsec);

  /// Brings the nanoseconds into 0 to 999,999,999 by carrying seconds over or borrowing them.
  void Normalize();

  /// GPS seconds; see `VdUtil::TimeConvert`.
  time_t GetGPSSec() const { return VdUtil::TimeConvert::GetGPSTimeFromUnixTime(fSec); }
  /// Unix seconds.
  time_t GetSec() const { return fSec; }
  /// Nanoseconds, 0 to 999,999,999.
  Int_t GetNanoSec() const { return fNanoSec; }

  /// Date and time in UTC as a text. Options, of which the first letter counts:
  /// - "" (also null, and any other): "2016-12-31 23:59:59.000000001 UTC"
  /// - "s": the same without nanoseconds, "2016-12-31 23:59:59 UTC"
  /// - "i": ISO 8601, "2016-12-31T23:59:59.000000001Z"
  /// - "g": GPS seconds, "1167264016.000000001"
  /// The text belongs to the library, one for each thread, and holds until that thread's next call.
  const char* AsString(const char* option = "") const;

 private:
  Int_t fSec;      // seconds since the Unix epoch (not GPS seconds)
  Int_t fNanoSec;  // nanoseconds within that second, 0 to 999,999,999 after Normalize

  ClassDef(TTimeStamp, 1)  // time stamp of Unix seconds and nanoseconds
};

/// Whether `a` is earlier than `b`.
inline bool operator<(const TTimeStamp& a, const TTimeStamp& b) {
  if (a.GetSec() != b.GetSec()) return a.GetSec() < b.GetSec();
  return a.GetNanoSec() < b.GetNanoSec();
}

}  // namespace VdRoot

#endif
