#include <StnEvent/StnEventHeader.h>

#include "HostOfStation4.h"
#include "Members.h"
#include "PrintLevel.h"

#include <LogCapture.h>

#include <TBufferFile.h>
#include <TClass.h>
#include <TInterpreter.h>
#include <TStreamerElement.h>
#include <TVirtualStreamerInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using VdRoot::TTimeStamp;

namespace {

std::string WriteToBytes(TStnEventHeader& header) {
  TBufferFile buffer(TBuffer::kWrite);
  header.Streamer(buffer);
  return std::string(buffer.Buffer(), buffer.Length());
}

void FillMirror(TStnEventHeader& header, UInt_t id) {
  header.SetMirrorPresent(id);
  header.SetMirrorDataPresent(id);
  header.SetMirrorNSkippedTriggers(100 + id, id);
  header.SetMirrorEventLabel(200 + id, id);
  header.SetMirrorDaqDeadTime(300 + id, id);
  header.SetDeadTimeCounter(400 + id, id);
  header.SetRunTimeCounter(500 + id, id);
  header.SetTriggerSource(TMirrorEventHeader::EMiTriggerSource(id), id);
  header.SetTriggerTimeStamp(600 + id, id);
  header.SetRawMirrorTime(id, TTimeStamp(1000000 + id, 700 + id));
}

/// A header in which every field on file differs from its default.
void Fill(TStnEventHeader& header) {
  header.SetEventNo(1);
  header.SetStnNo(2);
  header.SetEventClass(TStnEventHeader::kIsShower);
  header.SetEventType(TStnEventHeader::kPhysics);
  header.SetRunNo(3);
  header.SetLidarIsTriggered();
  header.SetTimeCorrectionParameters(100.5f, 20.0f);
  header.SetVetoTimeCounter(5);
  header.SetStnDaqDeadTime(6);
  header.SetT3Id(7);
  header.SetT3TimeStamp(8, 9);
  header.SetNRejectedT3(10);
  header.SetTotalT3DeadTime(11.5f);
  for (UInt_t id = 1; id <= 6; ++id)
    FillMirror(header, id);
  header.AdjustMirrorTimes();
}

}  // namespace

// ---- Defaults

TEST(StnEventHeaderDefaults, HasNoNumbers) {
  const TStnEventHeader header;
  EXPECT_EQ(header.GetEventNo(), 0u);
  EXPECT_EQ(header.GetRunNo(), 0u);
  EXPECT_EQ(header.GetT3Id(), 0);
  EXPECT_EQ(header.GetNRejectedT3(), 0u);
  EXPECT_EQ(header.GetTotalT3DeadTime(), 0.0f);
}

TEST(StnEventHeaderDefaults, HasTheStationOfTheHost) { EXPECT_EQ(TStnEventHeader().GetStnNo(), 4u); }

TEST(StnEventHeaderDefaults, IsUnclassifiedAndOfUnknownType) {
  const TStnEventHeader header;
  EXPECT_EQ(header.GetEventClass(), TStnEventHeader::kUnClassified);
  EXPECT_TRUE(header.IsUnclassified());
  EXPECT_EQ(header.GetEventType(), TStnEventHeader::kUnknown);
}

TEST(StnEventHeaderDefaults, HasNoStatusBits) {
  const TStnEventHeader header;
  EXPECT_EQ(header.GetStatusBits(), 0u);
  EXPECT_FALSE(header.IsRejectedT3());
  EXPECT_FALSE(header.IsLidarTriggered());
}

TEST(StnEventHeaderDefaults, HasNoMirrors) {
  const TStnEventHeader header;
  EXPECT_EQ(header.GetMirrorDataBits(), 0u);
  EXPECT_EQ(header.GetMirrorStatusBits(), 0u);
}

TEST(StnEventHeaderDefaults, HasNoTimeCorrection) {
  const TStnEventHeader header;
  EXPECT_EQ(header.GetTimeCorrectionQuality(), TStnEventHeader::kCorrectionNotSet);
  Float_t t10 = 1, offset = 1;
  header.GetTimeCorrectionParameters(&t10, &offset);
  EXPECT_EQ(t10, 0.0f);
  EXPECT_EQ(offset, 0.0f);
}

