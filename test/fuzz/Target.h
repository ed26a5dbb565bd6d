#ifndef fuzz_Target_h
#define fuzz_Target_h

#include "Use.h"

#include <TBufferFile.h>

#include <cstddef>

/// What a target does with one input, which ends where the process may not read. Each target has one of these.
void ReadInput(char* data, size_t size);

/// Reads a record with the class's own streamer, and uses what came of it.
template <class T>
void ReadRecord(char* data, size_t size) {
  TBufferFile buffer(TBuffer::kRead, static_cast<Int_t>(size), data, kFALSE);
  T object;
  object.Streamer(buffer);
  Use(object);
}

#endif
