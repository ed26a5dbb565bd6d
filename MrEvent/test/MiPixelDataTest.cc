#include <MrEvent/MiPixelData.h>

#include <LogCapture.h>
#include <RecordBuffers.h>

#include <gtest/gtest.h>

#include <TStreamerElement.h>

#include <cstddef>
#include <cstring>
#include <random>
#include <sstream>
#include <string>

namespace {

using VdUtil::Vd;
typedef TMirrorPixelData::_MirrorPixelDataRec Record;

TMirrorPixelData MakeData() {
  TMirrorPixelData data;
  data.SetStnNo(3);
  data.SetMirrorNo(2);
  data.GetRecord()->fUnused = 0xdeadbeef;
  data.SetTriggered(1, 1, 0);
  data.SetTriggered(7, 11, 31);
  data.SetTriggered(7, 11, 32);
  data.SetTriggered(20, 24, 99);
  return data;
}

void ExpectSameRecord(const TMirrorPixelData& found, const TMirrorPixelData& expected) {
  EXPECT_EQ(found.GetRecord()->fUnused, expected.GetRecord()->fUnused);
  EXPECT_EQ(found.GetRecord()->fMirrorNumber.fMirrorNumber, expected.GetRecord()->fMirrorNumber.fMirrorNumber);
  EXPECT_EQ(std::memcmp(found.GetRecord()->fTrigger, expected.GetRecord()->fTrigger, sizeof(Record().fTrigger)), 0);
}

TEST(MiPixelData, NewDataHaveNothingTriggered) {
  const TMirrorPixelData data;
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(0, 99), 0u);
  EXPECT_EQ(data.GetMirrorNumber()->fMirrorNumber, 0);
  EXPECT_EQ(data.GetRecord()->fUnused, 0u);
}

TEST(MiPixelData, MirrorNumberIsSetInTwoSteps) {
  TMirrorPixelData data;
  data.SetStnNo(2);
  data.SetMirrorNo(6);
  EXPECT_EQ(data.GetStnNo(), 2u);
  EXPECT_EQ(data.GetMirrorNo(), 6u);
  EXPECT_EQ(Vd::GetVdMirrorNo(data.GetMirrorNumber()), 12u);
}

TEST(MiPixelData, SetMirrorNumberCopiesTheWholeNumber) {
  _MirrorNumber number;
  Vd::SetStnNo(&number, 4);
  Vd::SetMirrorNo(&number, 5);
  TMirrorPixelData data;
  data.SetMirrorNumber(&number);
  EXPECT_EQ(data.GetStnNo(), 4u);
  EXPECT_EQ(data.GetMirrorNo(), 5u);
  number.fMirrorNumber = 0x5aa5;
  EXPECT_EQ(data.GetMirrorNo(), 5u);
  data.SetMirrorNumber(&number);
  EXPECT_EQ(data.GetMirrorNumber()->fMirrorNumber, 0x5aa5);
}

TEST(MiPixelData, MirrorNumberStandsBehindOneWord) {
  EXPECT_EQ(offsetof(Record, fUnused), 0u);
  EXPECT_EQ(offsetof(Record, fMirrorNumber), 4u);
  EXPECT_EQ(offsetof(Record, fTrigger), 8u);
}

TEST(MiPixelData, NullMirrorNumberIsIgnored) {
  TMirrorPixelData data = MakeData();
  data.SetMirrorNumber(nullptr);
  ExpectSameRecord(data, MakeData());
}

TEST(MiPixelData, CopyOutlivesItsSource) {
  TMirrorPixelData* source = new TMirrorPixelData(MakeData());
  TMirrorPixelData copy(*source);
  source->Clear();
  delete source;
  ExpectSameRecord(copy, MakeData());
}

TEST(MiPixelData, AssignmentIsDeep) {
  TMirrorPixelData target;
  {
    TMirrorPixelData source = MakeData();
    target = source;
    EXPECT_NE(target.GetRecord(), source.GetRecord());
  }
  ExpectSameRecord(target, MakeData());
}

TEST(MiPixelData, AssignmentToItselfChangesNothing) {
  TMirrorPixelData data = MakeData();
  TMirrorPixelData& same = data;
  data = same;
  ExpectSameRecord(data, MakeData());
}

TEST(MiPixelData, ClearGivesNewData) {
  TMirrorPixelData data = MakeData();
  data.Clear();
  ExpectSameRecord(data, TMirrorPixelData());
}

