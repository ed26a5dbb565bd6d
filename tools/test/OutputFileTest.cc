#include "InputFile.h"
#include "OutputFile.h"
#include "ToolError.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

using StnTools::OutputFile;
namespace fs = std::filesystem;

template <typename Work>
std::string GetComplaint(Work work) {
  try {
    work();
    return "";
  } catch (const StnTools::ToolError& error) {
    return std::to_string(error.GetCode()) + " " + error.what();
  }
}

class OutputFileTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::remove("run.root");
    fs::remove("run.root.part");
  }
};

}  // namespace

TEST_F(OutputFileTest, GetsItsNameWhenItIsFinished) {
  OutputFile file("run.root", false, 1);
  TStnRunHeader header;
  file.WriteRunHeader(header);
  EXPECT_TRUE(fs::exists("run.root.part"));
  EXPECT_FALSE(fs::exists("run.root"));
  file.Finish();
  EXPECT_FALSE(fs::exists("run.root.part"));
  EXPECT_TRUE(fs::exists("run.root"));
}

TEST_F(OutputFileTest, CanBeReadBackBeforeItGetsItsName) {
  OutputFile file("run.root", false, 1);
  TStnRunHeader header;
  file.WriteRunHeader(header);
  std::string seen;
  file.Finish([&seen](const std::string& path) {
    seen = path;
    EXPECT_FALSE(fs::exists("run.root"));
    EXPECT_TRUE(StnTools::InputFile("stn-test", path).HasRunHeader());
  });
  EXPECT_EQ(seen, "run.root.part");
  EXPECT_TRUE(fs::exists("run.root"));
}

TEST_F(OutputFileTest, IsNotKeptIfItDoesNotPass) {
  EXPECT_EQ(
      GetComplaint([] {
        OutputFile file("run.root", false, 1);
        file.Finish([](const std::string& path) { throw StnTools::ToolError(StnTools::kDamage, path + " is odd"); });
      }),
      "4 run.root could not be written (run.root.part is odd) and was not kept; try again");
  EXPECT_FALSE(fs::exists("run.root.part"));
  EXPECT_FALSE(fs::exists("run.root"));
}

TEST_F(OutputFileTest, IsRemovedIfItIsNotFinished) {
  {
    OutputFile file("run.root", false, 1);
    TStnRunHeader header;
    file.WriteRunHeader(header);
  }
  EXPECT_FALSE(fs::exists("run.root.part"));
  EXPECT_FALSE(fs::exists("run.root"));
}

TEST_F(OutputFileTest, LeavesAnExistingFileAloneUntilItIsFinished) {
  std::ofstream("run.root") << "precious";
  { OutputFile file("run.root", true, 1); }
  EXPECT_EQ(fs::file_size("run.root"), 8u);
  OutputFile file("run.root", true, 1);
  TStnRunHeader header;
  file.WriteRunHeader(header);
  file.Finish();
  EXPECT_GT(fs::file_size("run.root"), 8u);
}

TEST_F(OutputFileTest, RefusesToReplaceAFileUnlessForced) {
  std::ofstream("run.root") << "precious";
  EXPECT_EQ(GetComplaint([] { OutputFile file("run.root", false, 1); }),
            "4 run.root exists already; choose another name, or --force to replace it");
}

TEST_F(OutputFileTest, SaysWhyItCannotGetItsName) {
  OutputFile file("run.root", false, 1);
  TStnRunHeader header;
  file.WriteRunHeader(header);
  fs::create_directory("run.root");
  EXPECT_EQ(GetComplaint([&file] { file.Finish(); }),
            "4 run.root could not be written (Is a directory) and was not kept; choose another place");
}

TEST_F(OutputFileTest, KeepsOneEventForAll) {
  OutputFile file("run.root", false, 1);
  TStnEvent* first = &file.GetEvent();
  first->GetEventHeader()->SetEventNo(1);
  file.WriteEvent();
  EXPECT_EQ(&file.GetEvent(), first);
  file.WriteEvent();
  file.Finish();
}
