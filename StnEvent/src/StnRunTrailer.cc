#include <StnEvent/StnRunTrailer.h>

#include <MrEvent/MrRunTrailer.h>
#include <VdUtil/VdNumbering.h>

#include <algorithm>
#include <iomanip>

#include <VdUtil/Assertions.h>

using VdRoot::TTimeStamp;
using VdUtil::Vd;

ClassImp(TStnRunTrailer);

namespace {

/// Whether `mirror_id` is 1 to 6; if it is not, a complaint in the name of `operation`.
bool CheckMirrorId(const char* operation, unsigned int mirror_id) {
  if (mirror_id - 1 < Vd::kSTN_NMIRRORS) return true;
  std::cerr << "TStnRunTrailer::" << operation << "(" << mirror_id << ") - "
            << "illegal Mirror id passed !" << std::endl;
  return false;
}

}  // namespace

TStnRunTrailer::TStnRunTrailer() { TStnRunTrailer::Clear(""); }

TStnRunTrailer::TStnRunTrailer(const TStnRunTrailer& rhs) : TObject(rhs) { *this = rhs; }

TStnRunTrailer& TStnRunTrailer::operator=(const TStnRunTrailer& rhs) {
  if (this == &rhs) return *this;
  fMirrorStatus = rhs.fMirrorStatus;
  fNEvents = rhs.fNEvents;
  fVetoTimeCounter = rhs.fVetoTimeCounter;
  std::copy(std::begin(rhs.fDeadTimeCounter), std::end(rhs.fDeadTimeCounter), fDeadTimeCounter);
  std::copy(std::begin(rhs.fLifeTimeCounter), std::end(rhs.fLifeTimeCounter), fLifeTimeCounter);
  std::copy(std::begin(rhs.fMirrorDaqDeadTime), std::end(rhs.fMirrorDaqDeadTime), fMirrorDaqDeadTime);
  std::copy(std::begin(rhs.fMirrorNSkippedTriggers), std::end(rhs.fMirrorNSkippedTriggers), fMirrorNSkippedTriggers);
  fStnDaqDeadTime = rhs.fStnDaqDeadTime;
  fNT3 = rhs.fNT3;
  fNRejectedT3 = rhs.fNRejectedT3;
  fTotalT3DeadTime = rhs.fTotalT3DeadTime;
  fStartTime = rhs.fStartTime;
  fStopTime = rhs.fStopTime;
  fTotalTime = rhs.fTotalTime;
  return *this;
}

void TStnRunTrailer::Clear(Option_t*) {
  fStartTime = TTimeStamp(0, 0);
  fStopTime = TTimeStamp(0, 0);
  fMirrorStatus = 0;
  fNEvents = 0;
  fVetoTimeCounter = 0;
  std::fill(std::begin(fDeadTimeCounter), std::end(fDeadTimeCounter), 0);
  std::fill(std::begin(fLifeTimeCounter), std::end(fLifeTimeCounter), 0);
  std::fill(std::begin(fMirrorDaqDeadTime), std::end(fMirrorDaqDeadTime), 0);
  std::fill(std::begin(fMirrorNSkippedTriggers), std::end(fMirrorNSkippedTriggers), 0);
  fStnDaqDeadTime = 0;
  fNT3 = 0;
  fNRejectedT3 = 0;
  fTotalT3DeadTime = 0;
  fTotalTime = 0;
}

void TStnRunTrailer::AddMirrorRunTrailer(const TMirrorRunTrailer* trailer, unsigned int mirror_id) {
  assert(trailer != __null);
  // An illegal id is complained of three times, here and by both setters, and the veto time is taken all the same.
  CheckMirrorId("AddMirrorRunTrailer", mirror_id);
  fVetoTimeCounter = trailer->GetVetoTimeCounter();
  SetDeadTimeCounter(trailer->GetDeadTimeCounter(), mirror_id);
  SetMirrorDaqDeadTime(trailer->GetDaqDeadTime(), mirror_id);
}

void TStnRunTrailer::AddToLifeTimeCounter(int seconds, unsigned int mirror_id) {
  // The complaint has always named the operation so.
  if (CheckMirrorId("AddToTimeCounter", mirror_id)) fLifeTimeCounter[mirror_id - 1] += seconds;
}

Bool_t TStnRunTrailer::IsMirrorPresent(unsigned int mirror_id) const {
  // Masked, as a shift by 32 or more is undefined; bits 8 and up are never set.
  return fMirrorStatus >> ((mirror_id - 1) & 31) & 1U;
}

void TStnRunTrailer::SetMirrorPresent(unsigned int mirror_id) {
  if (CheckMirrorId("SetMirrorPresent", mirror_id)) fMirrorStatus |= 1U << (mirror_id - 1);
}

