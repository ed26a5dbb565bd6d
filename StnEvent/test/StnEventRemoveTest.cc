#include <StnEvent/StnEvent.h>

#include <EventWithOwnParts.h>
#include <LogCapture.h>
#include <Members.h>
#include <MirrorEvents.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

const char* const kIncomplete = "WRN:TStnEvent::RemoveEvent() - is incompletely implemented!\n";

std::string RecordStays(UInt_t mirror) {
  return "WRN:TStnPixelData::AddPixelData() - pixel data for Mirror Id " + std::to_string(mirror) +
         " has been already added, ignored!\n";
}

class StnEventRemoveTest : public testing::Test {
 protected:
  /// An event of station 2 with mirrors 1 and 3, which differ in time, label and counters.
  StnEventRemoveTest() {
    MirrorSpec spec;
    spec.fStn = 2;
    spec.fPixels = {1, 24, 100};
    fEvent.AddEvent(MakeMirrorEvent(spec).get());
    spec.fMirror = 3;
    spec.fPixels = {5, 100};
    spec.fLabel = TMirrorEventHeader::kRandomEvent;
    spec.fNanoSec = 7000;
    spec.fCounter = 0x100000000;
    fEvent.AddEvent(MakeMirrorEvent(spec).get());
    Header()->SetRunNo(11);
    Header()->SetEventNo(12);
    Header()->SetT3Id(13);
  }

  TStnEventHeader* Header() { return fEvent.GetEventHeader(); }
  bool Remove(UInt_t mirror) {
    TMirrorEvent* mirror_event = &fMirror;
    return fEvent.RemoveEvent(mirror, &mirror_event);
  }
  std::vector<Int_t> MirrorPixels() {
    std::vector<Int_t> words;
    for (UInt_t i = 0; i < fMirror.GetPixelList()->GetNumPixels(); ++i) {
      words.push_back(fMirror.GetPixelList()->GetPixel(i)->fPixelNumber);
    }
    return words;
  }
  const TFADCData* Trace(UInt_t mirror, UInt_t pixel_no) {
    _PixelNumber pixel = MakePixel(2, mirror, pixel_no);
    return fEvent.GetFADCData()->GetFADCData(&pixel);
  }

  LogCapture fLog;
  TStnEvent fEvent;
  TMirrorEvent fMirror;
};

TEST_F(StnEventRemoveTest, RefusesAMirrorThatCannotBe) {
  TStnEvent event;
  TMirrorEvent* mirror_event = &fMirror;
  EXPECT_FALSE(event.RemoveEvent(0, &mirror_event));
  EXPECT_FALSE(event.RemoveEvent(7, &mirror_event));
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnEvent::RemoveEvent() - mirror_id 0 is invalid!\n"
            "ERR:TStnEvent::RemoveEvent() - mirror_id 7 is invalid!\n");
  EXPECT_EQ(Member<void*>(event, "fEventHeader"), nullptr);
}

TEST_F(StnEventRemoveTest, RefusesAMissingAddress) {
  EXPECT_FALSE(fEvent.RemoveEvent(1));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEvent::RemoveEvent() - 'evptr' is not specified!\n");
  EXPECT_TRUE(Header()->IsMirrorDataPresent(1));
}

TEST_F(StnEventRemoveTest, AnswersFalseAlsoForASuccess) {
  EXPECT_FALSE(Remove(1));
  EXPECT_EQ(fLog.Take(), kIncomplete + RecordStays(1));
  EXPECT_FALSE(Header()->IsMirrorDataPresent(1));
}

TEST_F(StnEventRemoveTest, LeavesTheCallersNullPointerNull) {
  TMirrorEvent* mirror_event = nullptr;
  EXPECT_FALSE(fEvent.RemoveEvent(3, &mirror_event));
  EXPECT_EQ(mirror_event, nullptr);
  EXPECT_EQ(fLog.Take(), "WRN:TStnEvent::RemoveEvent() - 'evptr' is NULL, TMirrorEvent will be created!\n" +
                             std::string(kIncomplete) + RecordStays(3));
  EXPECT_FALSE(Header()->IsMirrorDataPresent(3));
  EXPECT_EQ(Trace(3, 5), nullptr);
}

