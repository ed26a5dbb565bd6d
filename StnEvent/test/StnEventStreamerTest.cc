#include <StnEvent/StnEvent.h>

#include <EventWithOwnParts.h>
#include <LogCapture.h>
#include <Members.h>
#include <MirrorEvents.h>
#include <StnEvent/StnEventFile.h>
#include <VdUtil/VdGeometry.h>

#include <TBufferFile.h>
#include <TClass.h>
#include <TMemFile.h>
#include <TStreamerInfo.h>
#include <TSystem.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using testing::MatchesRegex;

std::vector<char> Write(TStnEvent* event) {
  TBufferFile buffer(TBuffer::kWrite);
  event->Streamer(buffer);
  return {buffer.Buffer(), buffer.Buffer() + buffer.Length()};
}

/// Reads an event from the bytes and nothing else; where the buffer stands afterwards.
Int_t Read(TStnEvent* event, std::vector<char> bytes, Int_t start = 0) {
  TBufferFile buffer(TBuffer::kRead, bytes.size(), bytes.data(), kFALSE);
  buffer.SetBufferOffset(start);
  event->Streamer(buffer);
  return buffer.Length();
}

/// Says that a record is of another class version, and tells ROOT that this version looks like today's.
void SetVersion(std::vector<char>* bytes, Version_t version) {
  TClass* description = TStnEvent::Class();
  if (description->GetStreamerInfos()->GetSize() <= version ||
      description->GetStreamerInfos()->At(version) == nullptr) {
    auto* info = static_cast<TStreamerInfo*>(description->GetStreamerInfo()->Clone());
    info->SetClass(description);
    info->SetClassVersion(version);
    description->RegisterStreamerInfo(info);
    info->BuildOld();
  }
  (*bytes)[4] = static_cast<char>(version >> 8);
  (*bytes)[5] = static_cast<char>(version);
}

void SetByteCount(std::vector<char>* bytes, UInt_t word) {
  for (int i = 0; i < 4; ++i)
    (*bytes)[i] = static_cast<char>(word >> (24 - 8 * i));
}

const UInt_t kByteCountFlag = 0x40000000;

class StnEventStreamerTest : public testing::Test {
 protected:
  /// An event of station 2 with one mirror, T3 and directions of its own.
  StnEventStreamerTest() {
    fEvent.AddEvent(MakeMirrorEvent(2, 3).get());
    fEvent.GetEventHeader()->SetRunNo(55);
    fEvent.GetT3Data()->SetNPixels(9);
    fEvent.GetTriggerData();
    fEvent.GetGeometryData()->SetAxisDirection(6, 10.0F, 11.0F);
    // What files hold that were written before the labels of pixel data could be trusted.
    fMislabelled.AddEvent(MakeMirrorEvent(2, 3).get());
    fMislabelled.GetPixelData()->GetPixelData(3)->SetStnNo(4);
    fMislabelled.GetPixelData()->GetPixelData(3)->SetMirrorNo(1);
  }
  ~StnEventStreamerTest() override { TStnEvent::SetPrintLevel(0); }

  static bool Has(const TStnEvent& event, const char* name) { return Member<void*>(event, name) != nullptr; }

  LogCapture fLog;
  TStnEvent fEvent;
  TStnEvent fMislabelled;
  TStnEvent fRead;
};

void ExpectAxis(TStnEvent* event, UInt_t mirror, float azimuth, float elevation) {
  float read_azimuth = -1;
  float read_elevation = -1;
  event->GetGeometryData()->GetAxisDirection(mirror, read_azimuth, read_elevation);
  EXPECT_EQ(read_azimuth, azimuth) << "mirror " << mirror;
  EXPECT_EQ(read_elevation, elevation) << "mirror " << mirror;
}

void ExpectNominalAxes(TStnEvent* event, UInt_t stn) {
  for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
    double azimuth = 0;
    double elevation = 0;
    VdUtil::VdGeometry::GetTelescopeAxis(6 * (stn - 1) + mirror, azimuth, elevation);
    ExpectAxis(event, mirror, static_cast<float>(azimuth), static_cast<float>(elevation));
    EXPECT_EQ(elevation, 16.0);
  }
}

