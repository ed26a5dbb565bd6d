#ifndef python_Records_h
#define python_Records_h

#include <cstdint>
#include <limits>

/// The records that Python sees as NumPy arrays. Their layout is repeated in python/src/stnevent/records.py.
namespace StnPython {

/// A moment in Unix nanoseconds, as NumPy's datetime64[ns].
using Time = std::int64_t;
/// The value of a time that is not known.
constexpr Time kNoTime = std::numeric_limits<Time>::min();

struct HeaderRecord {
  std::uint32_t fEventNumber;
  std::uint8_t fStnNumber;
  std::int32_t fEventClass;
  std::int32_t fEventType;
  std::uint8_t fMirrorDataBits;
  std::uint8_t fMirrorStatus;
  std::uint32_t fRunNo;
  std::uint8_t fTriggerSource[6];
  std::uint32_t fStatusBits;
  Time fTimeStamp;
  std::int32_t fTimeCorrectionQuality;
  float fT10Mhz;
  float fOffset;
  std::uint32_t fMirrorTimeOffset[6];
  Time fRawMirrorTime[6];
  std::uint32_t fTriggerTimeStamp[6];
  std::uint64_t fDeadTimeCounter[6];
  std::uint64_t fVetoTimeCounter;
  std::uint64_t fRunTimeCounter[6];
  std::uint64_t fStnDaqDeadTime;
  std::uint64_t fMirrorDaqDeadTime[6];
  std::uint32_t fMirrorNSkippedTriggers[6];
  std::int32_t fMirrorEventLabel[6];
  std::uint16_t fT3Id;
  Time fT3TimeAtGround;
  std::uint32_t fNRejectedT3;
  float fTotalT3DeadTime;
};

struct TraceRecord {
  std::int32_t fPixel;  // station pixel number; 0 for a trace that names no pixel
  std::int32_t fMirror;
  std::int32_t fMirrorPixel;
  std::int32_t fStartBin;
  std::int32_t fEndBin;
  std::int32_t fNBins;
  std::int32_t fNSamples;
  Time fTime;  // corrected time of the first sample
  float fTraceStartTime;
  std::uint32_t fPrevThreshold;
  std::uint32_t fActualThreshold;
  std::uint32_t fActualRate;
  double fMean;
  double fVariance;
};

struct TriggerRecord {
  std::int32_t fPixel;  // station pixel number
  std::uint32_t fWords[4];
};

struct RunHeaderRecord {
  std::uint32_t fRunNo;
  std::uint32_t fStnNo;
  std::uint32_t fMirrorStatus;
  Time fStartTime;
  std::uint32_t fEvbVersion;
  std::uint32_t fStnEventVersion;
  std::uint32_t fMrEventVersion;
  std::uint32_t fReadoutVersion;
  const char* fUserName;  // both texts are good until the next run header is read from the file
  const char* fComment;
};

struct RunTrailerRecord {
  std::uint32_t fMirrorStatus;
  std::uint32_t fNEvents;
  std::uint64_t fVetoTimeCounter;
  std::uint64_t fDeadTimeCounter[6];
  std::uint32_t fLifeTimeCounter[6];
  std::uint64_t fMirrorDaqDeadTime[6];
  std::uint32_t fMirrorNSkippedTriggers[6];
  std::uint64_t fStnDaqDeadTime;
  std::uint32_t fNT3;
  std::uint32_t fNRejectedT3;
  float fTotalT3DeadTime;
  Time fStartTime;
  Time fStopTime;
  std::uint32_t fTotalTime;
};

/// How much an event holds, so that the caller can make room for it.
struct EventSizes {
  std::uint32_t fNTraces;
  std::uint32_t fNSamples;
  std::uint32_t fNPixels;
  std::uint32_t fNTriggers;
};

}  // namespace StnPython

#endif
