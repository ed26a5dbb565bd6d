#include <StnEvent/StnPixelData.h>

#include "LogCapture.h"
#include "Members.h"

#include <TBufferFile.h>
#include <TClass.h>
#include <TDataMember.h>
#include <TStreamerElement.h>
#include <TVirtualStreamerInfo.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

namespace {

/// Pixel data that count how many of them are alive.
class TCountedData : public TMirrorPixelData {
 public:
  TCountedData() { ++fgAlive; }
  ~TCountedData() override { --fgAlive; }
  static int fgAlive;
};
int TCountedData::fgAlive = 0;

/// Data of one mirror of station 2 with one pixel triggered in one slice.
TMirrorPixelData Data(UInt_t mirror, UInt_t column = 3, UInt_t row = 4, UInt_t slice = 50) {
  TMirrorPixelData data;
  data.SetStnNo(2);
  data.SetMirrorNo(mirror);
  data.SetTriggered(column, row, slice);
  return data;
}

/// The pixel of station 2 in column 3 and row 4 of a mirror.
_VdPixelNumber Pixel(UInt_t mirror) {
  _VdPixelNumber pixel;
  VdUtil::Vd::SetPixelNo(&pixel, 2880 + (mirror - 1) * 480 + 2 * 24 + 4);
  return pixel;
}

std::string ShownToCout(const TMirrorPixelData* data) {
  testing::internal::CaptureStdout();
  data->Show(std::cout, 100);
  return testing::internal::GetCapturedStdout();
}

void Read(TStnPixelData& target, TStnPixelData& source) {
  TBufferFile b(TBuffer::kWrite);
  source.Streamer(b);
  b.SetReadMode();
  b.SetBufferOffset(0);
  target.Streamer(b);
}

Version_t& StreamerVersion(TStnPixelData& data) { return Member<Version_t>(data, "fStreamerVersion"); }

class StnPixelDataTest : public testing::Test {
 protected:
  LogCapture fLog;
};

TEST_F(StnPixelDataTest, NewContainerHasNoData) {
  const TStnPixelData data;
  for (UInt_t mirror = 1; mirror <= 6; ++mirror)
    EXPECT_EQ(data.GetPixelData(mirror), nullptr);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(), 0U);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelDataTest, IllegalMirrorHasNoData) {
  const TStnPixelData data;
  EXPECT_EQ(data.GetPixelData(0), nullptr);
  EXPECT_EQ(data.GetPixelData(7), nullptr);
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnPixelData::GetPixelData(0) - illegal Mirror id passed !\n"
            "ERR:TStnPixelData::GetPixelData(7) - illegal Mirror id passed !\n");
}

TEST_F(StnPixelDataTest, StoresACopy) {
  TStnPixelData data;
  TMirrorPixelData mirror_data = Data(3);
  EXPECT_TRUE(data.AddPixelData(&mirror_data, 3));
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_NE(data.GetPixelData(3), &mirror_data);
  EXPECT_EQ(data.GetPixelData(3)->GetMirrorNo(), 3U);
  EXPECT_EQ(data.GetPixelData(3)->GetFirstTriggeredTimeBin(3, 4, 0, 99), 50);
}

TEST_F(StnPixelDataTest, StoresAnObjectThatIsHandedOver) {
  auto* mirror_data = new TCountedData;
  {
    TStnPixelData data;
    EXPECT_TRUE(data.AddPixelData(mirror_data, 6, true));
    EXPECT_EQ(data.GetPixelData(6), mirror_data);
  }
  EXPECT_EQ(TCountedData::fgAlive, 0);
}

TEST_F(StnPixelDataTest, RefusesAnIllegalMirrorAndLeavesTheObject) {
  TStnPixelData data;
  const auto mirror_data = std::make_unique<TCountedData>();
  EXPECT_FALSE(data.AddPixelData(mirror_data.get(), 0, true));
  EXPECT_FALSE(data.AddPixelData(mirror_data.get(), 7, true));
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnPixelData::AddPixelData() - trying to add data for illegal mirror id !\n"
            "ERR:TStnPixelData::AddPixelData() - trying to add data for illegal mirror id !\n");
  EXPECT_EQ(TCountedData::fgAlive, 1);
}

TEST_F(StnPixelDataTest, RefusesASecondObjectAndDeletesItIfHandedOver) {
  TStnPixelData data;
  TMirrorPixelData first = Data(1);
  data.AddPixelData(&first, 1);
  TMirrorPixelData* stored = data.GetPixelData(1);
  EXPECT_FALSE(data.AddPixelData(new TCountedData, 1, true));
  EXPECT_EQ(fLog.Take(),
            "WRN:TStnPixelData::AddPixelData() - pixel data for Mirror Id 1 has been already added, ignored!\n");
  EXPECT_EQ(TCountedData::fgAlive, 0);
  EXPECT_EQ(data.GetPixelData(1), stored);
}

