#ifndef StnEvent_StnEventFile_h
#define StnEvent_StnEventFile_h

#include <TFile.h>

#include <iostream>
#include <list>

class TBranch;
class TStnEvent;
class TStnEventFileSignalHandler;
class TStnEventHeader;
class TStnRunHeader;
class TStnRunTrailer;
class TTree;

// `Seek` below hides `TFile::Seek` from users of this class: positions of a station file are entries, not bytes.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

/// The data file of one run of one station: the tree "StnEventTree" with one entry per event, and the objects "RunHeader"
/// and "RunTrailer".
///
/// A file is written with `WriteRunHeader`, `WriteEvent` and `WriteRunTrailer`, and closed with `Close` or by deleting it.
/// It is read entry by entry with one cursor, whole (`ReadEvent`) or the event headers only (`ReadEventHeader`). Whether
/// it could be opened is told by `IsZombie()`, whether all of it reached the disk only by `TestBit(TFile::kWriteError)`,
/// asked again after `Close`.
///
/// Files opened for writing that are alive when the process exits are then deleted, and so closed, by this class: make
/// them with `new`. This does not hold for the option "NEW".
///
/// Reading and writing change the current directory and, above print level 3, ROOT's `gDebug` during the call; writing
/// an event also lifts ROOT's limit on the size of trees, for the whole process. Don't read events from a file that is
/// being written: reading binds the tree to the variable that it was given. One thread at a time may use a file.
class TStnEventFile : public TFile {
 public:
  /// A file object without a file.
  TStnEventFile();
  /// Opens the file `fname`: `option` is "" or "READ" for reading, "CREATE" or "NEW" for a file that must not exist yet,
  /// "RECREATE" to replace one, "UPDATE" to add to one, in upper or lower case; null is refused (assertion). `compress`
  /// is one of ROOT's compression settings. Failure is told by `IsZombie()`.
  ///
  /// Don't add events with "UPDATE": the first `WriteEvent` starts a new tree in place of the old one (unless events
  /// were read before; then it adds to the old tree what the reading left), and closing loses the events that were
  /// added when nothing else was written to the file, neither a full basket of events nor a run record.
  TStnEventFile(const char* fname, Option_t* option = "", const char* ftitle = "", Int_t compress = 1);
  /// Closes the file if it has been read or written.
  ~TStnEventFile() override;

  /// Writes what is not on disk yet and closes the file. A file of which no byte was read or written stays open. Header
  /// objects from `ReadEventHeader` stay valid.
  void Close(Option_t* option = "") override;

  /// Number of the entry that was read last, counted from 0; 0 also before the first read. Past the end it is the last
  /// entry of the file.
  UInt_t GetCurrentEntryId() const;
  /// Number of events on file, for a file that is read. A file that is only written answers 0, whatever it holds (or
  /// the position last given to `Seek`).
  UInt_t GetNEvents();

  /// Reads the event at the cursor and moves the cursor on. `*event` is cleared and filled, with what old files got wrong
  /// mended; if it is null, a new event is made, which the file does not delete. False, with a message logged, at the
  /// end of the file (`*event` is empty then) and when the file has no events. A part of the event that is damaged on
  /// file is left out, with a message logged by this class or by ROOT.
  Bool_t ReadEvent(TStnEvent** event);
  /// The same for the event number `pos`, counted from 0.
  Bool_t ReadEvent(TStnEvent** event, unsigned int pos) {
    Seek(pos);
    return ReadEvent(event);
  }
  /// Reads only the event header at the cursor and moves the cursor on. `*header` becomes the file's own header object,
  /// the same at every call: copy what is to be kept, and don't delete it. It is not corrected for faults of old files.
  /// `GetCurrentEntryId()` is the number to give to `ReadEvent` for the rest of this event. `header` must not be null
  /// (assertion). False, with `*header` unchanged, at the end of the file or when the file has no events, with a message
  /// logged, and when the entry can't be read, with a message of this class or of ROOT.
  Bool_t ReadEventHeader(TStnEventHeader** header);
  /// Deletes `*header`, which must be null or an object made with `new`, and makes it the run header on file, which is
  /// then the caller's. False, with `*header` null and a message logged, if there is none.
  Bool_t ReadRunHeader(TStnRunHeader** header);
  /// The same for the run trailer.
  Bool_t ReadRunTrailer(TStnRunTrailer** trailer);

