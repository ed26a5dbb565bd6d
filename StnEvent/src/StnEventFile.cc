#include <StnEvent/StnEventFile.h>

#include <StnEvent/StnBasketKey.h>
#include <StnEvent/StnEntryCheck.h>
#include <StnEvent/StnEvent.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>
#include <VdUtil/ErrorLogger.h>

#include <TBranch.h>
#include <TBuffer.h>
#include <TClass.h>
#include <TKey.h>
#include <TMemFile.h>
#include <TNamed.h>
#include <TString.h>
#include <TSysEvtHandler.h>
#include <TSystem.h>
#include <TTree.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <new>
#include <vector>

#include <unistd.h>

#include <VdUtil/Assertions.h>

ClassImp(TStnEventFile);

/// Closes the files open for writing when a signal comes, and lets the signal then have its usual effect. Nothing
/// installs it: whoever does decides which signals may end the process in this way.
class TStnEventFileSignalHandler : public TSignalHandler {
 public:
  TStnEventFileSignalHandler(ESignals sig);
  ~TStnEventFileSignalHandler() override;
  Bool_t Notify() override;
};

std::list<TStnEventFileSignalHandler*> TStnEventFile::fgSignalHandlerList;
std::list<TStnEventFile*> TStnEventFile::fgFileList;
int TStnEventFile::fgPrintLevel = 0;

namespace {

const char* const gStnTreeName = "StnEventTree";
const char* const gStnBranchName = "StnEvent";

/// Bytes that a branch collects before it writes them: much for the traces, little for the pixel list.
const struct {
  const char* fBranch;
  Int_t fBytes;
} kBasketSizes[] = {{"fFADCData", 500000}, {"fPixelList", 5000}, {"fPixelData", 50000}};

/// The signals that end a process when nothing handles them.
const struct {
  ESignals fSignal;
  int fNumber;
} kDeadlySignals[] = {{kSigQuit, SIGQUIT}, {kSigInterrupt, SIGINT}, {kSigTermination, SIGTERM}};

bool gHandlerInstalled = false;

/// Shows where an object lies.
struct Address {
  const void* fPointer;
};

std::ostream& operator<<(std::ostream& stream, Address address) {
  return stream << std::hex << address.fPointer << std::dec;
}

void MakeEventBranch(TTree* tree, TStnEvent** event) {
  // ROOT takes a class with a streamer of its own for one that can't be split.
  TStnEvent::Class()->SetCanSplit(1);
  tree->Branch(gStnBranchName, TStnEvent::Class_Name(), event, 500, 1);
}

/// The branch if it is one of `TStnEvent`, else null. One of another class, in a file that is not ours, would be filled into
/// the wrong place.
TBranch* OfEvents(TBranch* branch) {
  return branch && std::strcmp(branch->GetClassName(), TStnEvent::Class_Name()) == 0 ? branch : nullptr;
}

Bool_t ReportMissingBranch(const char* name) {
  VD_ERROR << "TStnEventFile::GetBranches() - no branch with name '" << name << "' found !" << std::endl;
  return kFALSE;
}

Bool_t ReportMissingRecord(const char* name) {
  VD_ERROR << "TStnEventFile::Read" << name << "() - reading '" << name << "' from file was unsuccessful !"
           << std::endl;
  return kFALSE;
}

/// Lets ROOT set up what the closing of a file needs. ROOT works out the description of a class when an object of it is
/// first written, with thread-local strings of its interpreter, and these are gone when exit handlers run: the closing
/// would crash there if it were the first in the process. So the classes that it writes are written once beforehand, in
/// a small file in memory, and the class of the file itself, which is asked for its size, is made known.
void PrepareForExit() {
  static bool prepared = false;
  if (prepared) return;
  prepared = true;
  TStnEventFile::Class();
  TDirectory::TContext keep_directory;
  TMemFile file("StnEventFile.root", "RECREATE");
  TNamed object;
  auto tree = new TTree("tree", "");
  tree->Branch("object", &object, 500, 1);
  tree->Fill();
  file.Write();
}

}  // namespace

TStnEventFile::TStnEventFile() {
  if (fgPrintLevel > 1) VD_INFO << "StnEventFile::TStnEventFile() - " << Address{this} << std::endl;
  Setup();
}

