#ifndef EventFiles_h
#define EventFiles_h

#include "Members.h"
#include "MirrorEvents.h"

#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>
#include <StnEvent/StnEventHeader.h>

#include <TBufferFile.h>
#include <TError.h>
#include <TSystem.h>

#include <sstream>
#include <string>

/// A file whose protected side is open to tests.
class OpenFile : public TStnEventFile {
 public:
  using TFile::fBytesRead;
  using TFile::fBytesWrite;
  using TStnEventFile::ExitHandler;
  using TStnEventFile::fgFileList;
  using TStnEventFile::fgPrintLevel;
  using TStnEventFile::fgSignalHandlerList;
  using TStnEventFile::GetBranches;
  using TStnEventFile::GetTree;
  using TStnEventFile::Setup;
  using TStnEventFile::TStnEventFile;
};

/// Sets the print level of files during its life.
struct FilePrintLevel {
  explicit FilePrintLevel(int level) { TStnEventFile::SetPrintLevel(level); }
  ~FilePrintLevel() { TStnEventFile::SetPrintLevel(0); }
};

/// Keeps ROOT's own messages away during its life.
struct QuietRoot {
  QuietRoot() { gErrorIgnoreLevel = kFatal; }
  ~QuietRoot() { gErrorIgnoreLevel = kUnset; }
};

/// An address as messages show it.
inline std::string Hex(const void* address) {
  std::ostringstream text;
  text << address;
  return text.str();
}

/// Fills an event of station 2 with two mirrors, all values of which follow from `number`.
inline void FillEvent(TStnEvent& event, UInt_t number) {
  event.Clear();
  for (const UInt_t mirror : {1, 3}) {
    MirrorSpec spec;
    spec.fStn = 2;
    spec.fMirror = mirror;
    spec.fPixels = {1, 24, 25 + number % 400};
    spec.fCounter = 10 * number;
    spec.fGpsSec += number;
    event.AddEvent(MakeMirrorEvent(spec).get());
  }
  event.GetEventHeader()->SetEventNo(number);
  event.GetEventHeader()->SetRunNo(77);
  if (number % 2 == 0) event.GetT3Data();
  TStnEvent::DoCorrections(&event);
}

/// The event as bytes, for comparison.
inline std::string GetBytes(TStnEvent& event) {
  TBufferFile buffer(TBuffer::kWrite);
  event.Streamer(buffer);
  return std::string(buffer.Buffer(), buffer.Length());
}

/// True if the event is the one that `FillEvent` makes of this number.
inline bool IsEvent(TStnEvent& event, UInt_t number) {
  TStnEvent expected;
  FillEvent(expected, number);
  return GetBytes(event) == GetBytes(expected);
}

/// Writes a file of `n` events, numbered from 0.
inline void WriteFile(const char* name, UInt_t n) {
  TStnEventFile file(name, "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  for (UInt_t number = 0; number < n; ++number) {
    FillEvent(event, number);
    file.WriteEvent(&address);
  }
}

/// The number of events of a file that are whole, counted from the first.
inline UInt_t CountWholeEvents(const char* name) {
  TStnEventFile file(name);
  TStnEvent event;
  TStnEvent* address = &event;
  UInt_t n = 0;
  while (n < file.GetNEvents() && file.ReadEvent(&address) && IsEvent(event, n))
    ++n;
  return n;
}

#endif
