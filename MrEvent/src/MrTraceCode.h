#ifndef MrEvent_MrTraceCode_h
#define MrEvent_MrTraceCode_h

#include <Rtypes.h>

/// The 16-bit words of one trace in the form on file. Words outside a range of bins are 0 and not stored. Of each word
/// inside, the difference to a base is stored, modulo 65536, in one of three ways:
/// - near: differences of 57 to 71 take half a byte, 0 to 14;
/// - far: the seven differences below and the eight above take 15 there, and half a byte more, 0 to 14 in ascending order;
/// - wide: all others take 15 twice, and a low and a high byte.
/// Half bytes stand two in a byte, the first in the low bits; a last one that is not used is 0. High bytes that are 0 are
/// left out at both ends. Without near half bytes, all words of the range are wide.
///
/// The arrays belong to the caller.
struct MrTraceCode {
  /// Words of a trace.
  static constexpr UInt_t kNWords = 2000;
  /// Room for the arrays of any trace.
  struct Room {
    UChar_t fNear[kNWords / 2];
    UChar_t fFar[kNWords / 2];
    UChar_t fLow[kNWords + 1];  // each word is put down before it is known whether it is wide
    UChar_t fHigh[kNWords + 1];
  };

  /// Encodes the words of a trace, with arrays in `room`. The base lies 64 below the level of the trace, so that the
  /// words next to the level are near.
  void Encode(const UShort_t* words, Room& room);
  /// Fills the words of a whole trace from a code that is consistent.
  void Decode(UShort_t* words) const;

  /// Number of words that need a far half byte, and of those that need bytes.
  UInt_t CountFar() const;
  UInt_t CountWide() const;
  /// Whether a half byte that is left over behind the first `n` is 0.
  static bool IsPadded(const UChar_t* halves, UInt_t n) { return n % 2 == 0 || halves[n / 2] < 16; }

  UShort_t fBase = 0;        ///< base of the differences
  UShort_t fFirst = 0;       ///< first bin of the range
  UShort_t fNWords = 0;      ///< bins in the range
  UShort_t fFirstHigh = 0;   ///< first of the wide words that has a high byte
  Int_t fNNear = 0;          ///< bytes in fNear: half the words, or none
  Int_t fNFar = 0;           ///< bytes in fFar
  Int_t fNWide = 0;          ///< wide words, bytes in fLow
  Int_t fNHigh = 0;          ///< bytes in fHigh
  UChar_t* fNear = nullptr;  ///< near half bytes
  UChar_t* fFar = nullptr;   ///< far half bytes
  UChar_t* fLow = nullptr;   ///< low bytes of the wide words
  UChar_t* fHigh = nullptr;  ///< high bytes of the wide words

 private:
  void SetRange(const UShort_t* words);
  void EncodeOthers(const UShort_t* words);
  void EncodeWide(const UShort_t* words);
  void TrimHigh();
  void DecodeWide(UShort_t* words) const;
  void DecodeOthers(UShort_t* words) const;
  UShort_t GetWide(UInt_t index) const;
};

#endif
