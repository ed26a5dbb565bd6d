#include "HeaderNames.h"

#include <gtest/gtest.h>

using StnTools::GetShortName;

TEST(HeaderNames, HaveNoQuoteMarks) { EXPECT_EQ(GetShortName(TStnEventHeader::kIsShower), "Shower"); }

TEST(HeaderNames, EndBeforeTheirExplanation) { EXPECT_EQ(GetShortName(TStnEventHeader::kPhysics), "Physics"); }

TEST(HeaderNames, TellTheQuality) { EXPECT_EQ(GetShortName(TStnEventHeader::kCorrectionNotSet), "NotSet"); }

TEST(HeaderNames, OfNoTypeHaveNoMarksToLose) {
  EXPECT_EQ(GetShortName(static_cast<TStnEventHeader::EEventType>(17)), "Invalid Type");
}