TEST_F(StnPixelDataTest, RefusesASecondObjectAndLeavesItIfNotHandedOver) {
  TStnPixelData data;
  TMirrorPixelData first = Data(1);
  data.AddPixelData(&first, 1);
  const auto second = std::make_unique<TCountedData>();
  EXPECT_FALSE(data.AddPixelData(second.get(), 1));
  EXPECT_EQ(fLog.Take(),
            "WRN:TStnPixelData::AddPixelData() - pixel data for Mirror Id 1 has been already added, ignored!\n");
  EXPECT_EQ(TCountedData::fgAlive, 1);
}

TEST_F(StnPixelDataTest, RefusesNullForATakenSlot) {
  TStnPixelData data;
  TMirrorPixelData first = Data(1);
  data.AddPixelData(&first, 1);
  EXPECT_FALSE(data.AddPixelData(nullptr, 1, true));
  EXPECT_FALSE(data.AddPixelData(nullptr, 1, false));
  EXPECT_NE(data.GetPixelData(1), nullptr);
}

TEST_F(StnPixelDataTest, KeepsItsOwnObjectWhenThatIsHandedOverAgain) {
  TStnPixelData data;
  auto* mirror_data = new TCountedData;
  data.AddPixelData(mirror_data, 2, true);
  EXPECT_FALSE(data.AddPixelData(mirror_data, 2, true));
  EXPECT_EQ(TCountedData::fgAlive, 1);
  EXPECT_EQ(data.GetPixelData(2), mirror_data);
}

TEST_F(StnPixelDataTest, NullIsNotStored) {
  TStnPixelData data;
  EXPECT_FALSE(data.AddPixelData(nullptr, 2));
  EXPECT_EQ(data.GetPixelData(2), nullptr);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelDataTest, NullThatIsHandedOverLeavesTheSlotEmpty) {
  TStnPixelData data;
  EXPECT_TRUE(data.AddPixelData(nullptr, 2, true));
  EXPECT_EQ(data.GetPixelData(2), nullptr);
}

TEST_F(StnPixelDataTest, ClearDeletesAllData) {
  TStnPixelData data;
  data.AddPixelData(new TCountedData, 1, true);
  data.AddPixelData(new TCountedData, 6, true);
  data.Clear();
  EXPECT_EQ(TCountedData::fgAlive, 0);
  EXPECT_EQ(data.GetPixelData(1), nullptr);
  EXPECT_EQ(data.GetPixelData(6), nullptr);
}

TEST_F(StnPixelDataTest, ClearedContainerTakesNewData) {
  TStnPixelData data;
  data.AddPixelData(new TCountedData, 1, true);
  data.Clear();
  EXPECT_TRUE(data.AddPixelData(new TCountedData, 1, true));
}

TEST_F(StnPixelDataTest, FirstTriggeredTimeBinComesFromThePixelsMirror) {
  TStnPixelData data;
  for (UInt_t mirror : {1U, 6U}) {
    TMirrorPixelData mirror_data = Data(mirror, 3, 4, 10 * mirror);
    data.AddPixelData(&mirror_data, mirror);
  }
  _VdPixelNumber first = Pixel(1), last = Pixel(6);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&first), 10);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&last), 60);
}

TEST_F(StnPixelDataTest, FirstTriggeredTimeBinIsLookedForInTheRange) {
  TStnPixelData data;
  TMirrorPixelData mirror_data = Data(1);
  data.AddPixelData(&mirror_data, 1);
  _VdPixelNumber pixel = Pixel(1);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&pixel, 50, 50), 50);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&pixel, 51), TStnPixelData::kNoTrigger);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&pixel, 0, 49), TStnPixelData::kNoTrigger);
}

TEST_F(StnPixelDataTest, DefaultRangesEndAtBin99) {
  TStnPixelData data;
  TMirrorPixelData mirror_data = Data(1, 3, 4, 99);
  data.AddPixelData(&mirror_data, 1);
  _VdPixelNumber pixel = Pixel(1);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&pixel), 99);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(), 1U);
}

TEST_F(StnPixelDataTest, DefaultRangesBeginAtBin0) {
  TStnPixelData data;
  TMirrorPixelData mirror_data = Data(1, 3, 4, 0);
  data.AddPixelData(&mirror_data, 1);
  _VdPixelNumber pixel = Pixel(1);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&pixel), 0);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(), 1U);
}

