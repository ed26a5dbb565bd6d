#include <StnEvent/StnFadcData.h>

#include "LogCapture.h"
#include "Members.h"

#include <TBufferFile.h>
#include <TClass.h>
#include <TDataMember.h>
#include <TError.h>
#include <TSystem.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

/// A trace that counts how many of its kind are alive.
class TCountedTrace : public TFADCData {
 public:
  TCountedTrace(UInt_t mirror, UInt_t pixel) {
    VdUtil::Vd::SetPixelNo(GetPixelNumber(), pixel);
    VdUtil::Vd::SetMirrorNo(GetPixelNumber(), mirror);
    VdUtil::Vd::SetStnNo(GetPixelNumber(), 2);
    ++fgAlive;
  }
  ~TCountedTrace() override { --fgAlive; }
  static int fgAlive;
};
int TCountedTrace::fgAlive = 0;

_PixelNumber Pixel(UInt_t mirror, UInt_t pixel_no) {
  _PixelNumber pixel;
  pixel.fPixelNumber = 0;
  VdUtil::Vd::SetPixelNo(&pixel, pixel_no);
  VdUtil::Vd::SetMirrorNo(&pixel, mirror);
  VdUtil::Vd::SetStnNo(&pixel, 2);
  return pixel;
}

const TFADCData* Get(const TStnFADCData& data, UInt_t mirror, UInt_t pixel_no) {
  _PixelNumber pixel = Pixel(mirror, pixel_no);
  return data.GetFADCData(&pixel);
}

const TFADCData* GetByStationPixel(const TStnFADCData& data, UInt_t stn_pixel) {
  _VdPixelNumber pixel;
  VdUtil::Vd::SetPixelNo(&pixel, 2880 + stn_pixel);
  return data.GetFADCData(&pixel);
}

/// The traces that an iterator comes by, as mirror * 1000 + pixel.
std::vector<UInt_t> List(const TStnFADCData& data, Bool_t dir = kIterForward) {
  std::vector<UInt_t> pixels;
  const std::unique_ptr<TIterator> next(data.GetIterator(dir));
  while (const auto* trace = static_cast<const TFADCData*>(next->Next())) {
    const _PixelNumber* pixel = trace->GetPixelNumber();
    pixels.push_back(1000 * VdUtil::Vd::GetMirrorNo(pixel) + VdUtil::Vd::GetPixelNo(pixel));
  }
  return pixels;
}
using Pixels = std::vector<UInt_t>;

void Add(TStnFADCData& data, UInt_t mirror, UInt_t pixel_no) {
  TCountedTrace trace(mirror, pixel_no);
  data.AddFADCData(&trace);
}

void Read(TStnFADCData& target, TStnFADCData& source) {
  TBufferFile b(TBuffer::kWrite);
  source.Streamer(b);
  b.SetReadMode();
  b.SetBufferOffset(0);
  target.Streamer(b);
}

Version_t& StreamerVersion(TStnFADCData& data) { return Member<Version_t>(data, "fStreamerVersion"); }

const TObjArray& Array(const TStnFADCData& data) { return *Member<TObjArray*>(data, "fFADCData"); }

/// A record whose array is a null pointer.
std::string RecordWithoutArray() {
  std::string record("\x40\0\0\x14\0\1\0\1\0\0\0\0\0\0\0\0\0\0\0\x05\0\0\0\0", 24);
  return record;
}

void ReadRecordWithoutArray(TStnFADCData& data) {
  std::string record = RecordWithoutArray();
  TBufferFile b(TBuffer::kRead, record.size(), record.data(), false);
  data.Streamer(b);
}

/// No test here makes ROOT complain.
class StnFadcDataTest : public testing::Test {
 protected:
  void SetUp() override {
    fgRootErrors.clear();
    fHandler = SetErrorHandler([](int, Bool_t, const char* where, const char* text) {
      fgRootErrors += std::string(where) + ": " + text + "\n";
    });
  }
  void TearDown() override {
    SetErrorHandler(fHandler);
    EXPECT_EQ(fgRootErrors, "");
    EXPECT_EQ(TCountedTrace::fgAlive, 0);
  }
  LogCapture fLog;

