#ifndef tools_OutputFile_h
#define tools_OutputFile_h

#include "Messages.h"

#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <functional>
#include <memory>
#include <string>

namespace StnTools {

/// A new station file, which gets its name only when it is whole: until `Finish` it is called NAME.part, and is removed
/// if anything goes wrong, also when the user interrupts the program or somebody asks it to end. Equal contents give equal bytes: the file holds no date and no identity of its own.
///
/// Every failure is a `ToolError` with `kCannotWrite` that says why. ROOT goes on after a failed write as if nothing had
/// happened, so the file's error bit is asked after every step, the last time when it is closed.
class OutputFile {
 public:
  /// Begins `path`. Throws if it exists and `force` is false, or if it cannot be made.
  /// `compression` is ROOT's setting, algorithm times 100 plus level, 0 to 509.
  OutputFile(const std::string& path, bool force, int compression);
  ~OutputFile();

  void WriteRunHeader(TStnRunHeader& header);
  void WriteRunTrailer(TStnRunTrailer& trailer);

  /// The event to fill, the same for all, as the file keeps its address.
  TStnEvent& GetEvent() { return *fEvent; }
  /// Writes that event as it is now.
  void WriteEvent();

  /// Looks at the closed file, which still has the name that it is given. If it throws a `ToolError`, the file is not
  /// kept.
  using Check = std::function<void(const std::string& path)>;

  /// Closes the file, lets `check` look at it, if there is one, and gives it its name.
  void Finish(const Check& check = nullptr);

 private:
  template <typename Step>
  void Do(Step step);
  void Pass(const Check& check) const;
  [[noreturn]] void Fail(const std::string& reason, const std::string& advice) const;

  std::string fPath;
  Messages fMessages;
  std::unique_ptr<TStnEvent> fOwnedEvent{new TStnEvent};
  // A plain pointer, as the file keeps the address of the variable.
  TStnEvent* fEvent = fOwnedEvent.get();
  std::unique_ptr<TStnEventFile> fFile;
};

/// Takes away what an `OutputFile` of this process has not finished. May be called by a handler of signals.
void RemoveUnfinished();

}  // namespace StnTools

#endif
