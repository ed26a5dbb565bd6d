#ifndef MrEvent_MrEventVersion_h
#define MrEvent_MrEventVersion_h

/// Version of the library of mirror-level records, the same as that of the shared library's file name.
constexpr int kMrEventVersion = 4;
constexpr int kMrEventSubVersion = 1;
constexpr int kMrEventSubSubVersion = 5;
/// The same as text, for messages and print-outs.
constexpr char kMrEventVersionString[] = "MrEvent 4.1.5";

#endif
