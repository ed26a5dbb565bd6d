#include <MrEvent/FadcData.h>

#include <MrEvent/MrTraceCode.h>

#include <LogCapture.h>
#include <RecordBuffers.h>

#include <gtest/gtest.h>

#include <TStreamerElement.h>
#include <TStreamerInfo.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <numeric>
#include <random>
#include <string>

namespace {

typedef TFADCData::_FADCDataRec Record;
constexpr UInt_t kN = TFADCData::kNFADCWords;

void SetBins(Record& record, UInt_t start, UInt_t end, UInt_t resolution = 1) {
  record.fTraceInfo.fStartBin = start;
  record.fTraceInfo.fEndBin = end;
  record.fTraceInfo.fResolution = resolution;
}

/// A trace as a mirror delivers it: pedestal with noise, a pulse, trigger flags.
TFADCData MakeTrace(UInt_t n = 1000) {
  TFADCData trace;
  Record& record = *trace.GetRecord();
  record.fPixelNumber.fPixelNumber = 0x35a7;
  record.fMonitor = {11, 22, 33, 4.5, -6.75};
  SetBins(record, 0, n - 1);
  record.fTraceStartTime = 1.25f;
  std::mt19937 random(1);
  std::normal_distribution<double> noise(180, 3.5);
  for (UInt_t bin = 0; bin < n; ++bin) {
    record.fFadcData[bin].fData = UInt_t(noise(random));
    if (bin / 60 == 5) record.fFadcData[bin].fWord += 300 | 0x8000;
  }
  return trace;
}

std::vector<UShort_t> Words(const TFADCData& trace) {
  std::vector<UShort_t> words(kN);
  std::memcpy(words.data(), trace.GetRecord()->fFadcData, 2 * kN);
  return words;
}

void ExpectSameRecord(const TFADCData& found, const TFADCData& expected) {
  const Record& f = *found.GetRecord();
  const Record& e = *expected.GetRecord();
  EXPECT_EQ(f.fPixelNumber.fPixelNumber, e.fPixelNumber.fPixelNumber);
  EXPECT_EQ(f.fMonitor.fPrevThreshold, e.fMonitor.fPrevThreshold);
  EXPECT_EQ(f.fMonitor.fActualThreshold, e.fMonitor.fActualThreshold);
  EXPECT_EQ(f.fMonitor.fActualRate, e.fMonitor.fActualRate);
  EXPECT_EQ(std::memcmp(&f.fMonitor.fMean, &e.fMonitor.fMean, 16), 0);
  EXPECT_EQ(f.fTraceInfo.fWord, e.fTraceInfo.fWord);
  EXPECT_EQ(std::memcmp(&f.fTraceStartTime, &e.fTraceStartTime, 4), 0);
  EXPECT_EQ(Words(found), Words(expected));
}

void ExpectComesBack(TFADCData& trace) {
  TFADCData back;
  const Bytes bytes = ToBytes(trace);
  LogCapture log;
  EXPECT_EQ(FromBytes(bytes, back), Int_t(bytes.size()));
  EXPECT_EQ(log.Take(), "");
  ExpectSameRecord(back, trace);
}

// Places in a record: frame (6 bytes), TObject (10), then the members.
constexpr size_t kVersionAt = 4;
constexpr size_t kObjectAt = 6;
constexpr size_t kFirstAt = 32;
constexpr size_t kNWordsAt = 34;
constexpr size_t kNNearAt = 36;
constexpr size_t kFirstHighAt = 40;
constexpr size_t kNHighAt = 42;
constexpr size_t kNWideAt = 46;
constexpr size_t kNFarAt = 50;
constexpr size_t kBaseAt = 78;
constexpr size_t kArraysAt = 80;
constexpr size_t kNArrays = 4;

/// A trace of equal words, but for those named.
TFADCData MakeQuietTrace(UInt_t n, const std::vector<std::pair<UInt_t, UShort_t>>& others = {}) {
  TFADCData trace;
  for (UInt_t bin = 0; bin < n; ++bin)
    trace.GetRecord()->fFadcData[bin].fWord = 180;
  for (const auto& [bin, word] : others)
    trace.GetRecord()->fFadcData[bin].fWord = word;
  return trace;
}

TEST(FadcData, NewTraceIsZeroWithDefaultResolution) {
  const TFADCData trace;
  EXPECT_EQ(trace.GetPixelNumber()->fPixelNumber, 0);
  EXPECT_EQ(trace.GetResolution(), TFADCData::kFADC_RESOLUTION_2000_BINS);
  EXPECT_EQ(trace.GetStartBin(), 0u);
  EXPECT_EQ(trace.GetEndBin(), 0u);
  EXPECT_EQ(trace.GetTraceStartTime(), 0.f);
  EXPECT_EQ(trace.GetRecord()->fMonitor.fMean, 0.);
  EXPECT_EQ(Words(trace), std::vector<UShort_t>(kN));
}

TEST(FadcData, RefersToAGivenRecordWithoutOwningIt) {
  Record record = Record();
  {
    TFADCData trace(&record);
    EXPECT_EQ(trace.GetRecord(), &record);
    EXPECT_EQ(trace.GetPixelNumber(), &record.fPixelNumber);
    VdUtil::Vd::SetStnNo(trace.GetPixelNumber(), 4);
  }
  EXPECT_EQ(record.fPixelNumber.fBits.fStnNo, 4u);
}

TEST(FadcData, NullRecordIsANewTrace) {
  TFADCData trace(nullptr);
  ASSERT_NE(trace.GetRecord(), nullptr);
  ExpectSameRecord(trace, TFADCData());
}

TEST(FadcData, CopyOwnsItsRecord) {
  Record record = *MakeTrace().GetRecord();
  TFADCData* source = new TFADCData(&record);
  TFADCData copy(*source);
  delete source;
  EXPECT_NE(copy.GetRecord(), &record);
  ExpectSameRecord(copy, TFADCData(&record));
}

TEST(FadcData, AssignmentIsDeep) {
  TFADCData target;
  {
    TFADCData source = MakeTrace();
    target = source;
    EXPECT_NE(target.GetRecord(), source.GetRecord());
  }
  ExpectSameRecord(target, MakeTrace());
}

TEST(FadcData, AssignmentKeepsTheObjectsOwnRecord) {
  Record record = Record();
  const TFADCData source(&record);
  TFADCData copy(source);
  TFADCData assigned(&record);
  assigned = copy;
  for (TFADCData* trace : {&copy, &assigned}) {
    const Record* own = trace->GetRecord();
    *trace = MakeTrace();
    EXPECT_EQ(trace->GetRecord(), own);
  }
}

TEST(FadcData, AssignmentLeavesARecordThatWasReferredTo) {
  Record record = Record();
  TFADCData target(&record);
  target = MakeTrace();
  EXPECT_EQ(record.fPixelNumber.fPixelNumber, 0);
  ExpectSameRecord(target, MakeTrace());
}

TEST(FadcData, AssignmentToItselfChangesNothing) {
  Record record = *MakeTrace().GetRecord();
  TFADCData trace(&record);
  TFADCData& same = trace;
  trace = same;
  EXPECT_EQ(trace.GetRecord(), &record);
  ExpectSameRecord(trace, MakeTrace());
}

TEST(FadcData, TraceLengthCountsBothEnds) {
  TFADCData trace;
  SetBins(*trace.GetRecord(), 100, 199);
  EXPECT_EQ(trace.GetTraceLength(), 100u);
  SetBins(*trace.GetRecord(), 5, 5);
  EXPECT_EQ(trace.GetTraceLength(), 1u);
  SetBins(*trace.GetRecord(), 0, 4095);
  EXPECT_EQ(trace.GetTraceLength(), 4096u);
}

TEST(FadcData, TraceLengthIsUnsignedBelowZero) {
  TFADCData trace;
  SetBins(*trace.GetRecord(), 6, 5);
  EXPECT_EQ(trace.GetTraceLength(), 0u);
  SetBins(*trace.GetRecord(), 4095, 0);
  EXPECT_EQ(trace.GetTraceLength(), 0u - 4094u);
}

TEST(FadcData, NumberOfBinsFollowsTheResolution) {
  EXPECT_EQ(TFADCData::GetNFADCBins(TFADCData::kFADC_RESOLUTION_1000_BINS), 1000u);
  EXPECT_EQ(TFADCData::GetNFADCBins(TFADCData::kFADC_RESOLUTION_2000_BINS), 2000u);
  EXPECT_EQ(TFADCData::GetNFADCBins(TFADCData::kFADC_RESOLUTION_4000_BINS), 4000u);
  EXPECT_EQ(TFADCData::GetNFADCBins(TFADCData::kFADC_DEFAULT_RESOLUTION), 2000u);
  TFADCData trace;
  for (UInt_t resolution = 0; resolution < 3; ++resolution) {
    trace.GetRecord()->fTraceInfo.fResolution = resolution;
    EXPECT_EQ(trace.GetNFADCBins(), 1000u << resolution);
  }
}

TEST(FadcData, ResolutionWithoutANameHasNoBins) {
  TFADCData trace;
  trace.GetRecord()->fTraceInfo.fResolution = 3;
  EXPECT_EQ(trace.GetNFADCBins(), 0u);
  EXPECT_EQ(TFADCData::GetNFADCBins(TFADCData::FADCTraceResolution(-1)), 0u);
}

TEST(FadcData, SampleHasNoFlagsAndIsZeroBeyondTheWords) {
  TFADCData trace;
  trace.GetRecord()->fFadcData[kN - 1].fWord = 0xf123;
  EXPECT_EQ(trace.GetSample(kN - 1), 0x123u);
  EXPECT_EQ(trace.GetSample(kN), 0u);
  EXPECT_EQ(trace.GetSample(4095), 0u);
}

TEST(FadcData, FieldsOfTheRecordStandInTheirOrder) {
  EXPECT_EQ(offsetof(Record, fPixelNumber), 0u);
  EXPECT_EQ(offsetof(Record, fMonitor), 8u);
  EXPECT_EQ(offsetof(Record, fTraceInfo), 40u);
  EXPECT_EQ(offsetof(Record, fTraceStartTime), 44u);
  EXPECT_EQ(offsetof(Record, fFadcData), 48u);
  EXPECT_EQ(sizeof(Record), 48u + 2 * 2000);

  typedef TFADCData::_PixelMonitorDataRec Monitor;
  EXPECT_EQ(offsetof(Monitor, fPrevThreshold), 0u);
  EXPECT_EQ(offsetof(Monitor, fActualThreshold), 4u);
  EXPECT_EQ(offsetof(Monitor, fActualRate), 8u);
  EXPECT_EQ(offsetof(Monitor, fMean), 16u);
  EXPECT_EQ(offsetof(Monitor, fVariance), 24u);
}

TEST(FadcData, BitFieldsStandWhereTheHardwarePutsThem) {
  TFADCData::_FADCTraceInfoRec info;
  info.fWord = 0;
  info.fStartBin = 0xabc;
  EXPECT_EQ(info.fWord, 0xabcu);
  info.fEndBin = 0xdef;
  EXPECT_EQ(info.fWord, 0xdefabcu);
  info.fResolution = 2;
  EXPECT_EQ(info.fWord, 0x2defabcu);
  EXPECT_EQ(info.fBits.fStartBin, 0xabcu);
  EXPECT_EQ(info.fBits.fEndBin, 0xdefu);
  EXPECT_EQ(info.fBits.fResolution, 2u);

  TFADCData::_FADCDataWordRec word;
  word.fWord = 0;
  word.fData = 0x123;
  EXPECT_EQ(word.fWord, 0x0123);
  word.fUnused1 = 1;
  EXPECT_EQ(word.fWord, 0x1123);
  word.fUnused2 = 1;
  EXPECT_EQ(word.fWord, 0x3123);
  word.fThresholdChanged = 1;
  EXPECT_EQ(word.fWord, 0x7123);
  word.fPixelTrigger = 1;
  EXPECT_EQ(word.fWord, 0xf123);
  EXPECT_EQ(word.fBits.fData, 0x123);
  word.fBits.fUnused1 = 0;
  EXPECT_EQ(word.fWord, 0xe123);
  word.fBits.fUnused2 = 0;
  EXPECT_EQ(word.fWord, 0xc123);
  word.fBits.fThresholdChanged = 0;
  EXPECT_EQ(word.fWord, 0x8123);
  word.fBits.fPixelTrigger = 0;
  EXPECT_EQ(word.fWord, 0x0123);
}

TEST(FadcData, ClearGivesANewTrace) {
  Record record = *MakeTrace().GetRecord();
  TFADCData trace(&record);
  trace.Clear();
  ExpectSameRecord(trace, TFADCData());
  EXPECT_EQ(record.fPixelNumber.fPixelNumber, 0x35a7);
}

TEST(FadcData, ShowsTheSamplesFromTheFirstToTheLastBin) {
  TFADCData trace;
  SetBins(*trace.GetRecord(), 3, 5);
  for (UInt_t bin = 2; bin <= 6; ++bin)
    trace.GetRecord()->fFadcData[bin].fWord = 100 + bin;
  std::ostringstream text;
  trace.Show(text);
  EXPECT_NE(text.str().find(" Samples                : 103 104 105\n"), std::string::npos) << text.str();
}

TEST(FadcData, ShowsAllValuesAndTheSamplesOfTheTrace) {
  TFADCData trace;
  Record& record = *trace.GetRecord();
  VdUtil::Vd::SetStnNo(&record.fPixelNumber, 2);
  VdUtil::Vd::SetMirrorNo(&record.fPixelNumber, 3);
  VdUtil::Vd::SetPixelNo(&record.fPixelNumber, 40);
  record.fMonitor = {7, 8, 9, 1.5, 2.5};
  record.fTraceStartTime = 0.5f;
  SetBins(record, 1998, 2001);
  record.fFadcData[1998].fWord = 0x8064;
  record.fFadcData[1999].fWord = 101;
  std::ostringstream text;
  trace.Show(text);
  EXPECT_EQ(text.str(),
            "--- TFADCData ---\n"
            " Station, mirror, pixel : 2, 3, 40\n"
            " Bins                   : 1998 to 2001 of 2000\n"
            " Start time             : 0.5\n"
            " Previous threshold     : 7\n"
            " Actual threshold       : 8\n"
            " Actual rate            : 9\n"
            " Mean, variance         : 1.5, 2.5\n"
            " Samples                : 100 101\n"
            "--------------------\n");
}

TEST(FadcDataOnFile, TraceOfAMirrorComesBack) {
  TFADCData trace = MakeTrace();
  ExpectComesBack(trace);
}

TEST(FadcDataOnFile, NewTraceComesBack) {
  TFADCData trace;
  ExpectComesBack(trace);
}

TEST(FadcDataOnFile, SpecialFloatsComeBackToTheBit) {
  TFADCData trace = MakeTrace();
  trace.GetRecord()->fMonitor.fMean = std::nan("7");
  trace.GetRecord()->fMonitor.fVariance = -0.;
  trace.GetRecord()->fTraceStartTime = -INFINITY;
  ExpectComesBack(trace);
}

TEST(FadcDataOnFile, WordsComeBackWhateverBinsAreNamed) {
  const UInt_t bins[][2] = {{0, 999},     {0, 1999},    {100, 199},   {199, 100},
                            {1999, 2000}, {2000, 4095}, {4095, 4095}, {0, 0}};
  for (const auto& range : bins) {
    TFADCData trace = MakeTrace(2000);
    SetBins(*trace.GetRecord(), range[0], range[1], 3);
    ExpectComesBack(trace);
  }
}

TEST(FadcDataOnFile, SingleWordComesBackFromEveryBin) {
  for (UInt_t bin = 0; bin < kN; bin += 111) {
    TFADCData trace;
    trace.GetRecord()->fFadcData[bin].fWord = 0xffff;
    ExpectComesBack(trace);
  }
  TFADCData last;
  last.GetRecord()->fFadcData[kN - 1].fWord = 1;
  ExpectComesBack(last);
}

TEST(FadcDataOnFile, EqualWordsComeBack) {
  for (UInt_t word : {0x0001u, 0x003fu, 0x0fffu, 0x7fffu, 0x8000u, 0xffc0u, 0xffffu}) {
    TFADCData trace;
    for (auto& w : trace.GetRecord()->fFadcData)
      w.fWord = word;
    ExpectComesBack(trace);
  }
}

TEST(FadcDataOnFile, RandomWordsComeBack) {
  std::mt19937 random(5);
  for (UInt_t mask : {0xffffu, 0x0fffu, 0x00ffu, 0x8001u}) {
    TFADCData trace;
    trace.GetRecord()->fTraceInfo.fWord = random();
    for (auto& word : trace.GetRecord()->fFadcData)
      word.fWord = random() & mask;
    ExpectComesBack(trace);
  }
}

TEST(FadcDataOnFile, EveryWordComesBackBesideEveryLevel) {
  for (UInt_t level : {0u, 1u, 30u, 57u, 64u, 180u, 0x0fffu, 0x8000u, 0xffffu})
    for (UInt_t from = 0; from < 0x10000; from += kN / 4) {
      TFADCData trace;
      for (UInt_t bin = 0; bin < kN; ++bin)
        trace.GetRecord()->fFadcData[bin].fWord = bin % 4 == 0 ? from + bin / 4 : level;
      TFADCData back;
      FromBytes(ToBytes(trace), back);
      ASSERT_EQ(Words(back), Words(trace)) << level << ", " << from;
    }
}

TEST(FadcDataOnFile, NoiseOfAnyWidthComesBackFromAnyRangeOfBins) {
  std::mt19937 random(11);
  for (double width : {0.3, 3.5, 7., 12., 25., 100., 1000.})
    for (int i = 0; i < 50; ++i) {
      std::normal_distribution<double> noise(2000, width);
      TFADCData trace;
      const UInt_t first = random() % kN;
      const UInt_t last = first + random() % (kN - first + 1);
      for (UInt_t bin = first; bin < last; ++bin)
        trace.GetRecord()->fFadcData[bin].fWord = UShort_t(Int_t(noise(random)));
      ExpectComesBack(trace);
    }
}

TEST(FadcDataOnFile, ZeroWordsOutsideTheTraceCostNothing) {
  TFADCData empty;
  EXPECT_EQ(ToBytes(empty).size(), kArraysAt + kNArrays);
  TFADCData trace;
  for (UInt_t bin = 500; bin < 1500; ++bin)
    trace.GetRecord()->fFadcData[bin].fWord = 180 + bin % 7;
  EXPECT_EQ(ToBytes(trace).size(), kArraysAt + kNArrays + 500);
}

TEST(FadcDataOnFile, WordsNearTheLevelTakeHalfAByte) {
  for (UShort_t word : {173, 187}) {
    TFADCData trace = MakeQuietTrace(1000, {{7, word}});
    EXPECT_EQ(ToBytes(trace).size(), kArraysAt + kNArrays + 500);
  }
}

TEST(FadcDataOnFile, LastOfAnOddNumberOfWordsTakesHalfAByteToo) {
  for (UShort_t word : {173, 187}) {
    TFADCData trace = MakeQuietTrace(999, {{998, word}});
    EXPECT_EQ(ToBytes(trace).size(), kArraysAt + kNArrays + 500);
  }
}

TEST(FadcDataOnFile, WordsFarFromTheLevelTakeOneByteWithTheHalfThatSaysSo) {
  for (UShort_t word : {166, 172, 188, 195}) {
    TFADCData trace = MakeQuietTrace(1000, {{7, word}, {500, word}, {999, word}});
    EXPECT_EQ(ToBytes(trace).size(), kArraysAt + kNArrays + 500 + 2);
  }
}

TEST(FadcDataOnFile, WordsOfAPulseTakeAByteOrTwoMore) {
  TFADCData low = MakeQuietTrace(1000, {{7, 165}, {8, 196}});
  EXPECT_EQ(ToBytes(low).size(), kArraysAt + kNArrays + 500 + 1 + 2);
  TFADCData high = MakeQuietTrace(1000, {{7, 165}, {8, 1000}, {9, 196}, {10, 0x8000 + 180}});
  EXPECT_EQ(ToBytes(high).size(), kArraysAt + kNArrays + 500 + 2 + 4 + 3);
  TFADCData fading = MakeQuietTrace(1000, {{7, 1000}, {8, 165}, {9, 165}});
  EXPECT_EQ(ToBytes(fading).size(), kArraysAt + kNArrays + 500 + 2 + 3 + 1);
}

TEST(FadcDataOnFile, WordsThatLieApartTakeWholeBytes) {
  TFADCData trace;
  for (UInt_t bin = 0; bin < 1000; ++bin)
    trace.GetRecord()->fFadcData[bin].fWord = 165 + bin * 89 % 125;
  const Bytes bytes = ToBytes(trace);
  EXPECT_EQ(bytes.size(), kArraysAt + kNArrays + 1000);
  ExpectComesBack(trace);
}

TEST(FadcDataOnFile, AnyTraceTakesAtMostTwoBytesAWord) {
  std::mt19937 random(9);
  TFADCData trace;
  for (auto& word : trace.GetRecord()->fFadcData)
    word.fWord = random();
  EXPECT_LE(ToBytes(trace).size(), kArraysAt + kNArrays + 2 * kN);
}

// The level, from which the differences on file count: files grow when it is another one, but come back all the same

/// Of 27 words all over the trace the median of the medians of the medians of three neighbours.
UShort_t TypicalWord(const std::vector<UShort_t>& words, size_t first = 0, size_t n = 27) {
  if (n == 1) return words[first * words.size() / 27];
  std::vector<UShort_t> three;
  for (size_t part = 0; part < 3; ++part)
    three.push_back(TypicalWord(words, first + part * n / 3, n / 3));
  std::sort(three.begin(), three.end());
  return three[1];
}

/// The mean of the words that differ by 32 at most from the typical one, rounded.
UShort_t Level(const std::vector<UShort_t>& words) {
  const UShort_t typical = TypicalWord(words);
  std::vector<Short_t> differences;
  for (UShort_t word : words)
    if (std::abs(Short_t(word - typical)) <= 32) differences.push_back(word - typical);
  const double sum = std::accumulate(differences.begin(), differences.end(), 0.);
  return typical + Int_t(std::floor(sum / differences.size() + 0.5));
}

/// Noise with some words far above it; none is 0.
std::vector<UShort_t> MakeNoise(UInt_t n, std::mt19937& random) {
  const UInt_t level = 100 + random() % 60000;
  const UInt_t width = 1 + random() % 100;
  std::vector<UShort_t> words(n);
  for (UShort_t& word : words)
    word = level + random() % width + (random() % 5 == 0 ? random() % 500 : 0);
  return words;
}

TEST(FadcDataOnFile, BaseLies64BelowTheMeanOfTheWordsNearATypicalOne) {
  std::mt19937 random(3);
  MrTraceCode::Room room;
  for (UInt_t i = 0; i < 3000; ++i) {
    const std::vector<UShort_t> words = MakeNoise(1 + random() % (i % 10 == 0 ? kN : 60), random);
    std::vector<UShort_t> all(kN);
    std::copy(words.begin(), words.end(), all.begin() + random() % (kN - words.size() + 1));
    MrTraceCode code;
    code.Encode(all.data(), room);
    ASSERT_EQ(code.fBase, UShort_t(Level(words) - 64)) << i;
  }
}

TEST(FadcDataOnFile, BaseIsThatOfManyWordsAboveATypicalOneToo) {
  UShort_t words[kN];
  for (UInt_t bin = 0; bin < kN; ++bin)
    words[bin] = bin % 5 < 3 ? 500 : 530;
  MrTraceCode::Room room;
  MrTraceCode code;
  code.Encode(words, room);
  EXPECT_EQ(code.fBase, 512 - 64);
}

TEST(FadcDataOnFile, ReadingLeavesARecordThatWasReferredTo) {
  TFADCData trace = MakeTrace();
  Record record = Record();
  TFADCData back(&record);
  FromBytes(ToBytes(trace), back);
  EXPECT_EQ(record.fPixelNumber.fPixelNumber, 0);
  ExpectSameRecord(back, trace);
}

TEST(FadcDataOnFile, ReadingLeavesTheBufferBehindTheRecord) {
  TFADCData trace = MakeTrace();
  const Bytes bytes = ToBytes(trace);
  TFADCData back;
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
}

TEST(FadcDataOnFile, ObjectComesBackThroughAFile) {
  TFADCData trace = MakeTrace();
  trace.SetUniqueID(77);
  const auto back = ThroughFile(trace);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->GetUniqueID(), 77u);
  ExpectSameRecord(*back, trace);
}

