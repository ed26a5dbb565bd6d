#include <StnEvent/StnEvent.h>

#include <EventWithOwnParts.h>
#include <LogCapture.h>
#include <Members.h>
#include <MirrorEvents.h>
#include <VdRoot/TTimeStamp.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iomanip>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

/// What the mirrors fill in a header, to compare two states of it.
struct HeaderState {
  explicit HeaderState(TStnEventHeader* header) {
    fValues = {header->GetStnNo(),
               header->GetMirrorDataBits(),
               header->GetMirrorStatusBits(),
               static_cast<ULong64_t>(header->GetEventType()),
               static_cast<ULong64_t>(header->GetEventClass()),
               header->GetVetoTimeCounter(),
               static_cast<ULong64_t>(header->GetTimeStamp()->GetSec()),
               static_cast<ULong64_t>(header->GetTimeStamp()->GetNanoSec())};
    for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
      fValues.push_back(header->GetTriggerSource(mirror));
      fValues.push_back(header->GetRunTimeCounter(mirror));
      fValues.push_back(header->GetDeadTimeCounter(mirror));
      fValues.push_back(header->GetTriggerTimeStamp(mirror));
      fValues.push_back(header->GetMirrorDaqDeadTime(mirror));
      fValues.push_back(header->GetMirrorNSkippedTriggers(mirror));
      fValues.push_back(header->GetMirrorEventLabel(mirror));
      fValues.push_back(header->GetMirrorTimeOffset(mirror));
    }
  }
  bool operator==(const HeaderState& rhs) const { return fValues == rhs.fValues; }

  std::vector<ULong64_t> fValues;
};

class StnEventAddTest : public testing::Test {
 protected:
  ~StnEventAddTest() override { TStnEvent::SetPrintLevel(0); }

  bool Add(const MirrorSpec& spec, bool force = false) { return fEvent.AddEvent(MakeMirrorEvent(spec).get(), force); }
  bool Add(UInt_t stn, UInt_t mirror, bool force = false) {
    return fEvent.AddEvent(MakeMirrorEvent(stn, mirror).get(), force);
  }
  TStnEventHeader* Header() { return fEvent.GetEventHeader(); }

  LogCapture fLog;
  TStnEvent fEvent;
};

TEST_F(StnEventAddTest, FirstMirrorFixesTheStation) {
  EXPECT_TRUE(Add(3, 2));
  EXPECT_EQ(Header()->GetStnNo(), 3U);
  EXPECT_EQ(Header()->GetMirrorDataBits(), 2U);
  EXPECT_EQ(Header()->GetMirrorStatusBits(), 2U);
  EXPECT_EQ(fEvent.GetPixelList()->GetStnNo(), 3U);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventAddTest, RefusesAMirrorOfAnotherStation) {
  ASSERT_TRUE(Add(3, 2));
  const HeaderState before(Header());
  EXPECT_FALSE(Add(4, 1));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEvent::AddEvent() - trying to add data from wrong stn 4 !\n");
  EXPECT_TRUE(before == HeaderState(Header()));
  EXPECT_EQ(fEvent.GetPixelList()->GetNumPixels(), 3U);
  EXPECT_EQ(fEvent.GetPixelData()->GetPixelData(1), nullptr);
}

TEST_F(StnEventAddTest, LeavesARefusedMirrorEventAsItIs) {
  ASSERT_TRUE(Add(3, 2));
  const auto other = MakeMirrorEvent(4, 1);
  fEvent.AddEvent(other.get());
  EXPECT_EQ(other->GetPixelList()->GetPixel(0)->fPixelNumber, MakePixel(0, 0, 1).fPixelNumber);
  EXPECT_EQ(other->GetPixelData()->GetStnNo(), 0U);
}

TEST_F(StnEventAddTest, ChangesTheStationWhileNoMirrorHasDelivered) {
  Header()->SetStnNo(1);
  Header()->SetMirrorPresent(1);
  EXPECT_TRUE(Add(2, 1));
  EXPECT_EQ(Header()->GetStnNo(), 2U);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventAddTest, RefusesAMirrorASecondTime) {
  ASSERT_TRUE(Add(3, 2));
  const HeaderState before(Header());
  MirrorSpec again;
  again.fStn = 3;
  again.fMirror = 2;
  again.fCounter = 500;
  EXPECT_FALSE(Add(again));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEvent::AddEvent() - cannot add data for telescope 2 a second time!\n");
  EXPECT_TRUE(before == HeaderState(Header()));
}

