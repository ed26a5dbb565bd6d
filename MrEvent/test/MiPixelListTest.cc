#include <MrEvent/MiPixelList.h>

#include <LogCapture.h>
#include <RecordBuffers.h>

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace {

using VdUtil::Vd;

_PixelNumber MakePixel(UInt_t stn, UInt_t mirror, UInt_t pixel_no) {
  _PixelNumber pixel;
  pixel.fPixelNumber = 0;
  Vd::SetStnNo(&pixel, stn);
  Vd::SetMirrorNo(&pixel, mirror);
  Vd::SetPixelNo(&pixel, pixel_no);
  return pixel;
}

TMirrorPixelList MakeList(UInt_t n) {
  TMirrorPixelList list;
  for (UInt_t i = 1; i <= n; ++i) {
    _PixelNumber pixel = MakePixel(2, 3, i);
    list.AddPixel(&pixel);
  }
  return list;
}

std::vector<int> Words(const TMirrorPixelList& list) {
  std::vector<int> words;
  for (UInt_t i = 0; i < list.GetNumPixels(); ++i)
    words.push_back(list.GetPixel(i)->fPixelNumber);
  return words;
}

TEST(MiPixelList, NewListIsEmpty) { EXPECT_EQ(TMirrorPixelList().GetNumPixels(), 0u); }

TEST(MiPixelList, AddedPixelsStandInTheirOrder) {
  const TMirrorPixelList list = MakeList(480);
  ASSERT_EQ(list.GetNumPixels(), 480u);
  for (UInt_t i = 0; i < 480; ++i)
    EXPECT_EQ(list.GetPixel(i)->fPixelNumber, MakePixel(2, 3, i + 1).fPixelNumber);
}

TEST(MiPixelList, ListTakesMorePixelsThanACameraHas) {
  const TMirrorPixelList list = MakeList(2000);
  ASSERT_EQ(list.GetNumPixels(), 2000u);
  EXPECT_EQ(Vd::GetPixelNo(list.GetPixel(1999)), 2000u % 512);
}

TEST(MiPixelList, NullPixelIsIgnored) {
  TMirrorPixelList list = MakeList(1);
  list.AddPixel(nullptr);
  EXPECT_EQ(list.GetNumPixels(), 1u);
}

TEST(MiPixelList, EntryOfTheListItselfCanBeAdded) {
  TMirrorPixelList list = MakeList(64);
  // The list is full here and moves.
  list.AddPixel(list.GetPixel(9));
  ASSERT_EQ(list.GetNumPixels(), 65u);
  EXPECT_EQ(list.GetPixel(64)->fPixelNumber, MakePixel(2, 3, 10).fPixelNumber);
}

TEST(MiPixelList, EntryCanBeWritten) {
  const TMirrorPixelList list = MakeList(3);
  Vd::SetStnNo(list.GetPixel(1), 5);
  EXPECT_EQ(Vd::GetStnNo(list.GetPixel(1)), 5u);
  EXPECT_EQ(Vd::GetStnNo(list.GetPixel(0)), 2u);
}

TEST(MiPixelList, IndexBeyondTheListGivesNoPixel) {
  TMirrorPixelList list;
  for (UInt_t index : {0u, 1u, 480u, 0xffffffffu}) {
    ASSERT_NE(list.GetPixel(index), nullptr);
    EXPECT_EQ(list.GetPixel(index)->fPixelNumber, 0);
  }
  list = MakeList(3);
  EXPECT_EQ(list.GetPixel(3)->fPixelNumber, 0);
}

TEST(MiPixelList, WritingToNoPixelDoesNotLast) {
  const TMirrorPixelList list;
  Vd::SetStnNo(list.GetPixel(0), 5);
  EXPECT_EQ(list.GetPixel(0)->fPixelNumber, 0);
}

TEST(MiPixelList, CopyOutlivesItsSource) {
  TMirrorPixelList* source = new TMirrorPixelList(MakeList(5));
  const TMirrorPixelList copy(*source);
  source->GetPixel(0)->fPixelNumber = 0;
  delete source;
  EXPECT_EQ(Words(copy), Words(MakeList(5)));
}

TEST(MiPixelList, AssignmentReplacesTheList) {
  TMirrorPixelList list = MakeList(100);
  list = MakeList(3);
  EXPECT_EQ(Words(list), Words(MakeList(3)));
  list = MakeList(200);
  EXPECT_EQ(Words(list), Words(MakeList(200)));
}

TEST(MiPixelList, AssignmentToItselfChangesNothing) {
  TMirrorPixelList list = MakeList(3);
  TMirrorPixelList& same = list;
  list = same;
  EXPECT_EQ(Words(list), Words(MakeList(3)));
}

TEST(MiPixelList, ClearTakesEveryPixelOut) {
  TMirrorPixelList list = MakeList(3);
  list.Clear();
  EXPECT_EQ(list.GetNumPixels(), 0u);
  EXPECT_EQ(list.GetPixel(0)->fPixelNumber, 0);
}

TEST(MiPixelList, ShowsEachPixel) {
  TMirrorPixelList list;
  _PixelNumber first = MakePixel(4, 1, 25);
  _PixelNumber second = MakePixel(4, 1, 26);
  list.AddPixel(&first);
  list.AddPixel(&second);
  std::ostringstream text;
  list.Show(text);
  EXPECT_EQ(text.str(),
            "--- TMirrorPixelList ---\n"
            " Number of pixels : 2\n"
            " Station 4, mirror 1, pixel 25, column 2, row 1\n"
            " Station 4, mirror 1, pixel 26, column 2, row 2\n"
            "--------------------\n");
}

TEST(MiPixelListOnFile, ListComesBack) {
  for (UInt_t n : {0u, 1u, 480u, 1000u}) {
    TMirrorPixelList list = MakeList(n);
    TMirrorPixelList back = MakeList(7);
    const Bytes bytes = ToBytes(list);
    EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
    EXPECT_EQ(Words(back), Words(list));
  }
}

TEST(MiPixelListOnFile, ListComesBackThroughAFile) {
  TMirrorPixelList list = MakeList(33);
  const auto back = ThroughFile(list);
  ASSERT_TRUE(back);
  EXPECT_EQ(Words(*back), Words(list));
}

constexpr size_t kVersionAt = 4;
constexpr size_t kNPixelsAt = 16;

TEST(MiPixelListOnFile, LaterVersionIsReadByItsDescription) {
  DescribeNextVersion(TMirrorPixelList::Class());
  for (UInt_t n : {0u, 1u, 33u}) {
    TMirrorPixelList list = MakeList(n);
    Bytes bytes = ToBytes(list);
    Put(bytes, kVersionAt, 2, 2);
    TMirrorPixelList back = MakeList(5);
    EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(bytes.size()));
    EXPECT_EQ(Words(back), Words(list));
  }
}