TEST(StnEventHeaderDefaults, HasAllCountersAtZero) {
  const TStnEventHeader header;
  EXPECT_EQ(header.GetVetoTimeCounter(), 0u);
  EXPECT_EQ(header.GetStnDaqDeadTime(), 0u);
  for (UInt_t id = 1; id <= 6; ++id) {
    EXPECT_EQ(header.GetTriggerSource(id), 0);
    EXPECT_EQ(header.GetMirrorTimeOffset(id), 0u);
    EXPECT_EQ(header.GetTriggerTimeStamp(id), 0u);
    EXPECT_EQ(header.GetDeadTimeCounter(id), 0u);
    EXPECT_EQ(header.GetRunTimeCounter(id), 0u);
    EXPECT_EQ(header.GetMirrorDaqDeadTime(id), 0u);
    EXPECT_EQ(header.GetMirrorNSkippedTriggers(id), 0u);
    EXPECT_EQ(header.GetMirrorEventLabel(id), 0);
  }
}

TEST(StnEventHeaderDefaults, HasAllTimesAtTheGPSEpoch) {
  TStnEventHeader header;
  for (UInt_t id = 1; id <= 6; ++id)
    header.SetMirrorDataPresent(id);
  EXPECT_EQ(header.GetTimeStamp()->GetGPSSec(), 0);
  EXPECT_EQ(header.GetTimeStamp()->GetNanoSec(), 0);
  EXPECT_EQ(header.GetT3TimeStamp()->GetGPSSec(), 0);
  EXPECT_EQ(header.GetT3TimeStamp()->GetNanoSec(), 0);
  for (UInt_t id = 1; id <= 6; ++id) {
    EXPECT_EQ(header.GetRawMirrorTimeStamp(id)->GetGPSSec(), 0);
    EXPECT_EQ(header.GetRawMirrorTimeStamp(id)->GetNanoSec(), 0);
  }
}

TEST(StnEventHeaderDefaults, StayAfterClear) {
  TStnEventHeader header;
  header.SetEventNo(12);
  header.Clear();
  EXPECT_EQ(header.GetEventNo(), 12u);
}

TEST(StnEventHeader, HasTheValuesOfItsConstants) {
  EXPECT_EQ(TStnEventHeader::kTicksPerSecond, 80000000u);
  EXPECT_EQ(TStnEventHeader::kNanoSecPerSecond, 1000000000u);
}

TEST(StnEventHeader, HasTheValuesOfItsEnumerators) {
  using H = TStnEventHeader;
  EXPECT_THAT(
      (std::vector<Int_t>{H::kUnknown, H::kPhysics, H::kCalibration, H::kSimulated, H::kLaserOffset, H::kFlasherOffset,
                          H::kCalibrationOffset, H::kLidarOffset, H::kAPFOffset, H::kInvalidType}),
      ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
  EXPECT_THAT((std::vector<Int_t>{H::kUnClassified, H::kNoPhysicsEvent, H::kLargeEvent, H::kUnhandledSignature,
                                  H::kEmpty, H::kIsMuon, H::kLongMuon, H::kCloseShower, H::kNoise, H::kMuonAndNoise,
                                  H::kVetoedEvent, H::kShowerCandidate, H::kHorizontalShower, H::kIsShower}),
              ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13));
  EXPECT_THAT((std::vector<Int_t>{H::kUserDefined1, H::kUserDefined2, H::kUserDefined3, H::kUserDefined4, H::kUBANoise,
                                  H::kRejected, H::kInvalidClass}),
              ElementsAre(90, 91, 92, 93, 90, 98, 99));
  EXPECT_THAT((std::vector<UInt_t>{H::kLidarIsTriggered, H::kT3IsCKASVetoRejected, H::kT3IsDelayRejected,
                                   H::kT3IsCKASRejected}),
              ElementsAre(1, 2, 4, 8));
  EXPECT_THAT((std::vector<Int_t>{H::kCorrectionNotSet, H::kUnknownQuality, H::kAveragedPeriod, H::kFullQuality}),
              ElementsAre(-1, 0, 1, 2));
}

// ---- Scalars

