#ifndef tools_RunCopy_h
#define tools_RunCopy_h

#include "ChecksumList.h"
#include "InputFile.h"
#include "OutputFile.h"

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace StnTools {

/// Copies events of one run of one station from one or more files to a new one, in the order of the files and entries.
///
/// Each event is read whole, and its checksums are taken. When all are written, the new file is read again, and only if
/// every event has come back does it get its name.
///
/// Of the run headers the first is kept, of the run trailers the one that ends last, with the number of events counted
/// anew. What else they tell is of the run and not of the file, and stays. A warning names those that are not kept
/// although they differ.
class RunCopy {
 public:
  /// Copies from `inputs`, at least one, to `output`. `program` is the name that stands before messages. Throws if the
  /// output must not be written (see `OutputFile`), and with `kUsage` if it would overwrite an input.
  RunCopy(const std::string& program, const std::vector<std::string>& inputs, const std::string& output, bool force);

  /// Says which entries of a file are wanted, in ascending order.
  using Choice = std::function<std::vector<UInt_t>(InputFile& file)>;

  /// Copies what is wanted and says in one line what was written; once only. The answer is `kDamage` if a file had to be
  /// recovered, else `kFine`. Throws as `InputFile` and `OutputFile`, and with `kUsage` if there are several runs or
  /// stations, if files share an event number, or if there is nothing to write. Numbers that nobody filled in, which are
  /// 0, agree with everything. Nothing is left of the output then.
  ExitCode Run(const Choice& choice);

 private:
  /// A number that must be the same everywhere, and who had it first.
  struct Common {
    const char* fName;
    UInt_t fValue;
    std::string fOwner;
  };

  void Add(const std::string& path, const Choice& choice);
  void AddRunHeader(InputFile& file);
  void AddRunTrailer(InputFile& file);
  void AddEvent(InputFile& file, UInt_t entry);
  void RequireSame(Common& common, UInt_t value, const std::string& owner);
  void RequireOneRun(UInt_t run, UInt_t station, const std::string& owner);
  void RequireNewNumber(const std::string& path, UInt_t entry, UInt_t number);
  void RequireContent() const;
  void Check(const std::string& part) const;
  void Warn(const std::string& text) const;

  std::string fProgram;
  std::vector<std::string> fInputs;
  std::string fOutputName;
  OutputFile fOutput;
  std::size_t fCurrent = 0;  // the input that is being read
  ExitCode fState = kFine;
  UInt_t fNRead = 0;
  Common fRun = {"run", 0, ""};
  Common fStation = {"station", 0, ""};
  std::unique_ptr<TStnRunHeader> fHeader;
  std::string fHeaderOwner;
  std::unique_ptr<TStnRunTrailer> fTrailer;
  std::string fTrailerOwner;
  std::unordered_map<UInt_t, std::size_t> fNumberOwner;  // event numbers, each with the input that has it
  ChecksumList fChecksums;
};

}  // namespace StnTools

#endif
