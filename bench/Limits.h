#ifndef bench_Limits_h
#define bench_Limits_h

#include "Peer.h"
#include "Workload.h"

#include <map>

namespace StnBench {

/// Blocks of bytes in memory, under the name of a file: what the limits write and read.
class MemoryFile {
 public:
  struct Block {
    std::vector<char> fBytes;
    int fNSource = 0;  // bytes before compression
    int fNEvents = 0;  // events in it
  };
  typedef std::vector<Block> Blocks;

  /// The blocks of that name, which are made if need be.
  static Blocks& Get(const std::string& name);
  /// Bytes in them.
  static std::size_t GetSize(const std::string& name);
};

/// Compresses the encoded traces in blocks like the baskets of a station file, with ROOT's own compression.
class ZipWriter : public EventWriter {
 public:
  ZipWriter(const std::string& path, int compression);
  void Prepare(TStnEvent& event) override;
  void Write() override;
  void Close() override;

 private:
  void Zip();

  int fCompression;
  MemoryFile::Blocks& fBlocks;
  std::vector<char> fSource;   // encoded bytes of the basket that is filled
  std::vector<char> fEncoded;  // of the event that was prepared
  int fNEvents = 0;
};

/// Decompresses them.
class ZipReader : public EventReader {
 public:
  ZipReader(const std::string& path, Peer::Part) : fNext(MemoryFile::Get(path).begin()) {}
  ULong64_t ReadEvent() override;
  UInt_t ReadHeader() override { return 0; }

 private:
  MemoryFile::Blocks::const_iterator fNext;
  int fNEventsLeft = 0;
  std::vector<unsigned char> fTarget;
};

/// Copies the samples of each event in one piece.
class CopyWriter : public EventWriter {
 public:
  CopyWriter(const std::string& path, int);
  void Prepare(TStnEvent& event) override;
  void Write() override;
  void Close() override {}

 private:
  MemoryFile::Blocks& fBlocks;
  std::vector<char> fSamples;
};

/// Copies them back and adds them up.
class CopyReader : public EventReader {
 public:
  CopyReader(const std::string& path, Peer::Part) : fNext(MemoryFile::Get(path).begin()) {}
  ULong64_t ReadEvent() override;
  UInt_t ReadHeader() override { return 0; }

 private:
  MemoryFile::Blocks::const_iterator fNext;
  std::vector<UShort_t> fSamples;
};

/// Entropy of all samples, in bytes, when no more is known than that each has noise of the simulation's width: what a
/// form without loss can't go below, however well it knows pedestals and pulses.
double GetNoiseEntropy(const Events& events);
/// Entropy of all samples, in bytes, by the frequencies of their values in each trace: what a coder can't go below that
/// takes one sample at a time, even if it gets these frequencies for nothing. Flags count for nothing, as they follow
/// from the samples.
double GetTraceEntropy(const Events& events);

}  // namespace StnBench

#endif
