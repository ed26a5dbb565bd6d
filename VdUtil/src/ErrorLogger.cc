#include <VdUtil/ErrorLogger.h>

#include <cerrno>
#include <cstring>
#include <iostream>

#include <VdUtil/TimeConvert.h>

namespace VdUtil {

namespace {

struct Severity {
  const char* fTag;
  const char* fName;
};

const Severity& GetSeverity(ErrorLogger::ESeverityLevel level) {
  static constexpr Severity kSeverities[] = {{"DBG:", "Debug"}, {"INF:", "Info"},     {"WRN:", "Warning"},
                                             {"ERR:", "Error"}, {"CRI:", "Critical"}, {"SEV:", "Severe"},
                                             {"FAT:", "Fatal"}};
  static constexpr Severity kUnknown = {"???:", "Unknown"};
  const bool known = level >= ErrorLogger::eDebug && level <= ErrorLogger::eFatal;
  return known ? kSeverities[level - ErrorLogger::eDebug] : kUnknown;
}

}  // namespace

// A stream without a buffer takes everything and formats nothing. Never destroyed, as destructors that run late may log.
std::ostream* ErrorLogger::fgNullStream = new std::ostream(nullptr);

ErrorLogger::ErrorLogger()
    : fOStream(&std::clog), fLoggingOption(eShowSeverity), fLoggingLevel(eDebug), fVerbosity(eTerse) {}

ErrorLogger::~ErrorLogger() {
  fOfStream.close();
  // ROOT's own teardown comes later and may still close files that have something to say. The compiler would drop a
  // plain store in a destructor.
  static_cast<std::ostream* volatile&>(fOStream) = &std::clog;
}

void ErrorLogger::SetOption(ELoggingOption option, bool on) {
  fLoggingOption = on ? fLoggingOption | option : fLoggingOption & ~option;
}

void ErrorLogger::SetLoggingLevel(ESeverityLevel level, bool on) {
  fLoggingLevel = on ? level : static_cast<ESeverityLevel>(level + 1);
}

void ErrorLogger::SetStream(std::ostream* stream) {
  fOStream = stream ? stream : fgNullStream;
  fOfStream.close();
}

bool ErrorLogger::SetFile(const char* name) { return SetFile(std::string(name ? name : "")); }

bool ErrorLogger::SetFile(std::string name) {
  std::ofstream file(name, std::ios::app);
  if (!file) {
    VD_ERROR << "ErrorLogger::SetFile() - can't open log file '" << name << "', " << std::strerror(errno) << std::endl;
    return false;
  }
  fOfStream = std::move(file);
  fOStream = &fOfStream;
  return true;
}

void ErrorLogger::SetVerbosity(EVerbosityLevel verbosity) {
  fVerbosity = verbosity == eDefaultVerbosity ? eTerse : verbosity;
}

std::string ErrorLogger::GetVerboseSeverity(ESeverityLevel level) { return GetSeverity(level).fName; }

std::string ErrorLogger::GetVerboseSeverityShort(ESeverityLevel level) { return GetSeverity(level).fTag; }

void ErrorLogger::Log(ESeverityLevel level, std::string function, std::string filename, int line, std::string message,
                      EVerbosityLevel verbosity) {
  const bool verbose = (verbosity == eDefaultVerbosity ? fVerbosity : verbosity) == eVerbose;
  const auto colons = function.rfind("::");
  const bool has_class = colons != std::string::npos;
  const struct {
    ELoggingOption fOption;
    std::string fText;
    const char* fSeparator;
  } kParts[] = {
      {eShowSeverity, verbose ? GetVerboseSeverity(level) + ": " : GetVerboseSeverityShort(level), ""},
      {eShowGPSTime, GetASCIIFromInt(TimeConvert::GetGPSTime(), 10), ": "},
      {eShowUnixTime, GetASCIIFromInt(TimeConvert::GetUnixTime(), 10), ": "},
      {eShowFilename, filename, ": "},
      {eShowLineNumber, std::to_string(line), ": "},
      {eShowClassName, has_class ? function.substr(0, colons) : "", ": "},
      {eShowFuncName, has_class ? function.substr(colons + 2) : function, ": "},
  };
  std::ostream& stream = GetStream(level);
  for (const auto& part : kParts)
    if (IsOptionSet(part.fOption) && !part.fText.empty()) stream << part.fText << part.fSeparator;
  stream << message << std::endl;
}

void ErrorLogger::Log(ESeverityLevel level, std::string function, std::string filename, int line,
                      std::ostringstream& message, EVerbosityLevel verbosity) {
  Log(level, function, filename, line, message.str(), verbosity);
}

std::ostream& BeginLogStatement(ErrorLogger::ESeverityLevel level, const char* file, int line) {
  ErrorLogger& logger = ErrorLogger::GetInstance();
  std::ostream& stream = logger.GetStream(level);
  const bool debug = level == ErrorLogger::eDebug;
  if (debug || logger.IsOptionSet(ErrorLogger::eShowSeverity)) stream << GetSeverity(level).fTag;
  if (logger.IsOptionSet(ErrorLogger::eShowGPSTime))
    stream << ErrorLogger::GetASCIIFromInt(TimeConvert::GetGPSTime(), 10) << ": ";
  // Decimal, also when an earlier message has left the stream hexadecimal.
  if (debug) stream << file << ":" << std::to_string(line) << ": ";
  return stream;
}

}  // namespace VdUtil
