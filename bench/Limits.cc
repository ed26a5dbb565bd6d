#include "Limits.h"

#include "Electronics.h"

#include <Compression.h>
#include <RZip.h>
#include <TBufferFile.h>

#include <cmath>
#include <cstring>
#include <numeric>
#include <stdexcept>

namespace StnBench {
namespace {

// Bytes that the traces' branch of a station file collects in a basket.
const std::size_t kBasketSize = 500000;
// Room that ROOT's own header takes in a compressed piece of 16 MB at most.
const int kZipOverhead = 100;

double GetInformation(double p) { return p > 0 ? -p * std::log2(p) : 0; }

}  // namespace

MemoryFile::Blocks& MemoryFile::Get(const std::string& name) {
  static std::map<std::string, Blocks> files;
  return files[name];
}

std::size_t MemoryFile::GetSize(const std::string& name) {
  std::size_t size = 0;
  for (const Block& block : Get(name))
    size += block.fBytes.size();
  return size;
}

ZipWriter::ZipWriter(const std::string& path, int compression)
    : fCompression(compression), fBlocks(MemoryFile::Get(path)) {
  fBlocks.clear();
}

void ZipWriter::Prepare(TStnEvent& event) {
  TBufferFile buffer(TBuffer::kWrite);
  event.GetFADCData()->Streamer(buffer);
  fEncoded.assign(buffer.Buffer(), buffer.Buffer() + buffer.Length());
}

void ZipWriter::Write() {
  if (!fSource.empty() && fSource.size() + fEncoded.size() > kBasketSize) Zip();
  fSource.insert(fSource.end(), fEncoded.begin(), fEncoded.end());
  ++fNEvents;
}

void ZipWriter::Close() {
  if (!fSource.empty()) Zip();
}

void ZipWriter::Zip() {
  int n_source = int(fSource.size());
  MemoryFile::Block block{std::vector<char>(fSource.size() + kZipOverhead), n_source, fNEvents};
  int n_target = int(block.fBytes.size());
  int n_zipped = 0;
  R__zipMultipleAlgorithm(fCompression % 100, &n_source, fSource.data(), &n_target, block.fBytes.data(), &n_zipped,
                          ROOT::RCompressionSetting::EAlgorithm::EValues(fCompression / 100));
  if (n_zipped == 0) throw std::runtime_error("traces were not compressed");
  block.fBytes.resize(n_zipped);
  fBlocks.push_back(std::move(block));
  fSource.clear();
  fNEvents = 0;
}

ULong64_t ZipReader::ReadEvent() {
  if (fNEventsLeft == 0) {
    int n_zipped = int(fNext->fBytes.size());
    int n_target = fNext->fNSource;
    int n_unzipped = 0;
    fTarget.resize(n_target);
    R__unzip(&n_zipped, reinterpret_cast<const unsigned char*>(fNext->fBytes.data()), &n_target, fTarget.data(),
             &n_unzipped);
    if (n_unzipped != n_target) throw std::runtime_error("traces were not decompressed");
    fNEventsLeft = fNext++->fNEvents;
  }
  --fNEventsLeft;
  return kNoSamples;
}

CopyWriter::CopyWriter(const std::string& path, int) : fBlocks(MemoryFile::Get(path)) { fBlocks.clear(); }

void CopyWriter::Prepare(TStnEvent& event) {
  fSamples.clear();
  ForEachTrace(event, [this](const TFADCData& trace) {
    const auto* first = reinterpret_cast<const char*>(trace.GetRecord()->fFadcData + trace.GetStartBin());
    fSamples.insert(fSamples.end(), first, first + 2 * trace.GetTraceLength());
  });
  fBlocks.push_back({std::vector<char>(fSamples.size()), 0, 1});
}

void CopyWriter::Write() { std::memcpy(fBlocks.back().fBytes.data(), fSamples.data(), fSamples.size()); }

ULong64_t CopyReader::ReadEvent() {
  const std::vector<char>& bytes = fNext++->fBytes;
  fSamples.resize(bytes.size() / 2);
  std::memcpy(fSamples.data(), bytes.data(), bytes.size());
  // Pieces in which a sum of 12-bit samples fits into 32 bits are added up faster.
  constexpr std::size_t kPiece = 1000;
  ULong64_t sum = 0;
  for (std::size_t first = 0; first < fSamples.size(); first += kPiece) {
    UInt_t of_piece = 0;
    for (std::size_t i = first; i < std::min(first + kPiece, fSamples.size()); ++i)
      of_piece += fSamples[i] & 0xFFF;
    sum += of_piece;
  }
  return sum;
}

double GetNoiseEntropy(const Events& events) {
  constexpr int kReach = 60;  // more than 15 times the width
  const double scale = 1 / (StnTools::Electronics::kNoise * std::sqrt(2.));
  double bits = 0;
  for (int count = -kReach; count <= kReach; ++count)
    bits += GetInformation((std::erf((count + 0.5) * scale) - std::erf((count - 0.5) * scale)) / 2);
  return bits / 8 * events.GetSampleBytes() / 2;
}

double GetTraceEntropy(const Events& events) {
  double bits = 0;
  for (int i = 0; i < events.GetN(); ++i)
    ForEachTrace(events.GetStation(i), [&bits](const TFADCData& trace) {
      std::map<UInt_t, double> frequency;
      const double n = trace.GetTraceLength();
      for (UInt_t bin = trace.GetStartBin(); bin <= trace.GetEndBin(); ++bin)
        ++frequency[trace.GetSample(bin)];
      for (const auto& value : frequency)
        bits += n * GetInformation(value.second / n);
    });
  return bits / 8;
}

}  // namespace StnBench
