#ifdef __CLING__
// clang-format off

#pragma link off all globals;
#pragma link off all classes;
#pragma link off all functions;

#pragma link C++ class VdRoot::TTimeStamp+;

#pragma link C++ class VdUtil::TimeConvert;
#pragma link C++ struct VdUtil::TimeConvert::_LeapSecondEntryRec+;
#pragma link C++ typedef _LeapSecondEntryRec;
#pragma link C++ typedef LeapSecondEntryRec;
#pragma link C++ class vector<VdUtil::TimeConvert::_LeapSecondEntryRec>+;

#pragma link C++ class VdUtil::Vd;
#pragma link C++ typedef _PixelNumber;
#pragma link C++ typedef _VdPixelNumber;
#pragma link C++ typedef _MirrorNumber;
#pragma link C++ typedef VdPixelNumberRec;
#pragma link C++ typedef VdPixelNumber;
#pragma link C++ typedef PixelNumber;

#pragma link C++ class VdUtil::Singleton<VdUtil::ErrorLogger>;
#pragma link C++ class VdUtil::ErrorLogger;
#pragma link C++ class VdUtil::Singleton<VdUtil::VdConfig>;
#pragma link C++ class VdUtil::VdConfig;
#pragma link C++ class VdUtil::VdGeometry;
#pragma link C++ struct VdUtil::VdGeometry::_CameraPointingRec;
#pragma link C++ struct VdUtil::VdGeometry::_StnGeometryRec;

#endif
