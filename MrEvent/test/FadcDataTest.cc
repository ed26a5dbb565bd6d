#include <MrEvent/FadcData.h>

#include <LogCapture.h>
#include <RecordBuffers.h>

#include <gtest/gtest.h>

#include <TStreamerElement.h>
#include <TStreamerInfo.h>

#include <cmath>
#include <cstddef>
#include <cstring>
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

// Places of the counts in a record: frame (6 bytes), TObject (10), then the members.
constexpr size_t kVersionAt = 4;
constexpr size_t kObjectAt = 6;
constexpr size_t kPixelWordAt = 16;
constexpr size_t kFirstLowAt = kPixelWordAt + 5 * 4 + 2 * 8 + 4 + 2;
constexpr size_t kFirstHighAt = kFirstLowAt + 2;
constexpr size_t kNLowAt = kFirstHighAt + 2;
constexpr size_t kNHighAt = kNLowAt + 4;
constexpr size_t kArraysAt = kNHighAt + 4;

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

TEST(FadcDataOnFile, ZeroWordsOutsideTheTraceCostNothing) {
  TFADCData empty;
  EXPECT_EQ(ToBytes(empty).size(), kArraysAt + 2);
  TFADCData trace;
  for (UInt_t bin = 500; bin < 1500; ++bin)
    trace.GetRecord()->fFadcData[bin].fWord = 180 + bin % 7;
  EXPECT_EQ(ToBytes(trace).size(), kArraysAt + 2 + 1000);
}

TEST(FadcDataOnFile, SampleTakesAByteAndOnlyAPulseTwo) {
  TFADCData trace = MakeTrace();
  EXPECT_EQ(ToBytes(trace).size(), kArraysAt + 2 + 1000 + 60);
}

TEST(FadcDataOnFile, AnyTraceTakesAtMostTwoBytesAWord) {
  std::mt19937 random(9);
  TFADCData trace;
  for (auto& word : trace.GetRecord()->fFadcData)
    word.fWord = random();
  EXPECT_LE(ToBytes(trace).size(), kArraysAt + 2 + 2 * kN);
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
                                    {"fPixelWord", "unsigned int"},
                                    {"fTraceInfo", "unsigned int"},
                                    {"fPrevThreshold", "unsigned int"},
                                    {"fActualThreshold", "unsigned int"},
                                    {"fActualRate", "unsigned int"},
                                    {"fMean", "double"},
                                    {"fVariance", "double"},
                                    {"fTraceStartTime", "float"},
                                    {"fBase", "unsigned short"},
                                    {"fFirstLow", "unsigned short"},
                                    {"fFirstHigh", "unsigned short"},
                                    {"fNLow", "int"},
                                    {"fNHigh", "int"},
                                    {"fLow", "unsigned char*"},
                                    {"fHigh", "unsigned char*"}};
  TFADCData trace = MakeTrace();
  TMemFile file("described.root", "RECREATE");
  file.WriteTObject(&trace, "trace");
  file.WriteStreamerInfo();
  std::unique_ptr<TList> infos(file.GetStreamerInfoList());
  infos->SetOwner();
  auto* info = static_cast<TStreamerInfo*>(infos->FindObject("TFADCData"));
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetClassVersion(), 1);
  ASSERT_EQ(info->GetElements()->GetEntriesFast(), Int_t(std::size(members)));
  for (Int_t i = 0; i < info->GetElements()->GetEntriesFast(); ++i) {
    auto* element = static_cast<TStreamerElement*>(info->GetElements()->At(i));
    EXPECT_STREQ(element->GetName(), members[i][0]);
    EXPECT_STREQ(element->GetTypeName(), members[i][1]);
  }
}

TEST(FadcDataOnFile, LaterVersionIsReadByItsDescription) {
  DescribeVersion2(TFADCData::Class());
  TFADCData trace = MakeTrace();
  Bytes bytes = ToBytes(trace);
  Put(bytes, kVersionAt, 2, 2);
  TFADCData back;
  LogCapture log;
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
  EXPECT_EQ(log.Take(), "");
  ExpectSameRecord(back, trace);
}