  /// Puts the cursor back to the first event.
  void Rewind() { fCurrentEntry = 0; }
  /// Puts the cursor to the event number `pos`, counted from 0; a number past the end is found out by the next read.
  void Seek(unsigned int pos) { fCurrentEntry = static_cast<Int_t>(pos); }

  /// Sets how much files write to the log: 0 errors only, 1 also set-up, 2 also life cycle and writing, 3 also ROOT's
  /// print-out of the tree, 4 also ROOT's debugging output.
  static void SetPrintLevel(int level = 1) { fgPrintLevel = level; }

  /// Writes a summary of the file for a person to read.
  void Show(std::ostream& str = std::cout);

  /// Adds one entry with the contents of `**event`. The first call fixes both the variable `*event` and the event in it:
  /// the variable is read at every later call and must live until the file is closed, and the same event, refilled, must
  /// be given each time. False, with a message logged and nothing written, for another event and for a file that is not
  /// open for writing. True does not tell that the entry is on disk: see `TFile::kWriteError`.
  Bool_t WriteEvent(TStnEvent** event);
  /// Writes the run header, in place of an earlier one. False for null, and, with a message logged, for a file that is
  /// not open for writing. True does not tell that it is on disk: see `TFile::kWriteError`.
  Bool_t WriteRunHeader(TStnRunHeader* header);
  /// The same for the run trailer.
  Bool_t WriteRunTrailer(TStnRunTrailer* trailer);

 protected:
  /// Deletes all registered files, which closes them, and all registered signal handlers; registered with `atexit`.
  static void ExitHandler();
  /// Binds the event branch to the variable `*event`. False, with a message logged, if a branch is missing.
  Bool_t GetBranches(TStnEvent** event);
  /// Looks the event tree up and counts its entries, once. False, with a message logged, if there is none.
  Bool_t GetTree();
  /// Registers `ExitHandler` with `atexit`, once per process.
  void Setup();

  static std::list<TStnEventFile*> fgFileList;  // files open for writing
  static int fgPrintLevel;  // print level of this class, starts at 0; independent of TStnEvent::fgPrintLevel
  static std::list<TStnEventFileSignalHandler*> fgSignalHandlerList;  // signal handlers to remove at exit

 private:
  friend class TStnEventFileSignalHandler;

  Float_t GetCompressionFactorUncounted();
  template <class T>
  T* GetWhole(const char* name);
  Bool_t IsWritingPossible(const char* what);
  Bool_t MakeTree(TStnEvent** event);
  Bool_t IsEventBranchBound();
  void FillTree();
  Bool_t WriteRecord(const TObject* record, const char* name);
  void EnterDirectory();
  Bool_t IsBasketSound(TBranch& branch, const char* reader);
  Bool_t IsEntryWhole(TBranch& branch, const char* reader);
  void ReadWholeEvent();
  Int_t ReadPartialEvent();

  TBranch* fBranch = nullptr;             // event branch in split level=1
  Int_t fCurrentEntry = 0;                // current entry id on file (read mode): the entry that the next read takes
  TStnEvent* fPartialEvent = nullptr;     // buffer for partial readout
  TStnEvent* fEventBuffer = nullptr;      // backup pointer for branch: the event object seen at the first write
  Int_t fNEntries = 0;                    // number of entries/events in tree, as of GetTree
  TTree* fTree = nullptr;                 // event data tree
  TBranch* fEventHeaderBranch = nullptr;  // the "fEventHeader" sub-branch

  ClassDefOverride(TStnEventFile, 0)
};

#pragma GCC diagnostic pop

#endif
