// The classes that ROOT reads by their description alone, behind the look that the library takes at them first. The first
// byte of an input chooses one.

#include "Target.h"

#include <MrEvent/MrRecordCheck.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <iterator>

namespace {

template <class T>
void ReadSound(char* data, size_t size) {
  TBufferFile buffer(TBuffer::kRead, static_cast<Int_t>(size), data, kFALSE);
  if (!MrRecordCheck(buffer, size, T::Class()).HasRecord()) return;
  T object;
  object.Streamer(buffer);
  Use(object);
}

// The order is that in make_corpus.py.
constexpr void (*kReaders[])(char*, size_t) = {
    ReadSound<TStnRunHeader>,    ReadSound<TStnRunTrailer>, ReadSound<TStnT3Data>,   ReadSound<TStnTriggerData>,
    ReadSound<TStnGeometryData>, ReadSound<TStnPixelData>,  ReadSound<TStnFADCData>, ReadSound<VdRoot::TTimeStamp>,
};

}  // namespace

void ReadInput(char* data, size_t size) {
  if (size == 0) return;
  const auto reader = static_cast<unsigned char>(data[0]);
  if (reader < std::size(kReaders)) kReaders[reader](data + 1, size - 1);
}
