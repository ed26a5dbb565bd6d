#ifdef __CLING__
// clang-format off

#pragma link off all globals;
#pragma link off all classes;
#pragma link off all functions;

// "+" asks for the generated streamer, "-" says that the class has its own. The plain records get version 2: below that
// ROOT stores a checksum in place of a version, which not every reader of ROOT files understands.
#pragma link C++ options=version(2) struct TMirrorEventHeader::_MirrorEventHeaderRec+;
#pragma link C++ class TMirrorEventHeader+;
#pragma link C++ class TMirrorPixelData-;
#pragma link C++ class TMirrorPixelList-;
#pragma link C++ class TFADCData-;
#pragma link C++ class TMirrorFADCData-;
#pragma link C++ class TMirrorEvent+;
#pragma link C++ options=version(2) struct TMirrorRunTrailer::_MirrorRunTrailerRec+;
#pragma link C++ class TMirrorRunTrailer+;

#endif
