#include <StnEvent/StnEventHeader.h>

#include "Members.h"
#include "PrintLevel.h"

#include <MrEvent/FadcData.h>
#include <VdUtil/VdNumbering.h>

#include <LogCapture.h>

#include <TSystem.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

using VdRoot::TTimeStamp;

namespace {

constexpr const char* kNoRawParameters =
    "WRN:TStnEventHeader::IsTimeCorrectionSet() - raw time correction parameters are set to defaults !\n";
constexpr const char* kNotPossible =
    "WRN:TStnEventHeader::DoTimeCorrection() - excact time calculation is not possible !\n";

struct GPSTime {
  UInt_t fSec;
  UInt_t fNanoSec;
};

bool operator==(const GPSTime& a, const GPSTime& b) { return a.fSec == b.fSec && a.fNanoSec == b.fNanoSec; }
std::ostream& operator<<(std::ostream& ostr, const GPSTime& t) {
  return ostr << t.fSec << " s " << t.fNanoSec << " ns";
}

struct Parameters {
  Float_t fT10;
  Float_t fOffset;
};

bool operator==(const Parameters& a, const Parameters& b) { return a.fT10 == b.fT10 && a.fOffset == b.fOffset; }
std::ostream& operator<<(std::ostream& ostr, const Parameters& p) { return ostr << p.fT10 << ", " << p.fOffset; }

Parameters GetParameters(const TStnEventHeader& header) {
  Parameters p;
  header.GetTimeCorrectionParameters(&p.fT10, &p.fOffset);
  return p;
}

GPSTime Correct(TStnEventHeader& header, UInt_t sec, Int_t nsec) {
  GPSTime t = {1, 1};
  header.DoTimeCorrection(sec, nsec, &t.fSec, &t.fNanoSec);
  return t;
}

GPSTime ToGPS(const TTimeStamp* stamp) { return {UInt_t(stamp->GetGPSSec()), UInt_t(stamp->GetNanoSec())}; }
GPSTime GetTime(const TStnEventHeader& header) { return ToGPS(header.GetTimeStamp()); }

void AddMirror(TStnEventHeader& header, UInt_t id, UInt_t sec, UInt_t nsec) {
  header.SetMirrorDataPresent(id);
  header.SetRawMirrorTime(id, TTimeStamp(TTimeStamp::FromGPS(sec, nsec)));
}

TStnEventHeader MakeHeader(Float_t t10, Float_t offset) {
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(t10, offset);
  return header;
}

/// A header whose protected operations can be reached.
class OpenHeader : public TStnEventHeader {
 public:
  using TStnEventHeader::ConvertTimeCorrectionParameters;
  using TStnEventHeader::SetTimeCorrectionQuality;
};

}  // namespace

// ---- Parameters of the measured second

TEST(TimeCorrectionRaw, OfANominalSecondIsTheIdentity) {
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(0, 0, 80000000, 0);
  EXPECT_EQ(GetParameters(header), (Parameters{100.0f, 0.0f}));
  EXPECT_EQ(header.GetTimeCorrectionQuality(), TStnEventHeader::kAveragedPeriod);
  for (Int_t nsec : {0, 1, 999999999, 1000000000, 2147483647})
    EXPECT_EQ(Correct(header, 1000, nsec), (GPSTime{1000, UInt_t(nsec)}));
}

TEST(TimeCorrectionRaw, GivesCycleAndOffset) {
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(-20, 100, 80000100, 30);
  EXPECT_EQ(GetParameters(header), (Parameters{Float_t(1000000120.0 / 80000100.0 * 8.0), 10.0f}));
}

TEST(TimeCorrectionRaw, HasAPhaseOf0ByDefault) {
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(5, 0, 80000000);
  EXPECT_EQ(GetParameters(header).fOffset, 5.0f);
}

struct RawCase {
  Short_t fStart;
  Short_t fEnd;
  UInt_t fTicks;
  UInt_t fPhase;
  const char* fMessage;  // behind the common beginning; none if accepted
};

void PrintTo(const RawCase& c, std::ostream* ostr) {
  *ostr << c.fStart << ", " << c.fEnd << ", " << c.fTicks << ", " << c.fPhase;
}

class TimeCorrectionRawLimits : public ::testing::TestWithParam<RawCase> {};

