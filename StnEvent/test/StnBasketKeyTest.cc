#include "EventFiles.h"
#include "LogCapture.h"

#include <StnEvent/StnBasketKey.h>
#include <StnEvent/StnPixelList.h>

#include <TBranch.h>
#include <TTree.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <utility>

namespace {

constexpr const char* kName = "baskets.root";
constexpr UInt_t kNEvents = 4;
const std::string kBranch = "fPixelList";
// Texts of the key: class, branch, tree.
const std::string kTexts = "\7TBasket\12fPixelList\14StnEventTree";
constexpr int kTextsBegin = 34;
const int kTextsEnd = kTextsBegin + static_cast<int>(kTexts.size());
const int kKeyBytes = kTextsEnd + 19;

std::string Load() {
  std::ifstream file(kName, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Save(const std::string& bytes) { std::ofstream(kName, std::ios::binary) << bytes; }

/// Where the key of the first basket of the branch begins.
std::size_t FindKey(const std::string& bytes) { return bytes.find(kTexts) - kTextsBegin; }

std::string FindDamage(Long64_t entry) {
  TStnEventFile file(kName);
  auto* tree = file.Get<TTree>("StnEventTree");
  return StnBasketKey(*tree->GetBranch(kBranch.c_str()), entry, file.GetFd()).FindDamage();
}

/// Puts bytes into the key.
void Damage(int offset, const std::string& replacement) {
  std::string bytes = Load();
  bytes.replace(FindKey(bytes) + static_cast<std::size_t>(offset), replacement.size(), replacement);
  Save(bytes);
}

/// A number as it stands in a key, the high byte first, and back.
std::string Number(ULong64_t number, std::size_t n_bytes) {
  std::string bytes;
  for (std::size_t i = n_bytes; i-- > 0;)
    bytes += static_cast<char>(number >> 8 * i);
  return bytes;
}

ULong64_t NumberAt(const std::string& bytes, std::size_t place, std::size_t n_bytes) {
  ULong64_t number = 0;
  for (std::size_t i = 0; i < n_bytes; ++i)
    number = number << 8 | static_cast<unsigned char>(bytes[place + i]);
  return number;
}

/// Writes a file of `n` events, so many of them in each basket.
void WriteBaskets(UInt_t n, UInt_t n_in_basket, Int_t compress) {
  TStnEventFile file(kName, "RECREATE", "", compress);
  TStnEvent event;
  TStnEvent* address = &event;
  for (UInt_t number = 0; number < n; ++number) {
    FillEvent(event, number);
    file.WriteEvent(&address);
    if ((number + 1) % n_in_basket == 0) file.Get<TTree>("StnEventTree")->FlushBaskets();
  }
}

/// The damage of the first basket of the file when these bytes stand in its place.
std::string FindDamageIn(const std::string& bytes) {
  TStnEventFile file(kName);
  std::ofstream("other.bin", std::ios::binary) << bytes;
  std::unique_ptr<FILE, int (*)(FILE*)> other(std::fopen("other.bin", "rb"), std::fclose);
  return StnBasketKey(*file.Get<TTree>("StnEventTree")->GetBranch(kBranch.c_str()), 0, fileno(other.get()))
      .FindDamage();
}

class StnBasketKeyTest : public testing::Test {
 protected:
  void SetUp() override { WriteFile(kName, kNEvents); }
};

const std::string kZero(1, '\0');
const std::string kTwoGB = "\x7f\xff\xff\xff";

}  // namespace

TEST_F(StnBasketKeyTest, HasNoDamageInAGoodFile) {
  for (Long64_t entry = 0; entry < kNEvents; ++entry)
    EXPECT_EQ(FindDamage(entry), "");
}

TEST_F(StnBasketKeyTest, IsNotLookedForWhereThereIsNoEntry) {
  EXPECT_EQ(FindDamage(-1), "");
  EXPECT_EQ(FindDamage(kNEvents), "");
}

TEST_F(StnBasketKeyTest, KnowsItsPlace) {
  TStnEventFile file(kName);
  auto* tree = file.Get<TTree>("StnEventTree");
  StnBasketKey key(*tree->GetBranch(kBranch.c_str()), 1, file.GetFd());
  EXPECT_EQ(key.GetPlace(), static_cast<Long64_t>(FindKey(Load())));
}

TEST_F(StnBasketKeyTest, IsNotLookedForInAFileWithoutADescriptor) {
  TStnEventFile file(kName);
  StnBasketKey key(*file.Get<TTree>("StnEventTree")->GetBranch(kBranch.c_str()), 1, -1);
  EXPECT_EQ(key.GetPlace(), 0);
}

TEST_F(StnBasketKeyTest, OfAnyBasketIsFound) {
  WriteBaskets(8, 3, 1);
  TStnEventFile file(kName);
  TBranch* branch = file.Get<TTree>("StnEventTree")->GetBranch(kBranch.c_str());
  for (Int_t entry = 0; entry < 8; ++entry) {
    StnBasketKey key(*branch, entry, file.GetFd());
    EXPECT_EQ(key.GetPlace(), branch->GetBasketSeek(entry / 3));
    EXPECT_EQ(key.FindDamage(), "");
  }
}

TEST_F(StnBasketKeyTest, OfABasketThatIsNotPackedHasNoDamage) {
  WriteBaskets(4, 4, 0);
  EXPECT_EQ(FindDamage(3), "");
}

TEST_F(StnBasketKeyTest, OfABranchThatIsDamagedItselfIsNotLookedFor) {
  TStnEventFile file(kName);
  TBranch* branch = file.Get<TTree>("StnEventTree")->GetBranch(kBranch.c_str());
  auto& last = Member<Int_t>(*branch, "fWriteBasket", TBranch::Class());
  for (Int_t wrong : {-1, -(1 << 28), 1 << 28}) {
    last = wrong;
    EXPECT_EQ(StnBasketKey(*branch, 0, file.GetFd()).GetPlace(), 0) << wrong;
  }
  last = 1;
  auto& first_entries = Member<Long64_t*>(*branch, "fBasketEntry", TBranch::Class());
  Long64_t* const there = std::exchange(first_entries, nullptr);
  EXPECT_EQ(StnBasketKey(*branch, 0, file.GetFd()).GetPlace(), 0);
  first_entries = there;
}

// Nothing but files of more than 2 GB needs eight bytes for a place.
TEST_F(StnBasketKeyTest, WithPlacesOfFourBytesHasNoDamage) {
  WriteBaskets(4, 4, 0);
  std::string bytes = Load();
  const std::size_t key = FindKey(bytes);
  const ULong64_t place = NumberAt(bytes, key + 18, 8);
  bytes.replace(key + 4, 2, Number(4, 2));
  bytes.replace(key + 14, 2, Number(NumberAt(bytes, key + 14, 2) - 8, 2));
  bytes.replace(key + 6, 4, Number(NumberAt(bytes, key + 6, 4) + 8, 4));
  bytes.replace(key + 18, 16, Number(place, 4) + Number(100, 4));
  EXPECT_EQ(FindDamageIn(bytes), "");
}

TEST_F(StnBasketKeyTest, WithoutTheEntriesPlacesOrWithThemTwiceHasNoDamage) {
  const std::string bytes = Load();
  const std::size_t key = FindKey(bytes);
  const std::size_t last = key + static_cast<std::size_t>(kTextsEnd) + 14;
  const ULong64_t end = NumberAt(bytes, key + 14, 2) + NumberAt(bytes, key + 6, 4);
  const auto with = [&](ULong64_t n_behind) { return std::string(bytes).replace(last, 4, Number(end - n_behind, 4)); };
  EXPECT_EQ(FindDamageIn(with(0)), "");
  EXPECT_EQ(FindDamageIn(with(1)), "bytes behind the entries: found 1, expected 24");
  EXPECT_EQ(FindDamageIn(with(24)), "");
  EXPECT_EQ(FindDamageIn(with(48)), "");
  EXPECT_EQ(FindDamageIn(with(72)), "bytes behind the entries: found 72, expected 24");
}

TEST_F(StnBasketKeyTest, MayHaveTheFlagOfPlacesThatAreLeftOut) {
  Damage(kTextsEnd + 18, Number(80, 1));
  EXPECT_EQ(FindDamage(0), "");
  Damage(kTextsEnd + 18, Number(81, 1));
  EXPECT_EQ(FindDamage(0), "flag: found 81, expected 0");
}

/// A head of a packed block: the lengths stand with the low byte first.
std::string Block(ULong64_t packed, ULong64_t unpacked) {
  const std::string from = Number(packed, 3), to = Number(unpacked, 3);
  return "ZS\1" + std::string(from.rbegin(), from.rend()) + std::string(to.rbegin(), to.rend());
}

TEST_F(StnBasketKeyTest, TellsOfTheLengthsOfAllBlocks) {
  WriteBaskets(40, 40, 0);
  std::string bytes = Load();
  const std::size_t key = FindKey(bytes);
  const ULong64_t n_packed = NumberAt(bytes, key, 4) - static_cast<ULong64_t>(kKeyBytes);
  ASSERT_GT(n_packed, 700U);
  // More bytes than there are, as if they were packed.
  const ULong64_t n_unpacked = n_packed + 1000;
  bytes.replace(key + 6, 4, Number(n_unpacked, 4));
  const std::size_t last = key + static_cast<std::size_t>(kTextsEnd) + 14;
  bytes.replace(last, 4, Number(NumberAt(bytes, last, 4) + 1000, 4));
  const auto with = [&](ULong64_t first, const std::string& head, const std::string& other_head) {
    std::string changed = bytes;
    changed.replace(key + static_cast<std::size_t>(kKeyBytes), 9, head);
    return FindDamageIn(changed.replace(key + static_cast<std::size_t>(kKeyBytes) + 9 + first, 9, other_head));
  };
  const std::string found = "length unpacked: found " + std::to_string(n_unpacked) + ", expected ";
  // The second block's head is within the first 512 bytes, on their border, or beyond them.
  for (ULong64_t first : {50, 512 - kKeyBytes - 9 - 4, 600}) {
    const ULong64_t rest = n_packed - 18 - first;
    EXPECT_EQ(with(first, Block(first, 300), Block(rest, n_unpacked - 300)), "");
    EXPECT_EQ(with(first, Block(first, 300), Block(rest, 70000)), found + "70300");
    EXPECT_EQ(with(first, Block(first, 300), Block(rest - 1, n_unpacked - 300)), found + "0");
    EXPECT_EQ(with(first, Block(first, 300), Block(rest + 1, n_unpacked - 300)), found + "0");
  }
}

TEST_F(StnBasketKeyTest, TellsTheFirstNumberThatDoesNotFit) {
  const std::string bytes = Load();
  const auto place = FindKey(bytes);
  const auto number = [&](std::size_t offset) {
    return std::to_string(static_cast<unsigned char>(bytes[place + offset + 2]) << 8 |
                          static_cast<unsigned char>(bytes[place + offset + 3]));
  };
  const struct {
    int fOffset;
    std::string fBytes;
    std::string fDamage;
  } cases[] = {
      {0, kTwoGB, "length: found 2147483647, expected " + number(0)},
      {0, "\xff\xff\xff\xff", "length: found -1, expected " + number(0)},
      {6, kTwoGB, "bytes behind the entries: "},
      {14, "\x7f\xff", "length of the key: found 32767, expected " + std::to_string(kKeyBytes) + " to " + number(0)},
      {14, kZero + kZero, "length of the key: found 0, expected " + std::to_string(kKeyBytes) + " to " + number(0)},
      {18, kTwoGB, "place: found 922337203"},
      {kTextsBegin, "\xfe", "length of a text: found 254, expected 0 to "},
      {kTextsBegin, "\xff" + kTwoGB, "length of a text: found 2147483647, expected 0 to "},
      {kTextsEnd + 6, kTwoGB, "room for entries: found 2147483647, expected 0 to 16777216"},
      {kTextsEnd + 10, kTwoGB, "number of entries: found 2147483647, expected 4"},
      {kTextsEnd + 14, kTwoGB, "bytes behind the entries: found -"},
      {kTextsEnd + 18, "\1", "flag: found 1, expected 0"},
      {kKeyBytes + 6, "\xff\xff\xff", "length unpacked: found "},
  };
  for (const auto& one : cases) {
    Save(bytes);
    Damage(one.fOffset, one.fBytes);
    EXPECT_EQ(FindDamage(0).substr(0, one.fDamage.size()), one.fDamage) << "at byte " << one.fOffset;
  }
}

TEST_F(StnBasketKeyTest, BeyondTheEndOfTheFileIsDamaged) {
  EXPECT_EQ(FindDamageIn(Load().substr(0, FindKey(Load()) + 20)), "end of file");
}

TEST_F(StnBasketKeyTest, WhatDoesNotFitBeforeTheEndOfTheFileIsToldFirst) {
  Damage(0, kTwoGB);
  const std::string damage = FindDamage(0);
  EXPECT_EQ(FindDamageIn(Load().substr(0, FindKey(Load()) + 20)), damage);
}

TEST_F(StnBasketKeyTest, DamageCostsOnlyThePartOfTheEvent) {
  Damage(kTextsEnd + 10, kTwoGB);
  LogCapture log;
  TStnEventFile file(kName);
  TStnEvent event;
  TStnEvent* address = &event;
  ASSERT_TRUE(file.ReadEvent(&address));
  EXPECT_EQ(log.Take(),
            "ERR:TStnEventFile::ReadEvent() - file 'baskets.root', entry 0: basket of 'fPixelList' at byte " +
                std::to_string(FindKey(Load())) +
                " is damaged, number of entries: found 2147483647, expected 4, not read\n");
  EXPECT_EQ(event.GetEventHeader()->GetRunNo(), 77u);
  EXPECT_NE(event.GetFADCData(), nullptr);
  EXPECT_EQ(event.GetPixelList()->GetNumPixels(), 0u);
}

TEST_F(StnBasketKeyTest, DamageOfTheHeaderLeavesTheCallersHeaderAlone) {
  std::string bytes = Load();
  const std::string header = "\14fEventHeader\14StnEventTree";
  for (std::size_t i = 0; (i = bytes.find(header, i)) != std::string::npos; ++i)
    bytes.replace(i + header.size() + 10, 4, kTwoGB);
  Save(bytes);
  LogCapture log;
  TStnEventFile file(kName);
  TStnEventHeader mine;
  TStnEventHeader* header_read = &mine;
  EXPECT_FALSE(file.ReadEventHeader(&header_read));
  EXPECT_EQ(header_read, &mine);
  EXPECT_EQ(log.Take().substr(0, 74), "ERR:TStnEventFile::ReadEventHeader() - file 'baskets.root', entry 0: baske");
}