TEST_F(StnEventRemoveTest, FillsTheMirrorsHeader) {
  Header()->SetTimeCorrectionParameters(101.0F, 2.0F);
  Header()->SetVetoTimeCounter(99);
  Remove(3);
  TMirrorEventHeader* header = fMirror.GetEventHeader();
  EXPECT_EQ(header->GetStnNo(), 2U);
  EXPECT_EQ(header->GetMirrorNo(), 3U);
  EXPECT_EQ(header->GetRunNo(), 11U);
  EXPECT_EQ(header->GetEventNo(), 12U);
  EXPECT_EQ(header->GetTriggerNo(), 12U);
  EXPECT_EQ(header->GetTriggerSource(), TMirrorEventHeader::kInternalTrigger);
  EXPECT_EQ(header->GetT3Id(), 13);
  // GPS second 1,000,000,000 taken for a Unix second and converted once more.
  EXPECT_EQ(header->GetNextPageTime(), 684035213U);
  EXPECT_EQ(header->GetNextPageNanoTime(), 7000U);
  EXPECT_EQ(header->GetTriggerTimeStamp(), 0x1003U);
  EXPECT_EQ(header->GetNextPageDelay(), 700U);
  EXPECT_EQ(header->GetDaqDeadTime(), 0x100000003U);
  EXPECT_EQ(header->GetRunTimeCounter(), 0x100000000U);
  EXPECT_EQ(header->GetDeadTimeCounter(), 0x100000002U);
  EXPECT_EQ(header->GetVetoTimeCounter(), 99U);
  EXPECT_EQ(header->GetNumSkippedTriggers(), 4U);
  EXPECT_EQ(header->GetEventType(), TMirrorEventHeader::kPhysicsEvent);
  EXPECT_EQ(header->GetEventLabel(), TMirrorEventHeader::kRandomEvent);
  Float_t t10 = 0;
  Float_t offset = 0;
  header->GetTimeCorrectionParameters(&t10, &offset);
  EXPECT_EQ(t10, 101.0F);
  EXPECT_EQ(offset, 2.0F);
}

TEST_F(StnEventRemoveTest, GivesTheMirrorTypeOfAnOffsetEvent) {
  Header()->SetEventType(TStnEventHeader::kLaserOffset);
  Remove(1);
  EXPECT_EQ(fMirror.GetEventHeader()->GetEventType(), TMirrorEventHeader::kPhysicsEvent);
}

TEST_F(StnEventRemoveTest, ClearsTheMirrorsSlots) {
  Remove(3);
  EXPECT_EQ(Header()->GetMirrorDataBits(), 1U);
  EXPECT_EQ(Header()->GetRunTimeCounter(3), 0U);
  EXPECT_EQ(Header()->GetDeadTimeCounter(3), 0U);
  EXPECT_EQ(Header()->GetMirrorTimeOffset(3), 0U);
  EXPECT_EQ(Header()->GetMirrorDaqDeadTime(3), 0U);
  EXPECT_EQ(Header()->GetMirrorNSkippedTriggers(3), 0U);
  EXPECT_EQ(Header()->GetMirrorEventLabel(3), 0);
  EXPECT_EQ(Header()->GetTriggerSource(3), 0);
  EXPECT_EQ(Header()->GetTriggerTimeStamp(3), 0U);
  Header()->SetMirrorDataPresent(3);
  EXPECT_EQ(Header()->GetRawMirrorTimeStamp(3)->GetGPSSec(), 0);
  EXPECT_EQ(Header()->GetRawMirrorTimeStamp(3)->GetNanoSec(), 0);
}

TEST_F(StnEventRemoveTest, LeavesTheSlotsOfOtherMirrors) {
  Remove(3);
  EXPECT_EQ(Header()->GetRunTimeCounter(1), 100U);
  EXPECT_EQ(Header()->GetTriggerTimeStamp(1), 0x1001U);
  EXPECT_EQ(Header()->GetMirrorEventLabel(1), TMirrorEventHeader::kMuonEvent);
  EXPECT_EQ(Header()->GetRawMirrorTimeStamp(1)->GetNanoSec(), 5000);
}

TEST_F(StnEventRemoveTest, LeavesWhatTheMirrorDidToTheStation) {
  Remove(3);
  EXPECT_EQ(Header()->GetMirrorStatusBits(), 5U);
  EXPECT_EQ(Header()->GetEventClass(), TStnEventHeader::kMuonAndNoise);
  EXPECT_EQ(Header()->GetEventType(), TStnEventHeader::kPhysics);
  EXPECT_EQ(Header()->GetVetoTimeCounter(), 0x100000001U);
  EXPECT_EQ(Header()->GetStnNo(), 2U);
}

