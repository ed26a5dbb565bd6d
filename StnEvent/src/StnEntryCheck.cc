#include <StnEvent/StnEntryCheck.h>

#include <MrEvent/MrRecordCheck.h>

#include <TBasket.h>
#include <TBranchElement.h>
#include <TBuffer.h>
#include <TClass.h>
#include <TStreamerElement.h>
#include <TStreamerInfo.h>

#include <algorithm>
#include <string>

namespace {

/// The description of what a branch holds; null for a branch of an event as a whole.
const TStreamerElement* FindElement(TBranch& branch) {
  auto* element_branch = dynamic_cast<TBranchElement*>(&branch);
  TStreamerInfo* description = element_branch ? element_branch->GetInfo() : nullptr;
  return description ? static_cast<TStreamerElement*>(description->GetElements()->FindObject(branch.GetName()))
                     : nullptr;
}

bool IsPointer(const TStreamerElement& element) {
  return element.GetType() == TStreamerInfo::kObjectP || element.GetType() == TStreamerInfo::kAnyP;
}

/// The place of the basket that has an entry in the list of baskets; -1 if there is none.
Int_t FindBasket(TBranch& branch, Long64_t entry) {
  const Long64_t* first_entries = branch.GetBasketEntry();
  if (!first_entries || branch.GetWriteBasket() < 0 || branch.GetWriteBasket() >= branch.GetMaxBaskets()) return -1;
  return std::upper_bound(first_entries, first_entries + branch.GetWriteBasket() + 1, entry) - first_entries - 1;
}

/// The number at some place of a buffer, most significant byte first.
UInt_t Peek4(TBuffer& buffer, UInt_t position) {
  UInt_t number = 0;
  buffer.SetBufferOffset(static_cast<Int_t>(position));
  buffer >> number;
  return number;
}

/// One basket in memory, with where its entries begin.
struct Basket {
  explicit Basket(TBasket& basket)
      : fBuffer(*basket.GetBufferRef()),
        fOffsets(basket.GetEntryOffset()),
        fNEntries(basket.GetNevBuf()),
        fBegin(basket.GetKeylen()),
        fEnd(basket.GetLast()),
        fHasTable(basket.GetSeekKey() != 0 && basket.GetKeylen() + basket.GetObjlen() > basket.GetLast()) {}

  bool HasEntry(UInt_t index) const {
    const UInt_t size = fBuffer.BufferSize();
    if (index >= fNEntries || fEnd > size) return false;
    // Behind the last entry stands the table of offsets with its length, of which ROOT keeps no note.
    if (fHasTable && (fEnd + 4 > size || Peek4(fBuffer, fEnd) < fNEntries)) return false;
    return GetBegin(index) >= fBegin && GetBegin(index) <= GetEnd(index) && GetEnd(index) <= fEnd;
  }
  UInt_t GetBegin(UInt_t index) const { return fOffsets[index]; }
  UInt_t GetEnd(UInt_t index) const { return index + 1 < fNEntries ? fOffsets[index + 1] : fEnd; }

  TBuffer& fBuffer;
  const Int_t* fOffsets;
  UInt_t fNEntries;
  UInt_t fBegin;
  UInt_t fEnd;
  bool fHasTable;
};

}  // namespace

bool IsEntrySound(TBranch& branch, Long64_t entry) {
  const TStreamerElement* element = FindElement(branch);
  if (!element || entry < 0 || entry >= branch.GetEntries()) return true;
  const bool is_pointer = IsPointer(*element);
  TClass* cl = element->GetClassPointer();
  if (!cl || (!is_pointer && element->GetType() != TStreamerInfo::kTObject)) return true;
  const Int_t number = FindBasket(branch, entry);
  TBasket* in_memory = number < 0 ? nullptr : branch.GetBasket(number);
  if (!in_memory || !in_memory->GetBufferRef() || !in_memory->GetBufferRef()->IsReading()) return true;
  if (!in_memory->GetEntryOffset()) return true;

  const Basket basket(*in_memory);
  const auto index = static_cast<UInt_t>(entry - branch.GetBasketEntry()[number]);
  if (!basket.HasEntry(index))
    return MrRecordCheck::Refuse(cl, "place of entry " + std::to_string(entry), "none", "one inside its basket");
  // Offsets that were moved belong to baskets that were copied from other trees, which no file of ours has.
  if (in_memory->GetDisplacement()) return true;
  basket.fBuffer.ResetMap();
  basket.fBuffer.SetBufferDisplacement();
  basket.fBuffer.SetBufferOffset(static_cast<Int_t>(basket.GetBegin(index)));
  MrRecordCheck record(basket.fBuffer, basket.GetEnd(index), cl);
  return is_pointer ? record.HasPointer() : record.SkipObject();
}
