#include <MrEvent/MiFadcData.h>

#include <LogCapture.h>
#include <RecordBuffers.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

namespace {

using VdUtil::Vd;

_PixelNumber MakePixel(UInt_t pixel_no) {
  _PixelNumber pixel;
  pixel.fPixelNumber = 0;
  Vd::SetStnNo(&pixel, 1);
  Vd::SetMirrorNo(&pixel, 2);
  Vd::SetPixelNo(&pixel, pixel_no);
  return pixel;
}

TFADCData MakeTrace(UInt_t pixel_no, UInt_t first_word) {
  TFADCData trace;
  *trace.GetPixelNumber() = MakePixel(pixel_no);
  trace.GetRecord()->fTraceInfo.fEndBin = 999;
  for (UInt_t bin = 0; bin < 1000; ++bin)
    trace.GetRecord()->fFadcData[bin].fWord = first_word + bin % 3;
  return trace;
}

void SetTrace(TMirrorFADCData& data, UInt_t pixel_no, UInt_t first_word) {
  const TFADCData trace = MakeTrace(pixel_no, first_word);
  _PixelNumber pixel = MakePixel(pixel_no);
  data.SetPixelFADCData(&pixel, &trace);
}

/// Traces in the first, the last and a middle pixel.
TMirrorFADCData MakeData() {
  TMirrorFADCData data;
  SetTrace(data, 1, 100);
  SetTrace(data, 6 * 24 + 11, 200);
  SetTrace(data, 480, 300);
  return data;
}

void ExpectMadeData(const TMirrorFADCData& data) {
  EXPECT_EQ(data.GetNumTraces(), 3u);
  const UInt_t places[][3] = {{1, 1, 100}, {7, 11, 200}, {20, 24, 300}};
  for (const auto& place : places) {
    ASSERT_TRUE(data.IsValidPixel(place[0], place[1]));
    const auto* record = data.GetFADCData(place[0], place[1]);
    EXPECT_EQ(record->fFadcData[0].fWord, place[2]);
    EXPECT_EQ(record->fFadcData[998].fWord, place[2] + 998 % 3);
    EXPECT_EQ(record->fTraceInfo.fEndBin, 999u);
    EXPECT_EQ(Vd::GetColumnNo(&record->fPixelNumber), place[0]);
    EXPECT_EQ(Vd::GetRowNo(&record->fPixelNumber), place[1]);
  }
}

TEST(MiFadcData, NewDataHaveNoTraces) {
  const TMirrorFADCData data;
  EXPECT_EQ(data.GetNumTraces(), 0u);
  for (UInt_t column = 1; column <= 20; ++column)
    for (UInt_t row = 1; row <= 24; ++row)
      EXPECT_FALSE(data.IsValidPixel(column, row));
}

TEST(MiFadcData, TraceStandsAtColumnAndRowOfItsPixel) { ExpectMadeData(MakeData()); }

TEST(MiFadcData, PixelOutsideTheCameraIsNotValid) {
  TMirrorFADCData data;
  for (UInt_t pixel_no = 1; pixel_no <= 480; ++pixel_no)
    SetTrace(data, pixel_no, 1);
  EXPECT_EQ(data.GetNumTraces(), 480u);
  const UInt_t bad[][2] = {{0, 1}, {1, 0}, {21, 1}, {20, 25}, {0, 0}, {0xffffffff, 1}, {1, 0xffffffff}};
  for (const auto& place : bad) {
    EXPECT_FALSE(data.IsValidPixel(place[0], place[1]));
    EXPECT_EQ(data._GetFADCData(place[0], place[1]), nullptr);
    EXPECT_EQ(data.GetPixelFADCData(place[0], place[1]), nullptr);
  }
}

TEST(MiFadcData, PixelWithoutATraceGivesNull) {
  const TMirrorFADCData data = MakeData();
  _PixelNumber pixel = MakePixel(2);
  EXPECT_EQ(data.GetPixelFADCData(1, 2), nullptr);
  EXPECT_EQ(data.GetPixelFADCData(&pixel), nullptr);
  EXPECT_EQ(data.GetPixelFADCData(nullptr), nullptr);
}

TEST(MiFadcData, TraceThatIsHandedOutRefersToTheRecord) {
  const TMirrorFADCData data = MakeData();
  {
    std::unique_ptr<TFADCData> trace(data.GetPixelFADCData(7, 11));
    ASSERT_TRUE(trace);
    EXPECT_EQ(trace->GetRecord(), data._GetFADCData(7, 11));
    Vd::SetStnNo(trace->GetPixelNumber(), 5);
  }
  EXPECT_EQ(Vd::GetStnNo(&data.GetFADCData(7, 11)->fPixelNumber), 5u);
}

TEST(MiFadcData, PixelNumberNamesTheSameTrace) {
  const TMirrorFADCData data = MakeData();
  _PixelNumber pixel = MakePixel(480);
  std::unique_ptr<TFADCData> trace(data.GetPixelFADCData(&pixel));
  ASSERT_TRUE(trace);
  EXPECT_EQ(trace->GetRecord(), data.GetFADCData(20, 24));
}

TEST(MiFadcData, SetCopiesTheTrace) {
  TMirrorFADCData data;
  _PixelNumber pixel = MakePixel(5);
  {
    const TFADCData trace = MakeTrace(77, 10);
    data.SetPixelFADCData(&pixel, &trace);
    EXPECT_NE(data.GetFADCData(1, 5), trace.GetRecord());
  }
  EXPECT_EQ(data.GetFADCData(1, 5)->fFadcData[1].fWord, 11);
  EXPECT_EQ(Vd::GetPixelNo(&data.GetFADCData(1, 5)->fPixelNumber), 77u);
}

TEST(MiFadcData, SecondTraceOfAPixelReplacesTheFirst) {
  TMirrorFADCData data = MakeData();
  SetTrace(data, 1, 500);
  EXPECT_EQ(data.GetNumTraces(), 3u);
  EXPECT_EQ(data.GetFADCData(1, 1)->fFadcData[0].fWord, 500);
}

TEST(MiFadcData, TraceOfTheSamePlaceCanBeSetAgain) {
  TMirrorFADCData data = MakeData();
  _PixelNumber pixel = MakePixel(1);
  std::unique_ptr<TFADCData> trace(data.GetPixelFADCData(&pixel));
  data.SetPixelFADCData(&pixel, trace.get());
  ExpectMadeData(data);
}

TEST(MiFadcData, NoPixelIsIgnored) {
  TMirrorFADCData data = MakeData();
  const TFADCData trace;
  _PixelNumber none;
  none.fPixelNumber = 0;
  LogCapture log;
  data.SetPixelFADCData(nullptr, &trace);
  data.SetPixelFADCData(&none, &trace);
  data.SetPixelFADCData(&none, nullptr);
  // The upper half of the word has no meaning.
  none.fPixelNumber = 0x10000;
  data.SetPixelFADCData(&none, &trace);
  EXPECT_EQ(log.Take(), "");
  ExpectMadeData(data);
}

TEST(MiFadcData, IllegalPixelIsRefusedWithAMessage) {
  for (UInt_t pixel_no : {0u, 481u, 511u}) {
    TMirrorFADCData data = MakeData();
    const TFADCData trace;
    _PixelNumber pixel = MakePixel(pixel_no);
    LogCapture log;
    data.SetPixelFADCData(&pixel, &trace);
    EXPECT_EQ(log.Take(), "ERR:TMirrorFADCData::SetPixelFADCData() - illegal pixel " + std::to_string(pixel_no) +
                              " passed, ignored!\n");
    ExpectMadeData(data);
  }
}

TEST(MiFadcData, MissingTraceIsRefusedWithAMessage) {
  TMirrorFADCData data = MakeData();
  _PixelNumber pixel = MakePixel(480);
  LogCapture log;
  data.SetPixelFADCData(&pixel, nullptr);
  EXPECT_EQ(log.Take(), "ERR:TMirrorFADCData::SetPixelFADCData() - no trace passed for pixel 480, ignored!\n");
  ExpectMadeData(data);
}

TEST(MiFadcData, CopyOutlivesItsSource) {
  TMirrorFADCData* source = new TMirrorFADCData(MakeData());
  const TMirrorFADCData copy(*source);
  EXPECT_NE(copy.GetFADCData(1, 1), source->GetFADCData(1, 1));
  delete source;
  ExpectMadeData(copy);
}

TEST(MiFadcData, AssignmentReplacesAllTraces) {
  TMirrorFADCData data;
  SetTrace(data, 33, 1);
  data = MakeData();
  EXPECT_FALSE(data.IsValidPixel(2, 9));
  ExpectMadeData(data);
}

TEST(MiFadcData, AssignmentToItselfChangesNothing) {
  TMirrorFADCData data = MakeData();
  TMirrorFADCData& same = data;
  data = same;
  ExpectMadeData(data);
}

TEST(MiFadcData, ClearDeletesAllTraces) {
  TMirrorFADCData data = MakeData();
  data.Clear();
  EXPECT_EQ(data.GetNumTraces(), 0u);
  EXPECT_FALSE(data.IsValidPixel(1, 1));
}

TEST(MiFadcData, ShowsTheBinsOfEachTrace) {
  TMirrorFADCData data;
  SetTrace(data, 480, 1);
  SetTrace(data, 27, 1);
  SetTrace(data, 1, 1);
  std::ostringstream text;
  data.Show(text);
  EXPECT_EQ(text.str(),
            "--- TMirrorFADCData ---\n"
            " Number of traces : 3\n"
            " Column 1, row 1: bins 0 to 999 of 2000\n"
            " Column 2, row 3: bins 0 to 999 of 2000\n"
            " Column 20, row 24: bins 0 to 999 of 2000\n"
            "--------------------\n");
}

TEST(MiFadcDataOnFile, TracesComeBack) {
  TMirrorFADCData data = MakeData();
  TMirrorFADCData back;
  SetTrace(back, 33, 1);
  const Bytes bytes = ToBytes(data);
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
  ExpectMadeData(back);
  EXPECT_FALSE(back.IsValidPixel(2, 9));
}

TEST(MiFadcDataOnFile, ObjectIsWrittenAndReadAgainAndAgain) {
  TMirrorFADCData data = MakeData();
  TMirrorFADCData used;
  SetTrace(used, 7, 400);
  const Bytes bytes = ToBytes(data);
  EXPECT_EQ(ToBytes(data), bytes);
  ToBytes(used);
  testing::internal::CaptureStderr();
  for (int i = 0; i < 2; ++i) {
    FromBytes(bytes, used);
    ExpectMadeData(used);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(ToBytes(used), bytes);
}

TEST(MiFadcDataOnFile, NoTracesComeBack) {
  TMirrorFADCData data;
  TMirrorFADCData back = MakeData();
  FromBytes(ToBytes(data), back);
  EXPECT_EQ(back.GetNumTraces(), 0u);
}

TEST(MiFadcDataOnFile, RecordThatCannotBeReadLeavesTheTraces) {
  TMirrorFADCData data;
  Bytes bytes = ToBytes(data);
  Put(bytes, 4, 7, 2);
  TMirrorFADCData back = MakeData();
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
  ExpectMadeData(back);
}

TEST(MiFadcDataOnFile, TracesComeBackThroughAFile) {
  TMirrorFADCData data = MakeData();
  const auto back = ThroughFile(data);
  ASSERT_TRUE(back);
  ExpectMadeData(*back);
}

}  // namespace