TEST(FadcDataOnFile, ReferencedObjectComesBack) {
  TFADCData trace = MakeTrace();
  trace.SetBit(TObject::kIsReferenced);
  const auto back = ThroughFile(trace);
  ASSERT_TRUE(back);
  ExpectSameRecord(*back, trace);
}

TEST(FadcDataOnFile, FileDescribesTheWholeForm) {
  const char* const members[][2] = {{"TObject", "BASE"},
                                    {"fTraceInfo", "unsigned int"},
                                    {"fVariance", "double"},
                                    {"fTraceStartTime", "float"},
                                    {"fFirst", "unsigned short"},
                                    {"fNWords", "unsigned short"},
                                    {"fNNear", "int"},
                                    {"fFirstWideHigh", "unsigned short"},
                                    {"fNWideHigh", "int"},
                                    {"fNWide", "int"},
                                    {"fNFar", "int"},
                                    {"fPixelWord", "unsigned int"},
                                    {"fPrevThreshold", "unsigned int"},
                                    {"fActualThreshold", "unsigned int"},
                                    {"fActualRate", "unsigned int"},
                                    {"fMean", "double"},
                                    {"fBase", "unsigned short"},
                                    {"fWideHigh", "unsigned char*"},
                                    {"fWideLow", "unsigned char*"},
                                    {"fFar", "unsigned char*"},
                                    {"fNear", "unsigned char*"}};
  TFADCData trace = MakeTrace();
  TMemFile file("described.root", "RECREATE");
  file.WriteTObject(&trace, "trace");
  file.WriteStreamerInfo();
  std::unique_ptr<TList> infos(file.GetStreamerInfoList());
  infos->SetOwner();
  auto* info = static_cast<TStreamerInfo*>(infos->FindObject("TFADCData"));
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetClassVersion(), 2);
  ASSERT_EQ(info->GetElements()->GetEntriesFast(), Int_t(std::size(members)));
  for (Int_t i = 0; i < info->GetElements()->GetEntriesFast(); ++i) {
    auto* element = static_cast<TStreamerElement*>(info->GetElements()->At(i));
    EXPECT_STREQ(element->GetName(), members[i][0]);
    EXPECT_STREQ(element->GetTypeName(), members[i][1]);
  }
}

