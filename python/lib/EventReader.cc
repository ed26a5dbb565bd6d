#include "EventReader.h"

#include "FileFrame.h"
#include "Messages.h"
#include "RecordCopies.h"
#include "ToolError.h"

#include <TKey.h>

#include <cstring>

using StnTools::Messages;

namespace StnPython {
namespace {

const char* const kTreeName = "StnEventTree";

// The library does not look at how much of a record ROOT could read, so what was logged meanwhile decides, too.
void RequireSound(bool done, Messages& messages, const std::string& what, std::int64_t entry = ReadError::kNoEntry) {
  std::string error = messages.GetFirstError();
  if (done && error.empty()) return;
  if (error.empty()) error = "no reason given";
  throw ReadError(what + " cannot be read (" + error + "); copy or write the file again", entry);
}

std::string DescribeLoss(const StnTools::FileFrame& frame, Messages& messages) {
  if (frame.IsCutShort())
    return "cut short, with " + std::to_string(frame.fSize) + " of its " + std::to_string(frame.fEnd) + " bytes";
  return frame.fEnd == 0 ? "never closed by its writer" : "damaged (" + messages.GetFirstError() + ")";
}

}  // namespace

EventReader::EventReader(const std::string& path) {
  const StnTools::FileFrame frame = StnTools::ReadFileFrame(path);
  Messages messages;
  fFile = std::make_unique<TStnEventFile>(path.c_str(), "READ");
  if (fFile->IsZombie()) {
    throw ReadError("nothing can be read, the file is " + DescribeLoss(frame, messages) + "; copy or write it again");
  }
  const bool has_tree = Has(kTreeName, "TTree");
  if (!has_tree && !HasRunHeader() && !HasRunTrailer()) {
    throw ReadError(std::string("a ROOT file but no station file: it has neither events (") + kTreeName +
                    ") nor a run header or trailer; name a station file");
  }
  messages.Clear();
  if (has_tree) fNEvents = fFile->GetNEvents();
  RequireSound(true, messages, "the list of events");
}

bool EventReader::Has(const char* name, const char* class_name) const {
  const TKey* key = fFile->GetKey(name);
  return key && std::strcmp(key->GetClassName(), class_name) == 0;
}

void EventReader::ReadHeaders(std::uint32_t first, std::uint32_t n, HeaderRecord* records) {
  Messages messages;
  for (std::uint32_t i = 0; i < n; ++i) {
    TStnEventHeader* header = nullptr;
    fFile->Seek(first + i);
    RequireSound(fFile->ReadEventHeader(&header), messages, "the event header", first + i);
    records[i] = CopyHeader(*header);
  }
}

EventSizes EventReader::ReadEvent(std::uint32_t entry) {
  if (fEntry == entry) return fSizes;
  fEntry = kNothingRead;
  Messages messages;
  RequireSound(fFile->ReadEvent(&fEvent, entry), messages, "the event", entry);
  fSizes = CountContents();
  RequireSound(CountPixels(*fEvent->GetPixelList()) == fEvent->GetPixelList()->GetNumPixels(), messages,
               "the pixel list", entry);
  fEntry = entry;
  return fSizes;
}

EventSizes EventReader::CountContents() {
  EventSizes sizes{};
  ForEachTrace(*fEvent->GetFADCData(), [&](const TFADCData& trace) {
    ++sizes.fNTraces;
    sizes.fNSamples += GetNSamples(trace);
  });
  sizes.fNPixels = CountPixels(*fEvent->GetPixelList());
  ForEachTriggered(*fEvent->GetPixelData(), [&](std::int32_t, const UInt_t*) { ++sizes.fNTriggers; });
  return sizes;
}

void EventReader::CopyTraces(TraceRecord* traces, std::uint16_t* words) {
  Messages messages;
  ForEachTrace(*fEvent->GetFADCData(), [&](const TFADCData& trace) {
    *traces++ = CopyTrace(trace, *fEvent->GetEventHeader());
    words = CopyWords(trace, words);
  });
}

void EventReader::CopyPixels(std::int32_t* pixels) {
  ForEachPixel(*fEvent->GetPixelList(), [&](std::int32_t pixel) { *pixels++ = pixel; });
}

void EventReader::CopyTriggers(TriggerRecord* triggers) {
  ForEachTriggered(*fEvent->GetPixelData(), [&](std::int32_t pixel, const UInt_t* words) {
    triggers->fPixel = pixel;
    std::copy_n(words, TMirrorPixelData::kNWords, triggers->fWords);
    ++triggers;
  });
}

RunHeaderRecord EventReader::ReadRunHeader() {
  Messages messages;
  TStnRunHeader* header = nullptr;
  const bool done = fFile->ReadRunHeader(&header);
  fRunHeader.reset(header);
  RequireSound(done, messages, "the run header");
  return CopyRunHeader(*fRunHeader);
}

RunTrailerRecord EventReader::ReadRunTrailer() {
  Messages messages;
  TStnRunTrailer* read = nullptr;
  const bool done = fFile->ReadRunTrailer(&read);
  const std::unique_ptr<TStnRunTrailer> trailer(read);
  RequireSound(done, messages, "the run trailer");
  return CopyRunTrailer(*trailer);
}

}  // namespace StnPython