TEST_P(TimeCorrectionRawLimits, AreKept) {
  const RawCase& c = GetParam();
  OpenHeader header;
  header.SetTimeCorrectionParameters(123.0f, 45.0f);
  header.SetTimeCorrectionQuality(TStnEventHeader::kUnknownQuality);
  LogCapture log;
  header.SetTimeCorrectionParameters(c.fStart, c.fEnd, c.fTicks, c.fPhase);
  const bool accepted = !c.fMessage;
  EXPECT_EQ(log.Take(), accepted ? std::string()
                                 : "ERR:TStnEventHeader::SetTimeCorrectionParameters() - " + std::string(c.fMessage) +
                                       " is not plausible !\n");
  EXPECT_EQ(header.GetTimeCorrectionQuality(),
            accepted ? TStnEventHeader::kAveragedPeriod : TStnEventHeader::kUnknownQuality);
  EXPECT_EQ(GetParameters(header) == (Parameters{123.0f, 45.0f}), !accepted);
}

INSTANTIATE_TEST_SUITE_P(
    All, TimeCorrectionRawLimits,
    ::testing::Values(
        RawCase{-128, 0, 80000000, 0, nullptr}, RawCase{127, 0, 80000000, 0, nullptr},
        RawCase{-129, 0, 80000000, 0, "value '-129' passed for 'start_offset'"},
        RawCase{128, 0, 80000000, 0, "value '128' passed for 'start_offset'"}, RawCase{0, -128, 80000000, 0, nullptr},
        RawCase{0, 127, 80000000, 0, nullptr}, RawCase{0, -129, 80000000, 0, "value '-129' passed for 'end_offset'"},
        RawCase{0, 128, 80000000, 0, "value '128' passed for 'end_offset'"}, RawCase{0, 0, 79200000, 0, nullptr},
        RawCase{0, 0, 80800000, 0, nullptr}, RawCase{0, 0, 79199999, 0, "value '79199999' passed for 'ticks_per_sec'"},
        RawCase{0, 0, 80800001, 0, "value '80800001' passed for 'ticks_per_sec'"},
        RawCase{0, 0, 0, 0, "value '0' passed for 'ticks_per_sec'"}, RawCase{0, 0, 80000000, 100, nullptr},
        RawCase{0, 0, 80000000, 101, "value '101' passed for 'phase'"},
        RawCase{0, 0, 80000000, 4294967295u, "value '4294967295' passed for 'phase'"}));

INSTANTIATE_TEST_SUITE_P(InOrder, TimeCorrectionRawLimits,
                         ::testing::Values(RawCase{200, 201, 202, 203, "value '200' passed for 'start_offset'"},
                                           RawCase{0, 201, 202, 203, "value '201' passed for 'end_offset'"},
                                           RawCase{0, 0, 202, 203, "value '202' passed for 'ticks_per_sec'"}));

TEST(TimeCorrectionRaw, TakesTheStartOfTheSecondOffTheCycleAndAddsItsEnd) {
  OpenHeader header;
  header.SetTimeCorrectionParameters(127, 0, 80000000, 0);
  EXPECT_EQ(GetParameters(header).fT10, 99.9999873f);
  header.SetTimeCorrectionParameters(0, 127, 80000000, 0);
  EXPECT_EQ(GetParameters(header).fT10, 100.0000127f);
}

TEST(TimeCorrectionRaw, KeepsTheOldMeasurementWhenItRefuses) {
  LogCapture log;
  OpenHeader header;
  header.SetTimeCorrectionParameters(5, 0, 80000000, 0);
  header.SetTimeCorrectionParameters(6, 0, 80000000, 101);
  header.ConvertTimeCorrectionParameters();
  EXPECT_EQ(GetParameters(header).fOffset, 5.0f);
}

TEST(TimeCorrectionRaw, IsConvertedWithoutTouchingTheQuality) {
  OpenHeader header;
  header.ConvertTimeCorrectionParameters();
  EXPECT_EQ(GetParameters(header), (Parameters{100.0f, 0.0f}));
  EXPECT_EQ(header.GetTimeCorrectionQuality(), TStnEventHeader::kCorrectionNotSet);
}

// ---- Derived parameters

TEST(TimeCorrectionDerived, TakesBoth) {
  const TStnEventHeader header = MakeHeader(100.5f, -3.5f);
  EXPECT_EQ(GetParameters(header), (Parameters{100.5f, -3.5f}));
  EXPECT_EQ(header.GetTimeCorrectionQuality(), TStnEventHeader::kAveragedPeriod);
}

TEST(TimeCorrectionDerived, HasAnOffsetOf0ByDefault) {
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(100.5f);
  EXPECT_EQ(GetParameters(header), (Parameters{100.5f, 0.0f}));
}

struct DerivedCase {
  Float_t fT10;
  Float_t fOffset;
  const char* fMessage;
};

void PrintTo(const DerivedCase& c, std::ostream* ostr) { *ostr << c.fT10 << ", " << c.fOffset; }

class TimeCorrectionDerivedLimits : public ::testing::TestWithParam<DerivedCase> {};

