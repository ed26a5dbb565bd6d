#ifndef PrintLevel_h
#define PrintLevel_h

#include <StnEvent/StnEvent.h>

#include <regex>
#include <string>

/// Sets the print level for its own life.
class PrintLevel {
 public:
  explicit PrintLevel(UInt_t level) : fBefore(TStnEvent::fgPrintLevel) { TStnEvent::fgPrintLevel = level; }
  ~PrintLevel() { TStnEvent::fgPrintLevel = fBefore; }
  PrintLevel(const PrintLevel&) = delete;
  PrintLevel& operator=(const PrintLevel&) = delete;

 private:
  UInt_t fBefore;
};

/// Debug lines with "LINE" in the place of the line number.
inline std::string WithoutLineNumbers(const std::string& log) {
  return std::regex_replace(log, std::regex("\\.cc:[0-9]+: "), ".cc:LINE: ");
}

#endif
