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
  TStnEventFile file(kName);
  auto* tree = file.Get<TTree>("StnEventTree");
  std::ofstream("short.bin", std::ios::binary) << Load().substr(0, FindKey(Load()) + 20);
  std::unique_ptr<FILE, int (*)(FILE*)> cut(std::fopen("short.bin", "rb"), std::fclose);
  StnBasketKey key(*tree->GetBranch(kBranch.c_str()), 0, fileno(cut.get()));
  EXPECT_EQ(key.FindDamage(), "end of file");
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
