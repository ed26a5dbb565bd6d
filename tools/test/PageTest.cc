#include "Page.h"

#include "ToolError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cstdio>
#include <fstream>
#include <sstream>

namespace {

using namespace StnTools;

std::string Read(const char* name) {
  std::ostringstream text;
  text << std::ifstream(name).rdbuf();
  return text.str();
}

}  // namespace

TEST(PageTest, PutsTitleAndDataInTheirPlaces) {
  EXPECT_EQ(FillPage("<title>{{title}}</title><b>{{data}}</b>!", "run", "[1]"), "<title>run</title><b>[1]</b>!");
}

TEST(PageTest, ATitleIsNoMarkup) {
  EXPECT_EQ(FillPage("{{title}}{{data}}", "</title><script>&lt;", ""), "&lt;/title>&lt;script>&amp;lt;");
}

TEST(PageTest, DataCannotEndItsElement) {
  EXPECT_EQ(FillPage("{{title}}{{data}}", "", R"(["</script><!--"])"), R"(["\u003c/script>\u003c!--"])");
}

TEST(PageTest, ATitleThatNamesThePlaceOfTheDataDoesNotBecomeIt) {
  EXPECT_EQ(FillPage("{{title}} {{data}}", "{{data}}", "[]"), "{{data}} []");
}

TEST(PageTest, TextsAreJson) { EXPECT_EQ(FormatJsonText("a \"b\"\n\\"), R"("a \"b\"\n\\")"); }

TEST(PageTest, TextsThatAreNoUtf8BecomeSo) { EXPECT_EQ(FormatJsonText("a\xff"), "\"a\xEF\xBF\xBD\""); }

TEST(PageTest, ThePagesHaveEachPlaceOnce) {
  for (const std::string page : {kDisplayPage, kReportPage}) {
    for (const char* place : {"{{title}}", "{{data}}"}) {
      EXPECT_NE(page.find(place), std::string::npos);
      EXPECT_EQ(page.find(place), page.rfind(place));
    }
  }
}

TEST(PageTest, ThePagesNameNothingOutside) {
  for (const std::string page : {kDisplayPage, kReportPage}) {
    EXPECT_THAT(page, testing::HasSubstr("default-src 'none'"));
    EXPECT_THAT(page, testing::Not(testing::ContainsRegex("(src|href)=[\"']?(http|//)")));
  }
}

TEST(PageTest, WritesAFile) {
  std::remove("page.html");
  WritePage("page.html", false, "page");
  EXPECT_EQ(Read("page.html"), "page");
  EXPECT_FALSE(std::ifstream("page.html.part"));
}

TEST(PageTest, KeepsWhatExists) {
  std::ofstream("kept.html") << "precious";
  EXPECT_THROW(WritePage("kept.html", false, "page"), ToolError);
  EXPECT_EQ(Read("kept.html"), "precious");
}

TEST(PageTest, ReplacesWhatExistsIfTold) {
  std::ofstream("old.html") << "old";
  WritePage("old.html", true, "new");
  EXPECT_EQ(Read("old.html"), "new");
}

TEST(PageTest, SaysThatAPlaceCannotBeWritten) {
  try {
    WritePage("nowhere/page.html", false, "page");
    FAIL();
  } catch (const ToolError& error) {
    EXPECT_EQ(error.GetCode(), kCannotWrite);
    EXPECT_STREQ(error.what(),
                 "nowhere/page.html could not be written (No such file or directory) and was not kept; choose another "
                 "place");
  }
}

TEST(PageTest, APageThatIsNotWholeIsNotKept) {
  std::remove("large.html");
  rlimit before = {};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit small = {1000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_THROW(WritePage("large.html", false, std::string(100000, ' ')), ToolError);
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_FALSE(std::ifstream("large.html"));
  EXPECT_FALSE(std::ifstream("large.html.part"));
}