TEST_F(StnEventRemoveTest, EventTimeIsThatOfTheMirrorsLeft) {
  Remove(1);
  EXPECT_EQ(Header()->GetTimeStamp()->GetGPSSec(), 1000000000);
  EXPECT_EQ(Header()->GetTimeStamp()->GetNanoSec(), 7000);
}

TEST_F(StnEventRemoveTest, EventTimeIsTheLatestStampWhenNoMirrorIsLeft) {
  Remove(1);
  Remove(3);
  EXPECT_EQ(Header()->GetTimeStamp()->GetSec(), 0x7fffffff);
}

TEST_F(StnEventRemoveTest, CopiesThePixelDataAndKeepsTheRecord) {
  Remove(3);
  EXPECT_EQ(fMirror.GetPixelData()->GetStnNo(), 2U);
  EXPECT_EQ(fMirror.GetPixelData()->GetMirrorNo(), 3U);
  EXPECT_EQ(fMirror.GetPixelData()->GetNumberOfTriggeredPixels(0, 99), 2U);
  ASSERT_NE(fEvent.GetPixelData()->GetPixelData(3), nullptr);
  EXPECT_NE(fEvent.GetPixelData()->GetPixelData(3), fMirror.GetPixelData());
}

TEST_F(StnEventRemoveTest, GivesTheMirrorsPixelsOnly) {
  Remove(3);
  EXPECT_EQ(MirrorPixels(), std::vector<Int_t>({MakePixel(2, 3, 5).fPixelNumber, MakePixel(2, 3, 100).fPixelNumber}));
}

TEST_F(StnEventRemoveTest, AddsToPixelsThatTheMirrorEventHolds) {
  _PixelNumber held = MakePixel(2, 3, 300);
  fMirror.GetPixelList()->AddPixel(&held);
  Remove(3);
  EXPECT_EQ(MirrorPixels(), std::vector<Int_t>({MakePixel(2, 3, 300).fPixelNumber, MakePixel(2, 3, 5).fPixelNumber,
                                                MakePixel(2, 3, 100).fPixelNumber}));
}

TEST_F(StnEventRemoveTest, MovesTheMirrorsTraces) {
  Remove(3);
  for (const UInt_t pixel_no : {5U, 100U}) {
    EXPECT_EQ(Trace(3, pixel_no), nullptr);
    _PixelNumber pixel = MakePixel(2, 3, pixel_no);
    const std::unique_ptr<TFADCData> trace(fMirror.GetFADCData()->GetPixelFADCData(&pixel));
    ASSERT_NE(trace, nullptr);
    EXPECT_EQ(trace->GetSample(120), MakeSample(pixel_no, 120));
    EXPECT_EQ(trace->GetPixelNumber()->fPixelNumber, pixel.fPixelNumber);
  }
  EXPECT_EQ(fMirror.GetFADCData()->GetNumTraces(), 2U);
  EXPECT_NE(Trace(1, 1), nullptr);
  EXPECT_NE(Trace(1, 100), nullptr);
  // Two less for each trace: the container counts so.
  EXPECT_EQ(fEvent.GetFADCData()->GetNTraces(), 1U);
}

TEST_F(StnEventRemoveTest, TakesTheNeighboursOutOfThePixelList) {
  TStnEvent neighbours;
  MirrorSpec spec;
  spec.fStn = 2;
  spec.fPixels = {5, 6, 100};
  neighbours.AddEvent(MakeMirrorEvent(spec).get());
  TMirrorEvent* mirror_event = &fMirror;
  neighbours.RemoveEvent(1, &mirror_event);
  EXPECT_EQ(neighbours.GetPixelList()->GetNumPixels(), 0U);
  // 6 went in the place of 5; 7 and 101 were never there, so 5 and 100 are left.
  const UInt_t* words = Member<UInt_t*>(*neighbours.GetPixelList(), "fPixelVector");
  EXPECT_EQ(words[0], 1U << 4);
  EXPECT_EQ(words[3], 1U << 3);
}

TEST_F(StnEventRemoveTest, LowersThePixelCountByTheMirrorsPixels) {
  Remove(3);
  EXPECT_EQ(fEvent.GetPixelList()->GetNumPixels(), 3U);
}

