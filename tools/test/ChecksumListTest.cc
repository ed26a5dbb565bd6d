#include "ChecksumList.h"
#include "ToolError.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using StnTools::ChecksumList;

ChecksumList MakeList() {
  ChecksumList list;
  list.Add({1, 2, 3, 0xffffffffffffffffULL});
  list.Add({5, 6, 7, 8});
  return list;
}

}  // namespace

TEST(ChecksumListTest, ReadsWhatItWrote) {
  MakeList().Write("list.json");
  ChecksumList read = ChecksumList::Read("list.json");
  ASSERT_EQ(read.GetSize(), 2u);
  EXPECT_EQ(read.Get(0), (StnTools::EventChecksum{1, 2, 3, 0xffffffffffffffffULL}));
  EXPECT_EQ(read.Get(1), (StnTools::EventChecksum{5, 6, 7, 8}));
  EXPECT_EQ(read.GetCombined(), MakeList().GetCombined());
}

TEST(ChecksumListTest, WritesAFormThatOthersCanRead) {
  ChecksumList list;
  list.Add({1, 2, 3, 4});
  list.Write("one.json");
  std::ifstream file("one.json");
  std::stringstream text;
  text << file.rdbuf();
  EXPECT_EQ(text.str(),
            "{\n \"format\": \"stn-checksums 1\",\n \"events\": [\n  [\n   \"0000000000000001\",\n   "
            "\"0000000000000002\",\n   \"0000000000000003\",\n   \"0000000000000004\"\n  ]\n ],\n \"combined\": \"" +
                StnTools::FormatChecksum(list.GetCombined()) + "\"\n}\n");
}

TEST(ChecksumListTest, CombinesAllInTheirOrder) {
  ChecksumList swapped;
  swapped.Add({5, 6, 7, 8});
  swapped.Add({1, 2, 3, 0xffffffffffffffffULL});
  EXPECT_NE(swapped.GetCombined(), MakeList().GetCombined());
}

TEST(ChecksumListTest, SaysThatAListIsNotWhole) {
  MakeList().Write("list.json");
  std::ifstream file("list.json");
  std::string text(200, '\0');
  file.read(&text[0], 200);
  std::ofstream("cut.json") << text;
  try {
    ChecksumList::Read("cut.json");
    FAIL();
  } catch (const StnTools::ToolError& error) {
    EXPECT_EQ(error.GetCode(), StnTools::kCannotOpen);
    EXPECT_STREQ(error.what(), "cut.json is no list of checksums; name one written by stn-simulate --checksums");
  }
}

TEST(ChecksumListTest, FailsOnAFullDisk) {
  std::filesystem::remove("full.json.part");
  std::filesystem::create_symlink("/dev/full", "full.json.part");
  try {
    MakeList().Write("full.json");
    FAIL();
  } catch (const StnTools::ToolError& error) {
    EXPECT_EQ(error.GetCode(), StnTools::kCannotWrite);
    EXPECT_STREQ(error.what(), "full.json could not be written: No space left on device");
  }
  EXPECT_FALSE(std::filesystem::exists("full.json"));
}
