#include "ByteReader.h"

namespace StnTools {

const char* ByteReader::Take(std::size_t n_bytes) {
  fIsGood = fIsGood && n_bytes <= fSize - fPosition;
  if (!fIsGood) return nullptr;
  const char* taken = fBytes + fPosition;
  fPosition += n_bytes;
  return taken;
}

std::uint64_t ByteReader::Number(std::size_t n_bytes) {
  const char* bytes = Take(n_bytes);
  std::uint64_t number = 0;
  for (std::size_t i = 0; bytes != nullptr && i < n_bytes; ++i)
    number = number << 8 | static_cast<unsigned char>(bytes[i]);
  return number;
}

std::int64_t ByteReader::Signed(std::size_t n_bytes) {
  std::size_t unused_bits = 64 - 8 * n_bytes;
  return static_cast<std::int64_t>(Number(n_bytes) << unused_bits) >> unused_bits;
}

std::string ByteReader::Text() {
  const std::uint64_t is_long = 255;
  std::uint64_t length = Number(1);
  if (length == is_long) length = Number(4);
  const char* text = Take(length);
  return text == nullptr ? std::string() : std::string(text, length);
}

}  // namespace StnTools
