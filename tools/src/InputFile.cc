#include "InputFile.h"

#include "FileFrame.h"
#include "FileName.h"
#include "OutputFile.h"
#include "RemoteFile.h"
#include "ToolError.h"

#include <TBranch.h>
#include <TKey.h>
#include <TSystem.h>
#include <TTree.h>

#include <unistd.h>

#include <csignal>
#include <cstring>
#include <iostream>

namespace StnTools {
namespace {

const char* const kTreeName = "StnEventTree";

const char* gProgram = "";
const char* gPath = "";

void Say(const char* text) {
  if (write(STDERR_FILENO, text, std::strlen(text)) < 0) _exit(kDamage);
}

// Only what is safe in a signal handler.
void EndAfterCrash(int) {
  RemoveUnfinished();
  Say(gProgram);
  Say(": ");
  Say(gPath);
  Say(" could not be read: ROOT crashed on it, so it is most likely damaged; copy or write it again\n");
  _exit(kDamage);
}

}  // namespace

void GuardAgainstCrash(const char* program, const char* path) {
  gProgram = program;
  gPath = path;
  gSystem->ResetSignals();
  for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL})
    std::signal(signal, EndAfterCrash);
}

int GetCompression(const std::string& path) { return IsAddress(path) ? 1 : ReadFileFrame(path).fCompression; }

InputFile::InputFile(const std::string& program, const std::string& path) : fPath(path) {
  const std::string loss = IsAddress(path) ? OpenAddress() : OpenFile();
  RequireStationFile();
  fNEvents = CountEvents();
  if (!fFile->TestBit(TFile::kRecovered)) return;
  fState = kDamage;
  std::cerr << program << ": warning: " << path << " " << loss << "; going on with what could be recovered, "
            << fNEvents << " events" << std::endl;
}

std::string InputFile::OpenFile() {
  FileFrame frame = ReadFileFrame(fPath);
  fFile = std::make_unique<TStnEventFile>(GetRootName(fPath).c_str(), "READ");
  std::string loss = frame.IsCutShort() ? "is cut short, with " + std::to_string(frame.fSize) + " of its " +
                                              std::to_string(frame.fEnd) + " bytes"
                                        : "was not closed by its writer";
  if (!fFile->IsZombie()) return loss;
  if (!frame.IsCutShort() && frame.fEnd != 0) loss = "is damaged (" + fMessages.GetFirstError() + ")";
  throw ToolError(kDamage, fPath + " " + loss + ": nothing can be read from it; copy or write it again");
}

std::string InputFile::OpenAddress() {
  fFile = RemoteFile::Open(fPath);
  if (fFile && !fFile->IsZombie()) return "was not closed by its writer, or is cut short";
  throw ToolError(kCannotOpen, fPath + " cannot be opened (" + fMessages.GetFirstError() + "); check the address");
}

bool InputFile::Has(const char* name, const char* class_name) const {
  const TKey* key = fFile->GetKey(name);
  return key != nullptr && std::strcmp(key->GetClassName(), class_name) == 0;
}

void InputFile::RequireStationFile() const {
  if (Has(kTreeName, "TTree") || HasRunHeader() || HasRunTrailer()) return;
  throw ToolError(kCannotOpen, fPath + " is a ROOT file but no station file: it has neither events (" + kTreeName +
                                   ") nor a run header or trailer; name a station file");
}

// An empty run has no tree, which the library would report as an error.
UInt_t InputFile::CountEvents() {
  if (!Has(kTreeName, "TTree")) return 0;
  UInt_t n_events = fFile->GetNEvents();
  RequireSound(true, "the list of events");
  if (n_events > 0) RequireBranches();
  return n_events;
}

// Without them no event can be read, and that is said once.
void InputFile::RequireBranches() const {
  TBranch* events = fFile->Get<TTree>(kTreeName)->GetBranch("StnEvent");
  if (events != nullptr && events->GetListOfBranches()->FindObject("fEventHeader") != nullptr) return;
  throw ToolError(kCannotOpen, fPath + " is no station file: in its tree " + kTreeName + " there is no branch " +
                                   (events == nullptr ? "StnEvent" : "fEventHeader of StnEvent") +
                                   "; name a station file");
}

void InputFile::RequireEntry(UInt_t entry) const {
  if (entry < fNEvents) return;
  std::string range = fNEvents == 0 ? "it has no events" : "its events are 0 to " + std::to_string(fNEvents - 1);
  throw ToolError(kUsage, fPath + " has no event " + std::to_string(entry) + ": " + range);
}

// The library does not look at how much of an entry ROOT could read, so what ROOT said meanwhile decides, too.
void InputFile::RequireSound(bool done, const std::string& what) {
  std::string error = fMessages.GetFirstError();
  if (done && error.empty()) return;
  if (error.empty()) error = "no reason given";
  throw ToolError(kDamage, fPath + " is damaged: " + what + " cannot be read (" + error + "); copy or write it again");
}

TStnEvent* InputFile::ReadEvent(UInt_t entry) {
  RequireEntry(entry);
  fMessages.Clear();
  RequireSound(fFile->ReadEvent(&fEvent, entry), "event " + std::to_string(entry));
  return fEvent;
}

const TStnEventHeader& InputFile::ReadEventHeader(UInt_t entry) {
  RequireEntry(entry);
  fMessages.Clear();
  TStnEventHeader* header = nullptr;
  fFile->Seek(entry);
  RequireSound(fFile->ReadEventHeader(&header), "the header of event " + std::to_string(entry));
  return *header;
}

std::unique_ptr<TStnRunHeader> InputFile::ReadRunHeader() {
  RequireRecord(HasRunHeader(), "run header");
  TStnRunHeader* header = nullptr;
  bool done = fFile->ReadRunHeader(&header);
  std::unique_ptr<TStnRunHeader> owner(header);
  RequireSound(done, "the run header");
  return owner;
}

std::unique_ptr<TStnRunTrailer> InputFile::ReadRunTrailer() {
  RequireRecord(HasRunTrailer(), "run trailer");
  TStnRunTrailer* trailer = nullptr;
  bool done = fFile->ReadRunTrailer(&trailer);
  std::unique_ptr<TStnRunTrailer> owner(trailer);
  RequireSound(done, "the run trailer");
  return owner;
}

void InputFile::RequireRecord(bool is_there, const char* what) {
  fMessages.Clear();
  if (is_there) return;
  throw ToolError(kDamage, fPath + " has no " + what + ": its run was not ended, or not begun, as it should be");
}

}  // namespace StnTools
