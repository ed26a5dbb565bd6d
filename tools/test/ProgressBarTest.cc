#include "ProgressBar.h"

#include <gtest/gtest.h>

using StnTools::ProgressBar;

TEST(ProgressBarTest, FillsUp) {
  EXPECT_EQ(ProgressBar::Draw(0, 200), "[..............................]   0 %");
  EXPECT_EQ(ProgressBar::Draw(99, 200), "[##############................]  49 %");
  EXPECT_EQ(ProgressBar::Draw(200, 200), "[##############################] 100 %");
}

TEST(ProgressBarTest, IsFullIfThereIsNothingToDo) {
  EXPECT_EQ(ProgressBar::Draw(0, 0), "[##############################] 100 %");
}

TEST(ProgressBarTest, DoesNotOverflow) { EXPECT_EQ(ProgressBar::Draw(7, 5), "[##############################] 100 %"); }

// The tests' standard error stream is caught in a file.
TEST(ProgressBarTest, IsSilentWithoutATerminal) {
  testing::internal::CaptureStderr();
  {
    ProgressBar bar(10);
    bar.Show(5);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