TEST(MiPixelData, EachSliceIsABitOfItsOwn) {
  TMirrorPixelData data;
  for (UInt_t slice = 0; slice < 100; ++slice) {
    data.SetTriggered(3, 4, slice);
    EXPECT_EQ(data.GetFirstTriggeredTimeBin(3, 4, 0, 99), int(slice));
    EXPECT_EQ(data.GetFirstTriggeredTimeBin(3, 4, slice, slice), int(slice));
    EXPECT_EQ(data.GetRecord()->fTrigger[2 * 24 + 3][slice / 32], 1u << slice % 32);
    data.SetTriggered(3, 4, slice, false);
    EXPECT_EQ(data.GetFirstTriggeredTimeBin(3, 4, 0, 99), TMirrorPixelData::kNoTrigger);
  }
}

TEST(MiPixelData, EachPixelHasBitsOfItsOwn) {
  TMirrorPixelData data;
  UInt_t n = 0;
  for (UInt_t column = 1; column <= 20; ++column)
    for (UInt_t row = 1; row <= 24; ++row) {
      EXPECT_EQ(data.GetFirstTriggeredTimeBin(column, row, 0, 99), -1);
      data.SetTriggered(column, row, 50);
      EXPECT_EQ(data.GetNumberOfTriggeredPixels(0, 99), ++n);
    }
}

TEST(MiPixelData, ClearingASliceKeepsTheOthers) {
  TMirrorPixelData data;
  data.SetTriggered(1, 1, 40);
  data.SetTriggered(1, 1, 41);
  data.SetTriggered(1, 1, 40, false);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(1, 1, 0, 99), 41);
}

TEST(MiPixelData, EndSliceIsIncluded) {
  const TMirrorPixelData data = MakeData();
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(7, 11, 0, 30), -1);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(7, 11, 0, 31), 31);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(7, 11, 32, 99), 32);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(7, 11, 33, 99), -1);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(1, 30), 0u);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(1, 31), 1u);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(0, 31), 2u);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(99, 99), 1u);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(0, 99), 3u);
}

TEST(MiPixelData, EndSliceIsCutAtTheLast) {
  TMirrorPixelData data = MakeData();
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(20, 24, 0, 100), 99);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(0, 0xffffffff), 3u);
  // Spare bits of the last word are no slices.
  data.GetRecord()->fTrigger[5][3] = 0xfffffff0;
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(0, 127), 3u);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(1, 6, 0, 127), -1);
}

TEST(MiPixelData, EmptyRangeHasNoTrigger) {
  const TMirrorPixelData data = MakeData();
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(7, 11, 32, 31), -1);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(20, 24, 100, 200), -1);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(99, 0), 0u);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(0xffffffff, 0xffffffff), 0u);
}

TEST(MiPixelData, PixelOutsideTheCameraHasNoTrigger) {
  TMirrorPixelData data;
  std::memset(data.GetRecord()->fTrigger, 0xff, sizeof(Record().fTrigger));
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(0, 1, 0, 99), -1);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(1, 0, 0, 99), -1);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(21, 1, 0, 99), -1);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(1, 25, 0, 99), -1);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(0xffffffff, 0xffffffff, 0, 99), -1);
}

TEST(MiPixelData, PixelOrSliceOutsideIsRefusedWithAMessage) {
  const UInt_t bad[][3] = {{0, 1, 0}, {21, 1, 0}, {1, 0, 0}, {1, 25, 0}, {1, 1, 100}};
  for (const auto& place : bad) {
    TMirrorPixelData data;
    LogCapture log;
    data.SetTriggered(place[0], place[1], place[2]);
    EXPECT_EQ(log.Take(), "ERR:TMirrorPixelData::SetTriggered() - illegal column " + std::to_string(place[0]) +
                              ", row " + std::to_string(place[1]) + " or slice " + std::to_string(place[2]) +
                              " passed, ignored!\n");
    ExpectSameRecord(data, TMirrorPixelData());
  }
}

TEST(MiPixelData, PixelNumberNamesTheSameChannel) {
  _PixelNumber pixel;
  pixel.fPixelNumber = 0;
  Vd::SetPixelNo(&pixel, 6 * 24 + 11);
  TMirrorPixelData data;
  data.SetTriggered(&pixel, 17);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(7, 11, 0, 99), 17);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&pixel, 0, 99), 17);
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(&pixel, 18, 99), -1);
  data.SetTriggered(&pixel, 17, false);
  EXPECT_EQ(data.GetNumberOfTriggeredPixels(0, 99), 0u);
}

TEST(MiPixelData, NullPixelHasNoTriggerAndIsRefused) {
  TMirrorPixelData data;
  EXPECT_EQ(data.GetFirstTriggeredTimeBin(nullptr, 0, 99), -1);
  LogCapture log;
  data.SetTriggered(nullptr, 0);
  EXPECT_EQ(log.Take(), "ERR:TMirrorPixelData::SetTriggered() - illegal column 0, row 0 or slice 0 passed, ignored!\n");
}

