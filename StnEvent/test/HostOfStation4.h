#ifndef HostOfStation4_h
#define HostOfStation4_h

#include <cstdio>

/// Stands in for the function of the system: the program runs on a computer of station 4, and what it takes from the host
/// can be told from a default.
extern "C" int gethostname(char* name, size_t size) noexcept {
  std::snprintf(name, size, "stn4");
  return 0;
}

#endif
