#ifndef VdUtil_ErrorLogger_h
#define VdUtil_ErrorLogger_h

#include <fstream>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string>

#include <VdUtil/Singleton.h>

namespace VdUtil {

/// The logger of the process. At the start it shows the severity and no time, lets every message through, and writes to
/// `std::clog`. Options, level and target may be changed at any time, by one thread at a time.
///
/// Messages are log statements (the macros below) or calls of `Log`. A statement that runs in an exit handler needs the
/// logger touched before the handler was registered; messages of later destructors go to `std::clog`.
class ErrorLogger : public Singleton<ErrorLogger> {
 public:
  /// What stands at the head of a message. Log statements use the first two, `Log` uses all.
  enum ELoggingOption {
    eShowSeverity = 1,
    eShowGPSTime = 2,
    eShowUnixTime = 4,
    eShowFilename = 8,
    eShowLineNumber = 16,
    eShowClassName = 32,
    eShowFuncName = 64
  };
  /// How bad it is, from the least to the worst.
  enum ESeverityLevel { eDebug = -1, eInfo = 0, eWarning = 1, eError = 2, eCritical = 3, eSevere = 4, eFatal = 5 };
  /// Whether `Log` writes the severity as a word; the default is what `SetVerbosity` was given.
  enum EVerbosityLevel { eDefaultVerbosity = -1, eTerse = 0, eVerbose = 1 };

  /// The stream for a message of this severity: below the threshold one that swallows everything. Never unusable.
  std::ostream& GetStream(ESeverityLevel level) { return level < fLoggingLevel ? *fgNullStream : *fOStream; }

  /// The value in decimal, padded with blanks on the left to `width` columns; never cut.
  static std::string GetASCIIFromInt(unsigned int value, int width) {
    std::ostringstream text;
    text << std::setw(width) << value;
    return text.str();
  }

  /// Whether the option is on.
  bool IsOptionSet(ELoggingOption option) const { return (fLoggingOption & option) != 0; }
  /// Switches one option on or off; the others stay.
  void SetOption(ELoggingOption option, bool on = true);
  /// Sets the threshold: messages of `level` and above are written, or, when `on` is false, only those above `level`.
  void SetLoggingLevel(ESeverityLevel level, bool on = true);
  /// Writes to this stream, which must outlive its use here, and closes the log file if there is one. Null silences.
  void SetStream(std::ostream* stream);
  /// Appends to this file. When it can't be opened, an error message says so, the messages go on to where they went
  /// before, and the result is false. A null name is such a file.
  bool SetFile(const char* name);
  bool SetFile(std::string name);
  /// Verbosity of the `Log` calls that don't name one; `eDefaultVerbosity` is `eTerse`.
  void SetVerbosity(EVerbosityLevel verbosity);

  /// The threshold, and the verbosity of `Log` calls that don't name one.
  ESeverityLevel GetLoggingLevel() const { return fLoggingLevel; }
  EVerbosityLevel GetVerbosity() const { return fVerbosity; }
  /// Severity as a word, as "Warning"; "Unknown" for a value that is none.
  static std::string GetVerboseSeverity(ESeverityLevel level);
  /// Severity as the tag of four characters that log lines begin with, as "WRN:"; "???:" for a value that is none.
  static std::string GetVerboseSeverityShort(ESeverityLevel level);

  /// Writes one message line, with what the options ask for in this order: severity, GPS time, Unix time, file name, line
  /// number, class name, function name. `function` may name its class too, as "TFoo::Bar". Verbose messages have the
  /// severity as a word.
  void Log(ESeverityLevel level, std::string function, std::string filename, int line, std::string message,
           EVerbosityLevel verbosity = eDefaultVerbosity);
  /// The same for a message composed in a stream.
  void Log(ESeverityLevel level, std::string function, std::string filename, int line, std::ostringstream& message,
           EVerbosityLevel verbosity = eDefaultVerbosity);

  static std::ostream* fgNullStream;  ///< swallows what is written to it

 protected:
  friend class Singleton<ErrorLogger>;
  ErrorLogger();
  ~ErrorLogger() override;

 private:
  ErrorLogger(const ErrorLogger&) = delete;
  ErrorLogger& operator=(const ErrorLogger&) = delete;

  std::ostream* fOStream;        //! the stream that messages go to
  std::ofstream fOfStream;       //! the log file, when SetFile was used
  int fLoggingOption;            //! bit set of ELoggingOption values
  ESeverityLevel fLoggingLevel;  //! the logging threshold
  EVerbosityLevel fVerbosity;    //! default verbosity
};

/// Begins a log statement: gives the stream for the severity with the head of the line written to it. Use the macros.
std::ostream& BeginLogStatement(ErrorLogger::ESeverityLevel level, const char* file, int line);

}  // namespace VdUtil

/// Log statements: `VD_ERROR << "TStnFoo::Bar() - text" << std::endl;`. The head of the line is the severity's tag, the
/// GPS time if it is asked for, and for debug messages file and line. The end of the line is the statement's own, and so
/// are manipulators, which stay set on the stream.
#define VD_STATEMENT(level) ::VdUtil::BeginLogStatement(::VdUtil::ErrorLogger::level, __FILE__, __LINE__)
#define VD_DEBUG            VD_STATEMENT(eDebug)
#define VD_INFO             VD_STATEMENT(eInfo)
#define VD_WARNING          VD_STATEMENT(eWarning)
#define VD_ERROR            VD_STATEMENT(eError)
#define VD_SEVERE           VD_STATEMENT(eSevere)
#define VD_FATAL            VD_STATEMENT(eFatal)

#endif
