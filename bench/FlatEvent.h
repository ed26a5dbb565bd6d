#ifndef bench_FlatEvent_h
#define bench_FlatEvent_h

#include <StnEvent/StnEvent.h>

#include <array>
#include <cstdint>
#include <vector>

namespace StnBench {

/// What a station event holds, as plain values: numbers, arrays of six, and vectors with an element for each trace or
/// sample. `ForEachHeaderField` and `ForEachField` are the list of its fields for those who write or read them.
class FlatEvent {
 public:
  template <class T>
  using PerMirror = std::array<T, 6>;

  /// Takes the contents of `event` over.
  void Fill(TStnEvent& event);

  /// Sum of all samples.
  std::uint64_t SumSamples() const;

  std::uint32_t GetEventNo() const { return fEventNo; }

  /// Calls `action` with name and variable of each field of the header.
  template <class Action>
  void ForEachHeaderField(Action action) {
    action("event_number", fEventNo);
    action("station", fStation);
    action("event_class", fEventClass);
    action("event_type", fEventType);
    action("mirror_data_bits", fMirrorDataBits);
    action("mirror_status", fMirrorStatus);
    action("run", fRun);
    action("trigger_source", fTriggerSource);
    action("status_bits", fStatusBits);
    action("sec", fSec);
    action("nanosec", fNanoSec);
    action("time_quality", fTimeQuality);
    action("t10", fT10);
    action("offset", fOffset);
    action("mirror_time_offset", fMirrorTimeOffset);
    action("raw_sec", fRawSec);
    action("raw_nanosec", fRawNanoSec);
    action("trigger_time_stamp", fTriggerTimeStamp);
    action("dead_time", fDeadTime);
    action("veto_time", fVetoTime);
    action("run_time", fRunTime);
    action("stn_daq_dead_time", fStnDaqDeadTime);
    action("mirror_daq_dead_time", fMirrorDaqDeadTime);
    action("skipped_triggers", fSkippedTriggers);
    action("label", fLabel);
    action("t3_id", fT3Id);
    action("t3_sec", fT3Sec);
    action("t3_nanosec", fT3NanoSec);
    action("rejected_t3", fRejectedT3);
    action("t3_dead_time", fT3DeadTime);
  }

  /// The same for all fields.
  template <class Action>
  void ForEachField(Action action) {
    ForEachHeaderField(action);
    action("t3_pixels", fT3Pixels);
    action("t3_theta", fT3Theta);
    action("t3_phi", fT3Phi);
    action("t3_azimuth", fT3Azimuth);
    action("t3_time", fT3Time);
    action("t3_signal", fT3Signal);
    action("pixel_bits", fPixelBits);
    action("triggered_pixel", fTriggeredPixel);
    action("trigger_words", fTriggerWords);
    action("trace_pixel", fTracePixel);
    action("trace_info", fTraceInfo);
    action("trace_start_time", fTraceStartTime);
    action("prev_threshold", fPrevThreshold);
    action("actual_threshold", fActualThreshold);
    action("actual_rate", fActualRate);
    action("mean", fMean);
    action("variance", fVariance);
    action("samples", fSamples);
  }

 private:
  void FillHeader(const TStnEventHeader& header);
  void FillMirror(const TStnEventHeader& header, unsigned mirror);
  void FillT3(const TStnT3Data& t3);
  void FillPixels(TStnEvent& event);
  void FillTriggers(const TStnPixelData& data);
  void FillTraces(const TStnEvent& event);

  std::uint32_t fEventNo = 0;
  std::uint8_t fStation = 0;
  std::int32_t fEventClass = 0;
  std::int32_t fEventType = 0;
  std::uint8_t fMirrorDataBits = 0;
  std::uint8_t fMirrorStatus = 0;
  std::uint32_t fRun = 0;
  PerMirror<std::uint8_t> fTriggerSource = {};
  std::uint32_t fStatusBits = 0;
  std::int32_t fSec = 0;
  std::int32_t fNanoSec = 0;
  std::int32_t fTimeQuality = 0;
  float fT10 = 0;
  float fOffset = 0;
  PerMirror<std::uint32_t> fMirrorTimeOffset = {};
  PerMirror<std::int32_t> fRawSec = {};
  PerMirror<std::int32_t> fRawNanoSec = {};
  PerMirror<std::uint32_t> fTriggerTimeStamp = {};
  PerMirror<std::uint64_t> fDeadTime = {};
  std::uint64_t fVetoTime = 0;
  PerMirror<std::uint64_t> fRunTime = {};
  std::uint64_t fStnDaqDeadTime = 0;
  PerMirror<std::uint64_t> fMirrorDaqDeadTime = {};
  PerMirror<std::uint32_t> fSkippedTriggers = {};
  PerMirror<std::int32_t> fLabel = {};
  std::uint16_t fT3Id = 0;
  std::int32_t fT3Sec = 0;
  std::int32_t fT3NanoSec = 0;
  std::uint32_t fRejectedT3 = 0;
  float fT3DeadTime = 0;

  std::int32_t fT3Pixels = 0;
  float fT3Theta = 0;
  float fT3Phi = 0;
  float fT3Azimuth = 0;
  std::int32_t fT3Time = 0;
  float fT3Signal = 0;

  std::array<std::uint32_t, 90> fPixelBits = {};  // a bit for each station pixel, as a pixel list keeps it
  std::vector<std::uint16_t> fTriggeredPixel;     // station pixel number of pixels with a trigger bit
  std::vector<std::uint32_t> fTriggerWords;       // four words for each of them
  std::vector<std::uint32_t> fTracePixel;         // the following have one element for each trace
  std::vector<std::uint32_t> fTraceInfo;
  std::vector<float> fTraceStartTime;
  std::vector<std::uint32_t> fPrevThreshold;
  std::vector<std::uint32_t> fActualThreshold;
  std::vector<std::uint32_t> fActualRate;
  std::vector<double> fMean;
  std::vector<double> fVariance;
  std::vector<std::uint16_t> fSamples;  // samples with their flags, trace by trace
};

}  // namespace StnBench

#endif
