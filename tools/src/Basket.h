#ifndef tools_Basket_h
#define tools_Basket_h

#include "RecordFile.h"

#include <memory>
#include <optional>
#include <vector>

class TBasket;
class TBufferFile;

namespace StnTools {

/// The entries of one branch that lie together on disk, read without the tree.
class Basket {
 public:
  /// The basket of a record; none if it is cut or damaged, or if its entries do not lie in it one behind the other.
  static std::optional<Basket> Read(const RecordFile& file, const Record& record);
  /// One that was not full yet when its tree was saved, and so was saved with the tree. Its bytes are copied.
  static std::optional<Basket> Copy(TBasket& basket);

  std::uint32_t GetNEntries() const { return static_cast<std::uint32_t>(fEntries.size()) - 1; }

  /// A buffer that ends where the entry does and stands at its begin. Good as long as the basket.
  std::unique_ptr<TBufferFile> GetEntry(std::uint32_t entry);

 private:
  Basket(std::vector<char> bytes, std::vector<std::uint64_t> entries)
      : fBytes(std::move(bytes)), fEntries(std::move(entries)) {}
  static std::optional<Basket> Make(std::vector<char> bytes, std::vector<std::uint64_t> entries, std::uint64_t begin);

  std::vector<char> fBytes;
  std::vector<std::uint64_t> fEntries;  // where each begins, and the end of the last
};

}  // namespace StnTools

#endif