TEST(StnEventHeader, GivesBackItsScalars) {
  TStnEventHeader header;
  header.SetEventNo(4000000001u);
  header.SetStnNo(3);
  header.SetEventClass(TStnEventHeader::kVetoedEvent);
  header.SetEventType(TStnEventHeader::kLidarOffset);
  header.SetRunNo(4000000002u);
  header.SetStnDaqDeadTime(0x100000003ull);
  header.SetVetoTimeCounter(0x100000004ull);
  header.SetT3Id(65535);
  header.SetNRejectedT3(4000000005u);
  header.SetTotalT3DeadTime(6.5f);
  EXPECT_EQ(header.GetEventNo(), 4000000001u);
  EXPECT_EQ(header.GetStnNo(), 3u);
  EXPECT_EQ(header.GetEventClass(), TStnEventHeader::kVetoedEvent);
  EXPECT_EQ(header.GetEventType(), TStnEventHeader::kLidarOffset);
  EXPECT_EQ(header.GetRunNo(), 4000000002u);
  EXPECT_EQ(header.GetStnDaqDeadTime(), 0x100000003ull);
  EXPECT_EQ(header.GetVetoTimeCounter(), 0x100000004ull);
  EXPECT_EQ(header.GetT3Id(), 65535);
  EXPECT_EQ(header.GetNRejectedT3(), 4000000005u);
  EXPECT_EQ(header.GetTotalT3DeadTime(), 6.5f);
}

TEST(StnEventHeader, KeepsTheLowByteOfTheStationNumber) {
  TStnEventHeader header;
  header.SetStnNo(261);
  EXPECT_EQ(header.GetStnNo(), 5u);
}

TEST(StnEventHeader, TakesAnyIntegerForClassAndType) {
  TStnEventHeader header;
  header.SetEventClass(TStnEventHeader::EEventClass(-17));
  header.SetEventType(TStnEventHeader::EEventType(1000));
  EXPECT_EQ(header.GetEventClass(), -17);
  EXPECT_EQ(header.GetEventType(), 1000);
}

TEST(StnEventHeader, IsUnclassifiedOnlyWithoutAClass) {
  TStnEventHeader header;
  header.SetEventClass(TStnEventHeader::kNoise);
  EXPECT_FALSE(header.IsUnclassified());
  header.SetEventClass(TStnEventHeader::kUnClassified);
  EXPECT_TRUE(header.IsUnclassified());
}

struct StatusCase {
  void (TStnEventHeader::*fSet)();
  UInt_t fBit;
  bool fIsLidar;
  bool fIsRejected;
};

class StnEventHeaderStatus : public ::testing::TestWithParam<StatusCase> {};

TEST_P(StnEventHeaderStatus, AddsItsOwnBit) {
  TStnEventHeader header;
  (header.*GetParam().fSet)();
  EXPECT_EQ(header.GetStatusBits(), GetParam().fBit);
  EXPECT_EQ(header.IsLidarTriggered(), GetParam().fIsLidar);
  EXPECT_EQ(header.IsRejectedT3(), GetParam().fIsRejected);
}

INSTANTIATE_TEST_SUITE_P(All, StnEventHeaderStatus,
                         ::testing::Values(StatusCase{&TStnEventHeader::SetLidarIsTriggered, 1, true, false},
                                           StatusCase{&TStnEventHeader::SetIsCKASVetoRejectedT3, 2, false, true},
                                           StatusCase{&TStnEventHeader::SetIsDelayRejectedT3, 4, false, true},
                                           StatusCase{&TStnEventHeader::SetIsCKASRejectedT3, 8, false, true}));

TEST(StnEventHeader, CollectsStatusBits) {
  TStnEventHeader header;
  header.SetLidarIsTriggered();
  header.SetIsCKASVetoRejectedT3();
  header.SetIsDelayRejectedT3();
  header.SetIsCKASRejectedT3();
  EXPECT_EQ(header.GetStatusBits(), 15u);
}

// ---- Mirror bits

TEST(StnEventHeader, SetsTheDataBitOfAMirror) {
  TStnEventHeader header;
  header.SetMirrorDataPresent(3);
  EXPECT_EQ(header.GetMirrorDataBits(), 4u);
  EXPECT_TRUE(header.IsMirrorDataPresent(3));
  EXPECT_FALSE(header.IsMirrorDataPresent(2));
  EXPECT_FALSE(header.IsMirrorPresent(3));
}

TEST(StnEventHeader, SetsThePresentBitOfAMirror) {
  TStnEventHeader header;
  header.SetMirrorPresent(6);
  EXPECT_EQ(header.GetMirrorStatusBits(), 32u);
  EXPECT_TRUE(header.IsMirrorPresent(6));
  EXPECT_FALSE(header.IsMirrorPresent(5));
  EXPECT_FALSE(header.IsMirrorDataPresent(6));
}

