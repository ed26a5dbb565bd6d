#include "FileName.h"
#include "InputFile.h"
#include "OutputFile.h"
#include "ToolError.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace StnTools;

template <typename Work>
std::string GetComplaint(Work work) {
  try {
    work();
    return "";
  } catch (const ToolError& error) {
    return std::to_string(error.GetCode()) + " " + error.what();
  }
}

// What shells, ROOT or the file system could read for more than a name.
const char* const kStrangeNames[] = {"$(touch broken).root",
                                     "`touch broken`.root",
                                     "run.root;touch broken",
                                     "|touch broken",
                                     "run.root&touch broken",
                                     "$HOME/run.root",
                                     "~/run.root",
                                     "~root/run.root",
                                     "file:run.root",
                                     "file:///tmp/run.root",
                                     "run.root?reproducible=other.root",
                                     "run.root#tree",
                                     "*.root",
                                     "{a,b}.root",
                                     "a[1].root",
                                     "a'b\"c.root",
                                     "a\\b.root",
                                     " run.root",
                                     "run.root ",
                                     "new\nline.root",
                                     "tab\t.root",
                                     "%41.root",
                                     "<run.root",
                                     "a:b.root",
                                     "a:/b.root",
                                     "root:run.root",
                                     "-run.root",
                                     "a//b.root",
                                     "a/../b.root"};

std::vector<fs::path> ListFiles() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(".")) {
    if (entry.is_regular_file()) files.push_back(entry.path().lexically_normal());
  }
  return files;
}

/// A folder of its own, which is home, too.
class StrangeNameTest : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    fs::remove_all("strange");
    fs::create_directory("strange");
    fs::current_path("strange");
    setenv("HOME", ".", 1);
    const fs::path folder = fs::path(GetParam()).parent_path();
    if (!folder.empty()) fs::create_directories(folder);
  }
  void TearDown() override { fs::current_path(fStart); }

  const fs::path fStart = fs::current_path();
};

std::string RefuseNew(const std::string& path, bool force) {
  return GetComplaint([&] { RequireNewName(path, force); });
}

class NewNameTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"run.root", "run.root.part", "elsewhere"})
      fs::remove_all(name);
  }
};

}  // namespace

TEST(RootNameTest, IsTheSameForOrdinaryNames) {
  for (const char* name : {"run.root", "../run.root", "/data/run.root", "a b.root", "%41{x}[1]*&.root", "-x"})
    EXPECT_EQ(GetRootName(name), name);
}

TEST(RootNameTest, KeepsRootFromReadingMoreThanAName) {
  EXPECT_EQ(GetRootName("~/run.root"), "./~/run.root");
  EXPECT_EQ(GetRootName(" run.root"), "./ run.root");
  EXPECT_EQ(GetRootName("file:run.root"), "./file:run.root");
  EXPECT_EQ(GetRootName("http:run.root"), "./http:run.root");
}

TEST(FileNameTest, TellsAddressesFromNames) {
  for (const char* address : {"http://server/run.root", "https://server/run.root", "root://server//run.root", "s3://x"})
    EXPECT_TRUE(StnTools::IsAddress(address)) << address;
  for (const char* name :
       {"run.root", "/data/run.root", "a:b", "://x", "a/b://c", "file:///data/run.root", "A B://x", ""})
    EXPECT_FALSE(StnTools::IsAddress(name)) << name;
}

TEST(RootNameTest, RefusesWhatCannotBeSaid) {
  for (std::string name :
       {"a?b.root", "a#b.root", "$HOME/run.root", "http://host/run.root", "a:/run.root", "run.root "}) {
    EXPECT_EQ(GetComplaint([&] { GetRootName(name); }),
              "2 " + name +
                  " cannot be used: ROOT reads more than a name from ? # $ :/ and from a blank at the end; choose "
                  "another name");
  }
}

TEST_F(NewNameTest, MayBeUsedIfNothingIsThere) {
  EXPECT_EQ(RefuseNew("run.root", false), "");
  EXPECT_EQ(RefuseNew("run.root", true), "");
}

TEST_F(NewNameTest, IsLeftAloneUnlessForced) {
  std::ofstream("run.root") << "precious";
  EXPECT_EQ(RefuseNew("run.root", false), "4 run.root exists already; choose another name, or --force to replace it");
  EXPECT_EQ(RefuseNew("run.root", true), "");
}

TEST_F(NewNameTest, OfAnUnfinishedFileIsLeftAloneUnlessForced) {
  std::ofstream("run.root.part") << "events of a run that was ended";
  EXPECT_EQ(RefuseNew("run.root", false),
            "4 run.root.part exists already, left by a program that was ended or is still at work; save what is in it, "
            "or --force to replace it");
  EXPECT_EQ(RefuseNew("run.root", true), "");
}

TEST_F(NewNameTest, IsNeverThatOfALink) {
  for (std::string name : {"run.root", "run.root.part"}) {
    fs::create_symlink("elsewhere", name);  // to nothing
    EXPECT_EQ(RefuseNew("run.root", true), "4 " + name + " exists and is no plain file; choose another name");
    std::ofstream("elsewhere") << "precious";
    EXPECT_EQ(RefuseNew("run.root", true), "4 " + name + " exists and is no plain file; choose another name");
    SetUp();
  }
}

TEST_F(NewNameTest, IsNeverThatOfAFolder) {
  fs::create_directory("run.root");
  EXPECT_EQ(RefuseNew("run.root", true), "4 run.root exists and is no plain file; choose another name");
}

TEST_F(NewNameTest, IsGivenToTheFinishedFile) {
  std::ofstream("run.root.part") << "whole";
  FinishPart("run.root");
  EXPECT_TRUE(fs::exists("run.root"));
  EXPECT_FALSE(fs::exists("run.root.part"));
}

TEST_F(NewNameTest, IsNotGivenIfItCannotBe) {
  std::ofstream("run.root.part") << "whole";
  fs::create_directory("run.root");
  EXPECT_EQ(GetComplaint([] { FinishPart("run.root"); }),
            "4 run.root could not be written (Is a directory) and was not kept; choose another place");
  EXPECT_FALSE(fs::exists("run.root.part"));
}

TEST_P(StrangeNameTest, IsThatOfTheFileWrittenOrRefused) {
  const std::string complaint = GetComplaint([] {
    OutputFile file(GetParam(), false, 1);
    TStnRunHeader header;
    file.WriteRunHeader(header);
    file.Finish();
  });
  std::vector<fs::path> expected;
  if (complaint.empty()) expected.push_back(fs::path(GetParam()).lexically_normal());
  EXPECT_EQ(ListFiles(), expected) << complaint;
  EXPECT_TRUE(complaint.empty() || complaint.front() == '2') << complaint;
}

TEST_P(StrangeNameTest, IsThatOfTheFileReadOrRefused) {
  {
    OutputFile file("good.root", false, 1);
    TStnRunHeader header;
    file.WriteRunHeader(header);
    file.Finish();
  }
  fs::rename("good.root", GetParam());
  const std::string complaint = GetComplaint([] { EXPECT_TRUE(InputFile("FileNameTest", GetParam()).HasRunHeader()); });
  EXPECT_TRUE(complaint.empty() || complaint.front() == '2') << complaint;
}

INSTANTIATE_TEST_SUITE_P(, StrangeNameTest, testing::ValuesIn(kStrangeNames));
