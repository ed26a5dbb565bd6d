#ifndef tools_BasketTable_h
#define tools_BasketTable_h

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace StnTools {

/// A basket as the table needs to know it.
struct BasketKey {
  std::string fBranch;
  int fNumber;          ///< number in its branch, modulo 65536
  std::uint64_t fSeek;  ///< where it lies
  std::uint32_t fNEntries;
};

/// What a saved tree says of the baskets of one branch.
struct BranchRecord {
  /// For each basket number that the tree knows the first entry, and where the basket lies: 0 for one that was still
  /// being filled.
  struct Slot {
    std::uint64_t fFirst;
    std::uint64_t fSeek;
  };
  std::vector<Slot> fSlots;
  std::uint32_t fNSaved = 0;  ///< entries in the last slot's basket that were saved with the tree
};

/// A saved tree.
struct TreeTable {
  std::uint64_t fSeek = 0;
  std::map<std::string, BranchRecord> fBranches;
};

/// Where some consecutive entries of a branch are.
struct EntryRange {
  std::uint64_t fFirst;
  std::uint64_t fEnd;
  std::uint64_t fSeek;  ///< of the basket or, for entries saved with a tree, of the tree
  bool fIsInTree;
};

/// The baskets of one branch by their numbers, counted on beyond 65535.
using NumberedBaskets = std::map<std::int64_t, BasketKey>;

/// Finds out which entries of a tree lie where. The entries of a branch are counted over its baskets, whose numbers
/// tell the order and that none is missing; behind a missing one they can be counted only if a saved tree says how many
/// it had.
class BasketTable {
 public:
  /// The trees of a file, in the order in which they were begun: one, or more if a file was opened again and given a
  /// new tree. `baskets` and `trees` in the order of the file.
  static std::vector<BasketTable> Sort(const std::vector<BasketKey>& baskets, const std::vector<TreeTable>& trees);

  const std::set<std::string>& GetBranches() const { return fBranches; }
  /// Are the branches known from a saved tree, and so all of them?
  bool IsSaved() const { return fIsSaved; }
  /// Number of the last entry of any branch, increased by one.
  std::uint64_t GetNEntries() const;
  /// Where an entry of a branch is; null if it is lost.
  const EntryRange* Find(const std::string& branch, std::uint64_t entry) const;
  /// Baskets whose entries could not be numbered.
  std::uint32_t GetNUnplaced() const { return fNUnplaced; }

 private:
  void Place(const std::string& branch, const NumberedBaskets& baskets, const std::vector<TreeTable>& trees);

  std::set<std::string> fBranches;
  bool fIsSaved = false;
  std::map<std::string, std::vector<EntryRange>> fRanges;  // ascending by entry
  std::uint32_t fNUnplaced = 0;
};

}  // namespace StnTools

#endif