 private:
  static std::string fgRootErrors;
  ErrorHandlerFunc_t fHandler = nullptr;
};
std::string StnFadcDataTest::fgRootErrors;

TEST_F(StnFadcDataTest, NewContainerHasNoTrace) {
  const TStnFADCData data;
  EXPECT_EQ(data.GetNTraces(), 0U);
  for (UInt_t n = 1; n <= 2880; ++n)
    ASSERT_EQ(GetByStationPixel(data, n), nullptr);
  EXPECT_EQ(List(data), Pixels());
}

TEST_F(StnFadcDataTest, NewContainerHasASlotForEachPixelOfTheStation) {
  const TStnFADCData data;
  EXPECT_EQ(Array(data).LowerBound(), 1);
  EXPECT_EQ(Array(data).GetSize(), 2880);
}

TEST_F(StnFadcDataTest, StoresACopy) {
  TStnFADCData data;
  TCountedTrace trace(3, 7);
  data.AddFADCData(&trace);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(data.GetNTraces(), 1U);
  const TFADCData* stored = Get(data, 3, 7);
  ASSERT_NE(stored, nullptr);
  EXPECT_NE(stored, &trace);
  EXPECT_NE(stored->GetPixelNumber(), trace.GetPixelNumber());
}

TEST_F(StnFadcDataTest, StoresAnObjectThatIsHandedOver) {
  auto* trace = new TCountedTrace(3, 7);
  TStnFADCData data;
  data.AddFADCData(trace, true);
  EXPECT_EQ(Get(data, 3, 7), trace);
}

TEST_F(StnFadcDataTest, TraceIsFoundByEitherNumber) {
  TStnFADCData data;
  Add(data, 3, 7);
  EXPECT_NE(GetByStationPixel(data, 967), nullptr);
  EXPECT_EQ(GetByStationPixel(data, 967), Get(data, 3, 7));
}

TEST_F(StnFadcDataTest, LastPixelOfTheStationHasTheLastSlot) {
  TStnFADCData data;
  Add(data, 6, 480);
  EXPECT_NE(GetByStationPixel(data, 2880), nullptr);
  EXPECT_EQ(GetByStationPixel(data, 2879), nullptr);
}

TEST_F(StnFadcDataTest, FirstPixelOfTheStationHasTheFirstSlot) {
  TStnFADCData data;
  Add(data, 1, 1);
  EXPECT_NE(GetByStationPixel(data, 1), nullptr);
  EXPECT_EQ(GetByStationPixel(data, 2), nullptr);
}

TEST_F(StnFadcDataTest, FirstTraceIsAddedWhereADamagedRecordLeftNoArray) {
  TStnFADCData data;
  delete std::exchange(Member<TObjArray*>(data, "fFADCData"), nullptr);
  Add(data, 1, 1);
  EXPECT_NE(GetByStationPixel(data, 1), nullptr);
}

TEST_F(StnFadcDataTest, SmallContainerGrowsToAStation) {
  TStnFADCData data(10);
  Add(data, 5, 80);
  EXPECT_NE(GetByStationPixel(data, 2000), nullptr);
  Add(data, 6, 480);
  EXPECT_NE(GetByStationPixel(data, 2880), nullptr);
  EXPECT_EQ(data.GetNTraces(), 2U);
}

TEST_F(StnFadcDataTest, SmallContainerHasItsCapacityUntilATraceIsAdded) {
  TStnFADCData data(10);
  EXPECT_EQ(Array(data).LowerBound(), 1);
  EXPECT_EQ(Array(data).GetSize(), 10);
  Add(data, 1, 1);
  EXPECT_EQ(Array(data).GetSize(), 2880);
}

