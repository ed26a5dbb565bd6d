#include "EventAssembler.h"

#include "ByteReader.h"
#include "Messages.h"

#include <TBufferFile.h>
#include <TClass.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>

namespace StnTools {
namespace {

// How an object begins in an entry: a byte count, and, as no entry refers to another, its class by name. Zero is null.
const std::uint64_t kByteCountMask = 0x40000000;
const std::uint64_t kNewClass = 0xffffffff;
const std::size_t kNumberBytes = 4;
const char* const kHeaderBranch = "fEventHeader";
// The other bits of an object come anew with each writing.
const UInt_t kUserBits = 0x00ffc000;

std::size_t GetLeft(const TBufferFile& buffer) {
  return static_cast<std::size_t>(buffer.BufferSize()) - static_cast<std::size_t>(buffer.Length());
}

ByteReader GetBytes(const TBufferFile& buffer) { return {buffer.Buffer() + buffer.Length(), GetLeft(buffer)}; }

// The event's own part of TObject: version, identifier, bits.
bool ReadEventObject(const TBufferFile& buffer, TStnEvent& event) {
  ByteReader bytes = GetBytes(buffer);
  bytes.Skip(2);
  event.SetUniqueID(static_cast<UInt_t>(bytes.Number(4)));
  event.ResetBit(kUserBits);
  event.SetBit(static_cast<UInt_t>(bytes.Number(4)) & kUserBits);
  return bytes.IsGood();
}

bool IsNull(const TBufferFile& buffer) { return GetLeft(buffer) == kNumberBytes && GetBytes(buffer).Number(4) == 0; }

bool IsObjectOf(const TBufferFile& buffer, const std::string& class_name) {
  ByteReader bytes = GetBytes(buffer);
  std::size_t left = GetLeft(buffer);
  if (bytes.Number(4) != (kByteCountMask | (left - kNumberBytes)) || bytes.Number(4) != kNewClass) return false;
  std::size_t with_zero = class_name.size() + 1;
  if (left - bytes.GetPosition() < with_zero) return false;
  const char* name = buffer.Buffer() + buffer.Length() + bytes.GetPosition();
  return std::memcmp(name, class_name.c_str(), with_zero) == 0;
}

// ROOT, too, fills an event by the places of its members.
TObject*& GetMember(TStnEvent& event, const char* name) {
  auto* bytes = reinterpret_cast<char*>(&event) + TStnEvent::Class()->GetDataMemberOffset(name);
  return *reinterpret_cast<TObject**>(bytes);
}

bool ReadMember(TBufferFile& buffer, const char* name, const char* class_name, TStnEvent& event) {
  if (IsNull(buffer)) return true;
  if (!IsObjectOf(buffer, class_name)) return false;
  Messages messages;
  auto* object = static_cast<TObject*>(buffer.ReadObjectAny(TClass::GetClass(class_name)));
  if (object != nullptr && GetLeft(buffer) == 0 && messages.GetFirstError().empty()) {
    GetMember(event, name) = object;
    return true;
  }
  delete object;
  return false;
}

}  // namespace

/// What an event consists of; each has a branch. The first has no class: it is the event's own part of TObject.
struct EventAssembler::Part {
  const char* fBranch;
  const char* fClass;
  const char* fName;
};

const EventAssembler::Part EventAssembler::kParts[] = {{"TObject", "", "event identity"},
                                                       {kHeaderBranch, "TStnEventHeader", "header"},
                                                       {"fFADCData", "TStnFADCData", "traces"},
                                                       {"fPixelList", "TStnPixelList", "pixel list"},
                                                       {"fPixelData", "TStnPixelData", "pixel data"},
                                                       {"fTriggerData", "TStnTriggerData", "trigger record"},
                                                       {"fT3Data", "TStnT3Data", "T3 record"},
                                                       {"fGeometryData", "TStnGeometryData", "geometry record"}};

EventAssembler::EventAssembler(const RecordFile& file, std::map<std::uint64_t, TreeRecord>& trees,
                               const BasketTable& table)
    : fFile(file), fTrees(trees), fTable(table) {
  for (const Record& record : fFile.GetRecords())
    fRecords[record.fSeek] = &record;
}

std::string EventAssembler::Assemble(std::uint64_t entry, TStnEvent& event) {
  event.Clear();
  std::string missing;
  for (const Part& part : kParts) {
    if (!IsExpected(part) || AssemblePart(part, entry, event)) continue;
    missing += (missing.empty() ? "" : ", ") + std::string(part.fName);
  }
  return missing;
}

bool EventAssembler::IsPart(const std::string& branch) {
  return std::any_of(std::begin(kParts), std::end(kParts), [&](const Part& part) { return branch == part.fBranch; });
}

bool EventAssembler::HasHeader(TStnEvent& event) { return GetMember(event, kHeaderBranch) != nullptr; }

// A tree that was saved says which parts its events have; those of older versions had fewer, but all a header.
bool EventAssembler::IsExpected(const Part& part) const {
  return !fTable.IsSaved() || fTable.GetBranches().count(part.fBranch) > 0 ||
         std::strcmp(part.fBranch, kHeaderBranch) == 0;
}

bool EventAssembler::AssemblePart(const Part& part, std::uint64_t entry, TStnEvent& event) {
  const EntryRange* range = fTable.Find(part.fBranch, entry);
  Basket* basket = range == nullptr ? nullptr : GetBasket(part.fBranch, *range);
  if (basket == nullptr || basket->GetNEntries() != range->fEnd - range->fFirst) return false;
  std::unique_ptr<TBufferFile> buffer = basket->GetEntry(static_cast<std::uint32_t>(entry - range->fFirst));
  if (part.fClass[0] == '\0') return ReadEventObject(*buffer, event);
  return ReadMember(*buffer, part.fBranch, part.fClass, event);
}

Basket* EventAssembler::GetBasket(const std::string& branch, const EntryRange& range) {
  if (range.fIsInTree) {
    auto& open = fTrees.at(range.fSeek).fOpenBaskets;
    auto basket = open.find(branch);
    return basket == open.end() ? nullptr : &basket->second;
  }
  Loaded& loaded = fLoaded[branch];
  if (loaded.fSeek != range.fSeek) loaded = {range.fSeek, Basket::Read(fFile, *fRecords.at(range.fSeek))};
  return loaded.fBasket ? &*loaded.fBasket : nullptr;
}

}  // namespace StnTools