TEST(MiPixelData, QueriesAgreeWithASlicewiseCount) {
  std::mt19937 random(11);
  TMirrorPixelData data;
  bool bits[20][24][100] = {};
  for (int i = 0; i < 300; ++i) {
    const UInt_t column = random() % 20, row = random() % 24, slice = random() % 100;
    bits[column][row][slice] = true;
    data.SetTriggered(column + 1, row + 1, slice);
  }
  for (int i = 0; i < 200; ++i) {
    const UInt_t start = random() % 105, end = random() % 105;
    UInt_t count = 0;
    for (UInt_t column = 0; column < 20; ++column)
      for (UInt_t row = 0; row < 24; ++row) {
        int first = -1;
        for (UInt_t slice = start; slice <= end && slice < 100 && first < 0; ++slice)
          if (bits[column][row][slice]) first = slice;
        EXPECT_EQ(data.GetFirstTriggeredTimeBin(column + 1, row + 1, start, end), first);
        count += first >= 0;
      }
    EXPECT_EQ(data.GetNumberOfTriggeredPixels(start, end), count);
  }
}

TEST(MiPixelData, ShowsTheSlicesOfEachTriggeredPixel) {
  TMirrorPixelData data = MakeData();
  std::ostringstream text;
  data.Show(text, 33);
  EXPECT_EQ(text.str(),
            "--- TMirrorPixelData ---\n"
            " Station, mirror  : 3, 2\n"
            " Triggered pixels : 3\n"
            " Column 1, row 1: 1................................\n"
            " Column 7, row 11: ...............................11\n"
            "--------------------\n");
}

TEST(MiPixelData, ShowsAtMostTheSlicesThatThereAre) {
  TMirrorPixelData data;
  data.SetTriggered(20, 24, 99);
  std::ostringstream text;
  data.Show(text, 1000);
  EXPECT_EQ(text.str(),
            "--- TMirrorPixelData ---\n"
            " Station, mirror  : 0, 0\n"
            " Triggered pixels : 1\n"
            " Column 20, row 24: " +
                std::string(99, '.') +
                "1\n"
                "--------------------\n");
}

TEST(MiPixelData, ShowsNoPixelWithoutATriggerInTheSlicesShown) {
  TMirrorPixelData data;
  data.SetTriggered(1, 1, 33);
  std::ostringstream text;
  data.Show(text, 33);
  EXPECT_EQ(text.str().find("Column"), std::string::npos);
  data.Show(text, 34);
  EXPECT_NE(text.str().find("Column 1, row 1"), std::string::npos);
}

TEST(MiPixelData, ShowsOneSlice) {
  std::ostringstream text;
  MakeData().Show(text, 1);
  EXPECT_NE(text.str().find(" Column 1, row 1: 1\n"), std::string::npos) << text.str();
}

TEST(MiPixelData, ShowsNoPixelsForNoSlices) {
  std::ostringstream text;
  MakeData().Show(text, 0);
  EXPECT_EQ(text.str(),
            "--- TMirrorPixelData ---\n Station, mirror  : 3, 2\n Triggered pixels : 3\n--------------------\n");
}

// Places in a record: frame (6 bytes), TObject (10), then the members.
constexpr size_t kVersionAt = 4;
constexpr size_t kNTriggeredAt = 16 + 2 * 4;
constexpr size_t kNTriggerWordsAt = kNTriggeredAt + 4;
constexpr size_t kPixelNoAt = kNTriggerWordsAt + 4 + 1;

void ExpectComesBack(TMirrorPixelData& data) {
  TMirrorPixelData back = MakeData();
  const Bytes bytes = ToBytes(data);
  LogCapture log;
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
  EXPECT_EQ(log.Take(), "");
  ExpectSameRecord(back, data);
}

TEST(MiPixelDataOnFile, DataComeBack) {
  TMirrorPixelData data = MakeData();
  ExpectComesBack(data);
}

TEST(MiPixelDataOnFile, NewDataComeBack) {
  TMirrorPixelData data;
  ExpectComesBack(data);
}

TEST(MiPixelDataOnFile, EveryWordComesBack) {
  std::mt19937 random(2);
  TMirrorPixelData data;
  for (auto& pixel : data.GetRecord()->fTrigger)
    for (UInt_t& word : pixel)
      word = random();
  data.GetRecord()->fMirrorNumber.fMirrorNumber = -1;
  ExpectComesBack(data);
}

