#ifndef tools_ByteReader_h
#define tools_ByteReader_h

#include <cstddef>
#include <cstdint>
#include <string>

namespace StnTools {

/// Takes numbers and texts, as ROOT files hold them, out of bytes one after the other, and never looks beyond the end:
/// once something did not fit, `IsGood` is false and all that follows is 0 or empty.
class ByteReader {
 public:
  ByteReader(const char* bytes, std::size_t size) : fBytes(bytes), fSize(size) {}

  /// The next number of `n_bytes` bytes, 1 to 8, high byte first; with or without a sign.
  std::uint64_t Number(std::size_t n_bytes);
  std::int64_t Signed(std::size_t n_bytes);

  /// The next text: its length in one byte, or in four behind a byte of 255, and its characters.
  std::string Text();

  void Skip(std::size_t n_bytes) { Take(n_bytes); }
  std::size_t GetPosition() const { return fPosition; }
  bool IsGood() const { return fIsGood; }

 private:
  const char* Take(std::size_t n_bytes);

  const char* fBytes;
  std::size_t fSize;
  std::size_t fPosition = 0;
  bool fIsGood = true;
};

}  // namespace StnTools

#endif
