#include <MrEvent/MrTraceCode.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr UInt_t kToLevel = 64;  // from the base to the level, which is in the middle of the near words
constexpr UInt_t kToNear = 57;   // to the lowest near word
constexpr UInt_t kToFar = 50;    // to the lowest far word
constexpr UInt_t kNBelow = 7;    // far words below the near ones
constexpr UInt_t kFull = 15;     // the half byte of a word that has another one, and the number of words that don't
constexpr UInt_t kBlock = 16;    // words or half bytes that are looked at together

// The loops over all words of a trace work on local pointers that don't overlap, so that the compiler vectorises them.

bool AreAllZero(const UShort_t* words) {
  ULong64_t parts[kBlock / 4];
  std::memcpy(parts, words, sizeof(parts));
  ULong64_t bits = 0;
  for (ULong64_t part : parts)
    bits |= part;
  return bits == 0;
}

UShort_t GetMedian(UShort_t a, UShort_t b, UShort_t c) { return std::max(std::min(a, b), std::min(std::max(a, b), c)); }

/// A word that is neither high nor low: medians of three, of words all over the trace, thrice over.
UShort_t GetTypicalWord(const UShort_t* words, UInt_t n) {
  constexpr UInt_t kNProbes = 27;
  UShort_t probes[kNProbes];
  for (size_t i = 0; i < kNProbes; ++i)
    probes[i] = words[i * n / kNProbes];
  for (size_t left = kNProbes / 3; left > 0; left /= 3)
    for (size_t i = 0; i < left; ++i)
      probes[i] = GetMedian(probes[3 * i], probes[3 * i + 1], probes[3 * i + 2]);
  return probes[0];
}

/// The level of the trace: the mean of all words near a typical one.
UShort_t GetLevel(const UShort_t* words, UInt_t n) {
  constexpr UShort_t kNear = 32;
  constexpr UInt_t kMostAtOnce = 1000;  // the sum of so many differences fits into 16 bits, which is faster
  const UShort_t lowest = GetTypicalWord(words, n) - kNear;
  UShort_t count = 0;
  UInt_t sum = 0;
  for (UInt_t first = 0; first < n; first += kMostAtOnce) {
    const UInt_t last = std::min(n, first + kMostAtOnce);
    UShort_t part = 0;
    for (UInt_t i = first; i < last; ++i) {
      const UShort_t difference = words[i] - lowest;
      const UShort_t is_near = difference <= 2 * kNear;
      count += is_near;
      part += is_near ? difference : 0;
    }
    sum += part;
  }
  return lowest + (2 * sum + count) / (2 * count);
}

void PackNear(const UShort_t* __restrict words, size_t n_pairs, UShort_t nearest, UChar_t* __restrict halves) {
  UChar_t near[MrTraceCode::kNWords];
  for (size_t i = 0; i < 2 * n_pairs; ++i)
    near[i] = std::min<UShort_t>(words[i] - nearest, kFull);
  for (size_t i = 0; i < n_pairs; ++i) {
    UShort_t pair;
    std::memcpy(&pair, near + 2 * i, sizeof(pair));
    halves[i] = pair | pair >> 4;
  }
}

void UnpackNear(const UChar_t* __restrict halves, size_t n_pairs, UShort_t nearest, UShort_t* __restrict words) {
  for (size_t i = 0; i < n_pairs; ++i) {
    words[2 * i] = nearest + halves[i] % 16;
    words[2 * i + 1] = nearest + halves[i] / 16;
  }
}

/// The far half byte of a difference, 15 when it is wide.
UInt_t ToFar(UShort_t difference) {
  const UShort_t below = difference - kToFar;
  const UShort_t above = below - kFull - kNBelow;
  const UShort_t far_above = std::min<UShort_t>(above, kFull - kNBelow) + kNBelow;
  return below < kNBelow ? below : far_above;
}