TStnEventFile::TStnEventFile(const char* fname, Option_t* option, const char* ftitle, Int_t compress)
    : TFile(fname, option, ftitle, compress) {
  if (fgPrintLevel > 1)
    VD_INFO << "StnEventFile::TStnEventFile('" << (fname ? fname : "") << "') - " << Address{this} << std::endl;
  assert(option != __null);
  TString mode(option);
  mode.ToUpper();
  // "NEW" is left out, although it opens the file like "CREATE": applications rely on such files being their own.
  if (mode == "CREATE" || mode == "RECREATE" || mode == "UPDATE") {
    fgFileList.push_back(this);
    if (fgPrintLevel != 0)
      VD_INFO << "StnEventFile::TStnEventFile() - added " << Address{this} << " to the list !" << std::endl;
  }
  if (IsWritable()) PrepareForExit();
  Setup();
}

TStnEventFile::~TStnEventFile() {
  if (fgPrintLevel > 1) VD_INFO << "TStnEventFile::~TStnEventFile() - " << Address{this} << std::endl;
  if (fTree) TStnEventFile::Close("");
  // A file is entered once. From the end, or a process that has closed many files would pass all their entries here.
  const auto entry = std::find(fgFileList.rbegin(), fgFileList.rend(), this);
  if (entry == fgFileList.rend()) return;
  if (fgPrintLevel != 0)
    VD_INFO << "TStnEventFile::~TStnEventFile() - removed " << Address{this} << " from the list !" << std::endl;
  // The node stays: the exit handler may be walking over the list, and erases it then.
  *entry = nullptr;
}

void TStnEventFile::Close(Option_t* option) {
  if (fgPrintLevel > 1) {
    VD_INFO << "TStnEventFile::Close('" << (option ? option : "") << "') - " << std::endl;
    VD_INFO << "\tbytes written: " << std::setw(10) << static_cast<UInt_t>(GetBytesWritten()) << std::endl;
    VD_INFO << "\tbytes read:    " << std::setw(10) << static_cast<UInt_t>(GetBytesRead()) << std::endl;
  }
  if (GetBytesWritten() > 0) {
    TFile::Write(nullptr, TObject::kOverwrite, 0);
    TFile::Close(option);
  }
  if (GetBytesRead() > 0) TFile::Close(option);
  fTree = nullptr;
  fBranch = nullptr;
  fEventBuffer = nullptr;
}

UInt_t TStnEventFile::GetCurrentEntryId() const {
  if (fNEntries == 0) return 0;
  if (fCurrentEntry >= fNEntries) return fNEntries - 1;
  return fCurrentEntry == 0 ? 0 : static_cast<UInt_t>(fCurrentEntry) - 1;
}

UInt_t TStnEventFile::GetNEvents() {
  if (GetBytesRead() == 0) return fTree ? fCurrentEntry : 0;
  return GetTree() ? static_cast<UInt_t>(fTree->GetEntries()) : 0;
}

// From a record that goes on beyond the end of a file cut short ROOT makes an object all the same, out of whatever lies
// in memory behind what it could read.
template <class T>
T* TStnEventFile::GetWhole(const char* name) {
  const TKey* key = GetKey(name);
  const bool is_cut = key && key->GetSeekKey() + key->GetNbytes() > GetSize();
  return is_cut ? nullptr : Get<T>(name);
}

Bool_t TStnEventFile::GetTree() {
  if (fTree) return kTRUE;
  fTree = GetWhole<TTree>(gStnTreeName);
  // Out of a record that was lost to zeros ROOT makes an empty tree without a name.
  if (fTree && std::strcmp(fTree->GetName(), gStnTreeName) != 0) fTree = nullptr;
  if (!fTree) {
    VD_ERROR << "TStnEventFile::GetTree() - no Tree with name '" << gStnTreeName << "' found !" << std::endl;
    return kFALSE;
  }
  if (fgPrintLevel > 2) fTree->Print("");
  fNEntries = static_cast<Int_t>(fTree->GetEntries());
  return kTRUE;
}