TEST_F(StnFadcDataTest, SmallContainerHasNoTraceBeyondItsCapacity) {
  const TStnFADCData data(10);
  EXPECT_EQ(GetByStationPixel(data, 10), nullptr);
  EXPECT_EQ(GetByStationPixel(data, 11), nullptr);
  EXPECT_EQ(GetByStationPixel(data, 2880), nullptr);
}

TEST_F(StnFadcDataTest, RefusesMirrorPixelsOutsideTheRangeAndLeavesThem) {
  TStnFADCData data;
  const auto none = std::make_unique<TCountedTrace>(1, 0);
  const auto beyond = std::make_unique<TCountedTrace>(1, 481);
  data.AddFADCData(none.get(), true);
  data.AddFADCData(beyond.get(), true);
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnFADCData::AddFADCData() - tried to add illegal FADC trace of pixel 0\n"
            "ERR:TStnFADCData::AddFADCData() - tried to add illegal FADC trace of pixel 481\n");
  EXPECT_EQ(data.GetNTraces(), 0U);
  EXPECT_EQ(List(data), Pixels());
}

TEST_F(StnFadcDataTest, TakesTheLastPixelOfEveryMirror) {
  TStnFADCData data;
  for (UInt_t mirror = 1; mirror <= 6; ++mirror)
    Add(data, mirror, 480);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(List(data), Pixels({1480, 2480, 3480, 4480, 5480, 6480}));
}

TEST_F(StnFadcDataTest, RefusesATraceOfNoMirror) {
  TStnFADCData data;
  Add(data, 0, 5);
  Add(data, 7, 6);
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnFADCData::AddFADCData() - tried to add illegal FADC trace of pixel 5\n"
            "ERR:TStnFADCData::AddFADCData() - tried to add illegal FADC trace of pixel 6\n");
  EXPECT_EQ(data.GetNTraces(), 0U);
}

TEST_F(StnFadcDataTest, RefusesASecondTraceAndLeavesItEvenIfHandedOver) {
  TStnFADCData data;
  Add(data, 3, 7);
  const TFADCData* stored = Get(data, 3, 7);
  const auto second = std::make_unique<TCountedTrace>(3, 7);
  data.AddFADCData(second.get(), true);
  EXPECT_EQ(fLog.Take(), "WRN:TStnFADCData::AddFADCData() - tried to add trace for pixel 967 again !\n");
  EXPECT_EQ(data.GetNTraces(), 1U);
  EXPECT_EQ(Get(data, 3, 7), stored);
  EXPECT_EQ(TCountedTrace::fgAlive, 1);
}

TEST_F(StnFadcDataTest, NoTraceIsNotAdded) {
  TStnFADCData data;
  data.AddFADCData(nullptr);
  data.AddFADCData(nullptr, true);
  EXPECT_EQ(data.GetNTraces(), 0U);
}

TEST_F(StnFadcDataTest, NoPixelHasNoTrace) {
  TStnFADCData data;
  Add(data, 1, 1);
  _PixelNumber pixel;
  pixel.fPixelNumber = 0;
  _VdPixelNumber vdpixel;
  EXPECT_EQ(data.GetFADCData(&pixel), nullptr);
  EXPECT_EQ(data.GetFADCData(&vdpixel), nullptr);
}

TEST_F(StnFadcDataTest, PixelOfNoMirrorHasNoTrace) {
  TStnFADCData data;
  Add(data, 6, 480);
  EXPECT_EQ(Get(data, 0, 480), nullptr);
  EXPECT_EQ(Get(data, 7, 480), nullptr);
}

TEST(StnFadcDataDeathTest, NullPixelIsAnAssertion) {
  const TStnFADCData data;
  const auto by_mirror = [&] { data.GetFADCData(static_cast<_PixelNumber*>(nullptr)); };
  const auto by_station = [&] { data.GetFADCData(static_cast<_VdPixelNumber*>(nullptr)); };
  EXPECT_DEATH((gSystem->ResetSignals(), by_mirror()),
               "StnEvent/src/StnFadcData.cc:[0-9]+: const TFADCData ?\\* ?"
               "TStnFADCData::GetFADCData\\(.*_PixelNumber ?\\*\\) const: Assertion `pixel != __null' failed.");
  EXPECT_DEATH((gSystem->ResetSignals(), by_station()),
               "StnEvent/src/StnFadcData.cc:[0-9]+: const TFADCData ?\\* ?"
               "TStnFADCData::GetFADCData\\(.*_VdPixelNumber ?\\*\\) const: Assertion `pixel != __null' failed.");
}