TEST_F(StnEventAddTest, AWrongStationIsReportedBeforeARepeatedMirror) {
  ASSERT_TRUE(Add(3, 2));
  EXPECT_FALSE(Add(4, 2, true));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEvent::AddEvent() - trying to add data from wrong stn 4 !\n");
}

TEST_F(StnEventAddTest, ForceReplacesHeaderValuesAndKeepsTheData) {
  MirrorSpec spec;
  spec.fStn = 3;
  spec.fMirror = 2;
  spec.fPixels = {7};
  ASSERT_TRUE(Add(spec));
  const TMirrorPixelData* old = fEvent.GetPixelData()->GetPixelData(2);
  spec.fCounter = 500;
  spec.fLabel = TMirrorEventHeader::kShowerEvent;
  spec.fGpsSec = 1000000007;
  spec.fPixels = {7, 8};
  const auto again = MakeMirrorEvent(spec);
  _PixelNumber pixel = MakePixel(3, 2, 7);
  auto other_trace = MakeTrace(3, 2, 7);
  other_trace->GetRecord()->fFadcData[150].fWord = 9;
  again->GetFADCData()->SetPixelFADCData(&pixel, other_trace.get());

  EXPECT_TRUE(fEvent.AddEvent(again.get(), true));
  EXPECT_EQ(fLog.Take(),
            "WRN:TStnEvent::AddEvent() - adding data for telescope 2 again ...\n"
            "WRN:TStnPixelData::AddPixelData() - pixel data for Mirror Id 2 has been already added, ignored!\n"
            "WRN:TStnPixelList::AddPixel(487) - tried to add pixel again to list - ignored!\n"
            "WRN:TStnFADCData::AddFADCData() - tried to add trace for pixel 487 again !\n");
  EXPECT_EQ(Header()->GetRunTimeCounter(2), 500U);
  EXPECT_EQ(Header()->GetVetoTimeCounter(), 501U);
  EXPECT_EQ(Header()->GetMirrorEventLabel(2), TMirrorEventHeader::kShowerEvent);
  EXPECT_EQ(Header()->GetEventClass(), TStnEventHeader::kIsShower);
  EXPECT_EQ(Header()->GetTimeStamp()->GetGPSSec(), 1000000007);
  EXPECT_EQ(fEvent.GetPixelData()->GetPixelData(2), old);
  EXPECT_EQ(fEvent.GetPixelData()->GetNumberOfTriggeredPixels(), 1U);
  EXPECT_EQ(fEvent.GetFADCData()->GetFADCData(&pixel)->GetSample(150), MakeSample(7, 150));
  EXPECT_EQ(fEvent.GetPixelList()->GetNumPixels(), 2U);
}

TEST_F(StnEventAddTest, ForceIsNotNeededForAnotherMirror) {
  ASSERT_TRUE(Add(3, 2));
  EXPECT_TRUE(Add(3, 5));
  EXPECT_EQ(Header()->GetMirrorDataBits(), 0x12U);
  EXPECT_EQ(Header()->GetMirrorStatusBits(), 0x12U);
  EXPECT_EQ(fEvent.GetPixelList()->GetNumPixels(), 6U);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventAddTest, CopiesTheMirrorsHeaderValuesIntoItsSlots) {
  MirrorSpec spec;
  spec.fMirror = 6;
  spec.fCounter = 0x100000001;
  ASSERT_TRUE(Add(spec));
  EXPECT_EQ(Header()->GetTriggerSource(6), TMirrorEventHeader::kInternalTrigger);
  EXPECT_EQ(Header()->GetRunTimeCounter(6), 0x100000001U);
  EXPECT_EQ(Header()->GetVetoTimeCounter(), 0x100000002U);
  EXPECT_EQ(Header()->GetDeadTimeCounter(6), 0x100000003U);
  EXPECT_EQ(Header()->GetMirrorDaqDeadTime(6), 0x100000004U);
  EXPECT_EQ(Header()->GetMirrorNSkippedTriggers(6), 5U);
  EXPECT_EQ(Header()->GetTriggerTimeStamp(6), 0x1006U);
  EXPECT_EQ(Header()->GetMirrorEventLabel(6), TMirrorEventHeader::kMuonEvent);
  EXPECT_EQ(Header()->GetRawMirrorTimeStamp(6)->GetGPSSec(), 1000000000);
  EXPECT_EQ(Header()->GetRawMirrorTimeStamp(6)->GetNanoSec(), 5000);
}

