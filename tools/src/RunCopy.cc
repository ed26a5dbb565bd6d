#include "RunCopy.h"

#include "FileName.h"
#include "ProgressBar.h"
#include "ReadBack.h"
#include "ToolError.h"

#include <TBufferFile.h>

#include <algorithm>
#include <iostream>

namespace StnTools {
namespace {

// What an object is on file.
std::string GetBytes(TObject& object) {
  TBufferFile buffer(TBuffer::kWrite);
  object.Streamer(buffer);
  return std::string(buffer.Buffer(), static_cast<std::size_t>(buffer.Length()));
}

// The name of the output, if no input would be overwritten.
const std::string& RequireOtherName(const std::vector<std::string>& inputs, const std::string& output) {
  for (const std::string& input : inputs)
    RequireOtherFile(input, output);
  return output;
}

std::string GetEventName(const std::string& path, UInt_t entry) {
  return "event " + std::to_string(entry) + " of " + path;
}

}  // namespace

RunCopy::RunCopy(const std::string& program, const std::vector<std::string>& inputs, const std::string& output,
                 bool force)
    : fProgram(program),
      fInputs(inputs),
      fOutputName(RequireOtherName(inputs, output)),
      fOutput(output, force, GetCompression(inputs.front())) {}

ExitCode RunCopy::Run(const Choice& choice) {
  for (fCurrent = 0; fCurrent < fInputs.size(); ++fCurrent)
    Add(fInputs[fCurrent], choice);
  RequireContent();
  if (fTrailer) {
    fTrailer->SetNEvents(static_cast<UInt_t>(fChecksums.GetSize()));
    fOutput.WriteRunTrailer(*fTrailer);
  }
  fOutput.Finish([this](const std::string& part) { Check(part); });
  std::cout << fOutputName << ": " << fChecksums.GetSize() << " of " << fNRead << " events, "
            << (fHeader ? "with" : "without") << " run header, " << (fTrailer ? "with" : "without") << " run trailer"
            << std::endl;
  return fState;
}

void RunCopy::Add(const std::string& path, const Choice& choice) {
  GuardAgainstCrash(fProgram.c_str(), path.c_str());
  InputFile file(fProgram, path);
  fState = std::max(fState, file.GetState());
  fNRead += file.GetNEvents();
  AddRunHeader(file);
  AddRunTrailer(file);
  const std::vector<UInt_t> entries = choice(file);
  ProgressBar progress(static_cast<UInt_t>(entries.size()));
  UInt_t done = 0;
  for (UInt_t entry : entries) {
    AddEvent(file, entry);
    progress.Show(++done);
  }
}

void RunCopy::AddRunHeader(InputFile& file) {
  if (!file.HasRunHeader()) return;
  std::unique_ptr<TStnRunHeader> header = file.ReadRunHeader();
  // A station that nobody set is that of the computer on which the run was written.
  if (header->GetRunNo() != 0)
    RequireOneRun(header->GetRunNo(), header->GetStnNo(), "the run header of " + file.GetPath());
  if (fHeader) {
    if (GetBytes(*header) != GetBytes(*fHeader))
      Warn("the run header of " + file.GetPath() + " differs from that of " + fHeaderOwner + ", which is kept");
    return;
  }
  fHeader = std::move(header);
  fHeaderOwner = file.GetPath();
  fOutput.WriteRunHeader(*fHeader);
}

void RunCopy::AddRunTrailer(InputFile& file) {
  if (!file.HasRunTrailer()) return;
  std::unique_ptr<TStnRunTrailer> trailer = file.ReadRunTrailer();
  trailer->SetNEvents(0);
  if (fTrailer && GetBytes(*trailer) == GetBytes(*fTrailer)) return;
  const std::string before = fTrailerOwner;
  if (!fTrailer || fTrailer->GetStopTime() < trailer->GetStopTime()) {
    fTrailer = std::move(trailer);
    fTrailerOwner = file.GetPath();
  }
  if (!before.empty()) {
    Warn("the run trailers of " + before + " and " + file.GetPath() +
         " differ in more than the number of events; the one that ends last is kept, that of " + fTrailerOwner);
  }
}

void RunCopy::AddEvent(InputFile& file, UInt_t entry) {
  TStnEvent& event = *file.ReadEvent(entry);
  const TStnEventHeader& header = *event.GetEventHeader();
  RequireOneRun(header.GetRunNo(), header.GetStnNo(), GetEventName(file.GetPath(), entry));
  RequireNewNumber(file.GetPath(), entry, header.GetEventNo());
  fChecksums.Add(ComputeChecksum(event));
  fOutput.GetEvent() = event;
  fOutput.WriteEvent();
}

void RunCopy::RequireOneRun(UInt_t run, UInt_t station, const std::string& owner) {
  RequireSame(fRun, run, owner);
  RequireSame(fStation, station, owner);
}

void RunCopy::RequireSame(Common& common, UInt_t value, const std::string& owner) {
  if (value == 0 || value == common.fValue) return;
  if (common.fValue != 0) {
    throw ToolError(kUsage, owner + " is of " + common.fName + " " + std::to_string(value) + ", but " + common.fOwner +
                                " of " + common.fName + " " + std::to_string(common.fValue) +
                                "; a station file has one run of one station");
  }
  common.fValue = value;
  common.fOwner = owner;
}

void RunCopy::RequireNewNumber(const std::string& path, UInt_t entry, UInt_t number) {
  if (number == 0) return;
  const std::size_t owner = fNumberOwner.emplace(number, fCurrent).first->second;
  if (owner == fCurrent) return;
  throw ToolError(kUsage, GetEventName(path, entry) + " has the number " + std::to_string(number) +
                              ", as an event of " + fInputs[owner] + " has; name each part of the run once");
}

void RunCopy::RequireContent() const {
  if (fHeader || fTrailer || fChecksums.GetSize() > 0) return;
  throw ToolError(kUsage, fOutputName + " would be empty: no event is wanted, and there is no run header or trailer");
}

void RunCopy::Check(const std::string& part) const {
  InputFile file(fProgram, part);
  RequireEqual(part, fChecksums, ReadChecksums(file));
}

void RunCopy::Warn(const std::string& text) const { std::cerr << fProgram << ": warning: " << text << std::endl; }

}  // namespace StnTools