TEST_F(StnFadcDataTest, IteratorGoesByStationPixel) {
  TStnFADCData data;
  Add(data, 6, 480);
  Add(data, 1, 2);
  Add(data, 1, 1);
  EXPECT_EQ(List(data), Pixels({1001, 1002, 6480}));
  EXPECT_EQ(List(data, kIterBackward), Pixels({6480, 1002, 1001}));
}

TEST_F(StnFadcDataTest, RemovingAStoredTraceLowersTheCountBy2) {
  TStnFADCData data;
  Add(data, 1, 1);
  Add(data, 1, 2);
  Add(data, 1, 3);
  const std::unique_ptr<const TFADCData> removed(Get(data, 1, 2));
  data.RemoveFADCData(removed.get());
  EXPECT_EQ(data.GetNTraces(), 1U);
  EXPECT_EQ(List(data), Pixels({1001, 1003}));
}

TEST_F(StnFadcDataTest, RemovedTraceIsAlive) {
  auto* trace = new TCountedTrace(1, 2);
  TStnFADCData data;
  data.AddFADCData(trace, true);
  data.RemoveFADCData(trace);
  EXPECT_EQ(TCountedTrace::fgAlive, 1);
  EXPECT_EQ(Get(data, 1, 2), nullptr);
  data.Clear();
  EXPECT_EQ(TCountedTrace::fgAlive, 1);
  delete trace;
}

TEST_F(StnFadcDataTest, TraceOnTheSameRecordIsRemovedAndLowersTheCountBy1) {
  TFADCData::_FADCDataRec record = {};
  record.fPixelNumber = Pixel(1, 2);
  const auto stored = std::make_unique<TFADCData>(&record);
  const TFADCData other(&record);
  TStnFADCData data;
  data.AddFADCData(stored.get(), true);
  Add(data, 1, 3);
  data.RemoveFADCData(&other);
  EXPECT_EQ(data.GetNTraces(), 1U);
  EXPECT_EQ(List(data), Pixels({1003}));
}

TEST_F(StnFadcDataTest, EqualCopyOfATraceIsNotRemoved) {
  TStnFADCData data;
  Add(data, 1, 2);
  const TFADCData copy(*Get(data, 1, 2));
  data.RemoveFADCData(&copy);
  EXPECT_EQ(data.GetNTraces(), 1U);
  EXPECT_NE(Get(data, 1, 2), nullptr);
}

TEST_F(StnFadcDataTest, RemovingNothingChangesNothing) {
  TStnFADCData data;
  Add(data, 1, 2);
  data.RemoveFADCData(nullptr);
  EXPECT_EQ(data.GetNTraces(), 1U);
}

TEST_F(StnFadcDataTest, FirstTraceCanBeRemoved) {
  TStnFADCData data;
  Add(data, 1, 1);
  const std::unique_ptr<const TFADCData> removed(Get(data, 1, 1));
  data.RemoveFADCData(removed.get());
  EXPECT_EQ(Get(data, 1, 1), nullptr);
}

TEST_F(StnFadcDataTest, LastTraceCanBeRemoved) {
  TStnFADCData data;
  Add(data, 6, 480);
  const std::unique_ptr<const TFADCData> removed(Get(data, 6, 480));
  data.RemoveFADCData(removed.get());
  EXPECT_EQ(List(data), Pixels());
}

