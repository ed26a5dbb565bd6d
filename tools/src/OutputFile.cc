#include "OutputFile.h"

#include "FileName.h"
#include "ToolError.h"

#include <unistd.h>

#include <csignal>
#include <filesystem>

namespace StnTools {
namespace {

// What a signal handler can get at: the name of the file that is being written.
std::string gPart;

void RemovePartAndEnd(int signal) {
  RemoveUnfinished();
  std::signal(signal, SIG_DFL);
  raise(signal);
}

// A program that is told to end takes the unfinished file with it, unless it was started so that it does not listen.
void RemovePartOnSignals(const std::string& part) {
  gPart = part;
  for (int signal : {SIGINT, SIGTERM, SIGHUP})
    if (std::signal(signal, RemovePartAndEnd) == SIG_IGN) std::signal(signal, SIG_IGN);
}

}  // namespace

void RemoveUnfinished() { unlink(gPart.c_str()); }

OutputFile::OutputFile(const std::string& path, bool force, int compression) : fPath(path) {
  const std::string part = GetRootName(GetPartName(path));
  RequireNewName(path, force);
  RemovePart(path);
  // A limit on the size of files shall come as an error, like a full disk, and not end the process.
  std::signal(SIGXFSZ, SIG_IGN);
  std::string name = part + "?reproducible=" + std::filesystem::path(path).filename().string();
  fFile = std::make_unique<TStnEventFile>(name.c_str(), "CREATE", "", compression);
  if (fFile->IsZombie()) Fail(fMessages.GetFirstError(), "choose another place");
  RemovePartOnSignals(GetPartName(path));
}

OutputFile::~OutputFile() {
  if (!fFile) return;
  fFile.reset();
  RemovePart(fPath);
}

void OutputFile::WriteRunHeader(TStnRunHeader& header) {
  Do([&] { return fFile->WriteRunHeader(&header); });
}

void OutputFile::WriteRunTrailer(TStnRunTrailer& trailer) {
  Do([&] { return fFile->WriteRunTrailer(&trailer); });
}

void OutputFile::WriteEvent() {
  Do([&] { return fFile->WriteEvent(&fEvent); });
}

void OutputFile::Finish(const Check& check) {
  Do([&] {
    fFile->Close();
    return !fFile->IsOpen();
  });
  if (check) Pass(check);
  FinishPart(fPath);
  fFile.reset();
}

void OutputFile::Pass(const Check& check) const {
  try {
    check(GetPartName(fPath));
  } catch (const ToolError& error) {
    Fail(error.what(), "try again");
  }
}

// Others may have begun to listen since this file was made, as a file that is read meanwhile.
template <typename Step>
void OutputFile::Do(Step step) {
  Messages messages;
  const bool done = step();
  std::string error = messages.GetFirstError();
  if (error.empty()) error = fMessages.GetFirstError();
  if (done && error.empty() && !fFile->TestBit(TFile::kWriteError)) return;
  Fail(error, "make room and try again");
}

void OutputFile::Fail(const std::string& reason, const std::string& advice) const {
  throw ToolError(kCannotWrite, fPath + " could not be written (" + reason + ") and was not kept; " + advice);
}

}  // namespace StnTools
