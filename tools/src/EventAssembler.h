#ifndef tools_EventAssembler_h
#define tools_EventAssembler_h

#include "Basket.h"
#include "BasketTable.h"
#include "RecordFile.h"
#include "TreeRecord.h"

#include <StnEvent/StnEvent.h>

#include <map>
#include <optional>
#include <string>

class TBufferFile;

namespace StnTools {

/// Puts events together from the baskets of their parts.
class EventAssembler {
 public:
  /// `file`, `trees` (the saved ones by their places) and `table` must live as long as this.
  EventAssembler(const RecordFile& file, std::map<std::uint64_t, TreeRecord>& trees, const BasketTable& table);

  /// Clears `event` and fills it with what is there of an entry. Answers what is missing, as "traces, T3 record".
  std::string Assemble(std::uint64_t entry, TStnEvent& event);

  /// Is a branch one of those that events are put together from?
  static bool IsPart(const std::string& branch);

  /// Is there a header in `event`? In contrast to the event's own operation, this makes none.
  static bool HasHeader(TStnEvent& event);

 private:
  struct Part;
  static const Part kParts[];

  bool IsExpected(const Part& part) const;
  bool AssemblePart(const Part& part, std::uint64_t entry, TStnEvent& event);
  Basket* GetBasket(const std::string& branch, const EntryRange& range);

  struct Loaded {
    std::uint64_t fSeek = 0;
    std::optional<Basket> fBasket;
  };

  const RecordFile& fFile;
  std::map<std::uint64_t, TreeRecord>& fTrees;
  const BasketTable& fTable;
  std::map<std::uint64_t, const Record*> fRecords;  // by place
  std::map<std::string, Loaded> fLoaded;            // the basket of each branch that was asked for last
};

}  // namespace StnTools

#endif