TEST(StnEventHeader, CollectsMirrorBits) {
  TStnEventHeader header;
  for (UInt_t id = 1; id <= 6; ++id) {
    header.SetMirrorPresent(id);
    header.SetMirrorDataPresent(id);
  }
  EXPECT_EQ(header.GetMirrorStatusBits(), 63u);
  EXPECT_EQ(header.GetMirrorDataBits(), 63u);
}

TEST(StnEventHeader, AnswersFalseForMirrorsThatCannotBe) {
  TStnEventHeader header;
  for (UInt_t id = 1; id <= 6; ++id) {
    header.SetMirrorPresent(id);
    header.SetMirrorDataPresent(id);
  }
  LogCapture log;
  for (UInt_t id : {0u, 7u, 8u, 9u, 32u}) {
    EXPECT_FALSE(header.IsMirrorPresent(id)) << id;
    EXPECT_FALSE(header.IsMirrorDataPresent(id)) << id;
  }
  EXPECT_EQ(log.Take(), "");
}

TEST(StnEventHeader, BeginsAnewWithMirrorsAbove32) {
  TStnEventHeader header;
  header.SetMirrorPresent(2);
  EXPECT_TRUE(header.IsMirrorPresent(34));
  EXPECT_FALSE(header.IsMirrorPresent(33));
}

// ---- Values of a mirror

TEST(StnEventHeader, KeepsTheValuesOfEachMirrorApart) {
  TStnEventHeader header;
  for (UInt_t id = 1; id <= 6; ++id)
    FillMirror(header, id);
  for (UInt_t id = 1; id <= 6; ++id) {
    EXPECT_EQ(header.GetMirrorNSkippedTriggers(id), 100 + id);
    EXPECT_EQ(header.GetMirrorEventLabel(id), Int_t(200 + id));
    EXPECT_EQ(header.GetMirrorDaqDeadTime(id), 300 + id);
    EXPECT_EQ(header.GetDeadTimeCounter(id), 400 + id);
    EXPECT_EQ(header.GetRunTimeCounter(id), 500 + id);
    EXPECT_EQ(header.GetTriggerSource(id), Int_t(id));
    EXPECT_EQ(header.GetTriggerTimeStamp(id), 600 + id);
    EXPECT_EQ(header.GetRawMirrorTimeStamp(id)->GetSec(), 1000000 + id);
    EXPECT_EQ(header.GetRawMirrorTimeStamp(id)->GetNanoSec(), Int_t(700 + id));
  }
}

TEST(StnEventHeader, ReadsMirrorsThatAreNotPresent) {
  TStnEventHeader header;
  FillMirror(header, 2);
  Member<UInt_t[6]>(header, "fMirrorTimeOffset")[1] = 802;
  Member<UChar_t>(header, "fMirrorDataBits") = 0;
  Member<UChar_t>(header, "fMirrorStatus") = 0;
  EXPECT_EQ(header.GetMirrorNSkippedTriggers(2), 102u);
  EXPECT_EQ(header.GetMirrorEventLabel(2), 202);
  EXPECT_EQ(header.GetMirrorDaqDeadTime(2), 302u);
  EXPECT_EQ(header.GetDeadTimeCounter(2), 402u);
  EXPECT_EQ(header.GetRunTimeCounter(2), 502u);
  EXPECT_EQ(header.GetTriggerSource(2), 2);
  EXPECT_EQ(header.GetTriggerTimeStamp(2), 602u);
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 802u);
}

TEST(StnEventHeader, HoldsCountersOfMoreThan32Bits) {
  TStnEventHeader header;
  header.SetDeadTimeCounter(0x100000001ull, 2);
  header.SetRunTimeCounter(0x200000002ull, 3);
  header.SetMirrorDaqDeadTime(0x300000003ull, 4);
  EXPECT_EQ(header.GetDeadTimeCounter(2), 0x100000001ull);
  EXPECT_EQ(header.GetRunTimeCounter(3), 0x200000002ull);
  EXPECT_EQ(header.GetMirrorDaqDeadTime(4), 0x300000003ull);
}

TEST(StnEventHeader, KeepsTheLowByteOfATriggerSource) {
  TStnEventHeader header;
  header.SetTriggerSource(TMirrorEventHeader::EMiTriggerSource(0x1ff), 1);
  EXPECT_EQ(header.GetTriggerSource(1), 0xff);
}

