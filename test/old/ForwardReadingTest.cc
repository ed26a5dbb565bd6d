// Today's files in the hands of programs that were built when one class or another was older. ROOT promises them: what
// their classes have is read, by name and with a number converted to the older type; what came later is passed over,
// without a word; everything beside it is not touched.

#include "Fields.h"
#include "Rule.h"

#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>

using old_files::Text;
using testing::Not;

namespace {

/// A file of today's library, with the values of the rule in it: an old one written anew.
void WriteTodaysFile(const char* name) {
  TStnEventFile from(OLD_FILES "/event-5.root");
  TStnEventFile to(name, "RECREATE");
  TStnRunHeader* header = nullptr;
  TStnRunTrailer* trailer = nullptr;
  ASSERT_TRUE(from.ReadRunHeader(&header) && to.WriteRunHeader(header));
  ASSERT_TRUE(from.ReadRunTrailer(&trailer) && to.WriteRunTrailer(trailer));
  TStnEvent event;
  TStnEvent* address = &event;
  for (unsigned i = 0; i < Rule::kNEvents; ++i)
    ASSERT_TRUE(from.ReadEvent(&address) && to.WriteEvent(&address));
  delete header;
  delete trailer;
}

/// What an older program sees: text by "0 TStnT3Data::fNPixels". What ROOT has to say about the file stands under "".
using Seen = std::map<std::string, std::string>;

class ForwardReadingTest : public testing::Test {
 protected:
  static Seen Read(const std::string& program) {
    WriteTodaysFile("today.root");
    EXPECT_EQ(std::system((std::string(OLD_PROGRAMS "/") + program + " today.root > seen.txt 2>&1").c_str()), 0);
    Seen seen;
    std::ifstream file("seen.txt");
    for (std::string line; std::getline(file, line);)
      AddLine(line, &seen);
    return seen;
  }

  /// Everything in the events as the rule has it, but for the classes named.
  static void ExpectTheRest(const Seen& seen, const std::string& except = "") {
    for (unsigned i = 0; i < Rule::kNEvents; ++i) {
      const std::string event = Text(i) + " ";
      if (except != "TStnEventHeader") ExpectHeader(seen, i, 10);
      EXPECT_EQ(seen.at(event + "TStnPixelList::fNPixels"), Text(kRule.As<UInt_t>("TStnPixelList::fNPixels", {i})));
      EXPECT_EQ(seen.at(event + "TStnFADCData::fNTraces"), Text(Rule::kNTraces));
      EXPECT_EQ(seen.at(event + "TStnEvent::fTriggerData"), "there");
      EXPECT_EQ(seen.at(event + "TStnEvent::fT3Data"), i < 2 ? "there" : "null");
    }
    for (const auto& [name, text] : old_files::WrittenRunHeader(kRule))
      EXPECT_EQ(seen.at("run TStnRunHeader::" + name), text);
  }

  /// Fields of the header that the program's class, of version 9 or 10, has.
  static void ExpectHeader(const Seen& seen, unsigned event, int version) {
    for (const auto& field : old_files::GetHeaderFields()) {
      SCOPED_TRACE(field.fName);
      const auto& found = seen.at(Text(event) + " TStnEventHeader::" + field.fName);
      if (field.fName == "fRawMirrorTime") continue;  // here for all mirrors, and compared below
      if (field.fName == "fDeadTimeCounter" || field.fName == "fVetoTimeCounter") {
        // Such a program knows the counters as words only.
        EXPECT_EQ(found, old_files::WrittenArray<UInt_t>(kRule, old_files::MemberOfHeader(field.fName), {event},
                                                         2 * field.fCount));
        continue;
      }
      const bool is_narrow = version == 9 && field.fName == "fMirrorNSkippedTriggers";
      EXPECT_EQ(found, (is_narrow ? field.fWrittenIn9 : field.fWritten)(kRule, {event}));
    }
    EXPECT_EQ(seen.at(Text(event) + " TStnEventHeader::fRawMirrorTime"), old_files::Join(6, [&](unsigned i) {
                return old_files::WrittenTime(kRule, "TStnEventHeader::fRawMirrorTime", {event}, i);
              }));
  }

