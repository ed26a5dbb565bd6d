#ifndef python_EventReader_h
#define python_EventReader_h

#include "Records.h"

#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace StnPython {

/// What could not be read, and why.
class ReadError : public std::runtime_error {
 public:
  static constexpr std::int64_t kNoEntry = -1;

  ReadError(const std::string& reason, std::int64_t entry = kNoEntry) : std::runtime_error(reason), fEntry(entry) {}

  /// The entry that is concerned, or `kNoEntry`.
  std::int64_t GetEntry() const { return fEntry; }

 private:
  std::int64_t fEntry;
};

/// A station file as arrays of plain records. All that fails throws a `ReadError`; what ROOT and the library log
/// meanwhile becomes its text. One thread at a time may use readers, all of them together.
class EventReader {
 public:
  /// Opens the file. Throws also if it is no station file.
  explicit EventReader(const std::string& path);

  /// True if the file was not closed by its writer, or lost its end, and only a part of it could be recovered.
  bool IsRecovered() const { return fFile->TestBit(TFile::kRecovered); }

  std::uint32_t GetNEvents() const { return fNEvents; }

  /// Fills `records` with the headers of `n` events from `first` on, which must be there.
  void ReadHeaders(std::uint32_t first, std::uint32_t n, HeaderRecord* records);

  /// Reads the whole event at `entry`, which must be there, unless it was the last that was read, and tells how much
  /// the copies below need room for.
  EventSizes ReadEvent(std::uint32_t entry);

  /// Copy from the event that was read last. `words` receives the words of the traces' bins, trace after trace.
  void CopyTraces(TraceRecord* traces, std::uint16_t* words);
  void CopyPixels(std::int32_t* pixels);
  void CopyTriggers(TriggerRecord* triggers);

  /// Throw if the file has none.
  RunHeaderRecord ReadRunHeader();
  RunTrailerRecord ReadRunTrailer();

  bool HasRunHeader() const { return Has("RunHeader", "TStnRunHeader"); }
  bool HasRunTrailer() const { return Has("RunTrailer", "TStnRunTrailer"); }

 private:
  static constexpr std::int64_t kNothingRead = -1;

  bool Has(const char* name, const char* class_name) const;
  void ReadHeader(std::uint32_t entry, HeaderRecord& record);
  EventSizes CountContents();

  std::unique_ptr<TStnEvent> fOwnedEvent{new TStnEvent};
  TStnEvent* fEvent = fOwnedEvent.get();  // the file keeps the address of this variable
  std::int64_t fEntry = kNothingRead;
  EventSizes fSizes{};
  std::unique_ptr<TStnRunHeader> fRunHeader;
  std::uint32_t fNEvents = 0;
  std::unique_ptr<TStnEventFile> fFile;
};

}  // namespace StnPython

#endif
