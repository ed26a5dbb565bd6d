#ifndef StnEvent_StnEventVersion_h
#define StnEvent_StnEventVersion_h

#include <RtypesCore.h>

/// Version of this library and of the data format that it writes; run headers carry it as a version code.
inline constexpr UInt_t kStnEventVersion = 2;
inline constexpr UInt_t kStnEventSubVersion = 1;
inline constexpr UInt_t kStnEventSubSubVersion = 100;
/// The same version as a text.
inline constexpr char kStnEventVersionString[] = "StnEvent 2.1.100";

#endif