void TStnEventFile::Show(std::ostream& str) {
  const bool is_reading = GetBytesRead() > 0;
  str << "--- TStnEventFile ---" << std::endl;
  str << " File " << GetName() << " opened for " << (is_reading ? "reading" : "writing") << std::endl;
  str << " CompressionLevel  = " << GetCompressionLevel() << std::endl;
  str << " CompressionFactor = " << GetCompressionFactorUncounted() << std::endl;
  str << " Number of Entries = " << GetNEvents() << std::endl;
  if (is_reading)
    str << " Bytes on file     = " << GetSize() << std::endl;
  else
    str << " Bytes written     = " << GetBytesWritten() << std::endl;
  str << "---------------------------------" << std::endl;
  str << std::endl;
}

Float_t TStnEventFile::GetCompressionFactorUncounted() {
  // ROOT reads the file to find it out. Counted, that would turn a file being written into one being read.
  const Long64_t bytes_read = fBytesRead;
  const Float_t factor = GetCompressionFactor();
  fBytesRead = bytes_read;
  return factor;
}

Bool_t TStnEventFile::IsWritingPossible(const char* what) {
  if (IsOpen() && IsWritable()) return kTRUE;
  VD_ERROR << "TStnEventFile::Write" << what << "() - file '" << GetName() << "' is not open for writing !"
           << std::endl;
  return kFALSE;
}

Bool_t TStnEventFile::WriteEvent(TStnEvent** event) {
  if (!IsWritingPossible("Event")) return kFALSE;
  if (fgPrintLevel > 1) VD_INFO << "TStnEventFile::WriteEvent(): " << Address{*event} << std::endl;
  if (!fTree && !MakeTree(event)) return kFALSE;
  if (fEventBuffer && fEventBuffer != *event) {
    VD_ERROR << "TStnEventFile::WriteEvent() - address of data buffer " << Address{fEventBuffer} << " was changed !"
             << std::endl;
    VD_ERROR << " -----> No data written to file !" << std::endl;
    return kFALSE;
  }
  if (!IsEventBranchBound()) return kFALSE;
  FillTree();
  return kTRUE;
}

Bool_t TStnEventFile::MakeTree(TStnEvent** event) {
  cd();
  if (fgPrintLevel > 1)
    VD_INFO << "TStnEventFile::WriteEvent() - set fEventBuffer to " << Address{fEventBuffer} << std::endl;
  fEventBuffer = *event;
  try {
    fTree = new TTree(gStnTreeName, "TStnEvent tree", 99);
  } catch (const std::bad_alloc&) {
    VD_ERROR << "TStnEventFile::WriteEvent() - could not create TTree !" << std::endl;
    return kFALSE;
  }
  if (fgPrintLevel > 1) VD_INFO << "TStnEventFile::WriteEvent() - set fTree to " << Address{fTree} << std::endl;
  fTree->SetAutoSave(20000);
  if (TBranch* branch = fTree->GetBranch(gStnBranchName))
    branch->SetAddress(event);
  else
    MakeEventBranch(fTree, event);
  for (const auto& size : kBasketSizes)
    if (TBranch* branch = fTree->GetBranch(size.fBranch)) branch->SetBasketSize(size.fBytes);
  return kTRUE;
}

Bool_t TStnEventFile::IsEventBranchBound() {
  TBranch* branch = OfEvents(fTree->GetBranch(gStnBranchName));
  if (branch && branch->GetAddress()) return kTRUE;
  // The tree was found on file, and no event has been read from it: an entry would be counted and not filled.
  VD_ERROR << "TStnEventFile::WriteEvent() - no event bound to the tree !" << std::endl;
  return kFALSE;
}

void TStnEventFile::FillTree() {
  const Int_t debug_level = gDebug;
  if (fgPrintLevel > 3) gDebug = 2;
  // Above this limit ROOT deletes the file object and goes on in a plain file.
  TTree::SetMaxTreeSize(std::numeric_limits<Long64_t>::max());
  // An interrupt now would leave half an entry.
  gSystem->IgnoreSignal(kSigInterrupt, kTRUE);
  fTree->Fill();
  gSystem->IgnoreSignal(kSigInterrupt, kFALSE);
  if (fgPrintLevel > 2) fTree->Print("");
  gDebug = debug_level;
}