TEST(StnEventHeader, GivesNoRawTimeOfAnAbsentMirror) {
  const TStnEventHeader header;
  LogCapture log;
  EXPECT_EQ(header.GetRawMirrorTimeStamp(1), nullptr);
  EXPECT_EQ(log.Take(), "");
}

TEST(StnEventHeader, GivesItsOwnRawTimeOfAPresentMirror) {
  TStnEventHeader header;
  header.SetMirrorDataPresent(3);
  ASSERT_NE(header.GetRawMirrorTimeStamp(3), nullptr);
  EXPECT_EQ(header.GetRawMirrorTimeStamp(3)->GetGPSSec(), 0);
}

struct BadIdCase {
  const char* fBefore;
  const char* fAfter;
  std::function<Long64_t(TStnEventHeader&, UInt_t)> fCall;  // the answer; 0 for a setter
};

void PrintTo(const BadIdCase& value, std::ostream* ostr) { *ostr << value.fBefore; }

class StnEventHeaderBadId : public ::testing::TestWithParam<BadIdCase> {
 protected:
  void Check(UInt_t id) {
    TStnEventHeader header;
    Fill(header);
    const std::string before = WriteToBytes(header);
    LogCapture log;
    EXPECT_EQ(GetParam().fCall(header, id), 0);
    EXPECT_EQ(log.Take(), "ERR:" + (GetParam().fBefore + std::to_string(id)) + GetParam().fAfter + "\n");
    EXPECT_EQ(WriteToBytes(header), before);
  }
};

TEST_P(StnEventHeaderBadId, RefusesMirror0) { Check(0); }
TEST_P(StnEventHeaderBadId, RefusesMirror7) { Check(7); }
TEST_P(StnEventHeaderBadId, RefusesTheLargestNumber) { Check(4294967295u); }

TEST_P(StnEventHeaderBadId, SaysNothingAboutMirrors1And6) {
  TStnEventHeader header;
  LogCapture log;
  GetParam().fCall(header, 1);
  GetParam().fCall(header, 6);
  EXPECT_EQ(log.Take(), "");
}

#define SETTER(call) [](TStnEventHeader& h, UInt_t id) { return h.call, Long64_t(0); }
#define GETTER(call) [](TStnEventHeader& h, UInt_t id) { return Long64_t(h.call); }
INSTANTIATE_TEST_SUITE_P(
    All, StnEventHeaderBadId,
    ::testing::Values(BadIdCase{"TStnEventHeader::SetMirrorPresent(", ") - illegal Mirror id passed !",
                                SETTER(SetMirrorPresent(id))},
                      BadIdCase{"TStnEventHeader::SetMirrorDataPresent(", ") - illegal Mirror id passed !",
                                SETTER(SetMirrorDataPresent(id))},
                      BadIdCase{"TStnEventHeader::SetMirrorNSkippedTriggers(", ") - illegal Mirror id passed !",
                                SETTER(SetMirrorNSkippedTriggers(9, id))},
                      BadIdCase{"TStnEventHeader::SetMirrorEventLabel(", ") - illegal Mirror id passed !",
                                SETTER(SetMirrorEventLabel(9, id))},
                      BadIdCase{"TStnEventHeader::SetMirrorDaqDeadTime(", ") - illegal Mirror id passed !",
                                SETTER(SetMirrorDaqDeadTime(9, id))},
                      BadIdCase{"TStnEventHeader::SetDeadTimeCounter(,", ") - illegal Mirror id passed !",
                                SETTER(SetDeadTimeCounter(9, id))},
                      BadIdCase{"TStnEventHeader::SetRunTimeCounter(,", ") - illegal Mirror id passed !",
                                SETTER(SetRunTimeCounter(9, id))},
                      BadIdCase{"TStnEventHeader::SetTriggerSource(,", ") - illegal Mirror id passed !",
                                SETTER(SetTriggerSource(TMirrorEventHeader::kLeftTrigger, id))},
                      BadIdCase{"TStnEventHeader::SetTriggerTimeStamp(", ") - illegal Mirror id passed !",
                                SETTER(SetTriggerTimeStamp(9, id))},
                      BadIdCase{"TStnEventHeader::SetRawMirrorTime(", ",) - illegal Mirror id passed !",
                                SETTER(SetRawMirrorTime(id, TTimeStamp(9, 9)))},
                      BadIdCase{"TStnEventHeader::GetDeadTimeCounter(", ") - illegal Mirror id passed !",
                                GETTER(GetDeadTimeCounter(id))},
                      BadIdCase{"TStnEventHeader::GetRunTimeCounter(", ") - illegal Mirror id passed !",
                                GETTER(GetRunTimeCounter(id))},
                      BadIdCase{"TStnEventHeader::GetTriggerTimeStamp(", ") - illegal Mirror id specified !",
                                GETTER(GetTriggerTimeStamp(id))},
                      BadIdCase{"TStnEventHeader::GetTriggerSource(", ") - illegal Mirror id specified !",
                                GETTER(GetTriggerSource(id))},
                      BadIdCase{"TStnEventHeader::GetRawMirrorTimeStamp(", "): illegal mirror id passed !",
                                GETTER(GetRawMirrorTimeStamp(id) != nullptr)},
                      BadIdCase{"TStnEventHeader::GetMirrorTimeOffset(", "): illegal mirror id passed !",
                                GETTER(GetMirrorTimeOffset(id))},
                      BadIdCase{"TStnEventHeader::GetMirrorNSkippedTriggers(", "): illegal mirror id passed !",
                                GETTER(GetMirrorNSkippedTriggers(id))},
                      BadIdCase{"TStnEventHeader::GetMirrorEventLabel(", "): illegal mirror id passed !",
                                GETTER(GetMirrorEventLabel(id))},
                      BadIdCase{"TStnEventHeader::GetMirrorDaqDeadTime(", "): illegal mirror id passed !",
                                GETTER(GetMirrorDaqDeadTime(id))}));