TEST_F(StnEventStreamerTest, BringsAWholeEventBack) {
  Read(&fRead, Write(&fEvent));
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(fRead.GetEventHeader()->GetRunNo(), 55U);
  EXPECT_EQ(fRead.GetEventHeader()->GetStnNo(), 2U);
  EXPECT_EQ(fRead.GetPixelList()->GetNumPixels(), 3U);
  EXPECT_EQ(fRead.GetPixelList()->GetPixel(1)->fPixelNumber, MakeVdPixel(2, 3, 24).fPixelNumber);
  EXPECT_EQ(fRead.GetPixelData()->GetNumberOfTriggeredPixels(), 3U);
  _PixelNumber pixel = MakePixel(2, 3, 480);
  ASSERT_NE(fRead.GetFADCData()->GetFADCData(&pixel), nullptr);
  EXPECT_EQ(fRead.GetFADCData()->GetFADCData(&pixel)->GetSample(111), MakeSample(480, 111));
  EXPECT_EQ(fRead.GetT3Data()->GetNPixels(), 9U);
  EXPECT_TRUE(Has(fRead, "fTriggerData"));
  ExpectAxis(&fRead, 6, 10.0F, 11.0F);
}

TEST_F(StnEventStreamerTest, ComesBackAsAnObjectOfAFile) {
  TMemFile file("event.root", "RECREATE");
  file.WriteObject(&fMislabelled, "event");
  const std::unique_ptr<TStnEvent> read(file.Get<TStnEvent>("event"));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(Member<Version_t>(*read, "fStreamerVersion"), 5);
  EXPECT_EQ(read->GetPixelList()->GetNumPixels(), 3U);
  EXPECT_EQ(read->GetPixelData()->GetPixelData(3)->GetStnNo(), 2U);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventStreamerTest, EndsAtTheEndOfTheRecord) {
  std::vector<char> bytes = Write(&fEvent);
  const auto size = static_cast<Int_t>(bytes.size());
  bytes.resize(size + 100);
  EXPECT_EQ(Read(&fRead, bytes), size);
}

TEST_F(StnEventStreamerTest, KeepsTheVersionOfTheFile) {
  Read(&fRead, Write(&fEvent));
  EXPECT_EQ(Member<Version_t>(fRead, "fStreamerVersion"), 5);
  EXPECT_EQ(Member<Version_t>(fEvent, "fStreamerVersion"), 0);
}

TEST_F(StnEventStreamerTest, KeepsItsOwnVersionWhenATreeFillsItMemberByMember) {
  TStnEvent* address = &fEvent;
  TStnEventFile("tree.root", "RECREATE").WriteEvent(&address);
  Member<Version_t>(fRead, "fStreamerVersion") = 3;
  address = &fRead;
  ASSERT_TRUE(TStnEventFile("tree.root").ReadEvent(&address));
  EXPECT_EQ(fRead.GetEventHeader()->GetRunNo(), 55U);
  EXPECT_EQ(Member<Version_t>(fRead, "fStreamerVersion"), 3);
}

TEST_F(StnEventStreamerTest, WritingMakesNoSubObjects) {
  TStnEvent event;
  Write(&event);
  for (const char* name :
       {"fEventHeader", "fFADCData", "fPixelList", "fPixelData", "fTriggerData", "fT3Data", "fGeometryData"}) {
    EXPECT_FALSE(Has(event, name)) << name;
  }
}

TEST_F(StnEventStreamerTest, WritingStoresNeitherVersionNorPrintLevel) {
  const size_t size = Write(&fEvent).size();
  Member<Version_t>(fEvent, "fStreamerVersion") = 4;
  EXPECT_EQ(Write(&fEvent).size(), size);
  Read(&fRead, Write(&fEvent));
  EXPECT_EQ(Member<Version_t>(fRead, "fStreamerVersion"), 5);
}

TEST_F(StnEventStreamerTest, ReadingAnEmptyEventMakesWhatCorrectionsNeed) {
  TStnEvent empty;
  Read(&fRead, Write(&empty));
  EXPECT_TRUE(Has(fRead, "fEventHeader"));
  EXPECT_TRUE(Has(fRead, "fPixelData"));
  EXPECT_FALSE(Has(fRead, "fPixelList"));
  EXPECT_FALSE(Has(fRead, "fFADCData"));
}

