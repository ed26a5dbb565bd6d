#include "TreeRecord.h"

#include <TBasket.h>
#include <TBranch.h>
#include <TBufferFile.h>
#include <TDirectory.h>
#include <TTree.h>

#include <memory>

namespace StnTools {
namespace {

std::unique_ptr<TTree> ReadTree(std::vector<char>& bytes, std::uint64_t begin) {
  // No directory shall take the tree over.
  TDirectory::TContext no_directory(nullptr);
  TBufferFile buffer(TBuffer::kRead, static_cast<Int_t>(bytes.size()), bytes.data(), false);
  buffer.SetBufferOffset(static_cast<Int_t>(begin));
  auto tree = std::make_unique<TTree>();
  // The branches refer back to it.
  buffer.MapObject(tree.get(), TTree::Class());
  tree->Streamer(buffer);
  bool is_read = buffer.Length() == static_cast<Int_t>(bytes.size());
  return is_read ? std::move(tree) : nullptr;
}

BranchRecord DescribeBranch(TBranch& branch) {
  BranchRecord record;
  for (Int_t number = 0; number <= branch.GetWriteBasket() && number < branch.GetMaxBaskets(); ++number) {
    record.fSlots.push_back({static_cast<std::uint64_t>(branch.GetBasketEntry()[number]),
                             static_cast<std::uint64_t>(branch.GetBasketSeek(number))});
  }
  return record;
}

void AddBranch(TBranch& branch, TreeRecord& tree) {
  BranchRecord& record = tree.fTable.fBranches[branch.GetName()] = DescribeBranch(branch);
  auto* open = dynamic_cast<TBasket*>(branch.GetListOfBaskets()->At(branch.GetWriteBasket()));
  std::optional<Basket> basket = open == nullptr ? std::nullopt : Basket::Copy(*open);
  if (!basket) return;
  record.fNSaved = basket->GetNEntries();
  tree.fOpenBaskets.emplace(branch.GetName(), std::move(*basket));
}

void AddBranches(const TObjArray& branches, TreeRecord& tree) {
  for (TObject* object : branches) {
    auto* branch = dynamic_cast<TBranch*>(object);
    if (branch == nullptr) continue;
    AddBranches(*branch->GetListOfBranches(), tree);
    // A branch that is split has no entries of its own.
    if (branch->GetListOfBranches()->IsEmpty()) AddBranch(*branch, tree);
  }
}

}  // namespace

std::optional<TreeRecord> TreeRecord::Read(const RecordFile& file, const Record& record) {
  std::optional<std::vector<char>> bytes = file.Read(record);
  if (!bytes) return {};
  std::unique_ptr<TTree> tree = ReadTree(*bytes, record.fKeySize);
  if (!tree) return {};
  TreeRecord read;
  read.fTable.fSeek = record.fSeek;
  AddBranches(*tree->GetListOfBranches(), read);
  return read;
}

}  // namespace StnTools
