#include "CommandLine.h"
#include "ReadBack.h"

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

int Verify(const Options& options) {
  GuardAgainstCrash("stn-verify", options.fInput.c_str());
  ChecksumList written;
  if (!options.fChecksums.empty()) written = ChecksumList::Read(options.fChecksums);
  InputFile file("stn-verify", options.fInput);
  ChecksumList read = ReadChecksums(file);
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