TEST_P(TimeCorrectionDerivedLimits, AreKept) {
  const DerivedCase& c = GetParam();
  OpenHeader header;
  header.SetTimeCorrectionParameters(123.0f, 45.0f);
  header.SetTimeCorrectionQuality(TStnEventHeader::kUnknownQuality);
  LogCapture log;
  header.SetTimeCorrectionParameters(c.fT10, c.fOffset);
  const bool accepted = !c.fMessage;
  EXPECT_EQ(log.Take(), accepted ? std::string()
                                 : "ERR:TStnEventHeader::SetTimeCorrectionParameters() - " + std::string(c.fMessage) +
                                       " is not plausible !\n");
  EXPECT_EQ(header.GetTimeCorrectionQuality(),
            accepted ? TStnEventHeader::kAveragedPeriod : TStnEventHeader::kUnknownQuality);
  EXPECT_EQ(GetParameters(header), accepted ? (Parameters{c.fT10, c.fOffset}) : (Parameters{123.0f, 45.0f}));
}

INSTANTIATE_TEST_SUITE_P(All, TimeCorrectionDerivedLimits,
                         ::testing::Values(DerivedCase{50.0f, 0, nullptr}, DerivedCase{150.0f, 0, nullptr},
                                           DerivedCase{49.5f, 0, "value '49.5' passed for 'T10'"},
                                           DerivedCase{150.5f, 0, "value '150.5' passed for 'T10'"},
                                           DerivedCase{100, -128.0f, nullptr}, DerivedCase{100, 227.0f, nullptr},
                                           DerivedCase{100, -128.5f, "value '-128.5' passed for 'offset'"},
                                           DerivedCase{100, 227.5f, "value '227.5' passed for 'offset'"},
                                           DerivedCase{1, 1000, "value '1' passed for 'T10'"}));

TEST(TimeCorrectionDerived, AcceptsWhatIsNoNumber) {
  LogCapture log;
  const Float_t nan = std::numeric_limits<Float_t>::quiet_NaN();
  const TStnEventHeader header = MakeHeader(nan, nan);
  EXPECT_EQ(log.Take(), "");
  EXPECT_TRUE(std::isnan(GetParameters(header).fT10));
  EXPECT_TRUE(std::isnan(GetParameters(header).fOffset));
}

TEST(TimeCorrectionDerived, KeepsTheMeasuredSecond) {
  OpenHeader header;
  header.SetTimeCorrectionParameters(5, 0, 80000000, 0);
  header.SetTimeCorrectionParameters(110.0f, 0.0f);
  header.ConvertTimeCorrectionParameters();
  EXPECT_EQ(GetParameters(header).fOffset, 5.0f);
}

TEST(TimeCorrectionDerivedDeathTest, IsNotGivenToNull) {
  const TStnEventHeader header;
  Float_t value = 0;
  EXPECT_DEATH((gSystem->ResetSignals(), header.GetTimeCorrectionParameters(nullptr, &value)),
               "void TStnEventHeader::GetTimeCorrectionParameters\\(Float_t ?\\*, Float_t ?\\*\\) const: "
               "Assertion `t10 != __null && offset != __null' failed");
  EXPECT_DEATH((gSystem->ResetSignals(), header.GetTimeCorrectionParameters(&value, nullptr)),
               "Assertion `t10 != __null && offset != __null' failed");
}

// ---- Is it set?

TEST(TimeCorrectionSet, IsFalseForANewHeader) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_FALSE(header.IsTimeCorrectionSet());
  EXPECT_EQ(log.Take(), "");
}

TEST(TimeCorrectionSet, WarnsForANewHeaderAtPrintLevel1) {
  PrintLevel level(1);
  LogCapture log;
  TStnEventHeader().IsTimeCorrectionSet();
  EXPECT_EQ(log.Take(), kNoRawParameters);
}

TEST(TimeCorrectionSet, IsTrueJustAbove50) {
  EXPECT_TRUE(MakeHeader(std::nextafter(50.0f, 51.0f), 0).IsTimeCorrectionSet());
}

TEST(TimeCorrectionSet, IsFalseAtExactly50) { EXPECT_FALSE(MakeHeader(50.0f, 0).IsTimeCorrectionSet()); }

TEST(TimeCorrectionSet, IsTrueAt150) { EXPECT_TRUE(MakeHeader(150.0f, 0).IsTimeCorrectionSet()); }

TEST(TimeCorrectionSet, IsFalseJustAbove150) {
  TStnEventHeader header;
  Member<Float_t>(header, "fT10Mhz") = std::nextafter(150.0f, 151.0f);  // as a file can hold it
  EXPECT_FALSE(header.IsTimeCorrectionSet());
}

