#include "ChecksumList.h"
#include "CommandLine.h"
#include "InputFile.h"
#include "ProgressBar.h"
#include "ToolError.h"

#include <iostream>

namespace {

using namespace StnTools;

struct Options {
  std::string fInput;
  std::string fChecksums;
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.fInput, "station file to read")->required();
  app.add_option(
      "--checksums", options.fChecksums,
      "checksums taken before writing, from stn-simulate --checksums; without them every event is just read");
}

ChecksumList ReadEvents(InputFile& file) {
  ChecksumList read;
  ProgressBar progress(file.GetNEvents());
  for (UInt_t entry = 0; entry < file.GetNEvents(); ++entry) {
    read.Add(ComputeChecksum(*file.ReadEvent(entry)));
    progress.Show(entry + 1);
  }
  return read;
}

void RequireEqual(const std::string& path, UInt_t entry, const EventChecksum& written, const EventChecksum& read) {
  for (int part = 0; part < kNParts; ++part) {
    if (written[part] == read[part]) continue;
    throw ToolError(kDamage, path + ": the " + GetPartName(static_cast<EventPart>(part)) + " of event " +
                                 std::to_string(entry) + " did not come back as written (" +
                                 FormatChecksum(written[part]) + " before, " + FormatChecksum(read[part]) + " now)");
  }
}

void RequireEqual(const std::string& path, const ChecksumList& written, const ChecksumList& read) {
  if (written.GetSize() != read.GetSize()) {
    throw ToolError(kDamage, path + " has " + std::to_string(read.GetSize()) + " events, but " +
                                 std::to_string(written.GetSize()) + " were written");
  }
  for (UInt_t entry = 0; entry < read.GetSize(); ++entry)
    RequireEqual(path, entry, written.Get(entry), read.Get(entry));
}

int Verify(const Options& options) {
  GuardAgainstCrash("stn-verify", options.fInput.c_str());
  ChecksumList written;
  if (!options.fChecksums.empty()) written = ChecksumList::Read(options.fChecksums);
  InputFile file("stn-verify", options.fInput);
  ChecksumList read = ReadEvents(file);
  if (!options.fChecksums.empty()) RequireEqual(options.fInput, written, read);
  std::cout << options.fInput << ": " << read.GetSize() << " events "
            << (options.fChecksums.empty() ? "can be read" : "came back as they were written") << ", checksum "
            << FormatChecksum(read.GetCombined()) << std::endl;
  return file.GetState();
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("stn-verify", "Reads every event of a station file and compares it with what was written.",
                    AddOptions, Verify, argc, argv);
}