TEST(FadcDataOnFile, LaterVersionIsReadByItsDescription) {
  const Version_t later = DescribeNextVersion(TFADCData::Class());
  TFADCData trace = MakeTrace();
  Bytes bytes = ToBytes(trace);
  Put(bytes, kVersionAt, later, 2);
  TFADCData back;
  LogCapture log;
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
  EXPECT_EQ(log.Take(), "");
  ExpectSameRecord(back, trace);
}

TEST(FadcDataOnFile, ReadingALaterVersionLeavesARecordThatWasReferredTo) {
  const Version_t later = DescribeNextVersion(TFADCData::Class());
  TFADCData trace = MakeTrace();
  Bytes bytes = ToBytes(trace);
  Put(bytes, kVersionAt, later, 2);
  Record record = Record();
  TFADCData back(&record);
  FromBytes(bytes, back);
  EXPECT_EQ(record.fPixelNumber.fPixelNumber, 0);
  ExpectSameRecord(back, trace);
}

TEST(FadcDataOnFile, LaterVersionWithoutSamplesIsReadByItsDescription) {
  const Version_t later = DescribeNextVersion(TFADCData::Class());
  TFADCData empty;
  TFADCData quiet;
  quiet.GetRecord()->fFadcData[3].fWord = 1;
  for (TFADCData* trace : {&empty, &quiet}) {
    Bytes bytes = ToBytes(*trace);
    Put(bytes, kVersionAt, later, 2);
    TFADCData back = MakeTrace();
    FromBytes(bytes, back);
    ExpectSameRecord(back, *trace);
  }
}

