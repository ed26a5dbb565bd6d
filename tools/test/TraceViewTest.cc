#include "TraceView.h"

#include <gtest/gtest.h>

namespace {

using StnTools::TraceView;
using Ranges = std::vector<TraceView::Range>;

TFADCData::_FADCDataRec MakeRecord(UInt_t start, UInt_t end, UInt_t level) {
  TFADCData::_FADCDataRec record = {};
  record.fTraceInfo.fStartBin = start;
  record.fTraceInfo.fEndBin = end;
  for (UInt_t bin = start; bin <= end && bin < TFADCData::kNFADCWords; ++bin)
    record.fFadcData[bin].fData = level & 0xFFF;
  return record;
}

}  // namespace

TEST(TraceViewTest, HasTheBinsOfTheTrace) {
  auto record = MakeRecord(100, 299, 180);
  const TraceView view{TFADCData(&record)};
  EXPECT_EQ(view.GetFirst(), 100U);
  EXPECT_EQ(view.GetSize(), 200U);
}

TEST(TraceViewTest, LeavesOutBinsWithoutAWord) {
  auto record = MakeRecord(1990, 3999, 180);
  EXPECT_EQ(TraceView(TFADCData(&record)).GetSize(), 10U);
}

TEST(TraceViewTest, HasNothingIfTheTraceEndsBeforeItBegins) {
  auto record = MakeRecord(4095, 0, 180);
  const TraceView view{TFADCData(&record)};
  EXPECT_EQ(view.GetSize(), 0U);
  EXPECT_EQ(view.GetPedestal(), 0.);
  EXPECT_EQ(view.GetSignal(), 0.);
  EXPECT_EQ(view.EncodeSamples(), "");
}

TEST(TraceViewTest, JoinsTriggerBinsToRanges) {
  auto record = MakeRecord(10, 99, 180);
  for (UInt_t bin : {10, 40, 41, 42, 44, 99})
    record.fFadcData[bin].fPixelTrigger = 1;
  record.fFadcData[9].fPixelTrigger = 1;
  const Ranges expected = {{10, 10}, {40, 42}, {44, 44}, {99, 99}};
  EXPECT_EQ(TraceView(TFADCData(&record)).GetTriggerRanges(), expected);
}

TEST(TraceViewTest, FindsChangesOfTheThreshold) {
  auto record = MakeRecord(0, 99, 180);
  record.fFadcData[7].fThresholdChanged = 1;
  EXPECT_EQ(TraceView(TFADCData(&record)).GetThresholdChanges(), std::vector<UInt_t>{7});
}

TEST(TraceViewTest, PedestalIsTheMeanWithoutThePulse) {
  auto record = MakeRecord(0, 99, 180);
  for (UInt_t bin = 0; bin < 40; ++bin)
    record.fFadcData[bin].fData = 182;
  for (UInt_t bin = 50; bin < 70; ++bin)
    record.fFadcData[bin].fData = 900;
  EXPECT_DOUBLE_EQ(TraceView(TFADCData(&record)).GetPedestal(), 181.);
}

TEST(TraceViewTest, SignalTakesTheMarginOfTheTriggerAlong) {
  auto record = MakeRecord(0, 999, 100);
  record.fFadcData[500].fPixelTrigger = 1;
  record.fFadcData[520].fPixelTrigger = 1;
  for (UInt_t bin : {489, 490, 505, 530, 531})
    record.fFadcData[bin].fData = 1100;
  EXPECT_DOUBLE_EQ(TraceView(TFADCData(&record)).GetSignal(), 3000.);
}

TEST(TraceViewTest, SignalStopsAtTheEndsOfTheTrace) {
  auto record = MakeRecord(100, 199, 100);
  record.fFadcData[103].fPixelTrigger = 1;
  record.fFadcData[195].fPixelTrigger = 1;
  record.fFadcData[100].fData = 1100;
  record.fFadcData[199].fData = 1100;
  EXPECT_DOUBLE_EQ(TraceView(TFADCData(&record)).GetSignal(), 2000.);
}

TEST(TraceViewTest, SignalOfATraceWithoutTriggerIsThatOfAllBins) {
  auto record = MakeRecord(0, 999, 100);
  record.fFadcData[0].fData = record.fFadcData[999].fData = 150;
  EXPECT_DOUBLE_EQ(TraceView(TFADCData(&record)).GetSignal(), 100.);
}

TEST(TraceViewTest, EncodesSmallDifferencesInOneByte) {
  auto record = MakeRecord(0, 2, 100);
  record.fFadcData[1].fData = 227;
  record.fFadcData[2].fData = 226;
  EXPECT_EQ(TraceView(TFADCData(&record)).EncodeSamples(), "ZH//");  // 100, +127, -1
}

TEST(TraceViewTest, EncodesLargeDifferencesInThreeBytes) {
  auto record = MakeRecord(0, 2, 100);
  record.fFadcData[1].fData = 228;
  record.fFadcData[2].fData = 4095;
  EXPECT_EQ(TraceView(TFADCData(&record)).EncodeSamples(), "ZIDkAID/Dw==");  // 100, 80 e4 00, 80 ff 0f
}

TEST(TraceViewTest, FlagsAreNoPartOfTheSamples) {
  auto record = MakeRecord(0, 1, 100);
  record.fFadcData[1].fPixelTrigger = record.fFadcData[1].fThresholdChanged = 1;
  EXPECT_EQ(TraceView(TFADCData(&record)).EncodeSamples(), "ZAA=");
}