TEST_F(StnEventAddTest, LeavesTheRestToTheCaller) {
  const auto mirror = MakeMirrorEvent(1, 1);
  mirror->GetEventHeader()->SetRunNo(1);
  mirror->GetEventHeader()->SetEventNo(2);
  mirror->GetEventHeader()->SetT3Id(3);
  Header()->SetRunNo(11);
  Header()->SetEventNo(12);
  Header()->SetT3Id(13);
  Header()->SetNRejectedT3(14);
  Header()->SetTotalT3DeadTime(15.0F);
  Header()->SetT3TimeStamp(VdRoot::TTimeStamp(16, 17));
  Header()->SetStnDaqDeadTime(18);
  Member<UInt_t>(*Header(), "fStatusBits") = 19;
  Member<Short_t>(*Header(), "fSecStartOffset") = 20;
  Member<Short_t>(*Header(), "fSecEndOffset") = 21;
  Member<UInt_t>(*Header(), "fTicksPerSecond") = 80000022;
  Member<UInt_t>(*Header(), "fPPSPhase") = 23;

  ASSERT_TRUE(fEvent.AddEvent(mirror.get()));
  EXPECT_EQ(Header()->GetRunNo(), 11U);
  EXPECT_EQ(Header()->GetEventNo(), 12U);
  EXPECT_EQ(Header()->GetT3Id(), 13);
  EXPECT_EQ(Header()->GetNRejectedT3(), 14U);
  EXPECT_EQ(Header()->GetTotalT3DeadTime(), 15.0F);
  EXPECT_EQ(Header()->GetT3TimeStamp()->GetSec(), 16);
  EXPECT_EQ(Header()->GetT3TimeStamp()->GetNanoSec(), 17);
  EXPECT_EQ(Header()->GetStnDaqDeadTime(), 18U);
  EXPECT_EQ(Member<UInt_t>(*Header(), "fStatusBits"), 19U);
  EXPECT_EQ(Member<Short_t>(*Header(), "fSecStartOffset"), 20);
  EXPECT_EQ(Member<Short_t>(*Header(), "fSecEndOffset"), 21);
  EXPECT_EQ(Member<UInt_t>(*Header(), "fTicksPerSecond"), 80000022U);
  EXPECT_EQ(Member<UInt_t>(*Header(), "fPPSPhase"), 23U);
}

TEST_F(StnEventAddTest, LastMirrorsVetoCounterStands) {
  MirrorSpec first;
  MirrorSpec second;
  second.fMirror = 2;
  second.fCounter = 200;
  ASSERT_TRUE(Add(first));
  ASSERT_TRUE(Add(second));
  EXPECT_EQ(Header()->GetVetoTimeCounter(), 201U);
  EXPECT_EQ(Header()->GetRunTimeCounter(1), 100U);
  EXPECT_EQ(Header()->GetRunTimeCounter(2), 200U);
}

struct TypeCase {
  Int_t fMirrorType;
  TStnEventHeader::EEventType fType;
};

class StnEventType : public StnEventAddTest, public testing::WithParamInterface<TypeCase> {};

TEST_P(StnEventType, FollowsTheFirstMirrorsType) {
  MirrorSpec spec;
  spec.fType = static_cast<TMirrorEventHeader::EMrEventType>(GetParam().fMirrorType);
  ASSERT_TRUE(Add(spec));
  EXPECT_EQ(Header()->GetEventType(), GetParam().fType);
}

INSTANTIATE_TEST_SUITE_P(Types, StnEventType,
                         testing::Values(TypeCase{0, TStnEventHeader::kUnknown}, TypeCase{1, TStnEventHeader::kPhysics},
                                         TypeCase{2, TStnEventHeader::kCalibration},
                                         TypeCase{3, TStnEventHeader::kSimulated},
                                         TypeCase{4, TStnEventHeader::kInvalidType},
                                         TypeCase{7, TStnEventHeader::kInvalidType},
                                         TypeCase{255, TStnEventHeader::kInvalidType}));