TEST(FadcDataOnFile, TraceWithoutSamplesHasBaseZero) {
  TFADCData empty;
  const Bytes bytes = ToBytes(empty);
  EXPECT_EQ(bytes[kBaseAt], 0);
  EXPECT_EQ(bytes[kBaseAt + 1], 0);
}

/// A damaged record: what is reported, the object unchanged, and the buffer at the record's end.
void ExpectRefused(const Bytes& bytes, size_t end, const std::string& message) {
  TFADCData back = MakeTrace(10);
  LogCapture log;
  EXPECT_EQ(FromBytes(bytes, back), Int_t(end));
  EXPECT_EQ(log.Take(), "ERR:TFADCData::Streamer() - " + message + ", record skipped\n");
  ExpectSameRecord(back, MakeTrace(10));
}

void ExpectRefused(size_t offset, UInt_t value, size_t size, const std::string& message) {
  TFADCData trace = MakeTrace();
  Bytes bytes = ToBytes(trace);
  const size_t end = bytes.size();
  Put(bytes, offset, value, size);
  ExpectRefused(Followed(bytes), end, message);
}

TEST(FadcDataDamaged, CountBeyondTheWordsIsRefused) {
  ExpectRefused(kNWordsAt, 2001, 2, "fNWords: found 2001, expected 0 to 2000");
  ExpectRefused(kNNearAt, 501, 4, "fNNear: found 501, expected 0 or 500");
  ExpectRefused(kNFarAt, 501, 4, "fNFar: found 501, expected 0 to 500");
  ExpectRefused(kNWideAt, 1001, 4, "fNWide: found 1001, expected 0 to 1000");
  ExpectRefused(kNHighAt, 61, 4, "fNWideHigh: found 61, expected 0 to 60");
}