TEST_F(StnFadcDataTest, ClearDeletesTheTracesAndKeepsTheCount) {
  TStnFADCData data;
  data.AddFADCData(new TCountedTrace(1, 1), true);
  data.AddFADCData(new TCountedTrace(6, 480), true);
  data.Clear();
  EXPECT_EQ(TCountedTrace::fgAlive, 0);
  EXPECT_EQ(data.GetNTraces(), 2U);
  EXPECT_EQ(Get(data, 1, 1), nullptr);
}

TEST_F(StnFadcDataTest, ClearKeepsTheCapacity) {
  TStnFADCData data(3000);
  data.Clear();
  EXPECT_EQ(Array(data).GetSize(), 3000);
}

TEST_F(StnFadcDataTest, ArrayIsNeverMarkedAsOwner) {
  TStnFADCData data;
  EXPECT_FALSE(Array(data).IsOwner());
  Add(data, 1, 1);
  EXPECT_FALSE(Array(data).IsOwner());
  data.Clear();
  EXPECT_FALSE(Array(data).IsOwner());
}

TEST_F(StnFadcDataTest, ClearedContainerGoesOnCounting) {
  TStnFADCData data;
  Add(data, 1, 1);
  data.Clear();
  Add(data, 1, 1);
  EXPECT_EQ(data.GetNTraces(), 2U);
  EXPECT_EQ(List(data), Pixels({1001}));
}

TEST_F(StnFadcDataTest, DestructorDeletesTheTraces) {
  {
    TStnFADCData data;
    data.AddFADCData(new TCountedTrace(1, 1), true);
    EXPECT_EQ(TCountedTrace::fgAlive, 1);
  }
  EXPECT_EQ(TCountedTrace::fgAlive, 0);
}

TEST_F(StnFadcDataTest, AssignmentCopiesTracesAndCount) {
  TStnFADCData source, target;
  Add(source, 1, 1);
  source.Clear();
  Add(source, 1, 2);
  Add(source, 6, 480);
  target = source;
  EXPECT_EQ(target.GetNTraces(), 3U);
  EXPECT_EQ(List(target), Pixels({1002, 6480}));
  EXPECT_NE(Get(target, 1, 2), Get(source, 1, 2));
}

TEST_F(StnFadcDataTest, AssignmentDeletesTheTargetsTraces) {
  TStnFADCData source, target;
  Add(source, 1, 1);
  target.AddFADCData(new TCountedTrace(1, 2), true);
  target = source;
  EXPECT_EQ(TCountedTrace::fgAlive, 0);
  EXPECT_EQ(List(target), Pixels({1001}));
}

TEST_F(StnFadcDataTest, AssignmentToASmallContainerLosesNothing) {
  TStnFADCData source, target(10);
  Add(source, 1, 1);
  Add(source, 6, 480);
  target = source;
  EXPECT_EQ(List(target), Pixels({1001, 6480}));
}

TEST_F(StnFadcDataTest, AssignmentOfASmallContainer) {
  TStnFADCData source(10), target;
  Add(target, 6, 480);
  target = source;
  EXPECT_EQ(List(target), Pixels());
  Add(target, 6, 480);
  EXPECT_EQ(List(target), Pixels({6480}));
}

TEST_F(StnFadcDataTest, SelfAssignmentChangesNothing) {
  TStnFADCData data;
  Add(data, 1, 1);
  TStnFADCData& same = data;
  data = same;
  EXPECT_EQ(data.GetNTraces(), 1U);
  EXPECT_EQ(List(data), Pixels({1001}));
}

TEST_F(StnFadcDataTest, CopyIsDeep) {
  TStnFADCData source;
  Add(source, 1, 1);
  const TStnFADCData copy(source);
  source.Clear();
  EXPECT_EQ(copy.GetNTraces(), 1U);
  EXPECT_EQ(List(copy), Pixels({1001}));
}

TEST_F(StnFadcDataTest, CopyHasTheCapacityOfItsSource) {
  const TStnFADCData source(10);
  const TStnFADCData copy(source);
  EXPECT_EQ(Array(copy).LowerBound(), 1);
  EXPECT_EQ(Array(copy).GetSize(), 10);
}

