#include "Messages.h"

#include "ExitCode.h"

#include <VdUtil/ErrorLogger.h>

#include <TError.h>

#include <cstdlib>
#include <iostream>

namespace StnTools {
namespace {

Messages* gMessages = nullptr;

// ROOT's messages can go over several lines and end in one.
std::string GetFirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

bool IsError(const std::string& line) {
  std::string tag = line.substr(0, 4);
  return tag == "ERR:" || tag == "SEV:" || tag == "FAT:";
}

// Where a library ends the process, what it said before is still held back.
void TellLastError() {
  if (gMessages != nullptr) std::cerr << gMessages->GetFirstError() << std::endl;
}

}  // namespace

Messages::Messages() : fOuter(gMessages) {
  [[maybe_unused]] static const int is_registered = std::atexit(TellLastError);
  gMessages = this;
  fRootHandler = SetErrorHandler(HandleRoot);
  auto& logger = VdUtil::ErrorLogger::GetInstance();
  logger.SetOption(VdUtil::ErrorLogger::eShowSeverity, true);
  logger.SetStream(&fLog);
}

Messages::~Messages() {
  TakeLog();
  VdUtil::ErrorLogger::GetInstance().SetStream(fOuter == nullptr ? &std::clog : &fOuter->fLog);
  SetErrorHandler(fRootHandler);
  gMessages = fOuter;
}

void Messages::Clear() {
  TakeLog();
  fFirstError.clear();
}

std::string Messages::GetFirstError() {
  TakeLog();
  return fFirstError;
}

// ROOT asks for an abort where it cannot go on; there is nobody to come back to, so the process ends here.
void Messages::HandleRoot(int level, bool abort, const char* location, const char* message) {
  if (abort) {
    std::cerr << location << ": " << GetFirstLine(message) << std::endl;
    std::_Exit(kDamage);
  }
  if (level >= kError && gMessages->fFirstError.empty()) gMessages->fFirstError = GetFirstLine(message);
}

void Messages::TakeLog() {
  std::istringstream log(fLog.str());
  fLog.str("");
  for (std::string line; std::getline(log, line);) {
    if (line.compare(0, 4, "WRN:") == 0) std::cerr << line << std::endl;
    if (IsError(line) && fFirstError.empty()) fFirstError = line.substr(4);
  }
}

}  // namespace StnTools