TEST_F(StnEventStreamerTest, AReusedEventKeepsNothingOfTheLast) {
  TStnEvent other;
  other.GetEventHeader()->SetStnNo(5);
  other.GetEventHeader()->SetRunNo(56);
  Read(&fEvent, Write(&other));
  for (const char* name : {"fFADCData", "fPixelList", "fTriggerData", "fT3Data", "fGeometryData"}) {
    EXPECT_FALSE(Has(fEvent, name)) << name;
  }
  EXPECT_EQ(fEvent.GetEventHeader()->GetRunNo(), 56U);
  EXPECT_EQ(fEvent.GetPixelData()->GetPixelData(3), nullptr);
}

TEST_F(StnEventStreamerTest, NotesTheFrameAtPrintLevelOne) {
  const std::vector<char> bytes = Write(&fEvent);
  TStnEvent::SetPrintLevel(1);
  Read(&fRead, bytes);
  EXPECT_THAT(fLog.Take(), MatchesRegex("DBG:StnEvent/src/StnEvent\\.cc:[0-9]+: TStnEvent::Streamer\\(\\) - R__v= 5 "
                                        "R__s= 0 R__c= " +
                                        std::to_string(bytes.size() - 4) + "\n(.|\n)*"));
}

TEST_F(StnEventStreamerTest, CorrectsAnEventOfTodaysVersion) {
  Read(&fRead, Write(&fMislabelled));
  EXPECT_EQ(fRead.GetPixelData()->GetPixelData(3)->GetStnNo(), 2U);
  EXPECT_EQ(fRead.GetPixelData()->GetPixelData(3)->GetMirrorNo(), 3U);
  ExpectNominalAxes(&fRead, 2);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventStreamerTest, CorrectsAnEventOfAnOldVersion) {
  std::vector<char> bytes = Write(&fMislabelled);
  SetVersion(&bytes, 4);
  Read(&fRead, bytes);
  EXPECT_EQ(Member<Version_t>(fRead, "fStreamerVersion"), 4);
  EXPECT_EQ(fRead.GetPixelData()->GetPixelData(3)->GetStnNo(), 2U);
  EXPECT_TRUE(Has(fRead, "fGeometryData"));
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventStreamerTest, LeavesAnEventOfALaterVersionAsItIs) {
  std::vector<char> bytes = Write(&fMislabelled);
  SetVersion(&bytes, 6);
  Read(&fRead, bytes);
  EXPECT_EQ(fLog.Take(), "WRN:TStnEvent::Streamer() - no corrections applied\n");
  EXPECT_EQ(Member<Version_t>(fRead, "fStreamerVersion"), 6);
  EXPECT_EQ(fRead.GetPixelData()->GetPixelData(3)->GetStnNo(), 4U);
  EXPECT_EQ(fRead.GetPixelData()->GetPixelData(3)->GetMirrorNo(), 1U);
  EXPECT_FALSE(Has(fRead, "fGeometryData"));
}

struct DamagedFrame {
  std::string fName;
  std::function<void(std::vector<char>*)> fDamage;
  std::function<std::string(size_t)> fComplaint;  // for a buffer of that many bytes
};

class StnEventDamagedFrame : public StnEventStreamerTest, public testing::WithParamInterface<DamagedFrame> {};

TEST_P(StnEventDamagedFrame, IsRefusedAndLeavesTheObject) {
  TStnEvent other;
  other.GetEventHeader()->SetRunNo(56);
  std::vector<char> bytes = Write(&other);
  GetParam().fDamage(&bytes);
  Member<Version_t>(fEvent, "fStreamerVersion") = 3;
  const Int_t end = Read(&fEvent, bytes);

  EXPECT_EQ(fLog.Take(), GetParam().fComplaint(bytes.size()));
  EXPECT_EQ(end, static_cast<Int_t>(bytes.size()));
  EXPECT_EQ(Member<Version_t>(fEvent, "fStreamerVersion"), 3);
  EXPECT_EQ(fEvent.GetEventHeader()->GetRunNo(), 55U);
  EXPECT_EQ(fEvent.GetPixelList()->GetNumPixels(), 3U);
  for (const char* name : {"fTriggerData", "fT3Data", "fGeometryData"})
    EXPECT_FALSE(Has(fEvent, name)) << name;
}

std::string ByteCountComplaint(size_t found, size_t most) {
  return "ERR:TStnEvent::Streamer() - byte count: found " + std::to_string(found) + ", expected 12 to " +
         std::to_string(most) + "\n";
}