TEST(TimeCorrectionSet, TakesTheMeasurementAbove150) {
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(0, 0, 80000000, 1);
  Member<Float_t>(header, "fT10Mhz") = std::nextafter(150.0f, 151.0f);
  EXPECT_TRUE(header.IsTimeCorrectionSet());
  EXPECT_EQ(GetParameters(header), (Parameters{100.0f, 1.0f}));
}

TEST(TimeCorrectionSet, HasNoUpperLimitForAMeasurement) {
  TStnEventHeader header;
  Member<UInt_t>(header, "fTicksPerSecond") = 40000000;
  EXPECT_TRUE(header.IsTimeCorrectionSet());
  EXPECT_EQ(GetParameters(header), (Parameters{200.0f, 0.0f}));
}

TEST(TimeCorrectionSet, IsFalseForAMeasurementOf50AndBelow) {
  for (const UInt_t ticks : {160000000, 160000001}) {
    TStnEventHeader header;
    Member<UInt_t>(header, "fTicksPerSecond") = ticks;
    EXPECT_FALSE(header.IsTimeCorrectionSet()) << ticks;
  }
}

TEST(TimeCorrectionSet, IsFalseForWhatIsNoNumber) {
  PrintLevel level(1);
  LogCapture log;
  EXPECT_FALSE(MakeHeader(std::numeric_limits<Float_t>::quiet_NaN(), 0).IsTimeCorrectionSet());
  EXPECT_EQ(log.Take(), "");
}

struct MeasurementCase {
  Short_t fStart;
  Short_t fEnd;
  UInt_t fTicks;
  UInt_t fPhase;
};

class TimeCorrectionSetFromMeasurement : public ::testing::TestWithParam<MeasurementCase> {};

TEST_P(TimeCorrectionSetFromMeasurement, OverwritesTheDerivedValues) {
  const MeasurementCase& c = GetParam();
  TStnEventHeader header, expected;
  header.SetTimeCorrectionParameters(c.fStart, c.fEnd, c.fTicks, c.fPhase);
  expected.SetTimeCorrectionParameters(c.fStart, c.fEnd, c.fTicks, c.fPhase);
  header.SetTimeCorrectionParameters(50.0f, 200.0f);
  EXPECT_TRUE(header.IsTimeCorrectionSet());
  EXPECT_EQ(GetParameters(header), GetParameters(expected));
}

TEST_P(TimeCorrectionSetFromMeasurement, SurvivesACopy) {
  const MeasurementCase& c = GetParam();
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(c.fStart, c.fEnd, c.fTicks, c.fPhase);
  header.SetTimeCorrectionParameters(50.0f, 0.0f);
  EXPECT_TRUE(TStnEventHeader(header).IsTimeCorrectionSet());
}

INSTANTIATE_TEST_SUITE_P(AnyOneValue, TimeCorrectionSetFromMeasurement,
                         ::testing::Values(MeasurementCase{1, 0, 80000000, 0}, MeasurementCase{0, 1, 80000000, 0},
                                           MeasurementCase{0, 0, 80000001, 0}, MeasurementCase{0, 0, 80000000, 1}));

TEST(TimeCorrectionSet, KeepsPlausibleDerivedValues) {
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(1, 0, 80000000, 0);
  header.SetTimeCorrectionParameters(110.0f, 0.0f);
  EXPECT_TRUE(header.IsTimeCorrectionSet());
  EXPECT_EQ(GetParameters(header), (Parameters{110.0f, 0.0f}));
}

TEST(TimeCorrectionSet, NeverChangesTheQuality) {
  OpenHeader header;
  header.SetTimeCorrectionParameters(1, 0, 80000000, 0);
  header.SetTimeCorrectionParameters(50.0f, 0.0f);
  header.SetTimeCorrectionQuality(TStnEventHeader::kCorrectionNotSet);
  EXPECT_TRUE(header.IsTimeCorrectionSet());
  EXPECT_EQ(header.GetTimeCorrectionQuality(), TStnEventHeader::kCorrectionNotSet);
}

// ---- The correction

TEST(TimeCorrection, TellsWhetherItWasApplied) {
  TStnEventHeader set = MakeHeader(100.0f, 0), not_set;
  UInt_t sec, nsec;
  EXPECT_TRUE(set.DoTimeCorrection(1, 2, &sec, &nsec));
  EXPECT_FALSE(not_set.DoTimeCorrection(1, 2, &sec, &nsec));
}

TEST(TimeCorrection, StretchesAndShifts) {
  TStnEventHeader header = MakeHeader(110.0f, 7.0f);
  EXPECT_EQ(Correct(header, 1000, 500), (GPSTime{1000, 557}));
}

