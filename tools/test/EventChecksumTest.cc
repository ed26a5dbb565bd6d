#include "EventChecksum.h"
#include "Simulation.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using StnTools::Checksum;
using StnTools::ComputeChecksum;
using StnTools::EventChecksum;
using StnTools::EventPart;
using VdRoot::TTimeStamp;

class EventChecksumTest : public testing::Test {
 protected:
  void SetUp() override {
    StnTools::SimulationSettings settings;
    settings.fPixels = 3;
    settings.fMissingFraction = 0.;
    StnTools::Simulation simulation(settings);
    simulation.Simulate(1);
    simulation.Build(fEvent);
  }

  // Does a change of the event change that part's checksum, and no other?
  void ExpectChange(EventPart part, const std::function<void(TStnEvent&)>& change) {
    TStnEvent changed(fEvent);
    change(changed);
    EventChecksum before = ComputeChecksum(fEvent);
    EventChecksum after = ComputeChecksum(changed);
    for (int i = 0; i < StnTools::kNParts; ++i)
      EXPECT_EQ(before[i] != after[i], i == part) << i;
  }

  void ExpectHeaderChange(const std::function<void(TStnEventHeader&)>& change) {
    ExpectChange(StnTools::kHeader, [&change](TStnEvent& event) { change(*event.GetEventHeader()); });
  }

  void ExpectTraceChange(const std::function<void(TFADCData::_FADCDataRec&)>& change) {
    ExpectChange(StnTools::kTraces, [&change](TStnEvent& event) {
      std::unique_ptr<TIterator> next(event.GetFADCData()->GetIterator());
      next->Next();
      change(*static_cast<TFADCData*>(next->Next())->GetRecord());
    });
  }

  TStnEvent fEvent;
};

}  // namespace

TEST(ChecksumTest, HasAFixedValue) {
  Checksum sum;
  EXPECT_EQ(sum.GetValue(), 0xcbf29ce484222325u);
  sum.Add(std::uint64_t(1));
  sum.Add(1.5);
  EXPECT_EQ(StnTools::FormatChecksum(sum.GetValue()), "1aab556a4b3cf44a");
}

TEST(ChecksumTest, DependsOnEveryBit) {
  Checksum none;
  none.Add(std::uint64_t(0));
  for (int bit = 0; bit < 64; ++bit) {
    Checksum sum;
    sum.Add(std::uint64_t(1) << bit);
    EXPECT_NE(sum.GetValue(), none.GetValue()) << bit;
  }
}

TEST(ChecksumTest, DependsOnTheOrder) {
  Checksum a;
  a.Add(std::uint64_t(1));
  a.Add(std::uint64_t(2));
  Checksum b;
  b.Add(std::uint64_t(2));
  b.Add(std::uint64_t(1));
  EXPECT_NE(a.GetValue(), b.GetValue());
}

TEST(ChecksumTest, IsShownWithAllItsDigits) {
  EXPECT_EQ(StnTools::FormatChecksum(0xab), "00000000000000ab");
  EXPECT_EQ(StnTools::FormatChecksum(~std::uint64_t(0)), "ffffffffffffffff");
}

TEST_F(EventChecksumTest, IsTheSameForACopy) {
  TStnEvent copy(fEvent);
  EXPECT_EQ(ComputeChecksum(copy), ComputeChecksum(fEvent));
}

TEST_F(EventChecksumTest, NamesItsParts) {
  EXPECT_STREQ(GetPartName(StnTools::kHeader), "header");
  EXPECT_STREQ(GetPartName(StnTools::kPixelList), "pixel list");
  EXPECT_STREQ(GetPartName(StnTools::kPixelData), "pixel data");
  EXPECT_STREQ(GetPartName(StnTools::kTraces), "traces");
}

