#ifndef tools_RunCheck_h
#define tools_RunCheck_h

#include "Finding.h"

#include <StnEvent/StnEvent.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <functional>
#include <memory>

namespace StnTools {

/// Compares the events of a run with each other and with its header and trailer. Numbers that nobody filled in, which
/// are 0, agree with everything.
class RunCheck {
 public:
  using Report = std::function<void(const Finding&)>;

  explicit RunCheck(Report report) : fReport(std::move(report)) {}

  /// Takes the header and the trailer, before the events; null if the file has none, which is worth a note.
  void Begin(std::unique_ptr<TStnRunHeader> header, std::unique_ptr<TStnRunTrailer> trailer);
  /// Looks at one event, which must have a header: run, station, number, time, and the mirrors of its traces.
  void Check(std::uint64_t entry, TStnEvent& event);
  /// Compares what is left when all events of the file are known.
  void End(std::uint64_t n_events);

 private:
  void CheckHeader(std::uint64_t entry, const TStnEventHeader& header);
  void CheckTime(std::uint64_t entry, const TStnEventHeader& header);
  void CheckTraces(std::uint64_t entry, TStnEvent& event);
  void RequireEqual(const char* what, std::uint64_t expected, std::uint64_t found,
                    const std::optional<std::uint64_t>& entry);

  Report fReport;
  std::unique_ptr<TStnRunHeader> fHeader;
  std::unique_ptr<TStnRunTrailer> fTrailer;
  std::uint64_t fRunNo = 0;
  std::uint64_t fStnNo = 0;
  std::optional<std::uint64_t> fLastNumber;
};

}  // namespace StnTools

#endif
