#include "FileCheck.h"

#include "EntryGaps.h"
#include "EventChecksum.h"
#include "Recovery.h"
#include "ToolError.h"

#include <algorithm>

namespace StnTools {
namespace {

Finding MakeDamage(const std::string& what, const std::string& expected, const std::string& found) {
  Finding finding;
  finding.fWhat = what;
  finding.fExpected = expected;
  finding.fFound = found;
  return finding;
}

std::string GetBytes(std::uint64_t n) { return std::to_string(n) + " bytes"; }

Finding DescribeDamage(const Record& record) {
  Finding finding = MakeDamage(record.fClass + " at byte " + std::to_string(record.fSeek),
                               GetBytes(record.fSize) + " that can be unpacked",
                               record.fIsWhole ? "damaged bytes" : "the end of the file");
  finding.fBranch = record.fName;
  return finding;
}

}  // namespace

std::uint64_t FileCheck::Run() {
  Recovery records(fPath, fStep);
  CheckEnd(records.GetFile());
  CheckRecords(records.GetFile());
  CheckBaskets(records);
  CheckParts(records);
  std::unique_ptr<InputFile> file = Open();
  return file ? CheckEvents(*file) : 0;
}

void FileCheck::CheckEnd(const RecordFile& file) {
  const FileFrame& frame = file.GetFrame();
  if (frame.IsCutShort()) {
    fReport(MakeDamage("size of the file", GetBytes(frame.fEnd), GetBytes(frame.fSize)));
  } else if (frame.fEnd == 0) {
    fReport(MakeDamage("end of the file", "written by its writer", "none"));
  }
}

void FileCheck::CheckRecords(const RecordFile& file) {
  for (const Stretch& stretch : file.GetLost()) {
    // Behind its end a file may have bytes that were given up.
    std::uint64_t end = std::min(stretch.fEnd, file.GetFrame().fEnd);
    if (stretch.fBegin >= end) continue;
    fReport(MakeDamage("bytes " + std::to_string(stretch.fBegin) + " to " + std::to_string(end - 1),
                       "records or free space", "something else"));
  }
  for (const Record& record : file.GetRecords()) {
    if (record.IsBasket()) continue;
    std::string what = record.fClass + " " + record.fName + " at byte " + std::to_string(record.fSeek);
    if (fStep(what) && !file.Read(record)) fReport(DescribeDamage(record));
  }
}

void FileCheck::CheckBaskets(const Recovery& records) {
  for (const Record* record : records.GetBadBaskets())
    fReport(DescribeDamage(*record));
  if (records.GetNTrees() > 0) fNEntries = records.GetNEvents(records.GetNTrees());
}

void FileCheck::CheckParts(Recovery& records) {
  if (records.GetNTrees() == 0) return;
  TStnEvent event;
  EntryGaps gaps;
  records.ReadEvents(records.GetNTrees(), event, [&gaps](std::uint64_t entry, const std::string& missing) {
    if (!missing.empty()) gaps.Add(entry, missing);
  });
  for (const EntryGaps::Gap& gap : gaps.Get()) {
    Finding finding = MakeDamage("baskets", "all parts", "no " + gap.fMissing);
    finding.fEntry = gap.fFirst;
    finding.fLastEntry = gap.fLast;
    fReport(finding);
  }
}

template <class Read>
bool FileCheck::Try(const std::string& what, const std::optional<std::uint64_t>& entry, const Read& read) {
  if (!fStep(entry ? what + " " + std::to_string(*entry) : what)) return false;
  try {
    read();
    return true;
  } catch (const ToolError& error) {
    if (error.GetCode() == kCannotOpen) throw;
    Finding finding = MakeDamage("reading " + what, "no error", error.what());
    finding.fEntry = entry;
    fReport(finding);
    return false;
  }
}

std::unique_ptr<InputFile> FileCheck::Open() {
  std::unique_ptr<InputFile> file;
  Try("the file", {}, [&] { file = std::make_unique<InputFile>("stn-check", fPath); });
  if (file && file->GetState() != kFine)
    fReport(MakeDamage("reading the file", "as it is", "only after a recovery by ROOT"));
  return file;
}

std::uint64_t FileCheck::CheckEvents(InputFile& file) {
  if (file.GetNEvents() != fNEntries)
    fReport(MakeDamage("events by the tree", std::to_string(fNEntries), std::to_string(file.GetNEvents())));
  std::unique_ptr<TStnRunHeader> header;
  std::unique_ptr<TStnRunTrailer> trailer;
  if (file.HasRunHeader()) Try("the run header", {}, [&] { header = file.ReadRunHeader(); });
  if (file.HasRunTrailer()) Try("the run trailer", {}, [&] { trailer = file.ReadRunTrailer(); });
  RunCheck run(fReport);
  run.Begin(std::move(header), std::move(trailer));
  std::uint64_t n_read = 0;
  for (UInt_t entry = 0; entry < file.GetNEvents(); ++entry)
    n_read += CheckEvent(file, entry, run) ? 1 : 0;
  run.End(file.GetNEvents());
  return n_read;
}

bool FileCheck::CheckEvent(InputFile& file, UInt_t entry, RunCheck& run) {
  return Try("event", entry, [&] {
    TStnEvent& event = *file.ReadEvent(entry);
    run.Check(entry, event);
    // Goes over all that an event holds, also over what is worked out only when it is asked for.
    ComputeChecksum(event);
  });
}

}  // namespace StnTools
