#ifndef tools_TreeRecord_h
#define tools_TreeRecord_h

#include "Basket.h"
#include "BasketTable.h"
#include "RecordFile.h"

#include <map>
#include <optional>
#include <string>

namespace StnTools {

/// A tree as it was saved, read from its record alone.
struct TreeRecord {
  TreeTable fTable;
  /// By branch: the basket that was not full when the tree was saved, if it held entries.
  std::map<std::string, Basket> fOpenBaskets;

  /// None if the record is cut or damaged. Runs ROOT's code on what the record holds.
  static std::optional<TreeRecord> Read(const RecordFile& file, const Record& record);
};

}  // namespace StnTools

#endif