Bool_t TStnEventFile::WriteRunHeader(TStnRunHeader* header) { return WriteRecord(header, "RunHeader"); }

Bool_t TStnEventFile::WriteRunTrailer(TStnRunTrailer* trailer) { return WriteRecord(trailer, "RunTrailer"); }

Bool_t TStnEventFile::WriteRecord(const TObject* record, const char* name) {
  if (fgPrintLevel > 1) VD_INFO << "TStnEventFile::Write" << name << "()" << std::endl;
  if (!record) return kFALSE;
  if (!IsWritingPossible(name)) return kFALSE;
  cd();
  record->Write(name, TObject::kOverwrite, 0);
  return kTRUE;
}

Bool_t TStnEventFile::GetBranches(TStnEvent** event) {
  if (!fBranch) {
    fBranch = OfEvents(fTree->GetBranch(gStnBranchName));
    if (!fBranch) return ReportMissingBranch(gStnBranchName);
    // One left from before `Close` went with its tree.
    fEventHeaderBranch = nullptr;
  }
  fBranch->SetAddress(event);
  // One that lies elsewhere in the tree would fill another event than that to which `event` is bound.
  if (!fEventHeaderBranch) fEventHeaderBranch = OfEvents(fBranch->FindBranch("fEventHeader"));
  return fEventHeaderBranch ? kTRUE : ReportMissingBranch("fEventHeader");
}

void TStnEventFile::EnterDirectory() {
  // A file object without a file is no directory to go to: ROOT crashes there when it starts its interpreter.
  if (IsOpen()) cd();
}

Bool_t TStnEventFile::ReadEvent(TStnEvent** event) {
  EnterDirectory();
  if (!GetTree() || !GetBranches(event)) return kFALSE;
  if (*event) (*event)->Clear("");
  if (fCurrentEntry >= fNEntries) {
    VD_WARNING << "TStnEventFile::ReadEvent() - end of file reached !" << std::endl;
    return kFALSE;
  }
  const Int_t debug_level = gDebug;
  if (fgPrintLevel > 3) gDebug = 2;
  ReadWholeEvent();
  ++fCurrentEntry;
  gDebug = debug_level;
  TStnEvent::DoCorrections(*event);
  return kTRUE;
}

Bool_t TStnEventFile::IsBasketSound(TBranch& branch, const char* reader) {
  StnBasketKey key(branch, fCurrentEntry, GetFd());
  const std::string damage = key.FindDamage();
  if (damage.empty()) return IsEntryWhole(branch, reader);
  VD_ERROR << "TStnEventFile::" << reader << "() - file '" << GetName() << "', entry " << fCurrentEntry
           << ": basket of '" << branch.GetName() << "' at byte " << key.GetPlace() << " is damaged, " << damage
           << ", not read" << std::endl;
  return kFALSE;
}

Bool_t TStnEventFile::IsEntryWhole(TBranch& branch, const char* reader) {
  if (IsEntrySound(branch, fCurrentEntry)) return kTRUE;
  VD_ERROR << "TStnEventFile::" << reader << "() - file '" << GetName() << "', entry " << fCurrentEntry << ": '"
           << branch.GetName() << "' is damaged, not read" << std::endl;
  return kFALSE;
}

void TStnEventFile::ReadWholeEvent() {
  std::vector<TBranch*> left_out;
  fTree->LoadTree(fCurrentEntry);
  for (TObject* object : *fBranch->GetListOfBranches()) {
    auto* branch = static_cast<TBranch*>(object);
    if (branch->TestBit(kDoNotProcess) || IsBasketSound(*branch, "ReadEvent")) continue;
    branch->SetBit(kDoNotProcess);
    left_out.push_back(branch);
  }
  fTree->GetEntry(fCurrentEntry, 0);
  for (TBranch* branch : left_out)
    branch->ResetBit(kDoNotProcess);
}

Bool_t TStnEventFile::ReadEventHeader(TStnEventHeader** header) {
  assert(header != __null);
  EnterDirectory();
  if (!GetTree() || !GetBranches(&fPartialEvent)) return kFALSE;
  if (fCurrentEntry >= fNEntries) {
    VD_ERROR << "TStnEventFile::ReadEventHeader() - end of file reached !" << std::endl;
    return kFALSE;
  }
  if (ReadPartialEvent() <= 0) return kFALSE;
  *header = fPartialEvent->GetEventHeader();
  ++fCurrentEntry;
  return kTRUE;
}

