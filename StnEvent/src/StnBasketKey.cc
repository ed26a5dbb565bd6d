#include <StnEvent/StnBasketKey.h>

#include <TBranch.h>
#include <TMath.h>
#include <TObjArray.h>

#include <unistd.h>

#include <algorithm>

namespace {

// Longer than any key of ours.
constexpr std::size_t kMostKeyBytes = 512;
// From this version on, places take eight bytes.
constexpr Long64_t kLongVersion = 1000;
// What a basket adds to the key: version, size of the buffer, room for entries, entries, end of the last, flag.
constexpr Long64_t kBasketBytes = 2 + 4 * 4 + 1;
// More than any branch of ours has room for.
constexpr Long64_t kMostRoom = 1 << 24;
// The flag of baskets that have their entries' places not with them.
constexpr Long64_t kPlacesLeftOut = 80;
// What stands before each packed block.
constexpr std::size_t kBlockBytes = 9;

std::string ReadBytes(int file, Long64_t place, std::size_t n_bytes) {
  std::string bytes(n_bytes, '\0');
  const ssize_t n_read = pread(file, bytes.data(), n_bytes, place);
  bytes.resize(n_read > 0 ? static_cast<std::size_t>(n_read) : 0);
  return bytes;
}

Long64_t GetLength(const std::string& block, std::size_t begin) {
  Long64_t length = 0;
  for (std::size_t i = 3; i-- > 0;)
    length = length << 8 | static_cast<unsigned char>(block[begin + i]);
  return length;
}

}  // namespace

StnBasketKey::StnBasketKey(TBranch& branch, Long64_t entry, int file) : fFile(file) {
  if (file >= 0 && entry >= 0 && entry < branch.GetEntries()) FindBasket(branch, entry);
}

void StnBasketKey::FindBasket(TBranch& branch, Long64_t entry) {
  const Int_t last = branch.GetWriteBasket();
  const Long64_t* first_entries = branch.GetBasketEntry();
  if (last < 0 || last >= branch.GetMaxBaskets() || !first_entries) return;
  const Long64_t basket = TMath::BinarySearch(Long64_t{last} + 1, first_entries, entry);
  // Read already, or never written.
  if (basket < 0 || branch.GetListOfBaskets()->UncheckedAt(static_cast<Int_t>(basket))) return;
  fPlace = branch.GetBasketSeek(static_cast<Int_t>(basket));
  fBytes = branch.GetBasketBytes()[basket];
  fEntries = (basket < last ? first_entries[basket + 1] : branch.GetEntries()) - first_entries[basket];
}

std::string StnBasketKey::FindDamage() {
  if (fPlace <= 0) return "";
  const auto most = static_cast<std::size_t>(std::max(fBytes, Long64_t{0}));
  fKey = ReadBytes(fFile, fPlace, std::min(most, kMostKeyBytes));
  Expect("length", Take(4), fBytes, fBytes);
  const bool is_long = Take(2) > kLongVersion;
  const Long64_t object_bytes = Take(4);
  Take(4);  // date
  const Long64_t key_bytes = Take(2);
  Take(2);  // cycle
  Expect("place", Take(is_long ? 8 : 4), fPlace, fPlace);
  Take(is_long ? 8 : 4);       // of the folder
  for (int i = 0; i < 3; ++i)  // class, name, title
    SkipText();
  Expect("length of the key", key_bytes, static_cast<Long64_t>(fTaken) + kBasketBytes,
         static_cast<Long64_t>(fKey.size()));
  Take(2);  // version
  Take(4);  // size of the buffer
  Expect("room for entries", Take(4), 0, kMostRoom);
  Expect("number of entries", Take(4), fEntries, fEntries);
  ExpectPlaces(key_bytes + object_bytes - Take(4));
  const Long64_t flag = Take(1);
  Expect("flag", flag, flag == kPlacesLeftOut ? flag : 0, flag == kPlacesLeftOut ? flag : 0);
  if (fDamage.empty()) {
    fTaken = static_cast<std::size_t>(key_bytes);
    const Long64_t unpacked = CountUnpackedBytes(object_bytes);
    Expect("length unpacked", object_bytes, unpacked, unpacked);
  }
  return fDamage;
}

// The first that does not fit is kept: what follows can be a consequence of it.
void StnBasketKey::Expect(const char* what, Long64_t found, Long64_t least, Long64_t most) {
  if (!fDamage.empty() || (found >= least && found <= most)) return;
  fDamage = std::string(what) + ": found " + std::to_string(found) + ", expected " + std::to_string(least);
  if (most != least) fDamage += " to " + std::to_string(most);
}

// Behind the entries lie the places of all of them and one more, in old files twice, or nothing.
void StnBasketKey::ExpectPlaces(Long64_t bytes) {
  const Long64_t once = 4 * (1 + fEntries + 1);
  if (bytes != 0 && bytes != 2 * once) Expect("bytes behind the entries", bytes, once, once);
}

// A number with the high byte first. One that is not there any more is the damage.
Long64_t StnBasketKey::Take(std::size_t n_bytes) {
  if (fTaken + n_bytes > fKey.size()) {
    if (fDamage.empty()) fDamage = "end of file";
    return 0;
  }
  ULong64_t number = 0;
  for (std::size_t i = 0; i < n_bytes; ++i)
    number = number << 8 | static_cast<unsigned char>(fKey[fTaken++]);
  const int unused_bits = 64 - 8 * static_cast<int>(n_bytes);
  return static_cast<Long64_t>(number << unused_bits) >> unused_bits;
}

void StnBasketKey::SkipText() {
  constexpr Long64_t kLengthFollows = 255;
  Long64_t length = Take(1) & kLengthFollows;
  if (length == kLengthFollows) length = Take(4);
  Expect("length of a text", length, 0, static_cast<Long64_t>(fKey.size() - fTaken));
  if (fDamage.empty()) fTaken += static_cast<std::size_t>(length);
}

// What the packed blocks say of themselves; contents that are not packed are as long as they are.
Long64_t StnBasketKey::CountUnpackedBytes(Long64_t object_bytes) const {
  auto place = static_cast<Long64_t>(fTaken);
  if (object_bytes <= fBytes - place) return fBytes - place;
  Long64_t unpacked = 0;
  while (place < fBytes) {
    // Algorithm, method, and two lengths of three bytes, low byte first.
    const auto taken = static_cast<std::size_t>(place);
    const bool is_here = taken + kBlockBytes <= fKey.size();
    const std::string block = is_here ? fKey.substr(taken, kBlockBytes) : ReadBytes(fFile, fPlace + place, kBlockBytes);
    if (block.size() < kBlockBytes) return 0;
    place += static_cast<Long64_t>(kBlockBytes) + GetLength(block, 3);
    unpacked += GetLength(block, 6);
  }
  return place == fBytes ? unpacked : 0;
}