TEST(MiPixelListOnFile, ObjectIsWrittenAndReadAgainAndAgain) {
  DescribeNextVersion(TMirrorPixelList::Class());
  TMirrorPixelList list = MakeList(33);
  TMirrorPixelList used = MakeList(5);
  const Bytes bytes = ToBytes(list);
  EXPECT_EQ(ToBytes(list), bytes);
  Bytes later = bytes;
  Put(later, kVersionAt, 2, 2);
  ToBytes(used);
  for (const Bytes& record : {later, later, bytes, later}) {
    FromBytes(record, used);
    EXPECT_EQ(Words(used), Words(list));
  }
  EXPECT_EQ(ToBytes(used), bytes);
}

void ExpectRefused(UInt_t count, const std::string& message, UInt_t version = 1) {
  TMirrorPixelList list = MakeList(10);
  Bytes bytes = ToBytes(list);
  const size_t end = bytes.size();
  Put(bytes, kVersionAt, version, 2);
  Put(bytes, kNPixelsAt, count, 4);
  TMirrorPixelList back = MakeList(2);
  LogCapture log;
  EXPECT_EQ(FromBytes(Followed(bytes), back), Int_t(end));
  EXPECT_EQ(log.Take(), "ERR:TMirrorPixelList::Streamer() - " + message + ", record skipped\n");
  EXPECT_EQ(Words(back), Words(MakeList(2)));
}

TEST(MiPixelListDamaged, CountThatTheRecordLacksIsRefused) {
  ExpectRefused(11, "fNPixels: found 11, expected 0 to 10");
  ExpectRefused(0x7fffffff, "fNPixels: found 2147483647, expected 0 to 10");
  ExpectRefused(0xffffffff, "fNPixels: found -1, expected 0 to 10");
}

TEST(MiPixelListDamaged, CountBelowTheArrayIsRefused) {
  ExpectRefused(9, "bytes at the end of record: found 4, expected 0");
}

TEST(MiPixelListDamaged, MissingArrayIsRefused) {
  TMirrorPixelList list = MakeList(1);
  Bytes bytes = ToBytes(list);
  Put(bytes, kNPixelsAt + 4, 0, 1);
  TMirrorPixelList back;
  LogCapture log;
  FromBytes(bytes, back);
  EXPECT_EQ(log.Take(), "ERR:TMirrorPixelList::Streamer() - fPixelWord: found 0, expected 1, record skipped\n");
}

TEST(MiPixelListDamaged, LaterVersionIsCheckedToo) {
  DescribeNextVersion(TMirrorPixelList::Class());
  ExpectRefused(11, "fNPixels: found 11, expected at most 10", 2);
  ExpectRefused(0xfffffff0, "fNPixels: found 4294967280, expected at most 10", 2);
}

TEST(MiPixelListDamaged, LaterVersionWithoutItsArrayIsRefused) {
  DescribeNextVersion(TMirrorPixelList::Class());
  TMirrorPixelList list;
  Bytes bytes = ToBytes(list);
  Put(bytes, kVersionAt, 2, 2);
  Put(bytes, kNPixelsAt, 2, 4);
  LogCapture log;
  EXPECT_EQ(FromBytes(Followed(bytes), list), Int_t(bytes.size()));
  EXPECT_EQ(log.Take(), "ERR:TMirrorPixelList::Streamer() - fPixelWord: found 0, expected 1, record skipped\n");
}

TEST(MiPixelListDamaged, ShortRecordIsRefused) {
  TMirrorPixelList made = MakeList(10);
  const Bytes whole = ToBytes(made);
  for (size_t size = 0; size < whole.size(); ++size) {
    TMirrorPixelList back;
    LogCapture log;
    EXPECT_EQ(FromBytes(Shortened(whole, size), back), Int_t(size));
    EXPECT_NE(log.Take(), "");
    EXPECT_EQ(back.GetNumPixels(), 0u);
  }
}

TEST(MiPixelListDamaged, RecordCutAnywhereIsRefused) {
  TMirrorPixelList list = MakeList(10);
  const Bytes whole = ToBytes(list);
  for (size_t size = 0; size < whole.size(); ++size) {
    TMirrorPixelList back;
    LogCapture log;
    EXPECT_EQ(FromBytes(Bytes(whole.begin(), whole.begin() + size), back), Int_t(size));
    EXPECT_NE(log.Take(), "");
    EXPECT_EQ(back.GetNumPixels(), 0u);
  }
}

}  // namespace
