#ifndef tools_Messages_h
#define tools_Messages_h

#include <TError.h>

#include <sstream>
#include <string>

namespace StnTools {

/// Keeps what ROOT and the library's logger say, so that a program can put it into one line of its own. Errors are
/// held back, warnings of the logger are passed on to the standard error stream, the rest is dropped. The one
/// that was made last hears everything until its end; then the one before does, or ROOT and the logger write as before.
/// If the process exits meanwhile, the first error is written to the standard error stream.
class Messages {
 public:
  Messages();
  ~Messages();
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;

  /// Forgets what was said so far.
  void Clear();

  /// The first error since the last `Clear`, on one line and without its origin's tag; empty if there was none.
  std::string GetFirstError();

 private:
  static void HandleRoot(int level, bool abort, const char* location, const char* message);
  void TakeLog();

  Messages* fOuter;
  ErrorHandlerFunc_t fRootHandler;
  std::ostringstream fLog;
  std::string fFirstError;
};

}  // namespace StnTools

#endif