TEST_F(StnEventRemoveTest, TakesNothingOfAMirrorThatIsAbsent) {
  fMirror.GetEventHeader()->SetNextPageTime(42);
  fMirror.GetEventHeader()->SetNextPageNanoTime(43);
  fMirror.GetPixelData()->SetTriggered(1, 1, 5);
  EXPECT_FALSE(Remove(6));
  EXPECT_EQ(fLog.Take(), kIncomplete);
  EXPECT_EQ(fMirror.GetEventHeader()->GetNextPageTime(), 42U);
  EXPECT_EQ(fMirror.GetEventHeader()->GetNextPageNanoTime(), 43U);
  EXPECT_EQ(fMirror.GetEventHeader()->GetMirrorNo(), 6U);
  EXPECT_EQ(fMirror.GetPixelData()->GetNumberOfTriggeredPixels(0, 99), 1U);
  EXPECT_EQ(fMirror.GetPixelList()->GetNumPixels(), 0U);
  EXPECT_EQ(fMirror.GetFADCData()->GetNumTraces(), 0U);
  EXPECT_EQ(fEvent.GetPixelData()->GetPixelData(6), nullptr);
  EXPECT_EQ(fEvent.GetPixelList()->GetNumPixels(), 5U);
  EXPECT_EQ(Header()->GetMirrorDataBits(), 5U);
}

TEST_F(StnEventRemoveTest, WorksOnAnEmptyEvent) {
  TStnEvent event;
  TMirrorEvent* mirror_event = &fMirror;
  EXPECT_FALSE(event.RemoveEvent(1, &mirror_event));
  EXPECT_EQ(fLog.Take(), kIncomplete);
}

TEST_F(StnEventRemoveTest, SkipsPixelsWithoutATrace) {
  const std::unique_ptr<const TFADCData> removed(Trace(3, 5));
  fEvent.GetFADCData()->RemoveFADCData(removed.get());
  Remove(3);
  EXPECT_EQ(fMirror.GetFADCData()->GetNumTraces(), 1U);
  EXPECT_EQ(fMirror.GetPixelList()->GetNumPixels(), 2U);
}

TEST_F(StnEventRemoveTest, IgnoresPixelWordsOfZero) {
  _PixelNumber none;
  none.fPixelNumber = 0;
  fMirror.GetPixelList()->AddPixel(&none);
  Remove(3);
  EXPECT_EQ(fLog.Take(), kIncomplete + RecordStays(3));
  EXPECT_EQ(fEvent.GetPixelList()->GetNumPixels(), 3U);
}

TEST_F(StnEventRemoveTest, EndsAlsoWhenTheCountOfPixelsWrapsAround) {
  // Each removal takes all pixels of the mirror event's list out again, also those of the removal before.
  Remove(1);
  Remove(3);
  Remove(1);
  Remove(1);
  EXPECT_GT(fEvent.GetPixelList()->GetNumPixels(), 2880U);
  Remove(1);
}

TEST_F(StnEventRemoveTest, ReachesTheEventsPartsThroughTheGetters) {
  EventWithOwnParts event;
  MirrorSpec spec;
  spec.fPixels = {5, 100};
  event.AddEvent(MakeMirrorEvent(spec).get());
  event.fAsked.clear();
  TMirrorEvent* mirror_event = &fMirror;
  event.RemoveEvent(1, &mirror_event);
  EXPECT_THAT(event.fAsked, testing::ElementsAre("header", "pixel data", "pixel list", "traces"));
  EXPECT_EQ(event.fOwnHeader.GetMirrorDataBits(), 0U);
  EXPECT_EQ(event.fOwnPixelList.GetNumPixels(), 0U);
  EXPECT_EQ(fMirror.GetPixelList()->GetNumPixels(), 2U);
  EXPECT_EQ(fMirror.GetFADCData()->GetNumTraces(), 2U);
}

TEST_F(StnEventRemoveTest, RebuildsAMirrorEventThatCanBeAddedAgain) {
  Remove(3);
  TStnEvent again;
  EXPECT_TRUE(again.AddEvent(&fMirror));
  EXPECT_EQ(again.GetEventHeader()->GetMirrorDataBits(), 4U);
  EXPECT_EQ(again.GetPixelList()->GetNumPixels(), 2U);
  EXPECT_EQ(again.GetFADCData()->GetNTraces(), 2U);
}

}  // namespace