#undef SETTER
#undef GETTER

TEST(StnEventHeader, TellsTriggerSourcesAtPrintLevel1) {
  PrintLevel level(1);
  LogCapture log;
  TStnEventHeader().SetTriggerSource(TMirrorEventHeader::EMiTriggerSource(0x1a), 4);
  EXPECT_EQ(WithoutLineNumbers(log.Take()),
            "DBG:StnEvent/src/StnEventHeader.cc:LINE: TStnEventHeader::SetTriggerSource() - src= 1a, id= 4\n");
}

TEST(StnEventHeader, TellsTriggerSourcesBeforeItRefusesThem) {
  PrintLevel level(1);
  LogCapture log;
  TStnEventHeader().SetTriggerSource(TMirrorEventHeader::kExternalTrigger, 10);
  EXPECT_EQ(WithoutLineNumbers(log.Take()),
            "DBG:StnEvent/src/StnEventHeader.cc:LINE: TStnEventHeader::SetTriggerSource() - src= 10, id= 10\n"
            "ERR:TStnEventHeader::SetTriggerSource(,10) - illegal Mirror id passed !\n");
}

// ---- Copies

TEST(StnEventHeaderCopy, HasAllFieldsOfItsSource) {
  TStnEventHeader header;
  Fill(header);
  TStnEventHeader copy(header);
  EXPECT_EQ(WriteToBytes(copy), WriteToBytes(header));
}

TEST(StnEventHeaderCopy, HasAllFieldsAfterAssignment) {
  TStnEventHeader header, copy;
  Fill(header);
  copy = header;
  EXPECT_EQ(WriteToBytes(copy), WriteToBytes(header));
}

TEST(StnEventHeaderCopy, IsLeftAloneBySelfAssignment) {
  TStnEventHeader header;
  Fill(header);
  const std::string before = WriteToBytes(header);
  TStnEventHeader& same = header;
  header = same;
  EXPECT_EQ(WriteToBytes(header), before);
}

TEST(StnEventHeaderCopy, HasTheObjectPartOfItsSource) {
  TStnEventHeader header;
  header.SetUniqueID(77);
  EXPECT_EQ(TStnEventHeader(header).GetUniqueID(), 77u);
}

TEST(StnEventHeaderCopy, KeepsItsObjectPartInAssignment) {
  TStnEventHeader header, copy;
  header.SetUniqueID(77);
  copy.SetUniqueID(78);
  copy = header;
  EXPECT_EQ(copy.GetUniqueID(), 78u);
}

TEST(StnEventHeaderCopy, EqualsOnlyItself) {
  const TStnEventHeader header;
  const TStnEventHeader copy(header);
  EXPECT_TRUE(header == header);
  EXPECT_FALSE(header == copy);
}