TEST(TimeCorrection, CutsFractions) {
  TStnEventHeader header = MakeHeader(100.0f, 0.75f);
  EXPECT_EQ(Correct(header, 1000, 500), (GPSTime{1000, 500}));
  EXPECT_EQ(Correct(header, 1000, -500), (GPSTime{999, 999999500}));
}

TEST(TimeCorrection, MultipliesBeforeItDivides) {
  // 29 / 100 * 100 and 200 * (100.5 / 100) are a little less than they should be.
  TStnEventHeader nominal = MakeHeader(100.0f, 0.0f), slow = MakeHeader(100.5f, 0.0f);
  EXPECT_EQ(Correct(nominal, 1000, 29), (GPSTime{1000, 29}));
  EXPECT_EQ(Correct(slow, 1000, 200), (GPSTime{1000, 201}));
}

TEST(TimeCorrection, FoldsNegativeResults) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  EXPECT_EQ(Correct(header, 1000, -100), (GPSTime{999, 999999900}));
}

TEST(TimeCorrection, TakesANegativeCountThatTheOffsetMakesPositive) {
  TStnEventHeader header = MakeHeader(100.0f, 100.0f);
  EXPECT_EQ(Correct(header, 1000, -100), (GPSTime{1000, 0}));
}

TEST(TimeCorrection, DoesNotFoldTheEndOfTheSecond) {
  TStnEventHeader header = MakeHeader(100.0f, 50.0f);
  EXPECT_EQ(Correct(header, 1000, 999999999), (GPSTime{1000, 1000000049}));
}

TEST(TimeCorrection, FoldsOneSecondOnly) {
  TStnEventHeader header = MakeHeader(150.0f, 0.0f);
  EXPECT_EQ(Correct(header, 1000, -1000000000), (GPSTime{999, UInt_t(-500000000)}));
}

TEST(TimeCorrection, KeepsTheLow32BitsOfALargeResult) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  Member<Float_t>(header, "fOffset") = 4294968320.0f;  // 2^32 + 1024, as a file can hold it
  EXPECT_EQ(Correct(header, 1000, 5), (GPSTime{1000, 1029}));
}

TEST(TimeCorrection, Gives0NanosecondsForWhat64BitsCannotHold) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  Member<Float_t>(header, "fOffset") = 1e30f;
  EXPECT_EQ(Correct(header, 1000, 5), (GPSTime{1000, 0}));
  Member<Float_t>(header, "fOffset") = -1e30f;
  EXPECT_EQ(Correct(header, 1000, 5), (GPSTime{999, 0}));
}

TEST(TimeCorrection, Gives0NanosecondsForWhatIsNoNumber) {
  TStnEventHeader header = MakeHeader(100.0f, std::numeric_limits<Float_t>::quiet_NaN());
  EXPECT_EQ(Correct(header, 1000, 500), (GPSTime{1000, 0}));
}

TEST(TimeCorrection, PassesTimesThroughWithoutParameters) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(Correct(header, 1000, 999999999), (GPSTime{1000, 999999999}));
  EXPECT_EQ(Correct(header, 1000, 0), (GPSTime{1000, 0}));
  EXPECT_EQ(log.Take(), "");
}

TEST(TimeCorrection, FoldsNegativeCountsWithoutParameters) {
  TStnEventHeader header;
  EXPECT_EQ(Correct(header, 1000, -1), (GPSTime{999, 999999999}));
}

TEST(TimeCorrection, WarnsTwiceWithoutParametersAtPrintLevel1) {
  PrintLevel level(1);
  LogCapture log;
  TStnEventHeader header;
  Correct(header, 1, 2);
  EXPECT_EQ(log.Take(), std::string(kNoRawParameters) + kNotPossible);
}

TEST(TimeCorrectionDeathTest, IsNotGivenToNull) {
  TStnEventHeader header;
  UInt_t value = 0;
  EXPECT_DEATH((gSystem->ResetSignals(), header.DoTimeCorrection(1, 2, nullptr, &value)),
               "Bool_t TStnEventHeader::DoTimeCorrection\\(UInt_t, Int_t, UInt_t ?\\*, UInt_t ?\\*\\): "
               "Assertion `sec_out != __null && nsec_out != __null' failed");
  EXPECT_DEATH((gSystem->ResetSignals(), header.DoTimeCorrection(1, 2, &value, nullptr)),
               "Assertion `sec_out != __null && nsec_out != __null' failed");
}

// ---- Direct setters