INSTANTIATE_TEST_SUITE_P(
    All, StnEventDamagedFrame,
    testing::Values(DamagedFrame{"ByteCountTooLarge",
                                 [](auto* bytes) { SetByteCount(bytes, kByteCountFlag | (bytes->size() - 3)); },
                                 [](size_t size) { return ByteCountComplaint(size - 3, size - 4); }},
                    DamagedFrame{"ByteCountHuge", [](auto* bytes) { SetByteCount(bytes, 0x7fffffff); },
                                 [](size_t size) { return ByteCountComplaint(0x3fffffff, size - 4); }},
                    DamagedFrame{"ByteCountTooSmall", [](auto* bytes) { SetByteCount(bytes, kByteCountFlag | 11); },
                                 [](size_t size) { return ByteCountComplaint(11, size - 4); }},
                    DamagedFrame{"NoByteCount", [](auto* bytes) { SetByteCount(bytes, 0x00050000); },
                                 [](size_t size) { return ByteCountComplaint(0, size - 4); }},
                    DamagedFrame{"CutRecord", [](auto* bytes) { bytes->pop_back(); },
                                 [](size_t size) { return ByteCountComplaint(size - 3, size - 4); }},
                    DamagedFrame{"CutAfterTheFrame",
                                 [](auto* bytes) {
                                   SetByteCount(bytes, kByteCountFlag | 100);
                                   bytes->resize(10);
                                 },
                                 [](size_t) { return ByteCountComplaint(100, 6); }},
                    DamagedFrame{"CutFrame", [](auto* bytes) { bytes->resize(9); },
                                 [](size_t) {
                                   return "ERR:TStnEvent::Streamer() - bytes in the buffer: found 9, expected at "
                                          "least 10\n";
                                 }}),
    [](const auto& info) { return info.param.fName; });

TEST_F(StnEventStreamerTest, RefusesAByteCountBeyondTheBufferAfterOtherRecords) {
  std::vector<char> bytes = Write(&fEvent);
  const size_t most = bytes.size() - 4;
  SetByteCount(&bytes, kByteCountFlag | (most + 1));
  bytes.insert(bytes.begin(), 20, 'x');
  EXPECT_EQ(Read(&fRead, bytes, 20), static_cast<Int_t>(bytes.size()));
  EXPECT_EQ(fLog.Take(), ByteCountComplaint(most + 1, most));
}

TEST_F(StnEventStreamerTest, SurvivesARecordOfAVersionThatNobodyKnows) {
  for (const Version_t version : {Version_t(0), Version_t(-1), Version_t(99)}) {
    std::vector<char> bytes = Write(&fEvent);
    bytes[4] = static_cast<char>(version >> 8);
    bytes[5] = static_cast<char>(version);
    TStnEvent read;
    EXPECT_EQ(Read(&read, bytes), static_cast<Int_t>(bytes.size())) << version;
  }
}

TEST_F(StnEventStreamerTest, CorrectionsRelabelPixelDataBySlot) {
  TStnEvent::DoCorrections(&fMislabelled);
  EXPECT_EQ(fMislabelled.GetPixelData()->GetPixelData(3)->GetStnNo(), 2U);
  EXPECT_EQ(fMislabelled.GetPixelData()->GetPixelData(3)->GetMirrorNo(), 3U);
  EXPECT_EQ(fMislabelled.GetPixelData()->GetPixelData(1), nullptr);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnEventStreamerTest, CorrectionsReachTheFirstAndTheLastMirror) {
  for (const UInt_t mirror : {1U, 6U}) {
    fEvent.AddEvent(MakeMirrorEvent(2, mirror).get());
    fEvent.GetPixelData()->GetPixelData(mirror)->SetMirrorNo(3);
    TStnEvent::DoCorrections(&fEvent);
    EXPECT_EQ(fEvent.GetPixelData()->GetPixelData(mirror)->GetMirrorNo(), mirror);
  }
}

TEST_F(StnEventStreamerTest, CorrectionsReachTheEventsPartsThroughTheGetters) {
  EventWithOwnParts event;
  event.fOwnHeader.SetStnNo(2);
  TMirrorPixelData record;
  event.fOwnPixelData.AddPixelData(&record, 3);
  TStnEvent::DoCorrections(&event);
  EXPECT_THAT(event.fAsked, testing::UnorderedElementsAre("pixel data", "header", "geometry"));
  EXPECT_EQ(event.fOwnPixelData.GetPixelData(3)->GetStnNo(), 2U);
  float azimuth = 0;
  float elevation = 0;
  event.fOwnGeometry.GetAxisDirection(6, azimuth, elevation);
  EXPECT_EQ(elevation, 16.0F);
}

