#include "Recovery.h"

#include "Basket.h"
#include "EntryGaps.h"
#include "EventAssembler.h"
#include "Messages.h"
#include "ToolError.h"

#include <TBufferFile.h>
#include <TClass.h>
#include <TList.h>
#include <TStreamerInfo.h>

#include <algorithm>

namespace StnTools {
namespace {

const char* const kTreeName = "StnEventTree";
const char* const kClasses[] = {"TStnEvent",         "TStnEventHeader",  "TStnFADCData",     "TFADCData",
                                "TStnPixelList",     "TStnPixelData",    "TMirrorPixelData", "TStnTriggerData",
                                "TStnT3Data",        "TStnGeometryData", "TStnRunHeader",    "TStnRunTrailer",
                                "VdRoot::TTimeStamp"};

bool IsTree(const Record& record) { return record.fClass == "TTree" && record.fName == kTreeName; }
bool IsBasket(const Record& record) { return record.IsBasket() && record.fTitle == kTreeName; }
bool IsRunRecord(const Record& record) {
  return record.fClass == TStnRunHeader::Class_Name() || record.fClass == TStnRunTrailer::Class_Name();
}

// Fills an object from a record; false if it is damaged.
bool ReadInto(TObject& object, const RecordFile& file, const Record& record) {
  auto bytes = file.Read(record);
  if (!bytes) return false;
  TBufferFile buffer(TBuffer::kRead, static_cast<Int_t>(bytes->size()), bytes->data(), false);
  buffer.SetBufferOffset(static_cast<Int_t>(record.fKeySize));
  Messages messages;
  object.Streamer(buffer);
  return buffer.Length() == buffer.BufferSize() && messages.GetFirstError().empty();
}

}  // namespace

void Recovery::DescribeClasses() {
  for (const char* name : kClasses)
    TClass::GetClass(name)->GetStreamerInfo();
}

Recovery::Recovery(const std::string& path, const Step& step) : fFile(path), fStep(step) {
  RequireStationFile();
  ReadDescriptions();
  std::vector<BasketKey> baskets = FindBaskets();
  fTables = BasketTable::Sort(baskets, FindTrees());
}

void Recovery::RequireStationFile() const {
  const auto& records = fFile.GetRecords();
  bool is_ours = std::any_of(records.begin(), records.end(), [](const Record& record) {
    return IsTree(record) || IsBasket(record) || IsRunRecord(record);
  });
  if (is_ours) return;
  throw ToolError(kCannotOpen, fFile.GetPath() +
                                   " holds nothing of a station file, neither events nor run records; "
                                   "name a station file");
}

// Files describe the classes as they were; where the description did not reach the disk, today's holds.
void Recovery::ReadDescriptions() {
  for (const Record& record : fFile.GetRecords()) {
    if (record.fName != "StreamerInfo" || record.fClass != "TList") continue;
    if (!fStep("the description of the classes at byte " + std::to_string(record.fSeek))) continue;
    TList descriptions;
    descriptions.SetOwner();
    if (!ReadInto(descriptions, fFile, record)) continue;
    for (TObject* object : descriptions) {
      auto* description = dynamic_cast<TStreamerInfo*>(object);
      if (description != nullptr) description->BuildCheck();
    }
    descriptions.Clear("nodelete");
  }
}

std::vector<BasketKey> Recovery::FindBaskets() {
  std::vector<BasketKey> baskets;
  for (const Record& record : fFile.GetRecords()) {
    if (!IsBasket(record)) continue;
    if (!EventAssembler::IsPart(record.fName)) {
      fUnknownBranches.insert(record.fName);
      continue;
    }
    bool is_good = fStep("the basket at byte " + std::to_string(record.fSeek)) && Basket::Read(fFile, record);
    if (is_good)
      baskets.push_back({record.fName, record.fCycle, record.fSeek, record.fNEntries});
    else
      fBadBaskets.push_back(&record);
  }
  return baskets;
}

std::vector<TreeTable> Recovery::FindTrees() {
  std::vector<TreeTable> tables;
  for (const Record& record : fFile.GetRecords()) {
    if (!IsTree(record) || !fStep("the tree at byte " + std::to_string(record.fSeek))) continue;
    Messages messages;
    auto tree = TreeRecord::Read(fFile, record);
    if (!tree) continue;
    tables.push_back(tree->fTable);
    fTrees.emplace(record.fSeek, std::move(*tree));
  }
  return tables;
}

// The newest that can be read.
template <class T>
std::unique_ptr<T> Recovery::ReadObject(const std::string& name) {
  const auto& records = fFile.GetRecords();
  for (auto record = records.rbegin(); record != records.rend(); ++record) {
    if (record->fName != name || record->fClass != T::Class_Name()) continue;
    if (!fStep("the record at byte " + std::to_string(record->fSeek))) continue;
    auto object = std::make_unique<T>();
    if (ReadInto(*object, fFile, *record)) return object;
  }
  return nullptr;
}

Recovery::Summary Recovery::Write(std::size_t tree, bool with_partial, OutputFile& output) {
  Summary summary;
  auto header = ReadObject<TStnRunHeader>("RunHeader");
  auto trailer = ReadObject<TStnRunTrailer>("RunTrailer");
  if (header) output.WriteRunHeader(*header);
  if (tree > 0) WriteEvents(tree, with_partial, output, summary);
  if (trailer) output.WriteRunTrailer(*trailer);
  summary.fHasRunHeader = header != nullptr;
  summary.fHasRunTrailer = trailer != nullptr;
  AddDamage(summary);
  return summary;
}

void Recovery::ReadEvents(std::size_t tree, TStnEvent& event, const Visitor& visit) {
  const BasketTable& table = fTables.at(tree - 1);
  EventAssembler assembler(fFile, fTrees, table);
  for (std::uint64_t entry = 0; entry < table.GetNEntries(); ++entry) {
    event.Clear();
    bool is_tried = fStep("the parts of event " + std::to_string(entry));
    visit(entry, is_tried ? assembler.Assemble(entry, event) : "what ROOT cannot read");
  }
}

void Recovery::WriteEvents(std::size_t tree, bool with_partial, OutputFile& output, Summary& summary) {
  EntryGaps gaps;
  TStnEvent& event = output.GetEvent();
  ReadEvents(tree, event, [&](std::uint64_t entry, const std::string& missing) {
    ++(missing.empty() ? summary.fNWhole : summary.fNPartial);
    if (!missing.empty()) gaps.Add(entry, missing);
    if (!missing.empty() && !(with_partial && EventAssembler::HasHeader(event))) return;
    output.WriteEvent();
    ++summary.fNWritten;
  });
  for (const EntryGaps::Gap& gap : gaps.Get())
    summary.fLosses.push_back(gap.GetName() + " not whole, missing: " + gap.fMissing);
  if (std::uint32_t n_unplaced = fTables.at(tree - 1).GetNUnplaced()) {
    summary.fLosses.push_back(std::to_string(n_unplaced) +
                              " baskets belong to no event for certain, as others before them are lost");
  }
}

void Recovery::AddDamage(Summary& summary) const {
  for (const std::string& branch : fUnknownBranches)
    summary.fLosses.push_back("the branch " + branch + ", which today's events do not have, was left out");
  if (!fBadBaskets.empty())
    summary.fLosses.push_back(std::to_string(fBadBaskets.size()) + " baskets are damaged or cut");
  std::uint64_t n_bytes = 0;
  for (const Stretch& stretch : fFile.GetLost())
    n_bytes += stretch.fEnd - stretch.fBegin;
  if (n_bytes > 0) summary.fLosses.push_back(std::to_string(n_bytes) + " bytes of the file belong to no record");
}

}  // namespace StnTools