TEST_F(StnFadcDataTest, CopyAndAssignmentDoNotTakeTheStreamerVersion) {
  TStnFADCData source, target;
  StreamerVersion(source) = 7;
  StreamerVersion(target) = 1;
  target = source;
  TStnFADCData copy(source);
  EXPECT_EQ(StreamerVersion(target), 1);
  EXPECT_EQ(StreamerVersion(copy), 0);
}

const std::string kShown =
    "--- TStnFADCData ---\n"
    " Number of traces : 0\n"
    " Streamer version : 0\n"
    " Class version    : 1\n"
    "--------------------\n";

TEST_F(StnFadcDataTest, ShowsAnEmptyContainerWithoutTraceLines) {
  const TStnFADCData data;
  std::ostringstream text;
  testing::internal::CaptureStdout();
  data.Show(text);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(text.str(), kShown);
}

TEST_F(StnFadcDataTest, ShowsTheFirstTraceToStandardOutput) {
  TStnFADCData data;
  for (UInt_t pixel_no : {8U, 7U}) {
    TCountedTrace trace(1, pixel_no);
    trace.GetRecord()->fTraceInfo.fStartBin = 100;
    trace.GetRecord()->fTraceInfo.fEndBin = pixel_no == 7 ? 199 : 299;
    trace.GetRecord()->fTraceInfo.fResolution = TFADCData::kFADC_RESOLUTION_1000_BINS;
    data.AddFADCData(&trace);
  }
  std::ostringstream text;
  testing::internal::CaptureStdout();
  data.Show(text);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), " GetTraceLength() : 100\n GetNFADCBins()   : 1000\n");
  EXPECT_EQ(text.str(),
            "--- TStnFADCData ---\n"
            " Number of traces : 2\n"
            " Streamer version : 0\n"
            " Class version    : 1\n"
            "--------------------\n");
}

TEST_F(StnFadcDataTest, ShowsTheStreamerVersion) {
  TStnFADCData data;
  StreamerVersion(data) = 7;
  std::ostringstream text;
  data.Show(text);
  EXPECT_EQ(text.str(),
            "--- TStnFADCData ---\n"
            " Number of traces : 0\n"
            " Streamer version : 7\n"
            " Class version    : 1\n"
            "--------------------\n");
}

TEST_F(StnFadcDataTest, ShowsToStandardOutputByDefault) {
  testing::internal::CaptureStdout();
  TStnFADCData().Show();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), kShown);
}

TEST_F(StnFadcDataTest, ReadsBackWhatItWrote) {
  TStnFADCData source, target;
  TCountedTrace trace(6, 480);
  trace.GetRecord()->fTraceInfo.fStartBin = 100;
  trace.GetRecord()->fTraceInfo.fEndBin = 199;
  trace.GetRecord()->fFadcData[150].fWord = 0x8123;
  source.AddFADCData(&trace);
  Add(source, 1, 2);
  Read(target, source);
  EXPECT_EQ(target.GetNTraces(), 2U);
  EXPECT_EQ(List(target), Pixels({1002, 6480}));
  EXPECT_EQ(Get(target, 6, 480)->GetTraceLength(), 100U);
  EXPECT_EQ(Get(target, 6, 480)->GetRecord()->fFadcData[150].fWord, 0x8123);
}

TEST_F(StnFadcDataTest, ReadContainerHasNoTraceBeyondItsLast) {
  TStnFADCData source, target;
  Add(source, 1, 20);
  Read(target, source);
  EXPECT_NE(GetByStationPixel(target, 20), nullptr);
  for (UInt_t n = 21; n <= 2880; ++n)
    ASSERT_EQ(GetByStationPixel(target, n), nullptr);
}

