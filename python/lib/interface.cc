// The functions that Python calls. A function that can fail answers false (or null), and `stn_error` then tells why.

#include "EventReader.h"

#include <TInterpreter.h>

#include <cstdint>
#include <exception>
#include <string>

using namespace StnPython;

namespace {

struct {
  std::string fText;
  std::int64_t fEntry = ReadError::kNoEntry;
} gError;

template <class Action>
bool Try(Action action) {
  try {
    action();
    return true;
  } catch (const ReadError& error) {
    gError = {error.what(), error.GetEntry()};
  } catch (const std::exception& error) {
    gError = {error.what(), ReadError::kNoEntry};
  }
  return false;
}

}  // namespace

extern "C" {

/// Starts ROOT's interpreter, if it was not started before.
void stn_start_interpreter() { TInterpreter::Instance(); }

/// The reason of the last failure, and the entry that it concerns, -1 if none; good until the next call.
const char* stn_error(std::int64_t* entry) {
  *entry = gError.fEntry;
  return gError.fText.c_str();
}

/// Sizes of the records, by which Python finds out whether it sees them as they are.
std::uint32_t stn_size_of_header() { return sizeof(HeaderRecord); }
std::uint32_t stn_size_of_trace() { return sizeof(TraceRecord); }
std::uint32_t stn_size_of_trigger() { return sizeof(TriggerRecord); }
std::uint32_t stn_size_of_run_header() { return sizeof(RunHeaderRecord); }
std::uint32_t stn_size_of_run_trailer() { return sizeof(RunTrailerRecord); }

EventReader* stn_open(const char* path) {
  EventReader* reader = nullptr;
  Try([&] { reader = new EventReader(path); });
  return reader;
}

void stn_close(EventReader* reader) { delete reader; }

std::uint32_t stn_n_events(const EventReader* reader) { return reader->GetNEvents(); }
bool stn_is_recovered(const EventReader* reader) { return reader->IsRecovered(); }
bool stn_has_run_header(const EventReader* reader) { return reader->HasRunHeader(); }
bool stn_has_run_trailer(const EventReader* reader) { return reader->HasRunTrailer(); }

bool stn_read_headers(EventReader* reader, std::uint32_t first, std::uint32_t n, HeaderRecord* records) {
  return Try([&] { reader->ReadHeaders(first, n, records); });
}

bool stn_read_event(EventReader* reader, std::uint32_t entry, EventSizes* sizes) {
  return Try([&] { *sizes = reader->ReadEvent(entry); });
}

void stn_copy_traces(EventReader* reader, TraceRecord* traces, std::uint16_t* words) {
  reader->CopyTraces(traces, words);
}

void stn_copy_pixels(EventReader* reader, std::int32_t* pixels) { reader->CopyPixels(pixels); }

void stn_copy_triggers(EventReader* reader, TriggerRecord* triggers) { reader->CopyTriggers(triggers); }

bool stn_read_run_header(EventReader* reader, RunHeaderRecord* record) {
  return Try([&] { *record = reader->ReadRunHeader(); });
}

bool stn_read_run_trailer(EventReader* reader, RunTrailerRecord* record) {
  return Try([&] { *record = reader->ReadRunTrailer(); });
}

}  // extern "C"
