#include "Finding.h"

#include "EntryGaps.h"

#include <gtest/gtest.h>

namespace {

using namespace StnTools;

Finding MakeFinding() {
  Finding finding;
  finding.fWhat = "run number";
  finding.fExpected = "1";
  finding.fFound = "2";
  return finding;
}

TEST(Finding, IsOneLineWithoutAPlace) { EXPECT_EQ(MakeFinding().GetText(), "run number: expected 1, found 2"); }

TEST(Finding, NamesEventAndBranch) {
  Finding finding = MakeFinding();
  finding.fEntry = 3;
  finding.fBranch = "fEventHeader";
  EXPECT_EQ(finding.GetText(), "event 3, fEventHeader: run number: expected 1, found 2");
}

TEST(Finding, NamesSeveralEvents) {
  Finding finding = MakeFinding();
  finding.fEntry = 3;
  finding.fLastEntry = 5;
  EXPECT_EQ(finding.GetText(), "events 3 to 5: run number: expected 1, found 2");
}

TEST(Finding, IsJson) {
  Finding finding = MakeFinding();
  finding.fKind = Finding::kNote;
  finding.fEntry = 3;
  finding.fLastEntry = 5;
  finding.fBranch = "b";
  EXPECT_EQ(finding.GetJson(),
            R"({"kind":"note","entry":3,"last_entry":5,"branch":"b","what":"run number","expected":"1","found":"2"})");
}

TEST(Finding, ComesBackFromJson) {
  Finding finding = MakeFinding();
  finding.fEntry = 3;
  finding.fBranch = "b";
  EXPECT_EQ(Finding::FromJson(finding.GetJson()).GetJson(), finding.GetJson());
}

TEST(Finding, IsJsonWhateverBytesAFileHolds) {
  Finding finding = MakeFinding();
  finding.fFound = "\xff";
  EXPECT_EQ(finding.GetJson(),
            "{\"kind\":\"damage\",\"what\":\"run number\",\"expected\":\"1\",\"found\":\"\xef\xbf\xbd\"}");
}

TEST(EntryGaps, PutsEventsTogetherThatLackTheSame) {
  EntryGaps gaps;
  for (std::uint64_t entry : {2, 3, 4})
    gaps.Add(entry, "traces");
  ASSERT_EQ(gaps.Get().size(), 1u);
  EXPECT_EQ(gaps.Get()[0].GetName(), "events 2 to 4");
}

TEST(EntryGaps, KeepsEventsApartThatAreNotNeighbours) {
  EntryGaps gaps;
  gaps.Add(2, "traces");
  gaps.Add(4, "traces");
  ASSERT_EQ(gaps.Get().size(), 2u);
  EXPECT_EQ(gaps.Get()[1].GetName(), "event 4");
}

TEST(EntryGaps, KeepsEventsApartThatLackSomethingElse) {
  EntryGaps gaps;
  gaps.Add(2, "traces");
  gaps.Add(3, "header");
  EXPECT_EQ(gaps.Get().size(), 2u);
}

}  // namespace
