#include "RemoteFile.h"

#include "ToolError.h"

#include <TDirectory.h>
#include <TPluginManager.h>
#include <TROOT.h>

#include <cstring>

namespace StnTools {
namespace {

const char* const kWebClass = "ROOT::Deprecated::TWebFile";

// Is there a class in this ROOT that opens such addresses?
bool CanOpen(const std::string& address) {
  TPluginManager* manager = gROOT->GetPluginManager();
  TPluginHandler* handler = manager->FindHandler("TFile", address.c_str());
  if (handler == nullptr || handler->CheckPlugin() != 0) return false;
  // ROOT 6.40 looks for the constructor of this class under a name that no constructor has.
  if (std::strcmp(handler->GetClass(), kWebClass) == 0)
    manager->AddHandler("TFile", "^http[s]?:", kWebClass, "Net", "TWebFile(const char*,Option_t*)");
  return true;
}

}  // namespace

std::unique_ptr<RemoteFile> RemoteFile::Open(const std::string& address) {
  TDirectory::TContext keep_directory;
  if (!CanOpen(address)) {
    throw ToolError(kCannotOpen, address + " cannot be opened: this ROOT reads no " +
                                     address.substr(0, address.find(':')) + " addresses; copy the file first");
  }
  std::unique_ptr<TFile> source(TFile::Open(address.c_str()));
  if (!source || source->IsZombie()) return nullptr;
  return std::unique_ptr<RemoteFile>(new RemoteFile(address, std::move(source)));
}

// With this option ROOT leaves it to a derived class to open a file.
RemoteFile::RemoteFile(const std::string& address, std::unique_ptr<TFile> source)
    : TStnEventFile(address.c_str(), "WEB"), fSource(std::move(source)) {
  TFile::Init(kFALSE);
}

RemoteFile::~RemoteFile() { TStnEventFile::Close(); }

Bool_t RemoteFile::ReadBuffer(char* buffer, Int_t length) { return ReadBuffer(buffer, GetRelOffset(), length); }

Bool_t RemoteFile::ReadBuffer(char* buffer, Long64_t position, Int_t length) {
  SetOffset(position);
  const Int_t by_cache = ReadBufferViaCache(buffer, length);
  if (by_cache != 0) return by_cache == 2;
  if (fSource->ReadBuffer(buffer, position, length)) return kTRUE;
  SetOffset(length, kCur);
  Count(length);
  return kFALSE;
}

// One after the other, as few web servers answer requests for several ranges in the form that ROOT expects.
Bool_t RemoteFile::ReadBuffers(char* buffer, Long64_t* positions, Int_t* lengths, Int_t n_buffers) {
  for (Int_t i = 0; i < n_buffers; buffer += lengths[i++]) {
    if (fSource->ReadBuffer(buffer, positions[i], lengths[i])) return kTRUE;
    Count(lengths[i]);
  }
  return kFALSE;
}

Int_t RemoteFile::SysClose(Int_t) {
  fSource->Close();
  return 0;
}

void RemoteFile::Count(Long64_t n_bytes) {
  fBytesRead += n_bytes;
  ++fReadCalls;
}

}  // namespace StnTools