TEST(FadcDataDamaged, NegativeCountIsRefused) {
  ExpectRefused(kNNearAt, 0xffffffff, 4, "fNNear: found -1, expected 0 or 500");
  ExpectRefused(kNFarAt, 0xffffffff, 4, "fNFar: found -1, expected 0 to 500");
  ExpectRefused(kNWideAt, 0x80000000, 4, "fNWide: found -2147483648, expected 0 to 1000");
  ExpectRefused(kNHighAt, 0xffffffff, 4, "fNWideHigh: found -1, expected 0 to 60");
}

TEST(FadcDataDamaged, RangeBeyondTheWordsIsRefused) {
  ExpectRefused(kFirstAt, 1001, 2, "fNWords: found 1000, expected 0 to 999");
  ExpectRefused(kFirstAt, 65535, 2, "fNWords: found 1000, expected 0 to -63535");
  ExpectRefused(kFirstHighAt, 1, 2, "fNWideHigh: found 60, expected 0 to 59");
}

TEST(FadcDataDamaged, CountBeyondTheRecordIsRefused) {
  TFADCData trace = MakeQuietTrace(1000);
  Bytes bytes = ToBytes(trace);
  Put(bytes, kNWordsAt, 1002, 2);
  Put(bytes, kNNearAt, 501, 4);
  ExpectRefused(Followed(bytes), bytes.size(), "fNear: found 501, expected at least 502 bytes");
}

