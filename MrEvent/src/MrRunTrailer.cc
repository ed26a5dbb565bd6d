#include <MrEvent/MrRunTrailer.h>

ClassImp(TMirrorRunTrailer);

TMirrorRunTrailer::TMirrorRunTrailer() : fData(), fRecord(&fData) {}

TMirrorRunTrailer::TMirrorRunTrailer(const TMirrorRunTrailer& rhs)
    : TObject(rhs), fData(*rhs.fRecord), fRecord(&fData) {}

TMirrorRunTrailer& TMirrorRunTrailer::operator=(const TMirrorRunTrailer& rhs) {
  if (this != &rhs) *fRecord = *rhs.fRecord;
  return *this;
}

void TMirrorRunTrailer::Clear(Option_t*) { *this = TMirrorRunTrailer(); }

void TMirrorRunTrailer::Show(std::ostream& ostr) const {
  const UInt_t mirror = VdUtil::Vd::GetVdMirrorNo(GetMirrorNumber()) ? GetMirrorNo() : 0;
  ostr << "--- TMirrorRunTrailer ---" << std::endl
       << " Station, mirror  : " << GetStnNo() << ", " << mirror << std::endl
       << " Run number       : " << GetRunNo() << std::endl
       << " Number of events : " << GetNumEvents() << std::endl
       << " Dead time        : " << GetDeadTimeCounter() << " * 100 ns" << std::endl
       << " Veto time        : " << GetVetoTimeCounter() << " * 100 ns" << std::endl
       << " DAQ dead time    : " << GetDaqDeadTime() << " * 100 ns" << std::endl
       << "--------------------" << std::endl;
}
