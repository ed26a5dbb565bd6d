#ifndef bench_Peer_h
#define bench_Peer_h

#include <StnEvent/StnEvent.h>

#include <memory>
#include <string>
#include <vector>

namespace StnBench {

/// Writes events to one file.
class EventWriter {
 public:
  virtual ~EventWriter() = default;
  /// Puts an event where `Write` takes it from, which is not part of what is measured.
  virtual void Prepare(TStnEvent& event) = 0;
  virtual void Write() = 0;
  virtual void Close() = 0;
};

/// Reads events of one file, one after the other.
class EventReader {
 public:
  /// Sum of samples that are not there.
  static constexpr ULong64_t kNoSamples = ~0ULL;

  virtual ~EventReader() = default;
  /// Reads the next event in full and answers the sum of its samples.
  virtual ULong64_t ReadEvent() = 0;
  /// Reads the header of the next event alone and answers its event number.
  virtual UInt_t ReadHeader() = 0;
  /// Bytes read from the file so far; 0 if that is not known.
  virtual Long64_t GetBytesRead() const { return 0; }
};

/// One way to keep events in a file.
struct Peer {
  enum Part { kEvents, kHeaders };  ///< what a reader is for

  const char* fName;
  std::unique_ptr<EventWriter> (*fWrite)(const std::string& path, int compression);
  std::unique_ptr<EventReader> (*fRead)(const std::string& path, Part part);
};

/// The station file, a flat tree, and an RNTuple if ROOT has it.
const std::vector<Peer>& GetPeers();
/// What no file can do better: "zip" compresses the encoded traces of the station file, basket by basket, and does
/// nothing else; "memcpy" copies the 16-bit samples.
const std::vector<Peer>& GetLimits();

}  // namespace StnBench

#endif
