#include "BasketTable.h"

#include <algorithm>
#include <cstdlib>

namespace StnTools {
namespace {

const std::int64_t kNumberPeriod = 65536;
// Free space that is used again puts baskets a little out of order, never by so many.
const std::int64_t kFarApart = kNumberPeriod / 4;

using Slots = std::map<std::int64_t, BranchRecord::Slot>;
using Ranges = std::map<std::int64_t, EntryRange>;

// Baskets and saved states of one tree.
struct Content {
  std::map<std::string, NumberedBaskets> fBaskets;
  std::set<std::uint64_t> fSeeks;  // of all baskets
  std::vector<TreeTable> fTrees;
  std::uint32_t fNRefused = 0;
};

// The number that a basket would have if it were counted on from those before it.
std::int64_t CountOn(const NumberedBaskets& before, int number) {
  if (before.empty()) return number;
  std::int64_t expected = before.rbegin()->first + 1;
  std::int64_t counted = expected - expected % kNumberPeriod + number;
  for (std::int64_t near : {counted - kNumberPeriod, counted, counted + kNumberPeriod})
    if (near >= 0 && std::abs(near - expected) < kFarApart) return near;
  return number;
}

// A branch begins again with a new tree, and then goes on from there.
bool IsRestart(const std::vector<BasketKey>& baskets, std::size_t i) {
  if (baskets[i].fNumber != 0) return false;
  for (std::size_t next = i + 1; next < baskets.size(); ++next)
    if (baskets[next].fBranch == baskets[i].fBranch) return baskets[next].fNumber == 1;
  return true;
}

std::vector<Content> SortBaskets(const std::vector<BasketKey>& baskets) {
  std::vector<Content> contents(baskets.empty() ? 0 : 1);
  for (std::size_t i = 0; i < baskets.size(); ++i) {
    const BasketKey& basket = baskets[i];
    const NumberedBaskets& before = contents.back().fBaskets[basket.fBranch];
    std::int64_t number = CountOn(before, basket.fNumber);
    if (before.count(number) > 0 && IsRestart(baskets, i)) {
      contents.emplace_back();
      number = 0;
    }
    Content& content = contents.back();
    bool is_new = content.fBaskets[basket.fBranch].emplace(number, basket).second;
    content.fSeeks.insert(basket.fSeek);
    content.fNRefused += is_new ? 0 : 1;
  }
  return contents;
}

bool Knows(const TreeTable& tree, const Content& content) {
  for (const auto& branch : tree.fBranches) {
    for (const auto& slot : branch.second.fSlots)
      if (slot.fSeek != 0 && content.fSeeks.count(slot.fSeek) > 0) return true;
  }
  return false;
}

bool HasBaskets(const TreeTable& tree) {
  return std::any_of(tree.fBranches.begin(), tree.fBranches.end(), [](const auto& branch) {
    return std::any_of(branch.second.fSlots.begin(), branch.second.fSlots.end(),
                       [](const BranchRecord::Slot& slot) { return slot.fSeek != 0; });
  });
}

// A tree belongs to the baskets that it names; saved before the first of them was full, to those that follow it.
void AddTree(const TreeTable& tree, std::vector<Content>& contents) {
  for (Content& content : contents) {
    if (Knows(tree, content) ||
        (!HasBaskets(tree) && !content.fSeeks.empty() && tree.fSeek < *content.fSeeks.begin())) {
      content.fTrees.push_back(tree);
      return;
    }
  }
  contents.emplace_back();
  contents.back().fTrees.push_back(tree);
}

// What all saved states of a tree together say of a branch.
Slots MergeSlots(const std::string& branch, const std::vector<TreeTable>& trees) {
  Slots slots;
  for (const TreeTable& tree : trees) {
    auto record = tree.fBranches.find(branch);
    if (record == tree.fBranches.end()) continue;
    const auto& saved = record->second.fSlots;
    // Where a later state knows the place of a basket, an earlier one may have met it before it was full.
    for (std::size_t number = 0; number < saved.size(); ++number)
      if (slots.count(number) == 0 || slots[number].fSeek == 0) slots[number] = saved[number];
  }
  return slots;
}

// The number that a saved tree gives a basket counts more than that in the basket's key.
NumberedBaskets Renumber(const NumberedBaskets& baskets, const Slots& slots) {
  std::map<std::uint64_t, std::int64_t> numbers;
  for (const auto& slot : slots)
    if (slot.second.fSeek != 0) numbers[slot.second.fSeek] = slot.first;
  NumberedBaskets renumbered;
  for (const auto& basket : baskets) {
    auto number = numbers.find(basket.second.fSeek);
    renumbered.emplace(number == numbers.end() ? basket.first : number->second, basket.second);
  }
  return renumbered;
}

std::optional<std::uint64_t> FindFirst(std::int64_t number, const Slots& slots, const Ranges& placed) {
  auto slot = slots.find(number);
  if (slot != slots.end()) return slot->second.fFirst;
  auto before = placed.find(number - 1);
  if (before != placed.end()) return before->second.fEnd;
  return number == 0 ? std::optional<std::uint64_t>(0) : std::nullopt;
}

// Places every basket whose first entry is known.
Ranges PlaceBaskets(const NumberedBaskets& baskets, const Slots& slots) {
  Ranges ranges;
  for (const auto& [number, basket] : Renumber(baskets, slots)) {
    std::optional<std::uint64_t> first = FindFirst(number, slots, ranges);
    if (!first) continue;
    auto next = slots.find(number + 1);
    if (next != slots.end() && next->second.fFirst != *first + basket.fNEntries) continue;
    ranges[number] = {*first, *first + basket.fNEntries, basket.fSeek, false};
  }
  return ranges;
}

void AddSavedEntries(const std::string& branch, const TreeTable& tree, Ranges& ranges) {
  auto record = tree.fBranches.find(branch);
  if (record == tree.fBranches.end() || record->second.fNSaved == 0 || record->second.fSlots.empty()) return;
  std::uint64_t first = record->second.fSlots.back().fFirst;
  EntryRange saved = {first, first + record->second.fNSaved, tree.fSeek, true};
  auto place = ranges.emplace(static_cast<std::int64_t>(record->second.fSlots.size()) - 1, saved).first;
  if (place->second.fEnd < saved.fEnd) place->second = saved;
}

}  // namespace

std::vector<BasketTable> BasketTable::Sort(const std::vector<BasketKey>& baskets, const std::vector<TreeTable>& trees) {
  std::vector<Content> contents = SortBaskets(baskets);
  for (const TreeTable& tree : trees)
    AddTree(tree, contents);
  std::vector<BasketTable> tables;
  for (const Content& content : contents) {
    BasketTable table;
    table.fIsSaved = !content.fTrees.empty();
    table.fNUnplaced = content.fNRefused;
    for (const TreeTable& tree : content.fTrees)
      for (const auto& branch : tree.fBranches)
        table.fBranches.insert(branch.first);
    for (const auto& branch : content.fBaskets)
      table.fBranches.insert(branch.first);
    for (const std::string& branch : table.fBranches) {
      auto known = content.fBaskets.find(branch);
      table.Place(branch, known == content.fBaskets.end() ? NumberedBaskets() : known->second, content.fTrees);
    }
    tables.push_back(table);
  }
  return tables;
}

void BasketTable::Place(const std::string& branch, const NumberedBaskets& baskets,
                        const std::vector<TreeTable>& trees) {
  Ranges ranges = PlaceBaskets(baskets, MergeSlots(branch, trees));
  fNUnplaced += static_cast<std::uint32_t>(baskets.size() - ranges.size());
  for (const TreeTable& tree : trees)
    AddSavedEntries(branch, tree, ranges);
  std::vector<EntryRange>& placed = fRanges[branch];
  for (const auto& range : ranges) {
    // What claims entries that others have can't be right.
    bool is_new = placed.empty() || placed.back().fEnd <= range.second.fFirst;
    if (is_new) placed.push_back(range.second);
    fNUnplaced += is_new ? 0 : 1;
  }
}

std::uint64_t BasketTable::GetNEntries() const {
  std::uint64_t n_entries = 0;
  for (const auto& ranges : fRanges)
    if (!ranges.second.empty()) n_entries = std::max(n_entries, ranges.second.back().fEnd);
  return n_entries;
}

const EntryRange* BasketTable::Find(const std::string& branch, std::uint64_t entry) const {
  auto ranges = fRanges.find(branch);
  if (ranges == fRanges.end()) return nullptr;
  auto behind = std::upper_bound(ranges->second.begin(), ranges->second.end(), entry,
                                 [](std::uint64_t number, const EntryRange& range) { return number < range.fFirst; });
  if (behind == ranges->second.begin()) return nullptr;
  const EntryRange& range = *std::prev(behind);
  return entry < range.fEnd ? &range : nullptr;
}

}  // namespace StnTools
