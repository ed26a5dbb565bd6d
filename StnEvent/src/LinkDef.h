#ifdef __CLING__
// clang-format off

#pragma link off all globals;
#pragma link off all classes;
#pragma link off all functions;

// The order is the order of registration. "+" asks for the generated streamer, "-" says that the class has its own.
#pragma link C++ class TStnRunHeader+;
#pragma link C++ class TStnRunTrailer+;
#pragma link C++ class TStnEventHeader-;
#pragma link C++ class TStnFADCData+;
#pragma link C++ class TStnGeometryData+;
#pragma link C++ class TStnPixelList-;
#pragma link C++ class TStnPixelData+;
#pragma link C++ class TStnTriggerData+;
#pragma link C++ class TStnT3Data+;
#pragma link C++ class TStnEvent-;
#pragma link C++ class TStnEventFile-;

// A filled container that is read again must give its traces up first: ROOT deletes the old array, which does not own
// them. The source only puts the rule before the array is read.
#pragma read sourceClass="TStnFADCData" targetClass="TStnFADCData" version="[1-]" source="UInt_t fNTraces" target="fStreamerVersion" code="{ newObj->Clear(); }"

#endif
