#ifndef tools_FileCheck_h
#define tools_FileCheck_h

#include "Finding.h"
#include "InputFile.h"
#include "Recovery.h"
#include "RunCheck.h"

#include <functional>
#include <memory>
#include <string>

namespace StnTools {

/// Reads everything in a station file, by its records and through the library, and reports what does not agree.
class FileCheck {
 public:
  /// Asked before each step that takes apart what a damaged file holds; if it answers false, the step is left out.
  using Step = std::function<bool(const std::string& step)>;
  using Report = std::function<void(const Finding&)>;

  FileCheck(const std::string& path, Step step, Report report)
      : fPath(path), fStep(std::move(step)), fReport(std::move(report)) {}

  /// Checks the file and answers the number of events that could be read. Throws a `ToolError` with `kCannotOpen` if it
  /// is no station file.
  std::uint64_t Run();

 private:
  void CheckEnd(const RecordFile& file);
  void CheckRecords(const RecordFile& file);
  void CheckParts(Recovery& records);
  std::unique_ptr<InputFile> Open();
  std::uint64_t CheckEvents(InputFile& file);
  bool CheckEvent(InputFile& file, UInt_t entry, RunCheck& run);
  void CheckBaskets(const Recovery& records);
  template <class Read>
  bool Try(const std::string& what, const std::optional<std::uint64_t>& entry, const Read& read);

  std::string fPath;
  Step fStep;
  Report fReport;
  std::uint64_t fNEntries = 0;  // of the events that the baskets hold
};

}  // namespace StnTools

#endif
