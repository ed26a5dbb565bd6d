#include <VdRoot/TTimeStamp.h>

#include <cstdio>

ClassImp(VdRoot::TTimeStamp);

namespace VdRoot {

namespace {

constexpr Long64_t kNanoSecPerSecond = 1000000000;

timespec_t GetNow() {
  timespec_t now;
  clock_gettime(CLOCK_REALTIME, &now);
  return now;
}

}  // namespace

TTimeStamp::TTimeStamp() : TTimeStamp(GetNow()) {}

TTimeStamp& TTimeStamp::operator=(const TTimeStamp& other) = default;

timespec_t TTimeStamp::FromGPS(UInt_t sec, UInt_t nsec) {
  return {static_cast<time_t>(VdUtil::TimeConvert::GetUnixTimeFromGPSTime(sec)), static_cast<long>(nsec)};
}

void TTimeStamp::Normalize() {
  Long64_t carry = fNanoSec / kNanoSecPerSecond;
  if (fNanoSec % kNanoSecPerSecond < 0) --carry;
  fNanoSec = static_cast<Int_t>(fNanoSec - carry * kNanoSecPerSecond);
  fSec = static_cast<Int_t>(fSec + carry);
}

const char* TTimeStamp::AsString(const char* option) const {
  // An array and no string, so that exit handlers may still print times.
  static thread_local char text[64];
  const char kind = option ? *option : '\0';
  const time_t seconds = fSec;
  tm date;
  gmtime_r(&seconds, &date);
  if (kind == 'g') {
    std::snprintf(text, sizeof(text), "%lld.%09d", static_cast<long long>(GetGPSSec()), fNanoSec);
    return text;
  }
  const size_t length = strftime(text, sizeof(text), kind == 'i' ? "%Y-%m-%dT%H:%M:%S" : "%Y-%m-%d %H:%M:%S", &date);
  const char* format = kind == 's' ? " UTC" : kind == 'i' ? ".%09dZ" : ".%09d UTC";
  std::snprintf(text + length, sizeof(text) - length, format, fNanoSec);
  return text;
}

}  // namespace VdRoot