TEST(FadcDataDamaged, CountBelowTheArrayIsRefused) {
  TFADCData trace = MakeQuietTrace(1000);
  Bytes bytes = ToBytes(trace);
  Put(bytes, kNWordsAt, 998, 2);
  Put(bytes, kNNearAt, 499, 4);
  ExpectRefused(Followed(bytes), bytes.size(), "bytes at the end of record: found 1, expected 0");
}

TEST(FadcDataDamaged, MissingArrayIsRefused) {
  TFADCData trace = MakeTrace();
  const Bytes bytes = ToBytes(trace);
  const auto get_size = [&bytes](size_t at) { return 1 + 256 * UChar_t(bytes[at + 2]) + UChar_t(bytes[at + 3]); };
  const size_t low_at = kArraysAt + get_size(kNHighAt);
  const size_t far_at = low_at + get_size(kNWideAt);
  ExpectRefused(kArraysAt, 0, 1, "fWideHigh: found 0, expected 1");
  ExpectRefused(low_at, 0, 1, "fWideLow: found 0, expected 1");
  ExpectRefused(far_at, 0, 1, "fFar: found 0, expected 1");
  ExpectRefused(far_at + get_size(kNFarAt), 0, 1, "fNear: found 0, expected 1");
  ExpectRefused(kNHighAt, 0, 4, "fWideHigh: found 1, expected 0");
}

/// Damage to the last bytes of a record, whose arrays have the sizes that belong to the others.
void ExpectEndRefused(TFADCData trace, size_t from_end, UInt_t value, const std::string& message) {
  Bytes bytes = ToBytes(trace);
  Put(bytes, bytes.size() - from_end, value, 1);
  ExpectRefused(Followed(bytes), bytes.size(), message);
}

TEST(FadcDataDamaged, NearWordWithoutItsFarHalfIsRefused) {
  ExpectEndRefused(MakeQuietTrace(1000), 1, 0xff, "fNFar: found 0, expected 1");
  ExpectEndRefused(MakeQuietTrace(1000), 500, 0xf7, "fNFar: found 0, expected 1");
  ExpectEndRefused(MakeQuietTrace(1000, {{999, 190}}), 1, 0x77, "fNFar: found 1, expected 0");
}

TEST(FadcDataDamaged, FarWordWithoutItsBytesIsRefused) {
  // The far byte stands before the array of 500 near bytes and the byte that tells of it.
  ExpectEndRefused(MakeQuietTrace(1000, {{999, 190}}), 502, 0x0f, "fNWide: found 0, expected 1");
  ExpectEndRefused(MakeQuietTrace(1000, {{999, 1900}}), 502, 0x0e, "fNWide: found 1, expected 0");
}

TEST(FadcDataDamaged, HalfByteBehindTheLastWordIsRefused) {
  ExpectEndRefused(MakeQuietTrace(999), 1, 0xf7, "fNear: found 247, expected 0 to 15");
  ExpectEndRefused(MakeQuietTrace(999), 1, 0x10, "fNear: found 16, expected 0 to 15");
  ExpectEndRefused(MakeQuietTrace(1000, {{999, 190}}), 502, 0xf9, "fFar: found 249, expected 0 to 15");
}

TEST(FadcDataDamaged, WideWordsAloneAreAsManyAsTheWords) {
  TFADCData trace = MakeQuietTrace(2);
  Bytes bytes = ToBytes(trace);
  Put(bytes, kNNearAt, 0, 4);
  bytes.pop_back();
  bytes.back() = 0;
  Put(bytes, 0, 0x40000000 | (bytes.size() - 4), 4);
  ExpectRefused(Followed(bytes), bytes.size(), "fNWide: found 0, expected 2");
}

TEST(FadcDataDamaged, VersionWithoutADescriptionIsRefused) {
  for (UInt_t version : {0u, 7u, 0x3fffu})
    ExpectRefused(kVersionAt, version, 2,
                  "version: found " + std::to_string(version) + ", expected 1 to 2, or one that the file describes");
}

TEST(FadcDataDamaged, ByteCountThatTheBufferLacksIsRefused) {
  TFADCData trace = MakeTrace();
  Bytes bytes = ToBytes(trace);
  Put(bytes, 0, 0x40000000 | bytes.size(), 4);
  ExpectRefused(
      bytes, bytes.size(),
      "byte count: found " + std::to_string(bytes.size()) + ", expected 2 to " + std::to_string(bytes.size() - 4));
}

TEST(FadcDataDamaged, ByteCountBelowTheFrameIsRefused) {
  TFADCData trace;
  Bytes bytes = ToBytes(trace);
  Put(bytes, 0, 0x40000001, 4);
  ExpectRefused(bytes, bytes.size(), "byte count: found 1, expected 2 to " + std::to_string(bytes.size() - 4));
}

TEST(FadcDataDamaged, MissingByteCountIsRefused) {
  TFADCData trace;
  Bytes bytes = ToBytes(trace);
  bytes.erase(bytes.begin(), bytes.begin() + 4);
  ExpectRefused(bytes, bytes.size(), "byte count: found 0, expected 2 to " + std::to_string(bytes.size() - 4));
}

TEST(FadcDataDamaged, ObjectPartOfAnotherSizeIsRefused) {
  ExpectRefused(kObjectAt, 0x40, 1, "version of TObject: found 16385, expected below 256");
}

TEST(FadcDataDamaged, RecordThatEndsInItsObjectIsRefused) {
  TFADCData trace = MakeTrace(50);
  const Bytes whole = ToBytes(trace);
  Bytes referenced = whole;
  referenced[kObjectAt + 9] |= TObject::kIsReferenced;
  const auto expect_refused = [](const Bytes& bytes, size_t size, const char* message) {
    ExpectRefused(Shortened(bytes, size), size, message);
  };
  expect_refused(whole, 9, "frame: found 9, expected at least 10 bytes");
  expect_refused(whole, 10, "TObject: found 4, expected at least 10 bytes");
  expect_refused(whole, 15, "TObject: found 9, expected at least 10 bytes");
  expect_refused(whole, 16, "end of record: found 0, expected at least 64 bytes");
  expect_refused(referenced, 16, "TObject: found 10, expected at least 12 bytes");
  expect_refused(referenced, 17, "TObject: found 11, expected at least 12 bytes");
}

