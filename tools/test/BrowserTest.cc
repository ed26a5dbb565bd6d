#include "Browser.h"

#include "ToolError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace StnTools;
namespace fs = std::filesystem;

const PictureSize kSize = {300, 200};

std::string Read(const fs::path& name) {
  std::ostringstream text;
  text << std::ifstream(name).rdbuf();
  return text.str();
}

// A browser of three lines, which shows what it was given.
class BrowserTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all("scratch");
    fs::create_directory("scratch");
    setenv("TMPDIR", fs::absolute("scratch").c_str(), 1);
    fs::remove("picture.png");
  }

  static void SetBrowser(const std::string& script) {
    std::ofstream("browser") << "#!/bin/sh\n" + script + "\n";
    fs::permissions("browser", fs::perms::owner_all);
    setenv("STN_CHROMIUM", fs::absolute("browser").c_str(), 1);
  }

  // The script finds the name of the picture in $picture and the address of the page in $page.
  static void SetDrawingBrowser(const std::string& script) {
    SetBrowser(
        "for argument; do case $argument in --screenshot=*) picture=${argument#*=};; file:*) page=$argument;; esac; "
        "done\n" +
        script);
  }

  static std::string GetError(int seconds = 60) {
    try {
      DrawPage("page", "picture.png", false, kSize, seconds);
    } catch (const ToolError& error) {
      EXPECT_EQ(error.GetCode(), kCannotWrite);
      return error.what();
    }
    return "";
  }
};

}  // namespace

TEST_F(BrowserTest, KeepsThePictureOfThePage) {
  SetDrawingBrowser("name=${page#file://}; cat \"${name%#figure}\" > \"$picture\"");
  DrawPage("<p>page", "picture.png", false, kSize);
  EXPECT_EQ(Read("picture.png"), "<p>page");
}

TEST_F(BrowserTest, LeavesNothingElse) {
  SetDrawingBrowser("touch \"$picture\"");
  DrawPage("page", "picture.png", false, kSize);
  EXPECT_TRUE(fs::is_empty("scratch"));
  EXPECT_FALSE(fs::exists("picture.png.part"));
}

TEST_F(BrowserTest, SaysHowLargeThePictureIs) {
  SetDrawingBrowser("for argument; do echo \"$argument\"; done > \"$picture\"");
  DrawPage("page", "picture.png", false, kSize);
  EXPECT_THAT(Read("picture.png"), testing::HasSubstr("--window-size=300,200\n"));
}

TEST_F(BrowserTest, AnAddressHasNoCharactersOfAnotherMeaning) {
  const fs::path folder = fs::absolute("scratch") / "a b#%?\xC3\xA4";
  fs::create_directory(folder);
  setenv("TMPDIR", folder.c_str(), 1);
  SetDrawingBrowser("echo \"$page\" > \"$picture\"");
  DrawPage("page", "picture.png", false, kSize);
  EXPECT_THAT(Read("picture.png"),
              testing::MatchesRegex("file:///.*/scratch/a%20b%23%25%3F%C3%A4/.*/page.html#figure\n"));
}

TEST_F(BrowserTest, EndsABrowserThatTakesTooLong) {
  SetBrowser("exec sleep 30");
  EXPECT_EQ(GetError(0), "picture.png could not be drawn: Chromium was not done after 0 s");
  EXPECT_FALSE(fs::exists("picture.png"));
}

TEST_F(BrowserTest, SaysThatThereIsNoPicture) {
  SetBrowser("exit 0");
  EXPECT_EQ(GetError(),
            "picture.png could not be drawn: Chromium ended without a picture; try it by hand with --headless "
            "--screenshot");
}

TEST_F(BrowserTest, SaysThatThereIsNoBrowser) {
  setenv("STN_CHROMIUM", "/nowhere/chromium", 1);
  EXPECT_EQ(GetError(),
            "picture.png could not be drawn: there is no Chromium; install one, or name one in STN_CHROMIUM");
}

TEST_F(BrowserTest, LooksForABrowserInThePath) {
  unsetenv("STN_CHROMIUM");
  const std::string path = std::getenv("PATH");
  fs::create_directory("scratch/bin");
  SetDrawingBrowser("echo found > \"$picture\"");
  unsetenv("STN_CHROMIUM");
  fs::rename("browser", "scratch/bin/google-chrome");
  setenv("PATH", fs::absolute("scratch/bin").c_str(), 1);
  DrawPage("page", "picture.png", false, kSize);
  setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(Read("picture.png"), "found\n");
}