TEST_F(StnEventAddTest, AnUnknownTypeLeavesTheDecisionToTheNextMirror) {
  MirrorSpec first;
  first.fType = TMirrorEventHeader::kUnknownEvent;
  MirrorSpec second;
  second.fMirror = 2;
  second.fType = TMirrorEventHeader::kCalibrationEvent;
  ASSERT_TRUE(Add(first));
  ASSERT_TRUE(Add(second));
  EXPECT_EQ(Header()->GetEventType(), TStnEventHeader::kCalibration);
}

class StnEventTypeOnceSet : public StnEventAddTest, public testing::WithParamInterface<TypeCase> {};

TEST_P(StnEventTypeOnceSet, IsNotChangedByAnotherMirror) {
  MirrorSpec first;
  first.fType = static_cast<TMirrorEventHeader::EMrEventType>(GetParam().fMirrorType);
  MirrorSpec second;
  second.fMirror = 2;
  second.fType = TMirrorEventHeader::kCalibrationEvent;
  ASSERT_TRUE(Add(first));
  ASSERT_TRUE(Add(second));
  EXPECT_EQ(Header()->GetEventType(), GetParam().fType);
  EXPECT_EQ(fLog.Take(), "");
}

INSTANTIATE_TEST_SUITE_P(Types, StnEventTypeOnceSet,
                         testing::Values(TypeCase{1, TStnEventHeader::kPhysics},
                                         TypeCase{9, TStnEventHeader::kInvalidType}));

TEST_F(StnEventAddTest, LabelsOfTwoMirrorsCombine) {
  MirrorSpec second;
  second.fMirror = 2;
  second.fLabel = TMirrorEventHeader::kShowerEvent;
  ASSERT_TRUE(Add(1, 1));
  EXPECT_EQ(Header()->GetEventClass(), TStnEventHeader::kIsMuon);
  ASSERT_TRUE(Add(second));
  EXPECT_EQ(Header()->GetEventClass(), TStnEventHeader::kIsShower);
}

TEST_F(StnEventAddTest, EventTimeIsTheEarliestMirrorsAndCanMoveBack) {
  MirrorSpec first;
  first.fNanoSec = 9000;
  MirrorSpec second;
  second.fMirror = 2;
  second.fNanoSec = 2000;
  ASSERT_TRUE(Add(first));
  EXPECT_EQ(Header()->GetTimeStamp()->GetNanoSec(), 9000);
  ASSERT_TRUE(Add(second));
  EXPECT_EQ(Header()->GetTimeStamp()->GetGPSSec(), 1000000000);
  EXPECT_EQ(Header()->GetTimeStamp()->GetNanoSec(), 2000);
  EXPECT_EQ(Header()->GetMirrorTimeOffset(1), 7000U);
  EXPECT_EQ(Header()->GetMirrorTimeOffset(2), 0U);
}

TEST_F(StnEventAddTest, NanosecondsAboveASecondAreCarriedOver) {
  MirrorSpec spec;
  spec.fNanoSec = 1000000050;
  ASSERT_TRUE(Add(spec));
  EXPECT_EQ(Header()->GetRawMirrorTimeStamp(1)->GetGPSSec(), 1000000001);
  EXPECT_EQ(Header()->GetRawMirrorTimeStamp(1)->GetNanoSec(), 50);
}

TEST_F(StnEventAddTest, CorrectsTimesWithTheParametersOfTheHeader) {
  Header()->SetTimeCorrectionParameters(110.0F, 7.0F);
  ASSERT_TRUE(Add(1, 1));
  EXPECT_EQ(Header()->GetTimeStamp()->GetNanoSec(), 5507);
  EXPECT_EQ(Header()->GetTimeCorrectionQuality(), TStnEventHeader::kAveragedPeriod);
}

