#include "EventPicture.h"

#include <MrEvent/MrEvent.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;
using StnTools::FormatPicture;

const UInt_t kSecond = 1400000000;

struct TracePixel {
  UInt_t fNumber;
  UInt_t fTriggerBin;
  bool fHasTrace;
};

// A mirror whose trace of 1000 bins ends at `nanosec`.
void AddMirror(TStnEvent& event, UInt_t mirror, UInt_t nanosec, const std::vector<TracePixel>& pixels) {
  TMirrorEvent data;
  TMirrorEventHeader* header = data.GetEventHeader();
  header->SetStnNo(1);
  header->SetMirrorNo(mirror);
  header->SetNextPageTime(kSecond);
  header->SetNextPageNanoTime(nanosec);
  header->SetEventLabel(TMirrorEventHeader::kShowerEvent);
  for (const TracePixel& pixel : pixels) {
    _PixelNumber number;
    number.fPixelNumber = static_cast<int>(pixel.fNumber);
    data.GetPixelList()->AddPixel(&number);
    if (!pixel.fHasTrace) continue;
    TFADCData::_FADCDataRec record = {};
    record.fPixelNumber = number;
    record.fTraceInfo.fEndBin = 999;
    for (auto& word : record.fFadcData)
      word.fData = 100;
    record.fFadcData[pixel.fTriggerBin].fPixelTrigger = 1;
    record.fFadcData[pixel.fTriggerBin].fData = 350;
    const TFADCData trace(&record);
    data.GetFADCData()->SetPixelFADCData(&number, &trace);
    data.GetPixelData()->SetTriggered(&number, pixel.fTriggerBin / 10);
  }
  event.AddEvent(&data);
}

Json Picture(TStnEvent& event) { return Json::parse(FormatPicture(3, event)); }

}  // namespace

TEST(EventPictureTest, HasEntryHeaderAndLabels) {
  TStnEvent event;
  AddMirror(event, 2, 0, {});
  event.GetEventHeader()->SetEventNo(17);
  event.GetEventHeader()->SetEventClass(TStnEventHeader::kIsMuon);
  const Json picture = Picture(event);
  EXPECT_EQ(picture["entry"], 3);
  EXPECT_EQ(picture["header"]["fEventNumber"], 17);
  EXPECT_EQ(picture["header"]["eventClass"], "Muon");
  EXPECT_EQ(picture["labels"],
            Json({"Unlabelled", "ShowerEvent", "Unlabelled", "Unlabelled", "Unlabelled", "Unlabelled"}));
  EXPECT_EQ(picture["pixels"], Json::array());
}

TEST(EventPictureTest, HasPlaceAndTraceOfAPixel) {
  TStnEvent event;
  AddMirror(event, 2, 0, {{133, 250, true}});
  const Json pixel = Picture(event)["pixels"].at(0);
  EXPECT_EQ(pixel["number"], 613);
  EXPECT_EQ(pixel["mirror"], 2);
  EXPECT_EQ(pixel["pixel"], 133);
  EXPECT_EQ(pixel["column"], 6);
  EXPECT_EQ(pixel["row"], 13);
  EXPECT_EQ(pixel["listed"], true);
  EXPECT_EQ(pixel["slices"], Json::parse("[[25,25]]"));
  EXPECT_EQ(pixel["trace"]["first"], 0);
  EXPECT_EQ(pixel["trace"]["size"], 1000);
  EXPECT_EQ(pixel["trace"]["bins"], 1000);
  EXPECT_EQ(pixel["trace"]["triggers"], Json::parse("[[250,250]]"));
  EXPECT_EQ(pixel["trace"]["changes"], Json::array());
  EXPECT_EQ(pixel["trace"]["pedestal"], 100.);
  EXPECT_EQ(pixel["trace"]["signal"], 250.);
}

TEST(EventPictureTest, TimesCountFromTheFirstTriggerOfAllMirrors) {
  TStnEvent event;
  AddMirror(event, 1, 5000, {{7, 300, true}});
  AddMirror(event, 2, 5300, {{8, 299, true}, {9, 310, true}});
  const Json pixels = Picture(event)["pixels"];
  EXPECT_EQ(pixels.at(0)["trace"]["time"], 0);
  EXPECT_EQ(pixels.at(1)["trace"]["time"], 200);
  EXPECT_EQ(pixels.at(2)["trace"]["time"], 1300);
}

TEST(EventPictureTest, TimesGoOnOverTheEndOfASecond) {
  TStnEvent event;
  AddMirror(event, 1, 50000, {{7, 300, true}, {8, 800, true}});
  EXPECT_EQ(Picture(event)["pixels"].at(1)["trace"]["time"], 50000);
}

TEST(EventPictureTest, APixelWithoutTraceIsThere) {
  TStnEvent event;
  AddMirror(event, 1, 0, {{480, 0, false}});
  const Json pixel = Picture(event)["pixels"].at(0);
  EXPECT_EQ(pixel["number"], 480);
  EXPECT_TRUE(pixel["trace"].is_null());
}

TEST(EventPictureTest, ATraceOfAPixelThatIsNotListedIsThere) {
  TStnEvent event;
  AddMirror(event, 1, 0, {{5, 100, true}});
  event.GetPixelList()->Clear();
  EXPECT_EQ(Picture(event)["pixels"].at(0)["listed"], false);
}

TEST(EventPictureTest, AnEmptyEventHasNoPixels) {
  TStnEvent event;
  EXPECT_EQ(Picture(event)["pixels"], Json::array());
}
