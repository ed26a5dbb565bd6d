#ifdef __CLING__

#pragma link off all globals;
#pragma link off all classes;
#pragma link off all functions;

// "+" asks for the generated streamer, "-" says that the class has its own.
#pragma link C++ struct TMirrorEventHeader::_MirrorEventHeaderRec + ;
#pragma link C++ class TMirrorEventHeader + ;
#pragma link C++ class TMirrorPixelData - ;
#pragma link C++ class TMirrorPixelList - ;
#pragma link C++ class TFADCData - ;
#pragma link C++ class TMirrorFADCData - ;
#pragma link C++ class TMirrorEvent + ;
#pragma link C++ struct TMirrorRunTrailer::_MirrorRunTrailerRec + ;
#pragma link C++ class TMirrorRunTrailer + ;

#endif
