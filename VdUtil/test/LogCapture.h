#ifndef LogCapture_h
#define LogCapture_h

#include <VdUtil/ErrorLogger.h>

#include <iostream>
#include <sstream>
#include <string>

/// Catches what the logger writes during its life, with the severity shown and no time; afterwards the logger writes
/// to `std::clog` again.
class LogCapture {
 public:
  LogCapture() {
    auto& logger = VdUtil::ErrorLogger::GetInstance();
    logger.SetOption(VdUtil::ErrorLogger::eShowSeverity, true);
    logger.SetOption(VdUtil::ErrorLogger::eShowGPSTime, false);
    logger.SetLoggingLevel(VdUtil::ErrorLogger::eDebug);
    logger.SetStream(&fText);
  }
  ~LogCapture() { VdUtil::ErrorLogger::GetInstance().SetStream(&std::clog); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// The text so far, which is then forgotten.
  std::string Take() {
    std::string text = fText.str();
    fText.str("");
    return text;
  }

 private:
  std::ostringstream fText;
};

#endif
