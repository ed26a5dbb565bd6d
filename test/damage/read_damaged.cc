// read_damaged: reads the files whose names come on the standard input, each in a process of its own with limits of
// time and memory, and tells what became of it. ROOT is started once, before the processes part, and has seen no file
// by then.
//
// For each file: one line per thing read ("open", "events", "header ENTRY CHECKSUM", "event ENTRY CHECKSUM",
// "runheader CHECKSUM", "runtrailer CHECKSUM", "done"; "-" where there is none), between them what the log and ROOT
// said, and at the end "== exit CODE" or "== signal NUMBER", the seconds of CPU time and the growth in kB.

#include "EventChecksum.h"

#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>
#include <VdUtil/ErrorLogger.h>

#include <TBufferFile.h>
#include <TError.h>
#include <TInterpreter.h>
#include <TMemFile.h>
#include <TSystem.h>
#include <TTree.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <iostream>
#include <memory>
#include <string>

namespace {

// A good file of the tests is read in less than a tenth of a second. A length on file can make ROOT ask for 2 GB at once.
constexpr rlim_t kSeconds = 10;
constexpr rlim_t kBytes = 5L << 30;
constexpr std::size_t kMostOutput = 1 << 20;

void ShowRootMessage(int level, bool abort, const char* location, const char* message) {
  if (level < kError) return;
  std::string text(message);
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::cout << "ROOT: " << location << ": " << text << std::endl;
  if (abort) std::abort();
}

std::string Sum(TObject* object) {
  if (!object) return "-";
  TBufferFile buffer(TBuffer::kWrite);
  object->Streamer(buffer);
  StnTools::Checksum sum;
  for (Int_t i = 0; i < buffer.Length(); ++i)
    sum.Add(static_cast<std::uint64_t>(static_cast<unsigned char>(buffer.Buffer()[i])));
  return StnTools::FormatChecksum(sum.GetValue());
}

std::string Sum(TStnEvent& event) {
  StnTools::Checksum sum;
  for (std::uint64_t part : StnTools::ComputeChecksum(event))
    sum.Add(part);
  return StnTools::FormatChecksum(sum.GetValue());
}

void ReadHeaders(TStnEventFile& file, UInt_t n_events) {
  TStnEventHeader* header = nullptr;
  for (UInt_t entry = 0; entry < n_events; ++entry) {
    file.Seek(entry);
    const bool done = file.ReadEventHeader(&header);
    std::cout << "header " << entry << " " << (done ? Sum(header) : "-") << std::endl;
  }
}

void ReadEvents(TStnEventFile& file, UInt_t n_events) {
  TStnEvent* event = nullptr;
  for (UInt_t entry = 0; entry < n_events; ++entry) {
    const bool done = file.ReadEvent(&event, entry);
    std::cout << "event " << entry << " " << (done && event ? Sum(*event) : "-") << std::endl;
  }
  delete event;
}

void ReadFile(const std::string& path) {
  TStnEventFile file(path.c_str());
  std::cout << "open "
            << (file.IsZombie()                   ? "zombie"
                : file.TestBit(TFile::kRecovered) ? "recovered"
                                                  : "sound")
            << std::endl;
  if (!file.IsZombie()) {
    const UInt_t n_events = file.GetNEvents();
    std::cout << "events " << n_events << std::endl;
    ReadHeaders(file, n_events);
    ReadEvents(file, n_events);
    TStnRunHeader* header = nullptr;
    file.ReadRunHeader(&header);
    std::cout << "runheader " << Sum(header) << std::endl;
    TStnRunTrailer* trailer = nullptr;
    file.ReadRunTrailer(&trailer);
    std::cout << "runtrailer " << Sum(trailer) << std::endl;
    delete header;
    delete trailer;
    file.Close();
  }
  std::cout << "done" << std::endl;
}

rlim_t GetAddressSpace() {
  std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen("/proc/self/statm", "r"), std::fclose);
  long pages = 0;
  if (!file || std::fscanf(file.get(), "%ld", &pages) != 1) return RLIM_INFINITY - kBytes;
  return static_cast<rlim_t>(pages) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void SetLimit(decltype(RLIMIT_CPU) resource, rlim_t value) {
  const rlimit limit{value, value};
  setrlimit(resource, &limit);
}

[[noreturn]] void BeChild(const std::string& path, int out) {
  dup2(out, STDOUT_FILENO);
  dup2(out, STDERR_FILENO);
  SetLimit(RLIMIT_CPU, kSeconds);
  SetLimit(RLIMIT_CORE, 0);
#ifndef __SANITIZE_ADDRESS__  // takes all the address space there is
  SetLimit(RLIMIT_AS, GetAddressSpace() + kBytes);
#endif
  SetErrorHandler(ShowRootMessage);
  VdUtil::ErrorLogger::GetInstance().SetStream(&std::cout);
  ReadFile(path);
  _exit(0);
}

/// Passes the child's output on, and ends the child if there is no end to it.
void PassOn(int in, pid_t child) {
  std::size_t n_bytes = 0;
  char buffer[4096];
  for (ssize_t n; (n = read(in, buffer, sizeof(buffer))) > 0;) {
    n_bytes += static_cast<std::size_t>(n);
    if (n_bytes > kMostOutput)
      kill(child, SIGKILL);
    else
      std::cout.write(buffer, n);
  }
}

void ReadInChild(const std::string& path) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  std::cout.flush();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) BeChild(path, ends[1]);
  close(ends[1]);
  PassOn(ends[0], child);
  close(ends[0]);
  int status = 0;
  rusage used{};
  wait4(child, &status, 0, &used);
  const bool is_signal = WIFSIGNALED(status);
  std::cout << "\n== " << (is_signal ? "signal " : "exit ") << (is_signal ? WTERMSIG(status) : WEXITSTATUS(status))
            << " "
            << static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
                   1e-6 * static_cast<double>(used.ru_utime.tv_usec + used.ru_stime.tv_usec)
            << " " << used.ru_maxrss << std::endl;
}

/// What every process would do at its start.
void StartRoot() {
  gSystem->ResetSignals();
  TMemFile file("start.root", "RECREATE");
  TStnEvent event;
  auto tree = new TTree("tree", "");
  tree->Branch("object", &event, 500, 0);
  tree->Fill();
  file.Write();
  gInterpreter->ProcessLine("1;");
}

}  // namespace

int main() {
  StartRoot();
  for (std::string path; std::getline(std::cin, path);)
    ReadInChild(path);
  return 0;
}
