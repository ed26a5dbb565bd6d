#ifndef tools_EventChecksum_h
#define tools_EventChecksum_h

#include <StnEvent/StnEvent.h>

#include <array>
#include <cstdint>
#include <string>

namespace StnTools {

/// A checksum of 64 bits over a sequence of numbers. Each step can be undone, so two sequences of the same length that
/// differ in a single number never have the same one. The value is the same on every machine.
class Checksum {
 public:
  /// Takes the next number; floating point numbers by their bits.
  void Add(std::uint64_t value);
  void Add(double value);

  std::uint64_t GetValue() const { return fValue; }

 private:
  // Offset and prime of FNV-1a, which is done here by words instead of bytes.
  std::uint64_t fValue = 0xcbf29ce484222325ULL;
};

/// The parts of an event that have a checksum of their own.
enum EventPart { kHeader, kPixelList, kPixelData, kTraces, kNParts };

/// Name of a part for messages, as "header".
const char* GetPartName(EventPart part);

/// Checksums of an event, by part, over every value that goes to file: all fields of the header (and of the T3 record
/// of an event with a T3), every pixel of the list, every triggered slice of every pixel, and every word of every trace
/// with what belongs to it. Numbers of versions and addresses do not count.
using EventChecksum = std::array<std::uint64_t, kNParts>;

/// Computes them. Not const, as the event makes parts that it lacks; it must have a header.
EventChecksum ComputeChecksum(TStnEvent& event);

/// A checksum as 16 hexadecimal digits.
std::string FormatChecksum(std::uint64_t checksum);

}  // namespace StnTools

#endif