TEST_F(StnFadcDataTest, ReadContainerTakesEveryTrace) {
  TStnFADCData source, target;
  Add(source, 1, 20);
  Read(target, source);
  Add(target, 6, 480);
  Add(target, 1, 20);
  EXPECT_EQ(fLog.Take(), "WRN:TStnFADCData::AddFADCData() - tried to add trace for pixel 20 again !\n");
  EXPECT_EQ(List(target), Pixels({1020, 6480}));
  EXPECT_EQ(target.GetNTraces(), 2U);
}

TEST_F(StnFadcDataTest, ReadContainerIsAssignedAWholeStation) {
  TStnFADCData source, target, station;
  Add(source, 1, 20);
  Read(target, source);
  Add(station, 6, 480);
  target = station;
  EXPECT_EQ(List(target), Pixels({6480}));
}

TEST_F(StnFadcDataTest, ReadContainerIsCopiedAndAssigned) {
  TStnFADCData source, target, station;
  Add(source, 1, 20);
  Read(target, source);
  const TStnFADCData copy(target);
  EXPECT_EQ(List(copy), Pixels({1020}));
  Add(station, 6, 480);
  station = target;
  EXPECT_EQ(List(station), Pixels({1020}));
}

TEST_F(StnFadcDataTest, TracesOfAReadContainerCanBeRemoved) {
  TStnFADCData source, target;
  Add(source, 1, 20);
  Read(target, source);
  const std::unique_ptr<const TFADCData> removed(Get(target, 1, 20));
  target.RemoveFADCData(removed.get());
  EXPECT_EQ(List(target), Pixels());
}

TEST_F(StnFadcDataTest, ReadingDeletesTheTracesThatWereThere) {
  TStnFADCData source, target;
  Add(source, 1, 1);
  target.AddFADCData(new TCountedTrace(1, 1), true);
  target.AddFADCData(new TCountedTrace(6, 480), true);
  Read(target, source);
  EXPECT_EQ(TCountedTrace::fgAlive, 0);
  EXPECT_EQ(List(target), Pixels({1001}));
  EXPECT_EQ(target.GetNTraces(), 1U);
}

TEST_F(StnFadcDataTest, ReadingLeavesTheStreamerVersion) {
  TStnFADCData source, target;
  StreamerVersion(target) = 7;
  Read(target, source);
  EXPECT_EQ(StreamerVersion(target), 7);
}

TEST_F(StnFadcDataTest, ContainerWithoutAnArrayIsEmpty) {
  TStnFADCData data;
  ReadRecordWithoutArray(data);
  EXPECT_EQ(data.GetNTraces(), 5U);
  EXPECT_EQ(Get(data, 1, 1), nullptr);
  EXPECT_EQ(List(data), Pixels());
  data.Clear();
  const TFADCData trace;
  data.RemoveFADCData(&trace);
  std::ostringstream text;
  data.Show(text);
  EXPECT_EQ(TStnFADCData(data).GetNTraces(), 5U);
}

TEST_F(StnFadcDataTest, ContainerWithoutAnArrayTakesTraces) {
  TStnFADCData data;
  ReadRecordWithoutArray(data);
  Add(data, 6, 480);
  EXPECT_EQ(List(data), Pixels({6480}));
}

TEST_F(StnFadcDataTest, ContainerWithoutAnArrayIsAssigned) {
  TStnFADCData data, source;
  ReadRecordWithoutArray(data);
  Add(source, 6, 480);
  data = source;
  EXPECT_EQ(List(data), Pixels({6480}));
}

TEST_F(StnFadcDataTest, IsRegisteredAsVersion1) { EXPECT_EQ(TClass::GetClass("TStnFADCData")->GetClassVersion(), 1); }

TEST_F(StnFadcDataTest, MembersHaveTheirComments) {
  TClass* cl = TStnFADCData::Class();
  EXPECT_STREQ(cl->GetDataMember("fStreamerVersion")->GetTitle(), "! version read from file");
  EXPECT_STREQ(cl->GetDataMember("fNTraces")->GetTitle(), "Number of FADC traces stored");
  EXPECT_STREQ(cl->GetDataMember("fFADCData")->GetTitle(), "Container to store the FADC traces");
}

}  // namespace