Int_t TStnEventFile::ReadPartialEvent() {
  if (!IsBasketSound(*fEventHeaderBranch, "ReadEventHeader")) return 0;
  // ROOT makes a new header for each entry and deletes the last one, which callers still hold: that one is put aside
  // while ROOT reads, and takes the contents over.
  TStnEventHeader* kept = fPartialEvent->fEventHeader;
  fPartialEvent->fEventHeader = nullptr;
  const Int_t n_bytes = fEventHeaderBranch->GetEntry(fCurrentEntry, 0);
  if (!kept) return n_bytes;
  if (n_bytes > 0) {
    const TStnEventHeader* read = fPartialEvent->GetEventHeader();
    *kept = *read;
    kept->fStreamerVersion = read->fStreamerVersion;
  }
  delete fPartialEvent->fEventHeader;
  fPartialEvent->fEventHeader = kept;
  return n_bytes;
}

Bool_t TStnEventFile::ReadRunHeader(TStnRunHeader** header) {
  EnterDirectory();
  SafeDelete(*header);
  *header = GetWhole<TStnRunHeader>("RunHeader");
  return *header ? kTRUE : ReportMissingRecord("RunHeader");
}

Bool_t TStnEventFile::ReadRunTrailer(TStnRunTrailer** trailer) {
  EnterDirectory();
  SafeDelete(*trailer);
  *trailer = GetWhole<TStnRunTrailer>("RunTrailer");
  return *trailer ? kTRUE : ReportMissingRecord("RunTrailer");
}

void TStnEventFile::Setup() {
  if (gHandlerInstalled) return;
  // What is made before the handler is registered outlives it: the handler writes to the log.
  VdUtil::ErrorLogger::GetInstance();
  if (atexit(ExitHandler) < 0) {
    const int error = errno;
    VD_ERROR << "TStnEventFile::Setup() - trying installing 'atexit' handler with error, " << error << " - "
             << std::strerror(error) << std::endl;
  } else if (fgPrintLevel != 0) {
    VD_INFO << "TStnEventFile::Setup() - 'atexit' handler successfully installed !" << std::endl;
  }
  gHandlerInstalled = true;
}

void TStnEventFile::ExitHandler() {
  if (fgPrintLevel > 1) VD_INFO << "TStnEventFile::ExitHandler() - closing files open for writing ..." << std::endl;
  for (auto entry = fgFileList.begin(); entry != fgFileList.end(); entry = fgFileList.erase(entry)) {
    if (*entry && fgPrintLevel > 1) VD_DEBUG << "\t\t... closing: " << Address{*entry} << std::endl;
    delete *entry;
  }
  auto& handlers = fgSignalHandlerList;
  for (auto entry = handlers.begin(); entry != handlers.end(); entry = handlers.erase(entry)) {
    if (*entry) (*entry)->Remove();
    delete *entry;
  }
  if (fgPrintLevel > 1) VD_INFO << "TStnEventFile::ExitHandler() - done !" << std::endl;
}

void TStnEventFile::Streamer(TBuffer& buffer) { TFile::Streamer(buffer); }

TStnEventFileSignalHandler::TStnEventFileSignalHandler(ESignals sig) : TSignalHandler(sig) {}

TStnEventFileSignalHandler::~TStnEventFileSignalHandler() = default;

Bool_t TStnEventFileSignalHandler::Notify() {
  VD_WARNING << "TStnEventFileSignalHandler::Notify() ..." << std::endl;
  // The exit handler deletes this object if it is in the list.
  const ESignals signal = GetSignal();
  TStnEventFile::ExitHandler();
  for (const auto& deadly : kDeadlySignals) {
    if (deadly.fSignal != signal) continue;
    gSystem->ResetSignal(signal, kTRUE);
    kill(getpid(), deadly.fNumber);
  }
  if (TStnEventFile::fgPrintLevel > 1) VD_INFO << "TStnEventFileSignalHandler::Notify() - done !" << std::endl;
  return kFALSE;
}