TEST(FadcDataDamaged, ByteCountThatTheBufferLacksBehindAnotherRecordIsRefused) {
  TFADCData trace = MakeTrace(50);
  Bytes bytes = ToBytes(trace);
  const size_t size = bytes.size();
  Put(bytes, 0, 0x40000000 | (size - 3), 4);
  bytes.insert(bytes.begin(), 20, 'x');
  GuardedBytes memory(bytes);
  TBufferFile b(TBuffer::kRead, bytes.size(), memory.Data(), kFALSE);
  b.SetBufferOffset(20);
  TFADCData back;
  LogCapture log;
  back.Streamer(b);
  EXPECT_EQ(log.Take(), "ERR:TFADCData::Streamer() - byte count: found " + std::to_string(size - 3) +
                            ", expected 2 to " + std::to_string(size - 4) + ", record skipped\n");
}

TEST(FadcDataDamaged, ShortRecordIsRefused) {
  TFADCData made = MakeTrace(50);
  const Bytes whole = ToBytes(made);
  for (size_t size = 0; size < whole.size(); ++size) {
    TFADCData back;
    LogCapture log;
    EXPECT_EQ(FromBytes(Shortened(whole, size), back), Int_t(size));
    EXPECT_NE(log.Take(), "");
    ExpectSameRecord(back, TFADCData());
  }
}

TEST(FadcDataDamaged, RecordCutAnywhereIsRefused) {
  TFADCData trace = MakeTrace(50);
  const Bytes whole = ToBytes(trace);
  for (size_t size = 0; size < whole.size(); ++size) {
    TFADCData back;
    LogCapture log;
    EXPECT_EQ(FromBytes(Bytes(whole.begin(), whole.begin() + size), back), Int_t(size));
    EXPECT_NE(log.Take(), "");
    ExpectSameRecord(back, TFADCData());
  }
}

TEST(FadcDataDamaged, ShortRecordInALongBufferIsRefused) {
  TFADCData trace = MakeTrace(50);
  const Bytes whole = ToBytes(trace);
  for (size_t end = 6; end < whole.size(); ++end) {
    Bytes bytes = Followed(whole);
    Put(bytes, 0, 0x40000000 | (end - 4), 4);
    TFADCData back;
    LogCapture log;
    EXPECT_EQ(FromBytes(bytes, back), Int_t(end));
    EXPECT_NE(log.Take(), "");
    ExpectSameRecord(back, TFADCData());
  }
}

TEST(FadcDataDamaged, AnyDamagedByteLeavesTheBufferInside) {
  TFADCData trace = MakeTrace(50);
  const Bytes whole = ToBytes(trace);
  std::mt19937 random(3);
  LogCapture log;
  for (size_t at = 0; at < whole.size(); ++at)
    for (int i = 0; i < 8; ++i) {
      // References of a TObject are looked up in the file, and there is none.
      if (at == kObjectAt + 9) continue;
      Bytes bytes = whole;
      bytes[at] ^= 1 << i;
      TFADCData back;
      EXPECT_LE(FromBytes(bytes, back), Int_t(whole.size()));
    }
}

TEST(FadcDataDamaged, LaterVersionIsCheckedToo) {
  const Version_t later = DescribeNextVersion(TFADCData::Class());
  TFADCData trace = MakeTrace();
  Bytes bytes = ToBytes(trace);
  Put(bytes, kVersionAt, later, 2);
  const size_t end = bytes.size();
  Put(bytes, kFirstAt, 1001, 2);
  ExpectRefused(Followed(bytes), end, "fNWords: found 1000, expected 0 to 999");
  Put(bytes, kFirstAt, 0, 2);
  Put(bytes, kFirstHighAt, 1, 2);
  ExpectRefused(Followed(bytes), end, "fNWideHigh: found 60, expected 0 to 59");
  Put(bytes, kFirstHighAt, 0, 2);
  Put(bytes, end - 1, 0xff, 1);
  ExpectRefused(Followed(bytes), end,
                "fNFar: found " + std::to_string(UChar_t(bytes[kNFarAt + 3])) + ", expected " +
                    std::to_string(UChar_t(bytes[kNFarAt + 3]) + 1));
}

TEST(FadcDataDamaged, LaterVersionWithoutItsArraysIsRefused) {
  const Version_t later = DescribeNextVersion(TFADCData::Class());
  TFADCData trace = MakeQuietTrace(10);
  Bytes bytes = ToBytes(trace);
  Put(bytes, kVersionAt, later, 2);
  Put(bytes, kArraysAt + kNArrays - 1, 0, 1);
  ExpectRefused(Followed(bytes), bytes.size(), "fNear: found 0, expected 1");

  trace = MakeTrace();
  bytes = ToBytes(trace);
  Put(bytes, kVersionAt, later, 2);
  Put(bytes, kArraysAt, 0, 1);
  ExpectRefused(Followed(bytes), bytes.size(), "fWideHigh: found 0, expected 1");
}

/// Describes a version of the class that lacks a member.
void DescribeVersionWithout(const char* name, Version_t version) {
  auto* info = static_cast<TStreamerInfo*>(TFADCData::Class()->GetStreamerInfo()->Clone());
  delete info->GetElements()->Remove(info->GetElements()->FindObject(name));
  info->GetElements()->Compress();
  info->SetClassVersion(version);
  info->SetClass(TFADCData::Class());
  info->BuildOld();
  const_cast<TObjArray*>(TFADCData::Class()->GetStreamerInfos())->AddAtAndExpand(info, version);
}

TEST(FadcDataDamaged, LaterVersionThatDescribesNoArrayIsRefused) {
  TFADCData trace = MakeTrace();
  const Bytes bytes = ToBytes(trace);
  const std::pair<const char*, size_t> arrays[] = {
      {"fWideHigh", kNHighAt}, {"fWideLow", kNWideAt}, {"fFar", kNFarAt}, {"fNear", kNNearAt}};
  Version_t version = TFADCData::Class_Version() + 10;
  size_t at = kArraysAt;
  for (const auto& [name, count_at] : arrays) {
    const size_t size = 1 + 256 * UChar_t(bytes[count_at + 2]) + UChar_t(bytes[count_at + 3]);
    DescribeVersionWithout(name, ++version);
    Bytes without = bytes;
    without.erase(without.begin() + at, without.begin() + at + size);
    Put(without, 0, 0x40000000 | (without.size() - 4), 4);
    Put(without, kVersionAt, version, 2);
    ExpectRefused(Followed(without), without.size(), std::string(name) + ": found 0, expected 1");
    at += size;
  }
}