TEST(MiPixelDataOnFile, PixelsWithoutATriggerCostNothing) {
  TMirrorPixelData data = MakeData();
  EXPECT_EQ(ToBytes(data).size(), kPixelNoAt + 1 + 3 * (2 + 16));
}

TEST(MiPixelDataOnFile, ObjectComesBackThroughAFile) {
  TMirrorPixelData data = MakeData();
  const auto back = ThroughFile(data);
  ASSERT_TRUE(back);
  ExpectSameRecord(*back, data);
}

TEST(MiPixelDataOnFile, FileDescribesTheWholeForm) {
  const char* const members[][2] = {{"TObject", "BASE"},
                                    {"fUnused", "unsigned int"},
                                    {"fMirrorNumber", "unsigned int"},
                                    {"fNTriggered", "int"},
                                    {"fNTriggerWords", "int"},
                                    {"fPixelNo", "unsigned short*"},
                                    {"fTriggerWord", "unsigned int*"}};
  TMirrorPixelData data = MakeData();
  TMemFile file("described.root", "RECREATE");
  file.WriteTObject(&data, "data");
  file.WriteStreamerInfo();
  std::unique_ptr<TList> infos(file.GetStreamerInfoList());
  infos->SetOwner();
  auto* info = static_cast<TStreamerInfo*>(infos->FindObject("TMirrorPixelData"));
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetClassVersion(), 1);
  ASSERT_EQ(info->GetElements()->GetEntriesFast(), Int_t(std::size(members)));
  for (Int_t i = 0; i < info->GetElements()->GetEntriesFast(); ++i) {
    auto* element = static_cast<TStreamerElement*>(info->GetElements()->At(i));
    EXPECT_STREQ(element->GetName(), members[i][0]);
    EXPECT_STREQ(element->GetTypeName(), members[i][1]);
  }
}

TEST(MiPixelDataOnFile, LaterVersionIsReadByItsDescription) {
  DescribeNextVersion(TMirrorPixelData::Class());
  TMirrorPixelData data = MakeData();
  Bytes bytes = ToBytes(data);
  Put(bytes, kVersionAt, 2, 2);
  TMirrorPixelData back;
  LogCapture log;
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
  EXPECT_EQ(log.Take(), "");
  ExpectSameRecord(back, data);
}

TEST(MiPixelDataOnFile, ObjectIsWrittenAndReadAgainAndAgain) {
  DescribeNextVersion(TMirrorPixelData::Class());
  TMirrorPixelData data = MakeData();
  TMirrorPixelData used;
  const Bytes bytes = ToBytes(data);
  EXPECT_EQ(ToBytes(data), bytes);
  Bytes later = bytes;
  Put(later, kVersionAt, 2, 2);
  ToBytes(used);
  for (const Bytes& record : {later, later, bytes, later}) {
    FromBytes(record, used);
    ExpectSameRecord(used, data);
  }
  EXPECT_EQ(ToBytes(used), bytes);
}

/// A damaged record of MakeData: what is reported, the object unchanged, and the buffer at the record's end.
void ExpectRefused(size_t offset, UInt_t value, size_t size, const std::string& message, UInt_t version = 1) {
  TMirrorPixelData data = MakeData();
  Bytes bytes = ToBytes(data);
  const size_t end = bytes.size();
  Put(bytes, kVersionAt, version, 2);
  Put(bytes, offset, value, size);
  TMirrorPixelData back;
  back.SetTriggered(2, 2, 2);
  TMirrorPixelData before(back);
  LogCapture log;
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(end));
  EXPECT_EQ(log.Take(), "ERR:TMirrorPixelData::Streamer() - " + message + ", record skipped\n");
  ExpectSameRecord(back, before);
}

TEST(MiPixelDataDamaged, CountBeyondTheCameraIsRefused) {
  ExpectRefused(kNTriggeredAt, 481, 4, "fNTriggered: found 481, expected 0 to 480");
  ExpectRefused(kNTriggeredAt, 0xffffffff, 4, "fNTriggered: found -1, expected 0 to 480");
}

TEST(MiPixelDataDamaged, WordsThatDoNotMatchThePixelsAreRefused) {
  ExpectRefused(kNTriggerWordsAt, 13, 4, "fNTriggerWords: found 13, expected 12");
  ExpectRefused(kNTriggerWordsAt, 0x7fffffff, 4, "fNTriggerWords: found 2147483647, expected 12");
  ExpectRefused(kNTriggeredAt, 4, 4, "fNTriggerWords: found 12, expected 16");
}