TEST(TimeSetters, TakeGPSSecondsAndNanoseconds) {
  TStnEventHeader header;
  header.SetTimeStamp(1000000000, 5);
  header.SetT3TimeStamp(1000000001, 6);
  EXPECT_EQ(GetTime(header), (GPSTime{1000000000, 5}));
  EXPECT_EQ(ToGPS(header.GetT3TimeStamp()), (GPSTime{1000000001, 6}));
}

TEST(TimeSetters, CarryFullSeconds) {
  TStnEventHeader header;
  header.SetTimeStamp(1000000000, 1000000050);
  header.SetT3TimeStamp(1000000000, 2000000050);
  EXPECT_EQ(GetTime(header), (GPSTime{1000000001, 50}));
  EXPECT_EQ(ToGPS(header.GetT3TimeStamp()), (GPSTime{1000000002, 50}));
}

TEST(TimeSetters, TakeStamps) {
  TStnEventHeader header;
  header.SetTimeStamp(TTimeStamp(11, 12));
  header.SetT3TimeStamp(TTimeStamp(13, 14));
  EXPECT_EQ(header.GetTimeStamp()->GetSec(), 11);
  EXPECT_EQ(header.GetTimeStamp()->GetNanoSec(), 12);
  EXPECT_EQ(header.GetT3TimeStamp()->GetSec(), 13);
  EXPECT_EQ(header.GetT3TimeStamp()->GetNanoSec(), 14);
}

TEST(TimeSetters, TakePointersToStamps) {
  TStnEventHeader header;
  TTimeStamp time(11, 12), t3(13, 14);
  header.SetTimeStamp(&time);
  header.SetT3TimeStamp(&t3);
  EXPECT_EQ(header.GetTimeStamp()->GetSec(), 11);
  EXPECT_EQ(header.GetT3TimeStamp()->GetSec(), 13);
}

TEST(TimeSetters, SkipNull) {
  TStnEventHeader header;
  header.SetTimeStamp(1000, 1);
  header.SetT3TimeStamp(2000, 2);
  header.SetTimeStamp(static_cast<const TTimeStamp*>(nullptr));
  header.SetT3TimeStamp(static_cast<const TTimeStamp*>(nullptr));
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 1}));
  EXPECT_EQ(ToGPS(header.GetT3TimeStamp()), (GPSTime{2000, 2}));
}

TEST(TimeSetters, ApplyNoCorrection) {
  TStnEventHeader header = MakeHeader(110.0f, 7.0f);
  header.SetTimeStamp(1000, 500);
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 500}));
}

// ---- Event time and mirror offsets

TEST(AdjustMirrorTimes, CorrectsTheTimeOfTheOnlyMirror) {
  TStnEventHeader header = MakeHeader(110.0f, 7.0f);
  AddMirror(header, 4, 1000, 500);
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 557}));
  EXPECT_EQ(header.GetMirrorTimeOffset(4), 0u);
}

TEST(AdjustMirrorTimes, GivesTheOthersTheirOffsets) {
  TStnEventHeader header = MakeHeader(110.0f, 7.0f);
  AddMirror(header, 2, 1000, 500);
  AddMirror(header, 1, 1000, 700);
  AddMirror(header, 6, 1000, 600);
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 557}));
  EXPECT_EQ(header.GetMirrorTimeOffset(1), 220u);
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 0u);
  EXPECT_EQ(header.GetMirrorTimeOffset(6), 110u);
}

TEST(AdjustMirrorTimes, PassesOverMirrorsWithoutData) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  header.SetRawMirrorTime(1, TTimeStamp(TTimeStamp::FromGPS(900, 0)));
  header.SetMirrorPresent(1);
  AddMirror(header, 2, 1000, 500);
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 500}));
  EXPECT_EQ(header.GetMirrorTimeOffset(1), 0u);
}

TEST(AdjustMirrorTimes, PassesOverTheSpareBitsForMirrors) {
  TStnEventHeader header = MakeHeader(100.0f, 0);
  for (UInt_t id = 1; id <= 6; ++id) {
    AddMirror(header, id, 1000, 100 + id);
    header.SetTriggerTimeStamp(5, id);  // stands behind the raw times, and would be an early one
  }
  Member<UChar_t>(header, "fMirrorDataBits") = 0xff;
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 101}));
  for (UInt_t id = 1; id <= 6; ++id) {
    EXPECT_EQ(header.GetMirrorTimeOffset(id), id - 1);
    EXPECT_EQ(ToGPS(header.GetRawMirrorTimeStamp(id)), (GPSTime{1000, 100 + id}));
  }
}

TEST(AdjustMirrorTimes, CarriesACorrectedTimeIntoTheNextSecond) {
  TStnEventHeader header = MakeHeader(100.0f, 50.0f);
  AddMirror(header, 1, 1000, 999999999);
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1001, 49}));
}

