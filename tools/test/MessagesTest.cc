#include "Messages.h"

#include <VdUtil/ErrorLogger.h>

#include <TError.h>

#include <gtest/gtest.h>

namespace {

using StnTools::Messages;

}  // namespace

TEST(MessagesTest, HasNoErrorAtFirst) { EXPECT_EQ(Messages().GetFirstError(), ""); }

TEST(MessagesTest, KeepsTheFirstErrorOfRoot) {
  Messages messages;
  testing::internal::CaptureStderr();
  Error("Somewhere", "first %d\nand more", 1);
  Error("Somewhere", "second");
  EXPECT_EQ(messages.GetFirstError(), "first 1");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MessagesTest, DropsWarningsOfRoot) {
  Messages messages;
  testing::internal::CaptureStderr();
  Warning("Somewhere", "never mind");
  EXPECT_EQ(messages.GetFirstError(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MessagesTest, KeepsTheFirstErrorOfTheLogger) {
  Messages messages;
  testing::internal::CaptureStderr();
  VD_INFO << "some words" << std::endl;
  VD_ERROR << "TStnFoo::Bar() - broken !" << std::endl;
  VD_FATAL << "later" << std::endl;
  EXPECT_EQ(messages.GetFirstError(), "TStnFoo::Bar() - broken !");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MessagesTest, TakesSevereAndFatalMessagesForErrors) {
  Messages messages;
  VD_SEVERE << "severe" << std::endl;
  EXPECT_EQ(messages.GetFirstError(), "severe");
  messages.Clear();
  VD_FATAL << "fatal" << std::endl;
  EXPECT_EQ(messages.GetFirstError(), "fatal");
}

TEST(MessagesTest, PassesWarningsOfTheLoggerOn) {
  Messages messages;
  testing::internal::CaptureStderr();
  VD_WARNING << "take care" << std::endl;
  EXPECT_EQ(messages.GetFirstError(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "WRN:take care\n");
}

TEST(MessagesTest, ForgetsOnRequest) {
  Messages messages;
  Error("Somewhere", "first");
  VD_ERROR << "too" << std::endl;
  messages.Clear();
  EXPECT_EQ(messages.GetFirstError(), "");
}

TEST(MessagesTest, LetsTheLoggerWriteAgainAtItsEnd) {
  { Messages messages; }
  testing::internal::CaptureStderr();
  VD_ERROR << "as before" << std::endl;
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERR:as before\n");
}

TEST(MessagesTest, LetsRootWriteAgainAtItsEnd) {
  { Messages messages; }
  testing::internal::CaptureStderr();
  Error("Somewhere", "as before");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error in <Somewhere>: as before\n");
}

TEST(MessagesTest, EndsWhereRootCannotGoOn) {
  Messages messages;
  EXPECT_EXIT(Fatal("Somewhere", "the end"), testing::ExitedWithCode(1), "Somewhere: the end\n");
}