TEST(FadcDataOnFile, LaterVersionWithoutSamplesIsReadByItsDescription) {
  DescribeVersion2(TFADCData::Class());
  TFADCData empty;
  TFADCData quiet;
  quiet.GetRecord()->fFadcData[3].fWord = 1;
  for (TFADCData* trace : {&empty, &quiet}) {
    Bytes bytes = ToBytes(*trace);
    Put(bytes, kVersionAt, 2, 2);
    TFADCData back = MakeTrace();
    FromBytes(bytes, back);
    ExpectSameRecord(back, *trace);
  }
}

TEST(FadcDataOnFile, TraceWithoutSamplesHasBaseZero) {
  TFADCData empty;
  const Bytes bytes = ToBytes(empty);
  EXPECT_EQ(bytes[kFirstLowAt - 2], 0);
  EXPECT_EQ(bytes[kFirstLowAt - 1], 0);
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
  ExpectRefused(kNLowAt, 2001, 4, "fNLow: found 2001, expected 0 to 2000");
  ExpectRefused(kNLowAt, 0x7fffffff, 4, "fNLow: found 2147483647, expected 0 to 2000");
  ExpectRefused(kNHighAt, 1701, 4, "fNHigh: found 1701, expected 0 to 1700");
}

TEST(FadcDataDamaged, NegativeCountIsRefused) {
  ExpectRefused(kNLowAt, 0xffffffff, 4, "fNLow: found -1, expected 0 to 2000");
  ExpectRefused(kNHighAt, 0x80000000, 4, "fNHigh: found -2147483648, expected 0 to 1700");
}

TEST(FadcDataDamaged, RangeBeyondTheWordsIsRefused) {
  ExpectRefused(kFirstLowAt, 1001, 2, "fNLow: found 1000, expected 0 to 999");
  ExpectRefused(kFirstLowAt, 65535, 2, "fNLow: found 1000, expected 0 to -63535");
  ExpectRefused(kFirstHighAt, 1941, 2, "fNHigh: found 60, expected 0 to 59");
}

TEST(FadcDataDamaged, CountBeyondTheRecordIsRefused) {
  ExpectRefused(kNLowAt, 1500, 4, "fLow: found 1062, expected at least 1501 bytes");
  ExpectRefused(kNHighAt, 61, 4, "fHigh: found 61, expected at least 62 bytes");
}

TEST(FadcDataDamaged, CountBelowTheArrayIsRefused) {
  ExpectRefused(kNHighAt, 59, 4, "bytes at the end of record: found 1, expected 0");
}

TEST(FadcDataDamaged, MissingArrayIsRefused) {
  ExpectRefused(kArraysAt, 0, 1, "fLow: found 0, expected 1");
  ExpectRefused(kNHighAt, 0, 4, "fHigh: found 1, expected 0");
}

TEST(FadcDataDamaged, VersionWithoutADescriptionIsRefused) {
  for (UInt_t version : {0u, 7u, 0x3fffu})
    ExpectRefused(kVersionAt, version, 2,
                  "version: found " + std::to_string(version) + ", expected 1 to 1, or one that the file describes");
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
  DescribeVersion2(TFADCData::Class());
  TFADCData trace = MakeTrace();
  Bytes bytes = ToBytes(trace);
  Put(bytes, kVersionAt, 2, 2);
  const size_t end = bytes.size();
  Put(bytes, kFirstLowAt, 1001, 2);
  ExpectRefused(Followed(bytes), end, "fNLow: found 1000, expected 0 to 999");
  Put(bytes, kFirstLowAt, 0, 2);
  Put(bytes, kFirstHighAt, 1941, 2);
  ExpectRefused(Followed(bytes), end, "fNHigh: found 60, expected 0 to 59");
}

TEST(FadcDataDamaged, LaterVersionWithoutItsArraysIsRefused) {
  DescribeVersion2(TFADCData::Class());
  TFADCData empty;
  Bytes bytes = ToBytes(empty);
  Put(bytes, kVersionAt, 2, 2);
  Put(bytes, kNLowAt, 10, 4);
  ExpectRefused(Followed(bytes), bytes.size(), "fLow: found 0, expected 1");

  TFADCData trace = MakeTrace();
  bytes = ToBytes(trace);
  Put(bytes, kVersionAt, 2, 2);
  Put(bytes, kArraysAt + 1 + 1000, 0, 1);
  ExpectRefused(Followed(bytes), bytes.size(), "fHigh: found 0, expected 1");
}

}  // namespace