/// The difference of a far half byte.
constexpr UChar_t kFromFar[] = {50, 51, 52, 53, 54, 55, 56, 72, 73, 74, 75, 76, 77, 78, 79};

void PackHalves(const UChar_t* __restrict from, size_t n_bytes, UChar_t* __restrict halves) {
  for (size_t i = 0; i < n_bytes; ++i)
    halves[i] = from[2 * i] | from[2 * i + 1] << 4;
}

void UnpackHalves(const UChar_t* __restrict halves, size_t n_bytes, UChar_t* __restrict to) {
  for (size_t i = 0; i < n_bytes; ++i) {
    to[2 * i] = halves[i] % 16;
    to[2 * i + 1] = halves[i] / 16;
  }
}

/// The lowest bit of each of the first 16 half bytes that is 15, the first in the lowest bits.
ULong64_t MarkFull(const UChar_t* halves) {
  ULong64_t bits;
  std::memcpy(&bits, halves, sizeof(bits));
  bits &= bits >> 1;
  return bits & bits >> 2 & 0x1111111111111111;
}

/// The same for fewer.
ULong64_t MarkFull(const UChar_t* halves, UInt_t n_bytes) {
  UChar_t block[kBlock / 2] = {};
  std::copy(halves, halves + n_bytes, block);
  return MarkFull(block);
}

UInt_t CountMarks(ULong64_t marks) {
  marks = (marks + (marks >> 4)) & 0x0303030303030303;
  return marks * 0x0101010101010101 >> 56;
}

UInt_t CountFull(const UChar_t* halves, UInt_t n_bytes) {
  const UInt_t tail = n_bytes % (kBlock / 2);
  UInt_t count = CountMarks(MarkFull(halves + n_bytes - tail, tail));
  for (UInt_t i = 0; i + kBlock / 2 <= n_bytes; i += kBlock / 2)
    count += CountMarks(MarkFull(halves + i));
  return count;
}

/// Where the half bytes of 15 are.
class FullHalves {
 public:
  FullHalves(const UChar_t* halves, UInt_t n_bytes) {
    const UInt_t tail = n_bytes % (kBlock / 2);
    UInt_t i = 0;
    for (; i + kBlock / 2 <= n_bytes; i += kBlock / 2)
      Add(MarkFull(halves + i), 2 * i);
    Add(MarkFull(halves + i, tail), 2 * i);
  }
  const UShort_t* begin() const { return fIndex; }
  const UShort_t* end() const { return fIndex + fSize; }

 private:
  /// Most blocks have none to three, in no order that a processor could guess: three are put down without a look.
  void Add(ULong64_t marks, UInt_t first) {
    UInt_t size = fSize;
    fSize += CountMarks(marks);
    for (UInt_t i = 0; i < 3; ++i, marks &= marks - 1)
      fIndex[size++] = first + __builtin_ctzll(marks | 1ULL << 63) / 4;
    for (; size < fSize; marks &= marks - 1)
      fIndex[size++] = first + __builtin_ctzll(marks) / 4;
  }

  UInt_t fSize = 0;
  UShort_t fIndex[MrTraceCode::kNWords + 3];
};

}  // namespace

UInt_t MrTraceCode::CountFar() const { return fNNear == 0 ? 0 : CountFull(fNear, fNNear); }

UInt_t MrTraceCode::CountWide() const { return fNNear == 0 ? fNWords : CountFull(fFar, fNFar); }

void MrTraceCode::Encode(const UShort_t* words, Room& room) {
  *this = MrTraceCode();
  fNear = room.fNear;
  fFar = room.fFar;
  fLow = room.fLow;
  fHigh = room.fHigh;
  SetRange(words);
  if (fNWords == 0) return;
  words += fFirst;
  fBase = GetLevel(words, fNWords) - kToLevel;
  fNNear = (fNWords + 1) / 2;
  PackNear(words, fNWords / 2, fBase + kToNear, fNear);
  if (fNWords % 2 != 0) fNear[fNNear - 1] = std::min<UShort_t>(words[fNWords - 1] - fBase - kToNear, kFull);
  EncodeOthers(words);
  // Half bytes are for words that lie together.
  if (fNNear + fNFar + fNWide > fNWords) EncodeWide(words);
  TrimHigh();
}

