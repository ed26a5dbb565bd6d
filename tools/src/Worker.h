#ifndef tools_Worker_h
#define tools_Worker_h

#include <cstdint>
#include <functional>
#include <string>

namespace StnTools {

/// What a worker has to say to the program that waits for it.
class WorkerLine {
 public:
  explicit WorkerLine(int descriptor) : fDescriptor(descriptor) {}

  /// Says what comes next, so that the program knows where a worker was that does not come back.
  void Begin(const std::string& step) { Send('@', step); }
  /// Hands a text over, which may have several lines.
  void Say(const std::string& text) { Send('=', text); }

  /// Sends a message of another kind, a letter of the sender's choice.
  void Send(char kind, const std::string& text);

 private:
  int fDescriptor;
};

/// Does a piece of work in a process of its own, as ROOT can crash or hang on a damaged file, and records that
/// contradict themselves end the process by design. To be used before anything of ROOT is touched.
class Worker {
 public:
  using Work = std::function<int(WorkerLine&)>;
  using Listener = std::function<void(const std::string&)>;

  struct Limits {
    int fSeconds = 60;                  ///< without a word from the worker
    std::uint64_t fBytes = 4ULL << 30;  ///< of memory
  };
  struct Result {
    bool fIsDone = false;  ///< did the work come to its end?
    int fCode = 0;         ///< what it answered then
    std::string fStep;     ///< otherwise what it was at,
    std::string fReason;   ///< and how it ended, as "crashed (Segmentation fault)"
  };

  /// Runs `work` and gives each text that it says to `listen`. A `ToolError` of the work is thrown here. What the work
  /// writes to its output streams goes nowhere, but for the last line of the error stream, which makes part of the
  /// reason. If somebody ends the worker, this program ends in the same way.
  static Result Run(const Work& work, const Listener& listen, const Limits& limits);
};

}  // namespace StnTools

#endif