TEST(AdjustMirrorTimes, FoldsAMirrorOfTheNextSecond) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  AddMirror(header, 1, 1000, 999999900);
  AddMirror(header, 2, 1001, 100);
  header.AdjustMirrorTimes();
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 200u);
}

TEST(AdjustMirrorTimes, DoesNotFoldBackWhenTheEventTimeIsCarriedOver) {
  TStnEventHeader header = MakeHeader(100.0f, 50.0f);
  AddMirror(header, 1, 1000, 999999980);
  AddMirror(header, 2, 1000, 999999990);
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1001, 30}));
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 1000000010u);
}

TEST(AdjustMirrorTimes, FoldsOneSecondOnly) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  AddMirror(header, 1, 1000, 0);
  AddMirror(header, 2, 1005, 100);
  header.AdjustMirrorTimes();
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 1000000100u);
}

TEST(AdjustMirrorTimes, GivesAnOffsetToAFirstMirrorThatIsNoLongerTheEarliest) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  AddMirror(header, 1, 1000, 500);
  header.AdjustMirrorTimes();
  AddMirror(header, 2, 1000, 200);
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 200}));
  EXPECT_EQ(header.GetMirrorTimeOffset(1), 300u);
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 0u);
}

TEST(AdjustMirrorTimes, KeepsTheOldOffsetOfTheEarliestMirror) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  AddMirror(header, 1, 1000, 100);
  AddMirror(header, 2, 1000, 500);
  header.AdjustMirrorTimes();
  AddMirror(header, 2, 1000, 50);
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 50}));
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 400u);
}

TEST(AdjustMirrorTimes, StaysWithTheLowerOfTwoEqualMirrors) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  AddMirror(header, 3, 1000, 100);
  AddMirror(header, 5, 1000, 500);
  AddMirror(header, 1, 1000, 0);
  header.AdjustMirrorTimes();
  AddMirror(header, 3, 1000, 700);
  AddMirror(header, 5, 1000, 700);
  AddMirror(header, 1, 1000, 900);
  header.AdjustMirrorTimes();
  EXPECT_EQ(header.GetMirrorTimeOffset(3), 100u) << "of the first call: it is the earliest now";
  EXPECT_EQ(header.GetMirrorTimeOffset(5), 0u) << "computed anew";
}

TEST(AdjustMirrorTimes, CanBeRepeated) {
  TStnEventHeader header = MakeHeader(110.0f, 7.0f);
  AddMirror(header, 1, 1000, 500);
  AddMirror(header, 2, 1000, 700);
  header.AdjustMirrorTimes();
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 557}));
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 220u);
}

TEST(AdjustMirrorTimes, UsesRawTimesWithoutParameters) {
  TStnEventHeader header;
  AddMirror(header, 1, 1000, 500);
  AddMirror(header, 2, 1000, 700);
  header.AdjustMirrorTimes();
  EXPECT_EQ(GetTime(header), (GPSTime{1000, 500}));
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 200u);
}

TEST(AdjustMirrorTimes, GivesTheLastSecondOfAllWithoutMirrors) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  header.AdjustMirrorTimes();
  EXPECT_EQ(header.GetTimeStamp()->GetSec(), 2147483647);
  EXPECT_EQ(header.GetTimeStamp()->GetNanoSec(), 0);
}

TEST(AdjustMirrorTimes, CountsMirror2AsTheEarliestWhenNoneIs) {
  TStnEventHeader header = MakeHeader(100.0f, 0.0f);
  for (UInt_t id : {1u, 2u, 3u}) {
    header.SetMirrorDataPresent(id);
    header.SetRawMirrorTime(id, TTimeStamp(2147483647, 300));
  }
  header.AdjustMirrorTimes();
  EXPECT_EQ(header.GetMirrorTimeOffset(1), 300u);
  EXPECT_EQ(header.GetMirrorTimeOffset(2), 0u);
  EXPECT_EQ(header.GetMirrorTimeOffset(3), 300u);
}

TEST(AdjustMirrorTimes, LeavesTheQualityAlone) {
  TStnEventHeader header;
  AddMirror(header, 1, 1000, 500);
  header.AdjustMirrorTimes();
  EXPECT_EQ(header.GetTimeCorrectionQuality(), TStnEventHeader::kCorrectionNotSet);
}

// ---- Bins of a trace