TEST_F(StnEventAddTest, OldTimingFormatMakesTheCorrectionTheIdentity) {
  Header()->SetTimeCorrectionParameters(110.0F, 7.0F);
  MirrorSpec spec;
  spec.fVersion = TMirrorEventHeader::kLastOldTimingVersion;
  ASSERT_TRUE(Add(spec));
  Float_t t10 = 0;
  Float_t offset = 1;
  Header()->GetTimeCorrectionParameters(&t10, &offset);
  EXPECT_EQ(t10, 100.0F);
  EXPECT_EQ(offset, 0.0F);
  EXPECT_EQ(Header()->GetTimeCorrectionQuality(), TStnEventHeader::kFullQuality);
  EXPECT_EQ(Header()->GetTimeStamp()->GetNanoSec(), 5000);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventAddTest, WarnsOfTheOldTimingFormatAtPrintLevelOne) {
  MirrorSpec spec;
  spec.fVersion = 3;
  TStnEvent::SetPrintLevel(1);
  ASSERT_TRUE(Add(spec));
  EXPECT_THAT(fLog.Take(), HasSubstr("\nWRN:TMirrorEventHeader::Version() = 3 --> old timing format !!!\n"));
}

TEST_F(StnEventAddTest, CurrentFormatSetsNoCorrection) {
  ASSERT_TRUE(Add(1, 1));
  EXPECT_EQ(Header()->GetTimeCorrectionQuality(), TStnEventHeader::kCorrectionNotSet);
}

TEST_F(StnEventAddTest, LabelsTheMirrorsPixelsAndPixelData) {
  const auto mirror = MakeMirrorEvent(4, 5);
  mirror->GetPixelList()->GetPixel(1)->fBits.fTrigger = 1;
  ASSERT_TRUE(fEvent.AddEvent(mirror.get()));
  EXPECT_EQ(mirror->GetPixelList()->GetPixel(0)->fPixelNumber, MakePixel(4, 5, 1).fPixelNumber);
  EXPECT_EQ(mirror->GetPixelList()->GetPixel(2)->fPixelNumber, MakePixel(4, 5, 480).fPixelNumber);
  _PixelNumber marked = MakePixel(4, 5, 24);
  marked.fBits.fTrigger = 1;
  EXPECT_EQ(mirror->GetPixelList()->GetPixel(1)->fPixelNumber, marked.fPixelNumber);
  EXPECT_EQ(mirror->GetPixelData()->GetStnNo(), 4U);
  EXPECT_EQ(mirror->GetPixelData()->GetMirrorNo(), 5U);
}

TEST_F(StnEventAddTest, RelabelsWhatIsLabelledWrong) {
  const auto mirror = MakeMirrorEvent(4, 5);
  mirror->GetPixelData()->SetStnNo(1);
  mirror->GetPixelData()->SetMirrorNo(2);
  *mirror->GetPixelList()->GetPixel(0) = MakePixel(2, 3, 1);
  ASSERT_TRUE(fEvent.AddEvent(mirror.get()));
  EXPECT_EQ(fEvent.GetPixelData()->GetPixelData(5)->GetStnNo(), 4U);
  EXPECT_EQ(fEvent.GetPixelData()->GetPixelData(5)->GetMirrorNo(), 5U);
  EXPECT_EQ(fEvent.GetPixelList()->GetPixel(0)->fPixelNumber, MakeVdPixel(4, 5, 1).fPixelNumber);
}

TEST_F(StnEventAddTest, CopiesPixelsPixelDataAndTraces) {
  auto mirror = MakeMirrorEvent(2, 6);
  ASSERT_TRUE(fEvent.AddEvent(mirror.get()));
  mirror.reset();

  ASSERT_EQ(fEvent.GetPixelList()->GetNumPixels(), 3U);
  EXPECT_EQ(fEvent.GetPixelList()->GetPixel(0)->fPixelNumber, MakeVdPixel(2, 6, 1).fPixelNumber);
  EXPECT_EQ(fEvent.GetPixelList()->GetPixel(1)->fPixelNumber, MakeVdPixel(2, 6, 24).fPixelNumber);
  EXPECT_EQ(fEvent.GetPixelList()->GetPixel(2)->fPixelNumber, MakeVdPixel(2, 6, 480).fPixelNumber);
  for (const UInt_t pixel_no : {1U, 24U, 480U}) {
    _VdPixelNumber vd_pixel = MakeVdPixel(2, 6, pixel_no);
    EXPECT_EQ(fEvent.GetPixelData()->GetFirstTriggeredTimeBin(&vd_pixel), static_cast<int>(pixel_no % 100));
    _PixelNumber pixel = MakePixel(2, 6, pixel_no);
    const TFADCData* trace = fEvent.GetFADCData()->GetFADCData(&pixel);
    ASSERT_NE(trace, nullptr);
    EXPECT_EQ(trace->GetPixelNumber()->fPixelNumber, pixel.fPixelNumber);
    EXPECT_EQ(trace->GetTraceLength(), 100U);
    EXPECT_EQ(trace->GetSample(177), MakeSample(pixel_no, 177));
  }
}

