#ifndef MrEvent_MrNumber_h
#define MrEvent_MrNumber_h

#include <Rtypes.h>

#include <cstring>
#include <type_traits>

/// Takes a number of 2, 4 or 8 bytes in the byte order of files, and moves on behind it. Unlike ROOT's `frombuf` it does so
/// at any address, as the numbers in a record stand anywhere.
template <class T>
void TakeNumber(const char*& bytes, T& value) {
  static_assert(sizeof(T) == 2 || sizeof(T) == 4 || sizeof(T) == 8, "numbers on file have these sizes");
  using Bits = std::conditional_t<sizeof(T) == 2, UShort_t, std::conditional_t<sizeof(T) == 4, UInt_t, ULong64_t>>;
  Bits bits = 0;
  for (size_t i = 0; i < sizeof(T); ++i)
    bits = static_cast<Bits>(bits << 8 | static_cast<UChar_t>(*bytes++));
  std::memcpy(&value, &bits, sizeof(T));
}

#endif
