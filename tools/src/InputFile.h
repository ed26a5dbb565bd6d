#ifndef tools_InputFile_h
#define tools_InputFile_h

#include "ExitCode.h"
#include "Messages.h"

#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <memory>
#include <string>

namespace StnTools {

/// A station file open for reading, with every failure as a `ToolError` that says which file, what is wrong with it
/// and what to do next.
class InputFile {
 public:
  /// Opens `path`, the name of a file or an address that ROOT can read from. `program` is the name that stands before warnings.
  /// Throws with `kCannotOpen` if the file is missing, unreadable, empty, or no station file, and with `kDamage` if
  /// nothing can be read from it. A file whose writer never closed it, or that lost its end, is opened with a warning
  /// as far as ROOT can recover it.
  InputFile(const std::string& program, const std::string& path);
  const std::string& GetPath() const { return fPath; }

  /// What the file is worth: `kDamage` if it had to be recovered, else `kFine`.
  ExitCode GetState() const { return fState; }

  /// Number of events on the file; 0 also if it has no tree.
  UInt_t GetNEvents() const { return fNEvents; }

  /// Throws with `kUsage` unless the file has an event at `entry`, counted from 0.
  void RequireEntry(UInt_t entry) const;

  /// The event at `entry`, good until the next call. Throws with `kUsage` if there is no such entry and with `kDamage`
  /// if it cannot be read whole.
  TStnEvent* ReadEvent(UInt_t entry);

  /// The header of the event at `entry`; else as `ReadEvent`.
  const TStnEventHeader& ReadEventHeader(UInt_t entry);

  bool HasRunHeader() const { return Has("RunHeader", "TStnRunHeader"); }
  bool HasRunTrailer() const { return Has("RunTrailer", "TStnRunTrailer"); }

  /// The run header. Throws with `kDamage` if there is none or it cannot be read.
  std::unique_ptr<TStnRunHeader> ReadRunHeader();

  /// The run trailer; else as `ReadRunHeader`.
  std::unique_ptr<TStnRunTrailer> ReadRunTrailer();

  /// Print-out of the file itself.
  void Show(std::ostream& ostr) { fFile->Show(ostr); }

 private:
  std::string OpenFile();
  std::string OpenAddress();
  bool Has(const char* name, const char* class_name) const;
  void RequireStationFile() const;
  UInt_t CountEvents();
  void RequireBranches() const;
  void RequireRecord(bool is_there, const char* what);
  void RequireSound(bool done, const std::string& what);

  std::string fPath;
  ExitCode fState = kFine;
  UInt_t fNEvents = 0;
  Messages fMessages;
  std::unique_ptr<TStnEvent> fOwnedEvent{new TStnEvent};
  // A plain pointer, as the file keeps the address of the variable.
  TStnEvent* fEvent = fOwnedEvent.get();
  std::unique_ptr<TStnEventFile> fFile;
};

/// ROOT's setting for what was written to a file; 1 if that is not known. Throws as `ReadFileFrame`.
int GetCompression(const std::string& path);

/// Makes a crash inside ROOT, which some damaged files provoke, end the program with one line and `kDamage`.
/// `program` and `path` must stay until the end of the process.
void GuardAgainstCrash(const char* program, const char* path);

}  // namespace StnTools

#endif
