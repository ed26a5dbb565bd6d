// The classes that ROOT reads by their description alone. The first byte of an input chooses one.

#include "Target.h"

#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <iterator>

namespace {

/// A time stamp has no copy of its own to show.
void ReadTimeStamp(char* data, size_t size) {
  TBufferFile buffer(TBuffer::kRead, static_cast<Int_t>(size), data, kFALSE);
  VdRoot::TTimeStamp stamp;
  stamp.Streamer(buffer);
  stamp.Normalize();
  std::cout << stamp.AsString() << stamp.AsString("g");
}

// The order is that in make_corpus.py.
constexpr void (*kReaders[])(char*, size_t) = {
    ReadRecord<TStnRunHeader>,    ReadRecord<TStnRunTrailer>, ReadRecord<TStnT3Data>,   ReadRecord<TStnTriggerData>,
    ReadRecord<TStnGeometryData>, ReadRecord<TStnPixelData>,  ReadRecord<TStnFADCData>, ReadTimeStamp,
};

}  // namespace

void ReadInput(char* data, size_t size) {
  if (size == 0) return;
  const auto reader = static_cast<unsigned char>(data[0]);
  if (reader < std::size(kReaders)) kReaders[reader](data + 1, size - 1);
}