TEST_F(StnEventAddTest, AMirrorWithoutPixelsIsTakenIn) {
  MirrorSpec spec;
  spec.fPixels = {};
  EXPECT_TRUE(Add(spec));
  EXPECT_EQ(Header()->GetMirrorDataBits(), 1U);
  EXPECT_EQ(Header()->GetTimeStamp()->GetGPSSec(), 1000000000);
  EXPECT_NE(fEvent.GetPixelData()->GetPixelData(1), nullptr);
  EXPECT_NE(Member<void*>(fEvent, "fPixelList"), nullptr);
  EXPECT_NE(Member<void*>(fEvent, "fFADCData"), nullptr);
}

TEST_F(StnEventAddTest, SkipsTheTraceThatAPixelLacks) {
  const auto mirror = MakeMirrorEvent(1, 1);
  _PixelNumber pixel = MakePixel(0, 0, 77);
  mirror->GetPixelList()->AddPixel(&pixel);
  EXPECT_TRUE(fEvent.AddEvent(mirror.get()));
  EXPECT_EQ(fEvent.GetPixelList()->GetNumPixels(), 4U);
  _PixelNumber added = MakePixel(1, 1, 77);
  EXPECT_EQ(fEvent.GetFADCData()->GetFADCData(&added), nullptr);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventAddTest, LeavesAPixelWordOfZeroAlone) {
  const auto mirror = MakeMirrorEvent(1, 2);
  _PixelNumber none;
  none.fPixelNumber = 0;
  mirror->GetPixelList()->AddPixel(&none);
  EXPECT_TRUE(fEvent.AddEvent(mirror.get()));
  EXPECT_EQ(mirror->GetPixelList()->GetPixel(3)->fPixelNumber, 0);
  EXPECT_EQ(fEvent.GetPixelList()->GetNumPixels(), 3U);
}

TEST_F(StnEventAddTest, RefusesNoMirrorEvent) {
  EXPECT_FALSE(fEvent.AddEvent(nullptr));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEvent::AddEvent() - no mirror event was passed !\n");
}

TEST_F(StnEventAddTest, AHeaderWithoutMirrorNumberStaysInsideTheSlots) {
  const auto mirror = MakeMirrorEvent(1, 1);
  mirror->GetEventHeader()->GetMirrorNumber()->fMirrorNumber = 0;
  EXPECT_TRUE(fEvent.AddEvent(mirror.get()));
  // (0 - 1) modulo 6 in unsigned arithmetic, counted from 1.
  EXPECT_EQ(Header()->GetMirrorDataBits(), 8U);
  EXPECT_EQ(Header()->GetStnNo(), 0U);
}

/// Counts how often each part of a mirror event is asked for, in the order of asking.
class CountingMirrorEvent : public TMirrorEvent {
 public:
  TMirrorEventHeader* GetEventHeader() override { return fCalls.push_back("header"), TMirrorEvent::GetEventHeader(); }
  TMirrorPixelData* GetPixelData() override { return fCalls.push_back("data"), TMirrorEvent::GetPixelData(); }
  TMirrorPixelList* GetPixelList() override { return fCalls.push_back("list"), TMirrorEvent::GetPixelList(); }
  TMirrorFADCData* GetFADCData() override { return fCalls.push_back("traces"), TMirrorEvent::GetFADCData(); }

  std::vector<std::string> fCalls;
};

TEST_F(StnEventAddTest, AsksTheMirrorEventForItsPartsInAFixedOrder) {
  CountingMirrorEvent mirror;
  FillHeader(mirror.GetEventHeader(), MirrorSpec());
  AddPixels(&mirror, {1, 2});
  mirror.fCalls.clear();
  ASSERT_TRUE(fEvent.AddEvent(&mirror));
  EXPECT_THAT(mirror.fCalls, ElementsAre("header", "data", "list", "list", "traces"));
}