void TStnRunTrailer::SetTotalTime(unsigned int total_time) {
  fTotalTime = total_time != 0 ? total_time : static_cast<UInt_t>(fStopTime.GetGPSSec() - fStartTime.GetGPSSec());
}

void TStnRunTrailer::SetDeadTimeCounter(unsigned long long dead_time, unsigned int mirror_id) {
  if (CheckMirrorId("SetDeadTimeCounter", mirror_id)) fDeadTimeCounter[mirror_id - 1] = dead_time;
}

ULong64_t TStnRunTrailer::GetDeadTimeCounter(unsigned int mirror_id) const {
  return CheckMirrorId("GetDeadTimeCounter", mirror_id) ? fDeadTimeCounter[mirror_id - 1] : 0;
}

void TStnRunTrailer::SetLifeTimeCounter(unsigned int life_time, unsigned int mirror_id) {
  if (CheckMirrorId("SetLifeTimeCounter", mirror_id)) fLifeTimeCounter[mirror_id - 1] = life_time;
}

UInt_t TStnRunTrailer::GetLifeTimeCounter(unsigned int mirror_id) const {
  return CheckMirrorId("GetLifeTimeCounter", mirror_id) ? fLifeTimeCounter[mirror_id - 1] : 0;
}

void TStnRunTrailer::SetMirrorDaqDeadTime(unsigned long long dead_time, unsigned int mirror_id) {
  if (CheckMirrorId("SetMirrorDaqDeadTime", mirror_id)) fMirrorDaqDeadTime[mirror_id - 1] = dead_time;
}

ULong64_t TStnRunTrailer::GetMirrorDaqDeadTime(unsigned int mirror_id) const {
  return CheckMirrorId("GetMirrorDaqDeadTime", mirror_id) ? fMirrorDaqDeadTime[mirror_id - 1] : 0;
}

void TStnRunTrailer::SetMirrorNSkippedTriggers(unsigned int n, unsigned int mirror_id) {
  if (CheckMirrorId("SetMirrorNSkippedTriggers", mirror_id)) fMirrorNSkippedTriggers[mirror_id - 1] = n;
}

UInt_t TStnRunTrailer::GetMirrorNSkippedTriggers(unsigned int mirror_id) const {
  return CheckMirrorId("GetMirrorNSkippedTriggers", mirror_id) ? fMirrorNSkippedTriggers[mirror_id - 1] : 0;
}

void TStnRunTrailer::Show(std::ostream& ostr) const {
  ostr << "--- TStnRunTrailer ---" << std::endl;
  ostr << " RUN started at  : " << fStartTime.AsString("") << std::endl;
  ostr << " RUN ended at    : " << fStopTime.AsString("") << std::endl;
  ostr << " Total RUN time  : " << fTotalTime << " [s]" << std::endl;
  ostr << " Number of events: " << fNEvents << std::endl;
  if (fNT3 != 0) {
    ostr << " Number of T3    : " << fNT3 << std::endl;
    ostr << "  rejected T3    : " << fNRejectedT3 << std::endl;
    ostr << "  T3 dead time   : " << fTotalT3DeadTime << " [s]" << std::endl;
  }
  ostr << " Mirrors present : ";
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    if (IsMirrorPresent(mirror)) ostr << mirror << " ";
  }
  ostr << std::endl;
  // Readers of the print-out know this line, without a number in its unit.
  ostr << " acc. VETO time : " << std::setw(20) << fVetoTimeCounter << " [* ]" << std::endl;
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    if (IsMirrorPresent(mirror)) ShowMirror(ostr, mirror);
  }
  if (fStnDaqDeadTime != 0) {
    ostr << " Stn DAQ Dead time: " << std::setw(20) << fStnDaqDeadTime << " [* 100 ns]" << std::endl;
  }
}

// The two optional lines have always begun without the blank.
void TStnRunTrailer::ShowMirror(std::ostream& ostr, unsigned int mirror_id) const {
  const UInt_t slot = mirror_id - 1;
  ostr << " Dead time[" << mirror_id << "]   : " << std::setw(20) << fDeadTimeCounter[slot] << " [* 100 ns]"
       << std::endl;
  ostr << " Life time[" << mirror_id << "]   : " << std::setw(10) << fLifeTimeCounter[slot] << " [* sec]" << std::endl;
  if (fMirrorDaqDeadTime[slot] > 0) {
    ostr << "Daq Dead time[" << mirror_id << "]: " << std::setw(20) << fMirrorDaqDeadTime[slot] << " [* 100 ns]"
         << std::endl;
  }
  if (fMirrorNSkippedTriggers[slot] != 0) {
    ostr << "Skpd triggers[" << mirror_id << "]: " << fMirrorNSkippedTriggers[slot] << std::endl;
  }
}
