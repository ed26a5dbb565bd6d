#include "TraceForms.h"

#include <TBuffer.h>
#include <TClass.h>

#include <algorithm>

namespace {

constexpr Int_t kN = TraceForm::kNWords;
UChar_t gByte[kN];
UChar_t gHigh[kN];
UShort_t gIndex[kN];
UShort_t gOther[kN];

UShort_t GetLevel(const UShort_t* words, Int_t n) {
  constexpr Int_t kNProbes = 31;
  UShort_t probes[kNProbes];
  for (Int_t i = 0; i < kNProbes; ++i)
    probes[i] = words[i * n / kNProbes];
  std::nth_element(probes, probes + kNProbes / 2, probes + kNProbes);
  const Int_t median = probes[kNProbes / 2];
  Int_t count = 0;
  Int_t sum = 0;
  for (Int_t i = 0; i < n; ++i) {
    const Int_t difference = words[i] - median;
    const Int_t is_near = difference >= -32 && difference <= 32;
    count += is_near;
    sum += is_near * difference;
  }
  return static_cast<UShort_t>(median + sum / count);
}

/// Reads a counted array into `room`, and gives what was read.
template <class T>
void ReadArray(TBuffer& b, T* room, Int_t n) {
  UChar_t has_array;
  b >> has_array;
  if (n > 0) b.ReadFastArray(room, n);
}

/// The bytes of a counted array where they stand.
const UChar_t* ReadBytes(TBuffer& b, Int_t n) {
  UChar_t has_array;
  b >> has_array;
  const UChar_t* bytes = reinterpret_cast<UChar_t*>(b.Buffer() + b.Length());
  b.SetBufferOffset(b.Length() + n);
  return bytes;
}

}  // namespace

Int_t TraceForm::Pack() {
  Int_t last = kN;
  while (last > 0 && fWord[last - 1] == 0)
    --last;
  Int_t first = 0;
  while (first < last && fWord[first] == 0)
    ++first;
  fFirst = first;
  fBase = last > first ? GetLevel(fWord + first, last - first) - 64 : 0;
  return last - first;
}

/// What all forms have at the head of their record when it is read.
#define READ_HEAD                          \
  UInt_t start, count;                     \
  b.ReadVersion(&start, &count, Class());  \
  UInt_t base_start, base_count;           \
  b.ReadVersion(&base_start, &base_count); \
  TObject::Streamer(b);                    \
  b.ReadFastArray(fHead, 10);              \
  b >> fBase >> fFirst;                    \
  std::fill(fWord, fWord + kN, 0);         \
  UShort_t* words = fWord + fFirst

void WordsForm::Streamer(TBuffer& b) {
  if (b.IsWriting()) {
    fN = Pack();
    fWords = fWord + fFirst;
    b.WriteClassBuffer(Class(), this);
    fWords = nullptr;
    return;
  }
  READ_HEAD;
  b >> fN;
  ReadArray(b, words, fN);
  b.CheckByteCount(start, count, Class());
}

void ListForm::Streamer(TBuffer& b) {
  if (b.IsWriting()) {
    fN = Pack();
    const UShort_t* from = fWord + fFirst;
    fNOther = 0;
    for (Int_t i = 0; i < fN; ++i) {
      const UShort_t difference = from[i] - fBase;
      const bool fits = difference < 256;
      gByte[i] = fits ? difference : 64;
      gIndex[fNOther] = i;
      gOther[fNOther] = from[i];
      fNOther += !fits;
    }
    fByte = gByte;
    fIndex = gIndex;
    fOther = gOther;
    b.WriteClassBuffer(Class(), this);
    fByte = nullptr;
    fIndex = fOther = nullptr;
    return;
  }
  READ_HEAD;
  b >> fN >> fNOther;
  const UChar_t* bytes = ReadBytes(b, fN);
  ReadArray(b, gIndex, fNOther);
  ReadArray(b, gOther, fNOther);
  for (Int_t i = 0; i < fN; ++i)
    words[i] = fBase + bytes[i];
  for (Int_t i = 0; i < fNOther; ++i)
    words[gIndex[i]] = gOther[i];
  b.CheckByteCount(start, count, Class());
}

void EscapeForm::Streamer(TBuffer& b) {
  if (b.IsWriting()) {
    fN = Pack();
    const UShort_t* from = fWord + fFirst;
    fNOther = 0;
    for (Int_t i = 0; i < fN; ++i) {
      const UShort_t difference = from[i] - fBase;
      const bool fits = difference < 255;
      gByte[i] = fits ? difference : 255;
      gOther[fNOther] = from[i];
      fNOther += !fits;
    }
    fByte = gByte;
    fOther = gOther;
    b.WriteClassBuffer(Class(), this);
    fByte = nullptr;
    fOther = nullptr;
    return;
  }
  READ_HEAD;
  b >> fN >> fNOther;
  const UChar_t* bytes = ReadBytes(b, fN);
  ReadArray(b, gOther, fNOther);
  Int_t other = 0;
  for (Int_t i = 0; i < fN; ++i)
    words[i] = bytes[i] == 255 ? gOther[other++] : fBase + bytes[i];
  b.CheckByteCount(start, count, Class());
}

void DeltaForm::Streamer(TBuffer& b) {
  if (b.IsWriting()) {
    fN = Pack();
    const UShort_t* from = fWord + fFirst;
    fNOther = 0;
    UShort_t before = fBase;
    for (Int_t i = 0; i < fN; ++i) {
      const UShort_t difference = from[i] - before + 127;
      const bool fits = difference < 255;
      gByte[i] = fits ? difference : 255;
      gOther[fNOther] = from[i];
      fNOther += !fits;
      before = from[i];
    }
    fByte = gByte;
    fOther = gOther;
    b.WriteClassBuffer(Class(), this);
    fByte = nullptr;
    fOther = nullptr;
    return;
  }
  READ_HEAD;
  b >> fN >> fNOther;
  const UChar_t* bytes = ReadBytes(b, fN);
  ReadArray(b, gOther, fNOther);
  Int_t other = 0;
  UShort_t before = fBase;
  for (Int_t i = 0; i < fN; ++i)
    before = words[i] = bytes[i] == 255 ? gOther[other++] : before + bytes[i] - 127;
  b.CheckByteCount(start, count, Class());
}

void LowHighForm::Streamer(TBuffer& b) {
  if (b.IsWriting()) {
    fNLow = Pack();
    const UShort_t* from = fWord + fFirst;
    for (Int_t i = 0; i < fNLow; ++i) {
      const UShort_t difference = from[i] - fBase;
      gByte[i] = difference & 0xFF;
      gHigh[i] = difference >> 8;
    }
    Int_t last = fNLow;
    while (last > 0 && gHigh[last - 1] == 0)
      --last;
    fFirstHigh = std::find_if(gHigh, gHigh + last, [](UChar_t byte) { return byte != 0; }) - gHigh;
    fNHigh = last - fFirstHigh;
    fLow = gByte;
    fHigh = gHigh + fFirstHigh;
    b.WriteClassBuffer(Class(), this);
    fLow = fHigh = nullptr;
    return;
  }
  READ_HEAD;
  b >> fFirstHigh >> fNLow >> fNHigh;
  const UChar_t* low = ReadBytes(b, fNLow);
  const UChar_t* high = ReadBytes(b, fNHigh);
  for (Int_t i = 0; i < fNLow; ++i)
    words[i] = fBase + low[i];
  for (Int_t i = 0; i < fNHigh; ++i)
    words[fFirstHigh + i] += high[i] << 8;
  b.CheckByteCount(start, count, Class());
}