  static const Rule kRule;

 private:
  static void AddLine(const std::string& line, Seen* seen) {
    std::istringstream words(line);
    std::string where, member, text;
    words >> where >> member;
    std::getline(words >> std::ws, text);
    const bool is_member = where == "run" || (where.size() == 1 && where[0] >= '0' && where[0] <= '9');
    if (is_member) {
      (*seen)[where + " " + member] = text;
    } else {
      (*seen)[""] += line + "\n";
    }
  }
};

const Rule ForwardReadingTest::kRule;

TEST_F(ForwardReadingTest, AnOlderT3DataLacksTheTotalSignal) {
  const Seen seen = Read("read-with-older-records");
  EXPECT_EQ(seen.count(""), 0u);
  for (unsigned i = 0; i < 2; ++i) {
    const std::string t3 = Text(i) + " TStnT3Data::";
    EXPECT_EQ(seen.at(t3 + "fNPixels"), Text(kRule.As<Int_t>("TStnT3Data::fNPixels", {i})));
    EXPECT_EQ(seen.at(t3 + "fSDPTheta"), Text(kRule.As<Float_t>("TStnT3Data::fSDPTheta", {i})));
    EXPECT_EQ(seen.at(t3 + "fSDPPhi"), Text(kRule.As<Float_t>("TStnT3Data::fSDPPhi", {i})));
    EXPECT_EQ(seen.at(t3 + "fAzimuthAtGround"), Text(kRule.As<Float_t>("TStnT3Data::fAzimuthAtGround", {i})));
    EXPECT_EQ(seen.at(t3 + "fTimeAtGround"), Text(kRule.As<Int_t>("TStnT3Data::fTimeAtGround", {i})));
    EXPECT_EQ(seen.count(t3 + "fTotalSignal"), 0u);
    EXPECT_EQ(seen.count(Text(i) + " TStnGeometryData::fAxisAzimuth"), 1u);
  }
  ExpectTheRest(seen);
}

TEST_F(ForwardReadingTest, AnOlderRunTrailerLacksTheTotalTime) {
  const Seen seen = Read("read-with-older-records");
  auto fields = old_files::WrittenRunTrailer(kRule, 2);
  EXPECT_EQ(fields.back().first, "fTotalTime");
  EXPECT_EQ(seen.count("run TStnRunTrailer::fTotalTime"), 0u);
  fields.pop_back();
  for (const auto& [name, text] : fields)
    EXPECT_EQ(seen.at("run TStnRunTrailer::" + name), text);
}

/// As with any conversion between whole numbers, the low bits remain.
TEST_F(ForwardReadingTest, AnOlderHeaderConvertsToItsNarrowerNumbers) {
  const Seen seen = Read("read-with-older-header");
  EXPECT_EQ(seen.count(""), 0u);
  for (unsigned i = 0; i < Rule::kNEvents; ++i)
    ExpectHeader(seen, i, 9);
  ExpectTheRest(seen, "TStnEventHeader");
}

TEST_F(ForwardReadingTest, AnOlderEventLacksTheGeometry) {
  const Seen seen = Read("read-with-older-event");
  EXPECT_EQ(seen.count(""), 0u);
  EXPECT_EQ(seen.count("0 TStnEvent::fGeometryData"), 0u);
  ExpectTheRest(seen);
}

/// The one case in which ROOT speaks: the lengths of today's arrays are no members of a trace of version 1.
TEST_F(ForwardReadingTest, AnOlderTraceLacksTheWordsAndCostsNothingElse) {
  const Seen seen = Read("read-with-older-traces");
  EXPECT_THAT(seen.at(""), testing::HasSubstr("should not be skipped from class TFADCData"));
  ExpectTheRest(seen);
}

}  // namespace
