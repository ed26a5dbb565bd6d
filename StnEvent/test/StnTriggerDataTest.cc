#include <StnEvent/StnTriggerData.h>

#include "LogCapture.h"

#include <TBufferFile.h>
#include <TClass.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(StnTriggerDataTest, AssignmentCopiesNothing) {
  TStnTriggerData source, target;
  source.SetUniqueID(7);
  EXPECT_EQ(&(target = source), &target);
  EXPECT_EQ(target.GetUniqueID(), 0U);
}

TEST(StnTriggerDataTest, CopyTakesItsObjectAlong) {
  TStnTriggerData source;
  source.SetUniqueID(7);
  EXPECT_EQ(TStnTriggerData(source).GetUniqueID(), 7U);
}

TEST(StnTriggerDataTest, ShowOnlyWarns) {
  LogCapture log;
  std::ostringstream text;
  TStnTriggerData().Show(text);
  EXPECT_EQ(text.str(), "");
  EXPECT_EQ(log.Take(), "WRN:TStnTriggerData::Show() is not implemented !\n");
}

TEST(StnTriggerDataTest, ShowsNothingToStandardOutputEither) {
  LogCapture log;
  testing::internal::CaptureStdout();
  TStnTriggerData().Show();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(StnTriggerDataTest, RecordHoldsItsObjectOnly) {
  TStnTriggerData source, target;
  source.SetUniqueID(7);
  TBufferFile b(TBuffer::kWrite);
  source.Streamer(b);
  EXPECT_EQ(b.Length(), 6 + 10);
  b.SetReadMode();
  b.SetBufferOffset(0);
  target.Streamer(b);
  EXPECT_EQ(target.GetUniqueID(), 7U);
}

TEST(StnTriggerDataTest, IsRegisteredAsVersion1) {
  EXPECT_EQ(TClass::GetClass("TStnTriggerData")->GetClassVersion(), 1);
}

}  // namespace