TEST_F(StnPixelDataTest, NoTriggerWithoutDataForTheMirror) {
  TStnPixelData data;
  TMirrorPixelData mirror_data = Data(1);
  data.AddPixelData(&mirror_data, 1);
  _VdPixelNumber pixel = Pixel(2);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&pixel), -1);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelDataTest, NoTriggerForNoPixel) {
  TStnPixelData data;
  for (UInt_t mirror = 1; mirror <= 6; ++mirror)
    data.AddPixelData(new TMirrorPixelData, mirror, true);
  _VdPixelNumber none;
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&none), TStnPixelData::kNoTrigger);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(nullptr), TStnPixelData::kNoTrigger);
}

TEST_F(StnPixelDataTest, CountsTheTriggeredPixelsOfOneMirror) {
  TStnPixelData data;
  TMirrorPixelData mirror_data = Data(2);
  mirror_data.SetTriggered(5, 6, 20);
  data.AddPixelData(&mirror_data, 2);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(2, 0, 99), 2U);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(2, 20, 49), 1U);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(3, 0, 99), 0U);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelDataTest, CountOfAnIllegalMirrorIsZero) {
  const TStnPixelData data;
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(7, 0, 99), 0U);
  EXPECT_EQ(fLog.Take(), "ERR:TStnPixelData::GetPixelData(7) - illegal Mirror id passed !\n");
}

TEST_F(StnPixelDataTest, CountsTheTriggeredPixelsOfTheStation) {
  TStnPixelData data;
  for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
    TMirrorPixelData mirror_data = Data(mirror, 3, 4, 10 * mirror);
    data.AddPixelData(&mirror_data, mirror);
  }
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(), 6U);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(20, 50), 4U);
}

TEST_F(StnPixelDataTest, AssignmentCopiesIntoAnEmptySlot) {
  TStnPixelData source, target;
  TMirrorPixelData mirror_data = Data(4);
  source.AddPixelData(&mirror_data, 4);
  target = source;
  EXPECT_NE(target.GetPixelData(4), source.GetPixelData(4));
  EXPECT_EQ(target.GetPixelData(4)->GetMirrorNo(), 4U);
}

TEST_F(StnPixelDataTest, AssignmentReachesTheFirstAndTheLastMirror) {
  TStnPixelData source, target;
  for (UInt_t mirror : {1U, 6U}) {
    TMirrorPixelData mirror_data = Data(mirror);
    source.AddPixelData(&mirror_data, mirror);
  }
  target = source;
  EXPECT_NE(target.GetPixelData(1), nullptr);
  EXPECT_NE(target.GetPixelData(6), nullptr);
}

TEST_F(StnPixelDataTest, AssignmentReusesAnObject) {
  TStnPixelData source, target;
  TMirrorPixelData mirror_data = Data(4);
  source.AddPixelData(&mirror_data, 4);
  auto* own = new TCountedData;
  target.AddPixelData(own, 4, true);
  target = source;
  EXPECT_EQ(target.GetPixelData(4), own);
  EXPECT_EQ(own->GetMirrorNo(), 4U);
  EXPECT_EQ(own->GetFirstTriggeredTimeBin(3, 4, 0, 99), 50);
}

TEST_F(StnPixelDataTest, AssignmentDeletesSurplusObjects) {
  const TStnPixelData source;
  TStnPixelData target;
  target.AddPixelData(new TCountedData, 6, true);
  target = source;
  EXPECT_EQ(TCountedData::fgAlive, 0);
  EXPECT_EQ(target.GetPixelData(6), nullptr);
}

TEST_F(StnPixelDataTest, SelfAssignmentChangesNothing) {
  TStnPixelData data;
  auto* own = new TCountedData;
  data.AddPixelData(own, 4, true);
  TStnPixelData& same = data;
  data = same;
  EXPECT_EQ(data.GetPixelData(4), own);
}

TEST_F(StnPixelDataTest, CopyIsDeep) {
  TStnPixelData source;
  TMirrorPixelData mirror_data = Data(4);
  source.AddPixelData(&mirror_data, 4);
  const TStnPixelData copy(source);
  source.Clear();
  EXPECT_EQ(copy.GetPixelData(4)->GetMirrorNo(), 4U);
  EXPECT_EQ(copy.GetPixelData(1), nullptr);
}

TEST_F(StnPixelDataTest, ShowsAnEmptyContainer) {
  TStnPixelData data;
  std::ostringstream text;
  data.Show(text);
  EXPECT_EQ(text.str(),
            "--- TStnPixelData ---\n"
            " Streamer version: 0\n"
            " Class version   : 2\n");
}

TEST_F(StnPixelDataTest, ShowsTheMirrorsWithData) {
  TStnPixelData data;
  for (UInt_t mirror : {1U, 6U}) {
    TMirrorPixelData mirror_data = Data(mirror);
    data.AddPixelData(&mirror_data, mirror);
  }
  std::ostringstream text;
  testing::internal::CaptureStdout();
  data.Show(text);
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(text.str(),
            "--- TStnPixelData ---\n"
            " Streamer version: 0\n"
            " Class version   : 2\n"
            "\tFound pixel data for Mirror 1, telescope id= 7 (probably wrong!)\n"
            "\tFound pixel data for Mirror 6, telescope id= 12 (probably wrong!)\n");
}