TEST_F(EventChecksumTest, CoversEveryFieldOfTheHeader) {
  using H = TStnEventHeader;
  const std::vector<std::function<void(H&)>> changes = {
      [](H& h) { h.SetEventNo(9); },
      [](H& h) { h.SetEventClass(H::kEmpty); },
      [](H& h) { h.SetEventType(H::kInvalidType); },
      [](H& h) { h.SetRunNo(9); },
      [](H& h) { h.SetLidarIsTriggered(); },
      [](H& h) { h.SetTimeCorrectionParameters(100.F, 1.F); },
      [](H& h) { h.SetVetoTimeCounter(9); },
      [](H& h) { h.SetStnDaqDeadTime(9); },
      [](H& h) { h.SetNRejectedT3(9); },
      [](H& h) { h.SetTotalT3DeadTime(9.F); },
      [](H& h) { h.SetTimeStamp(9, 9); },
      [](H& h) { h.SetT3TimeStamp(9, 9); },
      [](H& h) { h.SetT3Id(9); },
      [](H& h) { h.SetRawMirrorTime(2, TTimeStamp(9, 9)); },
      [](H& h) { h.SetTriggerSource(TMirrorEventHeader::kExternalTrigger, 2); },
      [](H& h) { h.SetTriggerTimeStamp(9, 2); },
      [](H& h) { h.SetDeadTimeCounter(9, 2); },
      [](H& h) { h.SetRunTimeCounter(9, 6); },
      [](H& h) { h.SetMirrorDaqDeadTime(9, 2); },
      [](H& h) { h.SetMirrorNSkippedTriggers(9, 2); },
      [](H& h) { h.SetMirrorEventLabel(9, 2); },
      [](H& h) {
        h.SetRawMirrorTime(2, TTimeStamp(h.GetRawMirrorTimeStamp(2)->GetSec(), 999999999));
        h.AdjustMirrorTimes();
      }};
  for (size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(i);
    ExpectHeaderChange(changes[i]);
  }
}

TEST_F(EventChecksumTest, CoversTheT3OfAnEventThatHasOne) {
  using T = TStnT3Data;
  fEvent.GetEventHeader()->SetT3Id(5);
  for (const std::function<void(T&)>& change :
       std::vector<std::function<void(T&)>>{[](T& t) { t.SetNPixels(3); }, [](T& t) { t.SetSDPTheta(3.F); },
                                            [](T& t) { t.SetSDPPhi(3.F); }, [](T& t) { t.SetAzimuthAtGround(3.F); },
                                            [](T& t) { t.SetTimeAtGround(3); }, [](T& t) { t.SetTotalSignal(3.F); }}) {
    ExpectChange(StnTools::kHeader, [&change](TStnEvent& event) { change(*event.GetT3Data()); });
  }
}

TEST_F(EventChecksumTest, CoversThePixelList) {
  ExpectChange(StnTools::kPixelList, [](TStnEvent& event) {
    _PixelNumber pixel;
    pixel.fPixelNumber = 480;
    VdUtil::Vd::SetStnNo(&pixel, 1);
    VdUtil::Vd::SetMirrorNo(&pixel, 6);
    event.GetPixelList()->AddPixel(&pixel);
  });
}

TEST_F(EventChecksumTest, CoversEverySliceOfEveryPixel) {
  for (UInt_t slice : {0u, 31u, 32u, 99u}) {
    ExpectChange(StnTools::kPixelData,
                 [slice](TStnEvent& event) { event.GetPixelData()->GetPixelData(2)->SetTriggered(20, 24, slice); });
  }
}

TEST_F(EventChecksumTest, CoversTheNumbersOfThePixelData) {
  ExpectChange(StnTools::kPixelData, [](TStnEvent& event) { event.GetPixelData()->GetPixelData(2)->SetMirrorNo(5); });
  ExpectChange(StnTools::kPixelData,
               [](TStnEvent& event) { event.GetPixelData()->GetPixelData(2)->GetRecord()->fUnused = 1; });
}

TEST_F(EventChecksumTest, CoversTheAbsenceOfPixelData) {
  ExpectChange(StnTools::kPixelData, [](TStnEvent& event) { event.GetPixelData()->Clear(); });
}

TEST_F(EventChecksumTest, CoversEveryValueOfATrace) {
  using R = TFADCData::_FADCDataRec;
  const std::vector<std::function<void(R&)>> changes = {[](R& r) { r.fPixelNumber.fBits.fTrigger = 1; },
                                                        [](R& r) { r.fTraceInfo.fEndBin = 5; },
                                                        [](R& r) { r.fTraceStartTime = 1.F; },
                                                        [](R& r) { ++r.fMonitor.fPrevThreshold; },
                                                        [](R& r) { ++r.fMonitor.fActualThreshold; },
                                                        [](R& r) { ++r.fMonitor.fActualRate; },
                                                        [](R& r) { r.fMonitor.fMean += 1.; },
                                                        [](R& r) { r.fMonitor.fVariance += 1.; },
                                                        [](R& r) { ++r.fFadcData[0].fWord; },
                                                        [](R& r) { r.fFadcData[500].fThresholdChanged ^= 1; },
                                                        [](R& r) { ++r.fFadcData[1999].fWord; }};
  for (size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(i);
    ExpectTraceChange(changes[i]);
  }
}

TEST_F(EventChecksumTest, CoversTheNumberOfTraces) {
  ExpectChange(StnTools::kTraces, [](TStnEvent& event) { event.GetFADCData()->Clear(); });
}
