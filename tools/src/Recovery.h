#ifndef tools_Recovery_h
#define tools_Recovery_h

#include "BasketTable.h"
#include "OutputFile.h"
#include "RecordFile.h"
#include "TreeRecord.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace StnTools {

/// Brings the contents of a station file together from its records, without its tree if need be, and writes them to
/// another.
///
/// An event is whole if all its parts are in baskets that can be read to the end. The parts of one event are found by
/// counting entries, for which see `BasketTable`; only baskets that could be unpacked and whose counts agree take part.
class Recovery {
 public:
  /// Asked before each step that takes apart what a damaged file holds; if it answers false, the step is left out.
  using Step = std::function<bool(const std::string& step)>;

  /// Lets ROOT describe today's classes by what they are, so that a damaged description of them in a file is not used for
  /// what is written. To be called before the file is looked into.
  static void DescribeClasses();

  /// Finds out what is there. Throws as `RecordFile`, and with `kCannotOpen` if nothing of a station file is.
  Recovery(const std::string& path, const Step& step);

  /// Number of trees in the file; they count from 1.
  std::size_t GetNTrees() const { return fTables.size(); }
  /// Number of events of which anything of a tree is there.
  std::uint64_t GetNEvents(std::size_t tree) const { return fTables.at(tree - 1).GetNEntries(); }
  const RecordFile& GetFile() const { return fFile; }
  /// Baskets of events that are cut or damaged.
  const std::vector<const Record*>& GetBadBaskets() const { return fBadBaskets; }

  /// Told for each event what is missing of it, as "traces, T3 record".
  using Visitor = std::function<void(std::uint64_t entry, const std::string& missing)>;
  /// Reads one event of a tree after the other into `event`, as far as it is there. An event that is left out is empty.
  void ReadEvents(std::size_t tree, TStnEvent& event, const Visitor& visit);

  /// What `Write` did.
  struct Summary {
    std::uint64_t fNWhole = 0;         ///< events that are there with all their parts; all are written
    std::uint64_t fNPartial = 0;       ///< events of which something is missing
    std::uint64_t fNWritten = 0;       ///< events that were written
    bool fHasRunHeader = false;        ///< was one written?
    bool fHasRunTrailer = false;       ///< was one written?
    std::vector<std::string> fLosses;  ///< what is missing, each in one line
  };

  /// Writes the run header, the events of a tree (0 for none) and the run trailer to `output`. Events that are there in
  /// part are written only if `with_partial` is set, and without a header not even then.
  Summary Write(std::size_t tree, bool with_partial, OutputFile& output);

 private:
  void RequireStationFile() const;
  void ReadDescriptions();
  std::vector<BasketKey> FindBaskets();
  std::vector<TreeTable> FindTrees();
  void WriteEvents(std::size_t tree, bool with_partial, OutputFile& output, Summary& summary);
  void AddDamage(Summary& summary) const;
  template <class T>
  std::unique_ptr<T> ReadObject(const std::string& name);

  RecordFile fFile;
  Step fStep;
  std::map<std::uint64_t, TreeRecord> fTrees;  // by place
  std::vector<BasketTable> fTables;
  std::vector<const Record*> fBadBaskets;
  std::set<std::string> fUnknownBranches;  // of events of the future
};

}  // namespace StnTools

#endif
