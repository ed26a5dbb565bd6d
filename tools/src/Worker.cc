#include "Worker.h"

#include "ToolError.h"

#include <TSystem.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <iostream>

namespace StnTools {
namespace {

// Kinds of messages: what WorkerLine sends, the work's answer, and its error, which begins with the digit of the code.
const char kStep = '@';
const char kAnswer = '.';
const char kError = '!';
// A message is its kind, the size of its text in so many digits, and the text.
const std::size_t kSizeDigits = 10;

class Pipe {
 public:
  Pipe() {
    if (pipe2(fEnds, O_CLOEXEC) != 0) throw ToolError(kDamage, std::string("no pipe: ") + std::strerror(errno));
  }
  ~Pipe() {
    close(fEnds[0]);
    CloseWriting();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int GetReading() const { return fEnds[0]; }
  int GetWriting() const { return fEnds[1]; }
  void CloseWriting() {
    if (fEnds[1] >= 0) close(fEnds[1]);
    fEnds[1] = -1;
  }

 private:
  int fEnds[2];
};

void LimitMemory(std::uint64_t n_bytes) {
#ifndef __SANITIZE_ADDRESS__  // which takes all the room that there is
  rlimit limit = {n_bytes, n_bytes};
  setrlimit(RLIMIT_AS, &limit);
#endif
}

void PutStreamsAway(int errors) {
  int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nowhere, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
}

[[noreturn]] void DoWork(const Worker::Work& work, WorkerLine line) {
  // A crash shall end this process and not start a debugger.
  gSystem->ResetSignals();
  try {
    line.Send(kAnswer, std::to_string(work(line)));
  } catch (const ToolError& error) {
    line.Send(kError, std::to_string(error.GetCode()) + error.what());
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
  }
  _exit(kFine);
}

// Appends what has come; false at the end.
bool Take(int descriptor, std::string& bytes) {
  char piece[4096];
  ssize_t n = read(descriptor, piece, sizeof piece);
  if (n < 0) return errno == EINTR;
  bytes.append(piece, static_cast<std::size_t>(n));
  return n > 0;
}

std::string GetLastLine(std::string text) {
  while (!text.empty() && text.back() == '\n')
    text.pop_back();
  return text.substr(text.rfind('\n') + 1);
}

using Clock = std::chrono::steady_clock;

// The program's side of the pipes.
class Listening {
 public:
  Listening(pid_t child, const Worker::Listener& listen, int seconds)
      : fChild(child), fListen(listen), fSeconds(seconds) {}

  Worker::Result Listen(int messages, int errors);

 private:
  bool Wait(pollfd (&sources)[2]);
  void HearMessages();
  void Hear(char kind, const std::string& text);
  void PassEndOn(int status) const;
  std::string DescribeEnd(int status) const;

  pid_t fChild;
  const Worker::Listener& fListen;
  int fSeconds;
  Clock::time_point fDeadline = Clock::now() + std::chrono::seconds(fSeconds);
  Worker::Result fResult;
  std::string fMessages;
  std::string fErrors;
  std::string fToolError;
  bool fIsLate = false;
};

Worker::Result Listening::Listen(int messages, int errors) {
  pollfd sources[2] = {{messages, POLLIN, 0}, {errors, POLLIN, 0}};
  while (Wait(sources)) {
    if (sources[0].revents != 0 && !Take(messages, fMessages)) sources[0].fd = -1;
    if (sources[1].revents != 0 && !Take(errors, fErrors)) sources[1].fd = -1;
    HearMessages();
    if (fErrors.size() > (1 << 16)) fErrors.erase(0, fErrors.size() / 2);
  }
  int status = 0;
  waitpid(fChild, &status, 0);
  if (!fToolError.empty()) throw ToolError(static_cast<ExitCode>(fToolError[0] - '0'), fToolError.substr(1));
  PassEndOn(status);
  if (!fResult.fIsDone) fResult.fReason = DescribeEnd(status);
  return fResult;
}

// False at the end of both sources, or after the worker was silent for too long.
bool Listening::Wait(pollfd (&sources)[2]) {
  if (sources[0].fd < 0 && sources[1].fd < 0) return false;
  sources[0].revents = sources[1].revents = 0;
  auto left = std::chrono::duration_cast<std::chrono::milliseconds>(fDeadline - Clock::now()).count();
  if (left > 0 && poll(sources, 2, static_cast<int>(left)) != 0) return true;
  fIsLate = true;
  kill(fChild, SIGKILL);
  return false;
}

void Listening::HearMessages() {
  const std::size_t head = 1 + kSizeDigits;
  while (fMessages.size() >= head) {
    std::size_t size = std::stoul(fMessages.substr(1, kSizeDigits));
    if (fMessages.size() < head + size) return;
    Hear(fMessages[0], fMessages.substr(head, size));
    fMessages.erase(0, head + size);
  }
}

void Listening::Hear(char kind, const std::string& text) {
  fDeadline = Clock::now() + std::chrono::seconds(fSeconds);
  if (kind == kStep) {
    fResult.fStep = text;
  } else if (kind == kError) {
    fToolError = text;
  } else if (kind == kAnswer) {
    fResult.fIsDone = true;
    fResult.fCode = std::stoi(text);
  } else {
    fListen(text);
  }
}

void Listening::PassEndOn(int status) const {
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (!WIFSIGNALED(status) || WTERMSIG(status) != signal) continue;
    std::signal(signal, SIG_DFL);
    raise(signal);
  }
}

std::string Listening::DescribeEnd(int status) const {
  if (fIsLate) return "no end in sight after " + std::to_string(fSeconds) + " s";
  std::string last = GetLastLine(fErrors);
  if (WIFSIGNALED(status)) return std::string("crash: ") + strsignal(WTERMSIG(status));
  return last.empty() ? "the process was ended" : last;
}

}  // namespace

void WorkerLine::Send(char kind, const std::string& text) {
  std::string size = std::to_string(text.size());
  std::string message = kind + std::string(kSizeDigits - size.size(), '0') + size + text;
  for (std::size_t n_sent = 0; n_sent < message.size();) {
    ssize_t n = write(fDescriptor, message.data() + n_sent, message.size() - n_sent);
    if (n < 0 && errno != EINTR) _exit(kDamage);
    n_sent += n < 0 ? 0 : static_cast<std::size_t>(n);
  }
}

Worker::Result Worker::Run(const Work& work, const Listener& listen, const Limits& limits) {
  Pipe messages;
  Pipe errors;
  std::cout.flush();
  pid_t parent = getpid();
  pid_t child = fork();
  if (child < 0) throw ToolError(kDamage, std::string("no new process: ") + std::strerror(errno));
  if (child == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(kDamage);
    PutStreamsAway(errors.GetWriting());
    LimitMemory(limits.fBytes);
    DoWork(work, WorkerLine(messages.GetWriting()));
  }
  messages.CloseWriting();
  errors.CloseWriting();
  return Listening(child, listen, limits.fSeconds).Listen(messages.GetReading(), errors.GetReading());
}

}  // namespace StnTools