TEST_F(StnEventAddTest, AsksARefusedMirrorEventForItsHeaderOnly) {
  ASSERT_TRUE(Add(1, 1));
  CountingMirrorEvent mirror;
  FillHeader(mirror.GetEventHeader(), MirrorSpec());
  mirror.fCalls.clear();
  EXPECT_FALSE(fEvent.AddEvent(&mirror));
  EXPECT_THAT(mirror.fCalls, ElementsAre("header"));
}

TEST_F(StnEventAddTest, ReachesTheEventsPartsThroughTheGetters) {
  EventWithOwnParts event;
  ASSERT_TRUE(event.AddEvent(MakeMirrorEvent(2, 3).get()));
  EXPECT_THAT(event.fAsked, ElementsAre("header", "pixel data", "pixel list", "traces"));
  EXPECT_EQ(event.fOwnHeader.GetMirrorDataBits(), 4U);
  EXPECT_NE(event.fOwnPixelData.GetPixelData(3), nullptr);
  EXPECT_EQ(event.fOwnPixelList.GetNumPixels(), 3U);
  EXPECT_EQ(event.fOwnTraces.GetNTraces(), 3U);
  for (const char* part : {"fEventHeader", "fPixelData", "fPixelList", "fFADCData"}) {
    EXPECT_EQ(Member<void*>(event, part), nullptr) << part;
  }
}

TEST_F(StnEventAddTest, DumpsItsCourseAtPrintLevelOne) {
  MirrorSpec spec;
  spec.fStn = 2;
  spec.fMirror = 3;
  spec.fPixels = {};
  TStnEvent::SetPrintLevel(1);
  ASSERT_TRUE(Add(spec));
  const std::string head = "DBG:StnEvent/src/StnEvent\\.cc:[0-9]+: ";
  const std::string text = fLog.Take();
  EXPECT_THAT(text, MatchesRegex(head + "TStnEvent::AddEvent\\(\\) - adding data from stn= 2, mirror= 3\n" +  //
                                 head +
                                 "TStnEvent::AddEvent\\(\\) - Setting TrgSrc & VETO/Dead time for mi_no= 3 "
                                 "\\.\\.\\.\n" +
                                 head + head + "                        TrgSrc: 0x08" + head + head +
                                 "  RunTime:                  100\n" +  //
                                 head + " VetoTime:                  101\n" + head +
                                 "                                     DeadTime:                  102\n" +
                                 "DBG:StnEvent/src/StnEventHeader\\.cc:[0-9]+: TStnEventHeader::SetTriggerSource\\(\\) "
                                 "- src= 8, id= 3\n" +
                                 "WRN:TStnEventHeader::IsTimeCorrectionSet\\(\\) - raw time correction parameters are "
                                 "set to defaults !\n" +
                                 "WRN:TStnEventHeader::DoTimeCorrection\\(\\) - excact time calculation is not "
                                 "possible !\n" +
                                 head + "TStnEvent::AddEvent\\(\\) - adding pixel data for Mirror 3 \\.\\.\\.\n" +
                                 "INF:TStnPixelList::SetStnNo\\(2\\)\n" +  //
                                 "INF:TMirrorPixelList contains 0 pixels !\n"));
}

TEST_F(StnEventAddTest, DumpLeavesTheStreamDecimalWithBlankFill) {
  TStnEvent::SetPrintLevel(1);
  ASSERT_TRUE(Add(1, 1));
  fLog.Take();
  VD_ERROR << std::setw(4) << 17 << std::endl;
  EXPECT_EQ(fLog.Take(), "ERR:  17\n");
}

TEST_F(StnEventAddTest, SaysWhichMirrorItTakesBeforeItRefuses) {
  ASSERT_TRUE(Add(1, 1));
  TStnEvent::SetPrintLevel(1);
  EXPECT_FALSE(Add(1, 1));
  EXPECT_THAT(fLog.Take(), MatchesRegex("DBG:StnEvent/src/StnEvent\\.cc:[0-9]+: TStnEvent::AddEvent\\(\\) - adding "
                                        "data from stn= 1, mirror= 1\n"
                                        "ERR:TStnEvent::AddEvent\\(\\) - cannot add data for telescope 1 a second "
                                        "time!\n"));
}

}  // namespace