void MrTraceCode::SetRange(const UShort_t* words) {
  UInt_t last = kNWords;
  while (last >= kBlock && AreAllZero(words + last - kBlock))
    last -= kBlock;
  while (last > 0 && words[last - 1] == 0)
    --last;
  UInt_t first = 0;
  while (first < last && words[first] == 0)
    ++first;
  fFirst = first;
  fNWords = last - first;
}

void MrTraceCode::EncodeOthers(const UShort_t* words) {
  UChar_t far[kNWords + 1];
  UChar_t* __restrict low = fLow;
  UChar_t* __restrict high = fHigh;
  const UShort_t base = fBase;
  UInt_t n_far = 0;
  UInt_t n_wide = 0;
  for (const UInt_t i : FullHalves(fNear, fNNear)) {
    const UShort_t difference = words[i] - base;
    const UInt_t half = ToFar(difference);
    far[n_far++] = half;
    // Kept only if it is wide: a word of noise is that too seldom and without a sign.
    low[n_wide] = difference & 0xFF;
    high[n_wide] = difference >> 8;
    n_wide += half == kFull;
  }
  far[n_far] = 0;
  fNFar = (n_far + 1) / 2;
  fNWide = n_wide;
  PackHalves(far, fNFar, fFar);
}

void MrTraceCode::EncodeWide(const UShort_t* words) {
  fNNear = fNFar = 0;
  fNWide = fNWords;
  UChar_t* __restrict low = fLow;
  UChar_t* __restrict high = fHigh;
  const UShort_t base = fBase;
  for (UInt_t i = 0; i < fNWords; ++i) {
    const UShort_t difference = words[i] - base;
    low[i] = difference & 0xFF;
    high[i] = difference >> 8;
  }
}

void MrTraceCode::TrimHigh() {
  Int_t last = fNWide;
  while (last > 0 && fHigh[last - 1] == 0)
    --last;
  Int_t first = 0;
  while (first < last && fHigh[first] == 0)
    ++first;
  if (first == last) return;
  fFirstHigh = first;
  fNHigh = last - first;
  fHigh += first;
}

void MrTraceCode::Decode(UShort_t* words) const {
  std::fill(words, words + fFirst, 0);
  std::fill(words + fFirst + fNWords, words + kNWords, 0);
  words += fFirst;
  if (fNNear == 0) {
    DecodeWide(words);
    return;
  }
  UnpackNear(fNear, fNWords / 2, fBase + kToNear, words);
  if (fNWords % 2 != 0) words[fNWords - 1] = fBase + kToNear + fNear[fNNear - 1];
  DecodeOthers(words);
}

void MrTraceCode::DecodeWide(UShort_t* words) const {
  for (Int_t i = 0; i < fNWide; ++i)
    words[i] = fBase + fLow[i];
  for (Int_t i = 0; i < fNHigh; ++i)
    words[fFirstHigh + i] += fHigh[i] << 8;
}

void MrTraceCode::DecodeOthers(UShort_t* words) const {
  UChar_t far[kNWords];
  UnpackHalves(fFar, fNFar, far);
  const UShort_t base = fBase;
  UInt_t n_far = 0;
  UInt_t n_wide = 0;
  for (const UInt_t i : FullHalves(fNear, fNNear)) {
    const UInt_t half = far[n_far++];
    words[i] = base + (half == kFull ? GetWide(n_wide++) : kFromFar[half]);
  }
}

UShort_t MrTraceCode::GetWide(UInt_t index) const {
  const UInt_t high = index - fFirstHigh;
  return fLow[index] + (high < UInt_t(fNHigh) ? fHigh[high] << 8 : 0);
}