TEST_F(StnEventStreamerTest, CorrectionsRelabelAWrongMirrorOrAWrongStationAlone) {
  TMirrorPixelData* record = fEvent.GetPixelData()->GetPixelData(3);
  record->SetMirrorNo(4);
  TStnEvent::DoCorrections(&fEvent);
  EXPECT_EQ(record->GetMirrorNo(), 3U);
  record->SetStnNo(1);
  record->SetMirrorNo(3);
  TStnEvent::DoCorrections(&fEvent);
  EXPECT_EQ(record->GetStnNo(), 2U);
}

TEST_F(StnEventStreamerTest, CorrectionsAreReportedOnceAtPrintLevelOne) {
  TStnEvent::SetPrintLevel(1);
  TStnEvent::DoCorrections(&fMislabelled);
  EXPECT_EQ(fLog.Take(),
            "WRN:TStnEvent::DoCorrections() - corrected TMirrorPixelData::(stn_id,mirror_id) from (4,1) to (2,3)!\n");
  TStnEvent::DoCorrections(&fMislabelled);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(fMislabelled.GetPixelData()->GetPixelData(3)->GetMirrorNo(), 3U);
}

TEST_F(StnEventStreamerTest, CorrectionsShowEachRecordAtPrintLevelTwoOnly) {
  std::ostringstream record;
  fEvent.GetPixelData()->GetPixelData(3)->Show(record, 100);
  TStnEvent::SetPrintLevel(1);
  testing::internal::CaptureStdout();
  TStnEvent::DoCorrections(&fEvent);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  TStnEvent::SetPrintLevel(2);
  testing::internal::CaptureStdout();
  TStnEvent::DoCorrections(&fEvent);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), record.str());
  testing::internal::CaptureStdout();
  TStnEvent::DoCorrections(&fMislabelled);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), record.str());
}

TEST_F(StnEventStreamerTest, CorrectionsKeepDirectionsThatAreThere) {
  TStnEvent::DoCorrections(&fEvent);
  ExpectAxis(&fEvent, 6, 10.0F, 11.0F);
  ExpectAxis(&fEvent, 1, 0.0F, 0.0F);
}

class NominalAxes : public testing::TestWithParam<UInt_t> {};

TEST_P(NominalAxes, AreFilledInByCorrections) {
  TStnEvent event;
  event.GetEventHeader()->SetStnNo(GetParam());
  TStnEvent::DoCorrections(&event);
  ASSERT_NE(Member<void*>(event, "fGeometryData"), nullptr);
  ExpectNominalAxes(&event, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Stations, NominalAxes, testing::Values(1, 2, 3, 4));

TEST_F(StnEventStreamerTest, CorrectionsLeaveStationFiveWithoutDirections) {
  fRead.GetEventHeader()->SetStnNo(5);
  TStnEvent::DoCorrections(&fRead);
  EXPECT_FALSE(Has(fRead, "fGeometryData"));
}

TEST_F(StnEventStreamerTest, CorrectionsSurviveAStationThatCannotBe) {
  for (const UInt_t stn : {0U, 6U, 255U}) {
    TStnEvent event;
    event.GetEventHeader()->SetStnNo(stn);
    TStnEvent::DoCorrections(&event);
    ExpectAxis(&event, 1, 0.0F, 0.0F);
  }
}

TEST_F(StnEventStreamerTest, CorrectionsOfAnEmptyEventMakeHeaderPixelDataAndDirections) {
  TStnEvent::DoCorrections(&fRead);
  EXPECT_TRUE(Has(fRead, "fEventHeader"));
  EXPECT_TRUE(Has(fRead, "fPixelData"));
  EXPECT_TRUE(Has(fRead, "fGeometryData"));
  EXPECT_FALSE(Has(fRead, "fPixelList"));
}

TEST(StnEventDeathTest, AssertsThatThereIsAnEventToCorrect) {
  EXPECT_DEATH(
      {
        gSystem->ResetSignals();
        TStnEvent::DoCorrections(nullptr);
      },
      "StnEvent/src/StnEvent.cc:[0-9]+: static void TStnEvent::DoCorrections\\(TStnEvent ?\\*\\): Assertion `event != "
      "__null' failed");
}

}  // namespace
