// Reads one class, which the build names, from its record.

#include "Target.h"

void ReadInput(char* data, size_t size) { ReadRecord<FUZZED_CLASS>(data, size); }