// ---- The class in ROOT

class StnEventHeaderSchema : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (!GetParam()) return;
    ASSERT_TRUE(gInterpreter->Declare("#include <StnEvent/StnEventHeader.h>"));
  }
  static TStreamerElement* GetElement(const char* name) {
    auto* elements = TStnEventHeader::Class()->GetStreamerInfo()->GetElements();
    return static_cast<TStreamerElement*>(elements->FindObject(name));
  }
};

TEST_P(StnEventHeaderSchema, StoresTheDeadTimesAsWords) {
  TStreamerElement* element = GetElement("fDeadTimeCounter");
  ASSERT_NE(element, nullptr);
  EXPECT_STREQ(element->GetTypeName(), "unsigned int");
  EXPECT_EQ(element->GetArrayDim(), 2);
  EXPECT_EQ(element->GetMaxIndex(0), 2);
  EXPECT_EQ(element->GetMaxIndex(1), 6);
}

TEST_P(StnEventHeaderSchema, StoresTheVetoTimeAsWords) {
  TStreamerElement* element = GetElement("fVetoTimeCounter");
  ASSERT_NE(element, nullptr);
  EXPECT_STREQ(element->GetTypeName(), "unsigned int");
  EXPECT_EQ(element->GetArrayDim(), 2);
  EXPECT_EQ(element->GetMaxIndex(0), 2);
  EXPECT_EQ(element->GetMaxIndex(1), 1);
}

TEST_P(StnEventHeaderSchema, StoresTheRunTimesWhole) {
  TStreamerElement* element = GetElement("fRunTimeCounter");
  ASSERT_NE(element, nullptr);
  EXPECT_STREQ(element->GetTypeName(), "ULong64_t");
  EXPECT_EQ(element->GetArrayDim(), 1);
  EXPECT_EQ(element->GetMaxIndex(0), 6);
}

TEST_P(StnEventHeaderSchema, PlacesTheFieldsWhereTheCodeHasThem) {
  TStnEventHeader header;
  Fill(header);
  auto at = [&](const char* name) {
    return reinterpret_cast<const char*>(&header) + TStnEventHeader::Class()->GetDataMemberOffset(name);
  };
  EXPECT_EQ(*reinterpret_cast<const UInt_t*>(at("fRunNo")), 3u);
  EXPECT_EQ(*reinterpret_cast<const UInt_t*>(at("fTriggerTimeStamp")), 601u);
  EXPECT_EQ(*reinterpret_cast<const ULong64_t*>(at("fDeadTimeCounter")), 401u);
  EXPECT_EQ(*reinterpret_cast<const ULong64_t*>(at("fVetoTimeCounter")), 5u);
  EXPECT_EQ(*reinterpret_cast<const ULong64_t*>(at("fRunTimeCounter")), 501u);
  EXPECT_EQ(*reinterpret_cast<const Float_t*>(at("fTotalT3DeadTime")), 11.5f);
  EXPECT_EQ(TStnEventHeader::Class()->Size(), Int_t(sizeof(TStnEventHeader)));
}

TEST_P(StnEventHeaderSchema, HasTheFieldsOnFileInOrder) {
  std::vector<std::string> fields;
  for (auto* element : *TStnEventHeader::Class()->GetStreamerInfo()->GetElements())
    fields.push_back(std::string(element->GetName()) + " - " + element->GetTitle());
  EXPECT_THAT(fields,
              ElementsAre("TObject - Basic ROOT object",                                                  //
                          "fEventNumber - the internal number of the event",                              //
                          "fStnNumber - official station number",                                         //
                          "fEventClass - T3 class assigned to this event",                                //
                          "fEventType - type of event, assigned by the trigger",                          //
                          "fMirrorDataBits - one bit for each mirror present in the event",               //
                          "fMirrorStatus - one bit for each mirror in the DAQ",                           //
                          "fRunNo - the number of this run",                                              //
                          "fTriggerSource - mirrors' actual trigger sources",                             //
                          "fStatusBits - status bits, EHeaderStatusBits",                                 //
                          "fTimeStamp - time and date of the event, corrected",                           //
                          "fTimeCorrectionQuality - quality of the time correction",                      //
                          "fT10Mhz - average duration of a 10 MHz cycle",                                 //
                          "fOffset - offset between second strobe and real second",                       //
                          "fMirrorTimeOffset - adjusted offsets of the mirrors against fTimeStamp",       //
                          "fRawMirrorTime - uncorrected mirror times",                                    //
                          "fTriggerTimeStamp - the hardware's trigger time stamp, as it came",            //
                          "fDeadTimeCounter - per mirror dead time, in units of 100 ns",                  //
                          "fVetoTimeCounter - accumulated veto time of the station, in units of 100 ns",  //
                          "fRunTimeCounter - per mirror run time, in units of 100 ns",                    //
                          "fStnDaqDeadTime - dead time of the station's DAQ, in units of 100 ns",         //
                          "fMirrorDaqDeadTime - per mirror DAQ dead time, in units of 100 ns",            //
                          "fMirrorNSkippedTriggers - triggers skipped by each mirror",                    //
                          "fMirrorEventLabel - label of each mirror's event",                             //
                          "fT3Id - T3 id, assigned by the T3 process; 0 means no T3",                     //
                          "fT3TimeAtGround - T3 time at ground",                                          //
                          "fNRejectedT3 - number of T3s rejected so far",                                 //
                          "fTotalT3DeadTime - total T3 dead time, in seconds"));
}

