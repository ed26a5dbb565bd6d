#include "FileFrame.h"
#include "ToolError.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>

namespace {

using StnTools::FileFrame;
using StnTools::ReadFileFrame;

void Write(const char* name, const std::string& content) { std::ofstream(name, std::ios::binary) << content; }

std::string GetComplaint(const char* name) {
  try {
    ReadFileFrame(name);
    return "";
  } catch (const StnTools::ToolError& error) {
    return std::to_string(error.GetCode()) + " " + error.what();
  }
}

// The head of a ROOT file, with two bytes behind it.
std::string MakeHead(const std::string& version, const std::string& end) {
  return "root" + version + std::string("\0\0\0\x64", 4) + end + "xx";
}

}  // namespace

TEST(FileFrameTest, ReadsTheEndOfASmallFile) {
  Write("small", MakeHead({"\0\0\xf8\x90", 4}, {"\0\0\0\x16\1\1\1\1", 8}));
  FileFrame frame = ReadFileFrame("small");
  EXPECT_EQ(frame.fSize, 22u);
  EXPECT_EQ(frame.fEnd, 22u);
  EXPECT_FALSE(frame.IsCutShort());
}

TEST(FileFrameTest, ReadsTheEndOfALargeFile) {
  Write("large", MakeHead({"\0\x10\x37\x80", 4}, {"\0\0\0\1\0\0\0\0", 8}));
  FileFrame frame = ReadFileFrame("large");
  EXPECT_EQ(frame.fEnd, 0x100000000u);
  EXPECT_TRUE(frame.IsCutShort());
}

TEST(FileFrameTest, KnowsWhereLargeFilesBegin) {
  Write("below", MakeHead({"\0\x0f\x42\x3f", 4}, {"\0\0\0\x16\0\0\0\x7", 8}));
  EXPECT_EQ(ReadFileFrame("below").fEnd, 0x16u);
  Write("at", MakeHead({"\0\x0f\x42\x40", 4}, {"\0\0\0\x16\0\0\0\x7", 8}));
  EXPECT_EQ(ReadFileFrame("at").fEnd, 0x1600000007u);
}

TEST(FileFrameTest, RefusesWhatIsNoFile) {
  EXPECT_EQ(GetComplaint("none"), "3 none does not exist; check the name");
  EXPECT_EQ(GetComplaint("/"), "3 / is a directory; name a station file in it");
}

TEST(FileFrameTest, RefusesWhatIsNoRootFile) {
  Write("empty", "");
  EXPECT_EQ(GetComplaint("empty"), "3 empty is empty; write or copy it again");
  Write("text", "a text that is longer than the head of a file");
  EXPECT_EQ(GetComplaint("text"), "3 text is not a ROOT file; name a station file");
  Write("short", "ro");
  EXPECT_EQ(GetComplaint("short"), "3 short is not a ROOT file; name a station file");
}

TEST(FileFrameTest, RefusesAFileThatEndsInItsHead) {
  Write("stub", "root\0\0\0\0");
  EXPECT_EQ(GetComplaint("stub"), "1 stub is cut short; copy or write it again");
}

TEST(FileFrameTest, RefusesAFileThatMayNotBeRead) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
  Write("secret", "root");
  chmod("secret", 0);
  EXPECT_EQ(GetComplaint("secret"), "3 secret cannot be opened: Permission denied; check its permissions");
}

TEST(FileFrameTest, RefusesAPathThroughAFile) {
  Write("plain", "root");
  EXPECT_EQ(GetComplaint("plain/x"), "3 plain/x cannot be opened: Not a directory; check the name");
}
