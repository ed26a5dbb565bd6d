// dump_events FILE: everything in a station file as JSON, for comparison with what other readers see.

#include <MrEvent/FadcData.h>
#include <MrEvent/MiPixelData.h>
#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>

using nlohmann::ordered_json;

namespace {

constexpr unsigned kNMirrors = VdUtil::Vd::kSTN_NMIRRORS;

ordered_json Stamp(const VdRoot::TTimeStamp& stamp) { return {stamp.GetSec(), stamp.GetNanoSec()}; }

/// Six values, one for each mirror, from a getter that takes a mirror id.
template <typename Getter>
ordered_json PerMirror(Getter get) {
  auto values = ordered_json::array();
  for (unsigned mirror = 1; mirror <= kNMirrors; ++mirror)
    values.push_back(get(mirror));
  return values;
}

ordered_json Header(TStnEventHeader* header) {
  Float_t t10 = 0, offset = 0;
  header->GetTimeCorrectionParameters(&t10, &offset);
  return {
      {"event", header->GetEventNo()},
      {"station", header->GetStnNo()},
      {"class", int(header->GetEventClass())},
      {"type", int(header->GetEventType())},
      {"data_bits", header->GetMirrorDataBits()},
      {"mirror_status", header->GetMirrorStatusBits()},
      {"run", header->GetRunNo()},
      {"trigger_source", PerMirror([&](unsigned m) { return int(header->GetTriggerSource(m)); })},
      {"status_bits", unsigned(header->GetStatusBits())},
      {"time", Stamp(*header->GetTimeStamp())},
      {"quality", int(header->GetTimeCorrectionQuality())},
      {"t10", t10},
      {"offset", offset},
      {"mirror_offset", PerMirror([&](unsigned m) { return header->GetMirrorTimeOffset(m); })},
      {"raw_time", PerMirror([&](unsigned m) {
         auto* raw = header->GetRawMirrorTimeStamp(m);
         return raw ? Stamp(*raw) : ordered_json();
       })},
      {"trigger_stamp", PerMirror([&](unsigned m) { return header->GetTriggerTimeStamp(m); })},
      {"dead_time", PerMirror([&](unsigned m) { return header->GetDeadTimeCounter(m); })},
      {"veto_time", header->GetVetoTimeCounter()},
      {"run_time", PerMirror([&](unsigned m) { return header->GetRunTimeCounter(m); })},
      {"stn_daq_dead_time", header->GetStnDaqDeadTime()},
      {"mirror_daq_dead_time", PerMirror([&](unsigned m) { return header->GetMirrorDaqDeadTime(m); })},
      {"skipped", PerMirror([&](unsigned m) { return header->GetMirrorNSkippedTriggers(m); })},
      {"label", PerMirror([&](unsigned m) { return header->GetMirrorEventLabel(m); })},
      {"t3_id", header->GetT3Id()},
      {"t3_time", Stamp(*header->GetT3TimeStamp())},
      {"rejected_t3", header->GetNRejectedT3()},
      {"t3_dead_time", header->GetTotalT3DeadTime()},
  };
}

ordered_json Pixels(TStnPixelList* list) {
  auto pixels = ordered_json::array();
  for (unsigned i = 0; i < list->GetNumPixels(); ++i)
    pixels.push_back(VdUtil::Vd::GetStnPixelNo(list->GetPixel(i)));
  return pixels;
}

/// Per mirror null, or its numbers and per triggered pixel [column, row, first triggered slice].
ordered_json PixelData(TStnPixelData* data) {
  return PerMirror([&](unsigned m) -> ordered_json {
    auto* mirror = data->GetPixelData(m);
    if (!mirror) return nullptr;
    auto first = ordered_json::array();
    for (unsigned column = 1; column <= 20; ++column) {
      for (unsigned row = 1; row <= 24; ++row) {
        int slice = mirror->GetFirstTriggeredTimeBin(column, row, 0, VdUtil::Vd::kMI_NSLT_BINS - 1);
        if (slice >= 0) first.push_back({column, row, slice});
      }
    }
    return {{"station", mirror->GetStnNo()}, {"mirror", mirror->GetMirrorNo()}, {"first", first}};
  });
}

ordered_json Trace(const TFADCData& trace) {
  const auto& record = *trace.GetRecord();
  // Words behind the last one that is not 0 are left out.
  UInt_t n_words = TFADCData::kNFADCWords;
  while (n_words > 0 && record.fFadcData[n_words - 1].fWord == 0)
    --n_words;
  auto words = ordered_json::array();
  for (UInt_t i = 0; i < n_words; ++i)
    words.push_back(record.fFadcData[i].fWord);
  const auto& monitor = record.fMonitor;
  return {{"station_pixel", VdUtil::Vd::GetStnPixelNo(trace.GetPixelNumber())},
          {"pixel_word", record.fPixelNumber.fPixelNumber},
          {"monitor",
           {monitor.fPrevThreshold, monitor.fActualThreshold, monitor.fActualRate, monitor.fMean, monitor.fVariance}},
          {"trace_info", record.fTraceInfo.fWord},
          {"start_time", record.fTraceStartTime},
          {"words", words}};
}

ordered_json Traces(TStnFADCData* data) {
  auto traces = ordered_json::array();
  std::unique_ptr<TIterator> next(data->GetIterator());
  while (auto* trace = static_cast<TFADCData*>(next->Next()))
    traces.push_back(Trace(*trace));
  return traces;
}

ordered_json T3(TStnT3Data* t3) {
  return {t3->GetNPixels(),         t3->GetSDPTheta(),     t3->GetSDPPhi(),
          t3->GetAzimuthAtGround(), t3->GetTimeAtGround(), t3->GetTotalSignal()};
}

ordered_json Geometry(TStnGeometryData* geometry) {
  return PerMirror([&](unsigned m) -> ordered_json {
    float azimuth = 0, elevation = 0;
    geometry->GetAxisDirection(m, azimuth, elevation);
    return {azimuth, elevation};
  });
}

ordered_json RunHeader(TStnRunHeader* run) {
  return {{"station", run->GetStnNo()},
          {"mirror_status", run->GetMirrorStatus()},
          {"run", run->GetRunNo()},
          {"start", Stamp(run->GetStartTime())},
          {"user", run->GetUserName().Data()},
          {"comment", run->GetUserComment().Data()},
          {"versions",
           {run->GetEvbVersion(), run->GetStnEventVersion(), run->GetMrEventVersion(), run->GetReadoutVersion()}}};
}

ordered_json RunTrailer(TStnRunTrailer* run) {
  return {{"mirror_status", run->GetMirrorStatus()},
          {"events", run->GetNEvents()},
          {"veto_time", run->GetVetoTimeCounter()},
          {"dead_time", PerMirror([&](unsigned m) { return run->GetDeadTimeCounter(m); })},
          {"life_time", PerMirror([&](unsigned m) { return run->GetLifeTimeCounter(m); })},
          {"mirror_daq_dead_time", PerMirror([&](unsigned m) { return run->GetMirrorDaqDeadTime(m); })},
          {"skipped", PerMirror([&](unsigned m) { return run->GetMirrorNSkippedTriggers(m); })},
          {"stn_daq_dead_time", run->GetStnDaqDeadTime()},
          {"t3", {run->GetNumberOfT3(), run->GetNumberOfRejectedT3(), run->GetTotalT3DeadTime()}},
          {"start", Stamp(run->GetStartTime())},
          {"stop", Stamp(run->GetStopTime())},
          {"total_time", run->GetTotalTime()}};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: dump_events FILE\n";
    return 2;
  }
  TStnEventFile file(argv[1]);
  if (file.IsZombie()) return 1;

  TStnRunHeader* run_header = nullptr;
  TStnRunTrailer* run_trailer = nullptr;
  if (!file.ReadRunHeader(&run_header) || !file.ReadRunTrailer(&run_trailer)) return 1;
  ordered_json all{{"run_header", RunHeader(run_header)}, {"run_trailer", RunTrailer(run_trailer)}};

  auto events = ordered_json::array();
  auto event = std::make_unique<TStnEvent>();
  auto* address = event.get();
  for (unsigned n = file.GetNEvents(); n > 0; --n) {
    if (!file.ReadEvent(&address)) return 1;
    events.push_back({{"header", Header(event->GetEventHeader())},
                      {"pixels", Pixels(event->GetPixelList())},
                      {"pixel_data", PixelData(event->GetPixelData())},
                      {"traces", Traces(event->GetFADCData())},
                      {"t3", T3(event->GetT3Data())},
                      {"geometry", Geometry(event->GetGeometryData())}});
  }
  all["events"] = events;
  std::cout << all.dump() << std::endl;
  file.Close();
  delete run_header;
  delete run_trailer;
  return 0;
}