INSTANTIATE_TEST_SUITE_P(All, StnEventHeaderSchema, ::testing::Bool(), [](const auto& info) {
  return info.param ? std::string("AfterTheInterpreterHasTheHeader") : std::string("FromTheDictionary");
});

TEST(StnEventHeaderClass, HasVersion10) { EXPECT_EQ(TClass::GetClass("TStnEventHeader")->GetClassVersion(), 10); }

TEST(StnEventHeaderClass, DerivesFromTObject) {
  EXPECT_TRUE(TClass::GetClass("TStnEventHeader")->InheritsFrom(TObject::Class()));
}

TEST(StnEventHeaderClass, KnowsItsHeader) {
  EXPECT_THAT(TStnEventHeader::DeclFileName(), ::testing::EndsWith("StnEventHeader.h"));
}

TEST(StnEventHeaderClass, IsMadeByName) {
  std::unique_ptr<TObject> object(static_cast<TObject*>(TClass::GetClass("TStnEventHeader")->New()));
  EXPECT_NE(dynamic_cast<TStnEventHeader*>(object.get()), nullptr);
}

TEST(StnEventHeaderClass, HasItsMembersInOrder) {
  std::vector<std::string> names;
  for (const auto& [name, comment] : DescribedMembers(TStnEventHeader::Class()))
    if (name[0] == 'f') names.push_back(name);  // else it is a constant
  EXPECT_THAT(names, ElementsAreArray({"fStreamerVersion",
                                       "fEventNumber",
                                       "fStnNumber",
                                       "fEventClass",
                                       "fEventType",
                                       "fMirrorDataBits",
                                       "fMirrorStatus",
                                       "fRunNo",
                                       "fTriggerSource",
                                       "fStatusBits",
                                       "fTimeStamp",
                                       "fSecStartOffset",
                                       "fSecEndOffset",
                                       "fTicksPerSecond",
                                       "fPPSPhase",
                                       "fTimeCorrectionQuality",
                                       "fT10Mhz",
                                       "fOffset",
                                       "fMirrorTimeOffset",
                                       "fRawMirrorTime",
                                       "fTriggerTimeStamp",
                                       "fDeadTimeCounter",
                                       "fVetoTimeCounter",
                                       "fRunTimeCounter",
                                       "fStnDaqDeadTime",
                                       "fMirrorDaqDeadTime",
                                       "fMirrorNSkippedTriggers",
                                       "fMirrorEventLabel",
                                       "fT3Id",
                                       "fT3TimeAtGround",
                                       "fNRejectedT3",
                                       "fTotalT3DeadTime"}));
}

TEST(StnEventHeaderClass, HasItsTransientMembers) {
  std::vector<std::string> members;
  for (const auto& [name, comment] : DescribedMembers(TStnEventHeader::Class()))
    if (comment[0] == '!') members.push_back(name + " " + comment);
  EXPECT_THAT(members,
              ElementsAre("fStreamerVersion ! version read from file", "fSecStartOffset ! Shift of second start",
                          "fSecEndOffset ! Shift of second end", "fTicksPerSecond ! 80 MHz ticks per second",
                          "fPPSPhase ! Delay between PPS and SecondStrobe"));
}