TEST(MiPixelDataDamaged, PixelOutsideTheCameraIsRefused) {
  ExpectRefused(kPixelNoAt, 0, 2, "fPixelNo: found 0, expected 1 to 480");
  ExpectRefused(kPixelNoAt + 4, 481, 2, "fPixelNo: found 481, expected 1 to 480");
}

TEST(MiPixelDataDamaged, MissingArrayIsRefused) {
  ExpectRefused(kPixelNoAt - 1, 0, 1, "fPixelNo: found 0, expected 1");
  ExpectRefused(kPixelNoAt + 3 * 2, 0, 1, "fTriggerWord: found 0, expected 1");
}

TEST(MiPixelDataDamaged, RecordThatEndsBeforeItsArraysOrInOneIsRefused) {
  TMirrorPixelData made = MakeData();
  const Bytes whole = ToBytes(made);
  for (const auto& [size, message] :
       {std::pair<size_t, const char*>{16, "end of record: found 0, expected at least 4 bytes"},
        {kPixelNoAt + 5, "fPixelNo: found 6, expected at least 7 bytes"},
        {kPixelNoAt + 6 + 48, "fTriggerWord: found 48, expected at least 49 bytes"}}) {
    TMirrorPixelData back;
    LogCapture log;
    FromBytes(Shortened(whole, size), back);
    EXPECT_EQ(log.Take(), "ERR:TMirrorPixelData::Streamer() - " + std::string(message) + ", record skipped\n");
  }
}

TEST(MiPixelDataDamaged, VersionWithoutADescriptionIsRefused) {
  ExpectRefused(kVersionAt, 9, 2, "version: found 9, expected 1 to 1, or one that the file describes");
}

TEST(MiPixelDataDamaged, LaterVersionIsCheckedToo) {
  DescribeNextVersion(TMirrorPixelData::Class());
  ExpectRefused(kNTriggerWordsAt, 11, 4, "fNTriggerWords: found 11, expected 12", 2);
  ExpectRefused(kPixelNoAt, 500, 2, "fPixelNo: found 500, expected 1 to 480", 2);
}

TEST(MiPixelDataDamaged, LaterVersionWithoutItsArraysIsRefused) {
  DescribeNextVersion(TMirrorPixelData::Class());
  TMirrorPixelData data;
  Bytes bytes = ToBytes(data);
  Put(bytes, kVersionAt, 2, 2);
  Put(bytes, kNTriggeredAt, 1, 4);
  Put(bytes, kNTriggerWordsAt, 4, 4);
  LogCapture log;
  EXPECT_EQ(FromBytes(Followed(bytes), data), Int_t(bytes.size()));
  EXPECT_EQ(log.Take(), "ERR:TMirrorPixelData::Streamer() - fPixelNo: found 0, expected 1, record skipped\n");
}

TEST(MiPixelDataDamaged, LaterVersionWithoutItsWordsIsRefused) {
  DescribeNextVersion(TMirrorPixelData::Class());
  ExpectRefused(kPixelNoAt + 3 * 2, 0, 1, "fTriggerWord: found 0, expected 1", 2);
}

TEST(MiPixelDataDamaged, ShortRecordIsRefused) {
  TMirrorPixelData made = MakeData();
  const Bytes whole = ToBytes(made);
  for (size_t size = 0; size < whole.size(); ++size) {
    TMirrorPixelData back;
    LogCapture log;
    EXPECT_EQ(FromBytes(Shortened(whole, size), back), Int_t(size));
    EXPECT_NE(log.Take(), "");
    ExpectSameRecord(back, TMirrorPixelData());
  }
}

TEST(MiPixelDataDamaged, RecordCutAnywhereIsRefused) {
  TMirrorPixelData data = MakeData();
  const Bytes whole = ToBytes(data);
  for (size_t size = 0; size < whole.size(); ++size) {
    TMirrorPixelData back;
    LogCapture log;
    EXPECT_EQ(FromBytes(Bytes(whole.begin(), whole.begin() + size), back), Int_t(size));
    EXPECT_NE(log.Take(), "");
    ExpectSameRecord(back, TMirrorPixelData());
  }
}

TEST(MiPixelDataDamaged, AnyDamagedByteLeavesTheBufferInside) {
  TMirrorPixelData data = MakeData();
  const Bytes whole = ToBytes(data);
  LogCapture log;
  for (size_t at = 0; at < whole.size(); ++at)
    for (int i = 0; i < 8; ++i) {
      // References of a TObject are looked up in the file, and there is none.
      if (at == 15) continue;
      Bytes bytes = whole;
      bytes[at] ^= 1 << i;
      TMirrorPixelData back;
      EXPECT_LE(FromBytes(bytes, back), Int_t(whole.size()));
    }
}

}  // namespace
