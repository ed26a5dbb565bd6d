#include "Basket.h"

#include "ByteReader.h"

#include <TBasket.h>
#include <TBufferFile.h>

#include <algorithm>

namespace StnTools {

// Behind the entries lie their number, increased by one, and as many places, of which the last means nothing.
std::optional<Basket> Basket::Read(const RecordFile& file, const Record& record) {
  std::optional<std::vector<char>> bytes = file.Read(record);
  if (!bytes || record.fLast < record.fKeySize || record.fLast > bytes->size()) return {};
  ByteReader places(bytes->data() + record.fLast, bytes->size() - record.fLast);
  if (places.Number(4) != record.fNEntries + 1ULL || bytes->size() - record.fLast < 4ULL * record.fNEntries) return {};
  std::vector<std::uint64_t> entries;
  for (std::uint32_t i = 0; i < record.fNEntries; ++i)
    entries.push_back(places.Number(4));
  entries.push_back(record.fLast);
  if (!places.IsGood()) return {};
  return Make(std::move(*bytes), std::move(entries), record.fKeySize);
}

std::optional<Basket> Basket::Copy(TBasket& basket) {
  const TBuffer* buffer = basket.GetBufferRef();
  const Int_t* places = basket.GetEntryOffset();
  if (buffer == nullptr || places == nullptr || basket.GetNevBuf() < 1 || basket.GetLast() > buffer->BufferSize())
    return {};
  std::vector<std::uint64_t> entries(places, places + basket.GetNevBuf());
  entries.push_back(static_cast<std::uint64_t>(basket.GetLast()));
  return Make({buffer->Buffer(), buffer->Buffer() + basket.GetLast()}, std::move(entries),
              static_cast<std::uint64_t>(basket.GetKeylen()));
}

std::optional<Basket> Basket::Make(std::vector<char> bytes, std::vector<std::uint64_t> entries, std::uint64_t begin) {
  if (entries.front() != begin || entries.back() > bytes.size()) return {};
  if (!std::is_sorted(entries.begin(), entries.end())) return {};
  return Basket(std::move(bytes), std::move(entries));
}

std::unique_ptr<TBufferFile> Basket::GetEntry(std::uint32_t entry) {
  auto end = static_cast<Int_t>(fEntries.at(entry + 1));
  // The buffer goes from the key on, as objects in an entry are referred to by their places counted from there.
  auto buffer = std::make_unique<TBufferFile>(TBuffer::kRead, end, fBytes.data(), false);
  buffer->SetBufferOffset(static_cast<Int_t>(fEntries[entry]));
  return buffer;
}

}  // namespace StnTools
