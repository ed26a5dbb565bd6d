#include "OutputFile.h"

#include "ToolError.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace StnTools {
namespace {

// ROOT takes what follows one of these for options or a place inside a file.
const char* const kUrlCharacters = "?#";

void RequireUsableName(const std::string& path, bool force) {
  if (path.find_first_of(kUrlCharacters) != std::string::npos) {
    throw ToolError(kUsage, path + " cannot be written: ROOT takes ? and # for parts of a URL; choose another name");
  }
  std::error_code error;
  auto status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) return;
  if (!std::filesystem::is_regular_file(status))
    throw ToolError(kCannotWrite, path + " exists and is no plain file; choose another name");
  if (!force) throw ToolError(kCannotWrite, path + " exists already; choose another name, or --force to replace it");
}

}  // namespace

OutputFile::OutputFile(const std::string& path, bool force, int compression) : fPath(path), fPartPath(path + ".part") {
  RequireUsableName(path, force);
  // A limit on the size of files shall come as an error, like a full disk, and not end the process.
  std::signal(SIGXFSZ, SIG_IGN);
  std::string name = fPartPath + "?reproducible=" + std::filesystem::path(path).filename().string();
  fFile = std::make_unique<TStnEventFile>(name.c_str(), "RECREATE", "", compression);
  if (fFile->IsZombie()) Fail(fMessages.GetFirstError(), "choose another place");
}

OutputFile::~OutputFile() {
  if (!fFile) return;
  fFile.reset();
  unlink(fPartPath.c_str());
}

void OutputFile::WriteRunHeader(TStnRunHeader& header) { RequireWritten(fFile->WriteRunHeader(&header)); }

void OutputFile::WriteRunTrailer(TStnRunTrailer& trailer) { RequireWritten(fFile->WriteRunTrailer(&trailer)); }

void OutputFile::WriteEvent() { RequireWritten(fFile->WriteEvent(&fEvent)); }

void OutputFile::Finish() {
  fFile->Close();
  RequireWritten(!fFile->IsOpen());
  if (std::rename(fPartPath.c_str(), fPath.c_str()) != 0) Fail(std::strerror(errno), "choose another place");
  fFile.reset();
}

void OutputFile::RequireWritten(bool done) {
  std::string error = fMessages.GetFirstError();
  if (done && error.empty() && !fFile->TestBit(TFile::kWriteError)) return;
  Fail(error, "make room and try again");
}

void OutputFile::Fail(const std::string& reason, const std::string& advice) const {
  throw ToolError(kCannotWrite, fPath + " could not be written (" + reason + ") and was not kept; " + advice);
}

}  // namespace StnTools
