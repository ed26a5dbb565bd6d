#ifndef tools_EventSelection_h
#define tools_EventSelection_h

#include "HeaderSelection.h"
#include "InputFile.h"

#include <functional>
#include <limits>
#include <vector>

namespace StnTools {

/// Which events of a file a user wants: a range of entries, and of these the ones whose headers are wanted. Nothing but
/// headers is read to find them.
class EventSelection {
 public:
  /// Adds the options `--first` and `--count` to a program, and those of `HeaderSelection`.
  void AddOptions(CLI::App& app);

  /// Throws with `kUsage` if the file has no entry to begin at.
  void RequireBegin(const InputFile& file) const;

  using Visitor = std::function<void(UInt_t entry, const TStnEventHeader& header)>;
  /// Shows the headers that are wanted, one after the other. Throws as `RequireBegin` and `InputFile::ReadEventHeader`.
  void Visit(InputFile& file, const Visitor& visit) const;

  /// The entries that are wanted, in ascending order; else as `Visit`.
  std::vector<UInt_t> Choose(InputFile& file) const;

 private:
  UInt_t fFirst = 0;
  UInt_t fCount = std::numeric_limits<UInt_t>::max();
  HeaderSelection fHeaders;
};

}  // namespace StnTools

#endif