class FADCBinTime : public ::testing::Test {
 protected:
  FADCBinTime() : fHeader(MakeHeader(100.0f, 0.0f)) {
    fHeader.SetRawMirrorTime(3, TTimeStamp(TTimeStamp::FromGPS(1000, 500000)));
    SetMirror(3);
    fTrace.GetRecord()->fTraceInfo.fResolution = TFADCData::kFADC_RESOLUTION_1000_BINS;
  }
  void SetMirror(UInt_t id) { VdUtil::Vd::SetMirrorNo(fTrace.GetPixelNumber(), id); }
  GPSTime GetTimeOf(UInt_t bin) {
    return {fHeader.GetFADCBinTime(&fTrace, bin), fHeader.GetFADCBinNanoTime(&fTrace, bin)};
  }

  TStnEventHeader fHeader;
  TFADCData fTrace;
};

TEST_F(FADCBinTime, EndsAtTheRawTime) { EXPECT_EQ(GetTimeOf(999), (GPSTime{1000, 499900})); }

TEST_F(FADCBinTime, Steps100NsPerBin) {
  EXPECT_EQ(GetTimeOf(0), (GPSTime{1000, 400000}));
  EXPECT_EQ(GetTimeOf(1), (GPSTime{1000, 400100}));
}

TEST_F(FADCBinTime, HasTheBinsOfTheResolution) {
  fTrace.GetRecord()->fTraceInfo.fResolution = TFADCData::kFADC_RESOLUTION_4000_BINS;
  EXPECT_EQ(GetTimeOf(0), (GPSTime{1000, 100000}));
  EXPECT_EQ(GetTimeOf(3999), (GPSTime{1000, 499900}));
}

TEST_F(FADCBinTime, IsCorrected) {
  fHeader.SetTimeCorrectionParameters(110.0f, 7.0f);
  EXPECT_EQ(GetTimeOf(0), (GPSTime{1000, 440007}));
}

TEST_F(FADCBinTime, CanLieInTheSecondBefore) {
  fHeader.SetRawMirrorTime(3, TTimeStamp(TTimeStamp::FromGPS(1000, 50)));
  EXPECT_EQ(GetTimeOf(999), (GPSTime{999, 999999950}));
}

TEST_F(FADCBinTime, IsUncorrectedWithoutParameters) {
  TStnEventHeader header;
  header.SetRawMirrorTime(3, TTimeStamp(TTimeStamp::FromGPS(1000, 50)));
  EXPECT_EQ(header.GetFADCBinTime(&fTrace, 999), 999u);
  EXPECT_EQ(header.GetFADCBinNanoTime(&fTrace, 999), 999999950u);
}

TEST_F(FADCBinTime, NeedsNoDataBit) {
  EXPECT_FALSE(fHeader.IsMirrorDataPresent(3));
  EXPECT_EQ(fHeader.GetFADCBinTime(&fTrace, 0), 1000u);
}

TEST_F(FADCBinTime, OfTheTraceStartIsThatOfBin0) {
  EXPECT_EQ(fHeader.GetFADCTraceStartTime(&fTrace), 1000u);
  EXPECT_EQ(fHeader.GetFADCTraceStartNanoTime(&fTrace), 400000u);
}

TEST_F(FADCBinTime, IsRefusedOnePastTheLastBin) {
  LogCapture log;
  EXPECT_EQ(fHeader.GetFADCBinTime(&fTrace, 1000), 0u);
  EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::GetFADCBinTime() - the specified bin 1000 is not valid !\n");
}

TEST_F(FADCBinTime, IsRefusedOnePastTheLastBinForNanoseconds) {
  LogCapture log;
  EXPECT_EQ(fHeader.GetFADCBinNanoTime(&fTrace, 1000), 0u);
  EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::GetFADCBinNanoTime() - the specified bin 1000 is not valid !\n");
}

TEST_F(FADCBinTime, IsRefusedWithoutATrace) {
  LogCapture log;
  EXPECT_EQ(fHeader.GetFADCBinTime(nullptr, 0), 0u);
  EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::GetFADCBinTime() - the specified bin 0 is not valid !\n");
}

TEST_F(FADCBinTime, IsZeroForATraceOfNoMirror) {
  LogCapture log;
  for (UInt_t mirror : {0u, 7u}) {
    SetMirror(mirror);
    EXPECT_EQ(GetTimeOf(0), (GPSTime{0, 0})) << mirror;
  }
  EXPECT_EQ(log.Take(), "");
}

TEST_F(FADCBinTime, TakesTheTimeOfTheTracesMirror) {
  for (UInt_t mirror : {1u, 6u}) {
    fHeader.SetRawMirrorTime(mirror, TTimeStamp(TTimeStamp::FromGPS(2000 + mirror, 500000)));
    SetMirror(mirror);
    EXPECT_EQ(fHeader.GetFADCBinTime(&fTrace, 0), 2000 + mirror);
  }
}