TEST_F(StnPixelDataTest, ShowsTheDataThemselvesToStandardOutput) {
  TStnPixelData data;
  TMirrorPixelData mirror_data = Data(2, 3, 4, 99);
  data.AddPixelData(&mirror_data, 2);
  std::ostringstream text;
  testing::internal::CaptureStdout();
  data.Show(text);
  const std::string shown = testing::internal::GetCapturedStdout();
  EXPECT_NE(shown, "");
  EXPECT_EQ(shown, ShownToCout(data.GetPixelData(2)));
}

TEST_F(StnPixelDataTest, ShowsEverythingToStandardOutputByDefault) {
  TStnPixelData data;
  TMirrorPixelData mirror_data = Data(2);
  data.AddPixelData(&mirror_data, 2);
  testing::internal::CaptureStdout();
  data.Show();
  const std::string shown = testing::internal::GetCapturedStdout();
  EXPECT_EQ(shown,
            "--- TStnPixelData ---\n"
            " Streamer version: 0\n"
            " Class version   : 2\n"
            "\tFound pixel data for Mirror 2, telescope id= 8 (probably wrong!)\n" +
                ShownToCout(data.GetPixelData(2)));
}

TEST_F(StnPixelDataTest, ReadsBackWhatItWrote) {
  TStnPixelData source, target;
  TMirrorPixelData mirror_data = Data(4);
  source.AddPixelData(&mirror_data, 4);
  Read(target, source);
  ASSERT_NE(target.GetPixelData(4), nullptr);
  EXPECT_EQ(target.GetPixelData(4)->GetStnNo(), 2U);
  EXPECT_EQ(target.GetPixelData(4)->GetMirrorNo(), 4U);
  EXPECT_EQ(target.GetNumberOfTriggeredPixels(), 1U);
  EXPECT_EQ(target.GetPixelData(3), nullptr);
}

TEST_F(StnPixelDataTest, ReadingDeletesWhatWasThere) {
  TStnPixelData source, target;
  TMirrorPixelData mirror_data = Data(4);
  source.AddPixelData(&mirror_data, 4);
  target.AddPixelData(new TCountedData, 4, true);
  target.AddPixelData(new TCountedData, 5, true);
  Read(target, source);
  EXPECT_EQ(TCountedData::fgAlive, 0);
  EXPECT_EQ(target.GetPixelData(5), nullptr);
}

TEST_F(StnPixelDataTest, ReadingLeavesTheStreamerVersion) {
  TStnPixelData source, target;
  StreamerVersion(target) = 7;
  Read(target, source);
  EXPECT_EQ(StreamerVersion(target), 7);
}

TEST_F(StnPixelDataTest, ClearLeavesTheStreamerVersion) {
  TStnPixelData data;
  StreamerVersion(data) = 7;
  data.Clear();
  EXPECT_EQ(StreamerVersion(data), 7);
}

TEST_F(StnPixelDataTest, CopyAndAssignmentDoNotTakeTheStreamerVersion) {
  TStnPixelData source, target;
  StreamerVersion(source) = 7;
  StreamerVersion(target) = 1;
  target = source;
  TStnPixelData copy(source);
  EXPECT_EQ(StreamerVersion(target), 1);
  EXPECT_EQ(StreamerVersion(copy), 0);
}

TEST_F(StnPixelDataTest, ShowsTheStreamerVersion) {
  TStnPixelData data;
  StreamerVersion(data) = 7;
  std::ostringstream text;
  data.Show(text);
  EXPECT_EQ(text.str(),
            "--- TStnPixelData ---\n"
            " Streamer version: 7\n"
            " Class version   : 2\n");
}

TEST_F(StnPixelDataTest, IsRegisteredAsVersion2) { EXPECT_EQ(TClass::GetClass("TStnPixelData")->GetClassVersion(), 2); }

TEST_F(StnPixelDataTest, DescriptionHasTheSlotsOnly) {
  const TObjArray& elements = *TStnPixelData::Class()->GetStreamerInfo()->GetElements();
  ASSERT_EQ(elements.GetEntries(), 2);
  const auto& slots = *static_cast<TStreamerElement*>(elements[1]);
  EXPECT_STREQ(slots.GetName(), "fPixelData");
  EXPECT_STREQ(slots.GetTitle(), "Pointers to PixelData obj.");
  EXPECT_EQ(slots.GetArrayLength(), 6);
  EXPECT_STREQ(TStnPixelData::Class()->GetDataMember("fStreamerVersion")->GetTitle(), "! version read from file");
}

}  // namespace