/// A record of class version 1, of the words from `first_low` on.
class Version1Record {
 public:
  Version1Record(const TFADCData& trace, UInt_t first_low, const std::vector<int>& low, UInt_t first_high,
                 const std::vector<int>& high) {
    const Record& record = *trace.GetRecord();
    TBufferFile b(TBuffer::kWrite);
    b << UInt_t(0) << Version_t(1) << Version_t(1) << UInt_t(0) << UInt_t(0x02000000);
    b << UInt_t(record.fPixelNumber.fPixelNumber) << record.fTraceInfo.fWord << record.fMonitor.fPrevThreshold
      << record.fMonitor.fActualThreshold << record.fMonitor.fActualRate << record.fMonitor.fMean
      << record.fMonitor.fVariance << record.fTraceStartTime;
    b << kBase << UShort_t(first_low) << UShort_t(first_high) << Int_t(low.size()) << Int_t(high.size());
    AddArray(b, low);
    AddArray(b, high);
    fBytes.assign(b.Buffer(), b.Buffer() + b.Length());
    Put(fBytes, 0, 0x40000000 | (fBytes.size() - 4), 4);
  }
  const Bytes& GetBytes() const { return fBytes; }

  static constexpr UShort_t kBase = 100;
  static constexpr size_t kFirstLowAt = 58;
  static constexpr size_t kFirstHighAt = 60;
  static constexpr size_t kNLowAt = 62;
  static constexpr size_t kNHighAt = 66;
  static constexpr size_t kArraysAt = 70;

 private:
  static void AddArray(TBufferFile& b, const std::vector<int>& bytes) {
    b << UChar_t(!bytes.empty());
    for (int byte : bytes)
      b << UChar_t(byte);
  }
  Bytes fBytes;
};

TEST(FadcDataVersion1, ComesBack) {
  TFADCData trace = MakeTrace();
  TFADCData back;
  LogCapture log;
  const Bytes bytes = Version1Record(trace, 10, {1, 2, 3, 200}, 11, {4, 250}).GetBytes();
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
  EXPECT_EQ(log.Take(), "");
  std::memset(static_cast<void*>(trace.GetRecord()->fFadcData), 0, 2 * kN);
  trace.GetRecord()->fFadcData[10].fWord = 101;
  trace.GetRecord()->fFadcData[11].fWord = 102 + 4 * 256;
  trace.GetRecord()->fFadcData[12].fWord = 103 + 250 * 256;
  trace.GetRecord()->fFadcData[13].fWord = 300;
  ExpectSameRecord(back, trace);
}

TEST(FadcDataVersion1, WithoutWordsComesBack) {
  TFADCData back = MakeTrace();
  FromBytes(Version1Record(TFADCData(), 0, {}, 0, {}).GetBytes(), back);
  ExpectSameRecord(back, TFADCData());
}

TEST(FadcDataVersion1, LeavesARecordThatWasReferredTo) {
  Record record = Record();
  TFADCData back(&record);
  FromBytes(Version1Record(MakeTrace(), 0, {}, 0, {}).GetBytes(), back);
  EXPECT_EQ(record.fPixelNumber.fPixelNumber, 0);
  EXPECT_EQ(back.GetPixelNumber()->fPixelNumber, 0x35a7);
}

void ExpectVersion1Refused(size_t offset, UInt_t value, size_t size, const std::string& message) {
  Bytes bytes = Version1Record(MakeTrace(), 10, std::vector<int>(50, 7), 20, std::vector<int>(5, 1)).GetBytes();
  const size_t end = bytes.size();
  Put(bytes, offset, value, size);
  ExpectRefused(Followed(bytes), end, message);
}

TEST(FadcDataVersion1, CountThatDoesNotFitIsRefused) {
  typedef Version1Record V1;
  ExpectVersion1Refused(V1::kNLowAt, 1991, 4, "fNLow: found 1991, expected 0 to 1990");
  ExpectVersion1Refused(V1::kNLowAt, 0xffffffff, 4, "fNLow: found -1, expected 0 to 1990");
  ExpectVersion1Refused(V1::kNHighAt, 1981, 4, "fNHigh: found 1981, expected 0 to 1980");
  ExpectVersion1Refused(V1::kNHighAt, 0x80000000, 4, "fNHigh: found -2147483648, expected 0 to 1980");
  ExpectVersion1Refused(V1::kFirstLowAt, 1951, 2, "fNLow: found 50, expected 0 to 49");
  ExpectVersion1Refused(V1::kFirstHighAt, 1996, 2, "fNHigh: found 5, expected 0 to 4");
}

TEST(FadcDataVersion1, ArrayOfAnotherSizeIsRefused) {
  typedef Version1Record V1;
  ExpectVersion1Refused(V1::kNLowAt, 1500, 4, "fLow: found 57, expected at least 1501 bytes");
  ExpectVersion1Refused(V1::kNHighAt, 6, 4, "fHigh: found 6, expected at least 7 bytes");
  ExpectVersion1Refused(V1::kNHighAt, 4, 4, "bytes at the end of record: found 1, expected 0");
  ExpectVersion1Refused(V1::kArraysAt, 0, 1, "fLow: found 0, expected 1");
  ExpectVersion1Refused(V1::kNHighAt, 0, 4, "fHigh: found 1, expected 0");
}

TEST(FadcDataVersion1, RecordCutAnywhereIsRefused) {
  const Bytes whole = Version1Record(MakeTrace(), 10, {1, 2, 3}, 11, {4, 5}).GetBytes();
  for (size_t size = 0; size < whole.size(); ++size)
    for (const Bytes& bytes : {Bytes(whole.begin(), whole.begin() + size), Shortened(whole, size)}) {
      TFADCData back;
      LogCapture log;
      EXPECT_EQ(FromBytes(bytes, back), Int_t(size));
      EXPECT_NE(log.Take(), "");
      ExpectSameRecord(back, TFADCData());
    }
}

}  // namespace
