#include <StnEvent/StnPixelList.h>

#include <StnEvent/StnEvent.h>

#include "HostOfStation4.h"
#include "LogCapture.h"
#include "Members.h"
#include "PixelLists.h"

#include <TBufferFile.h>
#include <TClass.h>
#include <TError.h>
#include <TObjArray.h>
#include <TProcessID.h>
#include <TStreamerElement.h>
#include <TStreamerInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

const UInt_t kStn = 3;
const Int_t kRecordSize = 389;  // frame 6, TObject 10, three numbers, the mark of an array, 90 words

/// Bytes in the order of files, the most significant first.
class TBytes : public std::string {
 public:
  TBytes& Add1(UInt_t value) {
    push_back(static_cast<char>(value));
    return *this;
  }
  TBytes& Add2(UInt_t value) { return Add1(value >> 8).Add1(value); }
  TBytes& Add4(UInt_t value) { return Add2(value >> 16).Add2(value); }
  TBytes& AddWords(const std::vector<UInt_t>& words) {
    for (UInt_t word : words)
      Add4(word);
    return *this;
  }
  TBytes& Set4(size_t position, UInt_t value) {
    replace(position, 4, TBytes().Add4(value));
    return *this;
  }
};

TBytes Object(UInt_t flags = 0) { return TBytes().Add2(1).Add4(0).Add4(flags); }

TBytes Framed(UInt_t version, const std::string& content) {
  TBytes record;
  record.Add4(0x40000000 | (content.size() + 2)).Add2(version);
  record += content;
  return record;
}

TBytes Content2(UInt_t n_pixels, const std::vector<UInt_t>& words) {
  return Object().Add4(n_pixels).Add4(words.size()).AddWords(words);
}

TBytes Version2(UInt_t n_pixels, const std::vector<UInt_t>& words) { return Framed(2, Content2(n_pixels, words)); }

TBytes Version4(UInt_t stn_no, UInt_t n_pixels, const std::vector<UInt_t>& words) {
  return Framed(4, Object().Add4(stn_no - 1).Add4(n_pixels).Add4(words.size()).Add1(1).AddWords(words));
}

/// The bytes before a page that can't be touched, so that whoever reads past them crashes.
class TGuarded {
 public:
  explicit TGuarded(const std::string& bytes) {
    const size_t page = sysconf(_SC_PAGESIZE);
    const size_t used = (bytes.size() / page + 1) * page;
    fSize = used + page;
    fPages = static_cast<char*>(mmap(nullptr, fSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(fPages + used, page, PROT_NONE);
    fBytes = fPages + used - bytes.size();
    std::memcpy(fBytes, bytes.data(), bytes.size());
  }
  ~TGuarded() { munmap(fPages, fSize); }
  TGuarded(const TGuarded&) = delete;
  TGuarded& operator=(const TGuarded&) = delete;
  char* Get() { return fBytes; }

 private:
  size_t fSize;
  char* fPages;
  char* fBytes;
};

/// Reads a list that stands at `start` and answers where the buffer stands then.
Int_t Read(TStnPixelList& list, const std::string& bytes, Int_t start = 0) {
  TGuarded guarded(bytes);
  TBufferFile b(TBuffer::kRead, bytes.size(), guarded.Get(), false);
  b.SetBufferOffset(start);
  list.Streamer(b);
  return b.Length();
}

TBytes Written(TStnPixelList& list) {
  TBufferFile b(TBuffer::kWrite);
  list.Streamer(b);
  TBytes bytes;
  bytes.assign(b.Buffer(), b.Length());
  return bytes;
}

class TList3 : public TListOf<kStn> {
 public:
  using TListOf<kStn>::TListOf;
  int GetStreamerVersion() { return Member<Version_t>(*this, "fStreamerVersion"); }
};

using Pixels = std::vector<UInt_t>;

/// The words of a whole vector with these pixels.
std::vector<UInt_t> Words(const Pixels& pixels) {
  std::vector<UInt_t> words(90);
  for (UInt_t pixel : pixels)
    words[(pixel - 1) / 32] |= 1U << (pixel - 1) % 32;
  return words;
}

class StnPixelListStreamerTest : public testing::Test {
 protected:
  void TearDown() override { TStnEvent::fgPrintLevel = 0; }
  LogCapture fLog;
};

/// A record that has to be refused with one line, leaving the list as it was and the buffer at `end`.
class StnPixelListRefusalTest : public StnPixelListStreamerTest {
 protected:
  void ExpectRefused(const std::string& bytes, Int_t end, const std::string& line) {
    TList3 list({5, 2880});
    const std::string before = list.GetText();
    EXPECT_EQ(Read(list, bytes), end);
    EXPECT_EQ(fLog.Take(), line);
    EXPECT_EQ(list.GetText(), before);
    EXPECT_EQ(Written(list), Version4(kStn, 2, Words({5, 2880})));
  }
  void ExpectRefusedWithSomeLine(const std::string& bytes, Int_t end) {
    TList3 list({5, 2880});
    const std::string before = list.GetText();
    EXPECT_EQ(Read(list, bytes), end);
    EXPECT_THAT(fLog.Take(),
                testing::MatchesRegex("ERR:TStnPixelList::Streamer\\(\\) - [A-Za-z ]+: found [0-9]+( bytes)?, "
                                      "expected (at least |at most )?[0-9]+, record skipped\n"));
    EXPECT_EQ(list.GetText(), before);
  }
};

// The present version

TEST_F(StnPixelListStreamerTest, WritesTheRecordOfVersion4) {
  TList3 list({1, 2880});
  std::vector<UInt_t> words(90);
  words[0] = 1;
  words[89] = 0x80000000;
  EXPECT_EQ(Written(list), Version4(kStn, 2, words));
}

TEST_F(StnPixelListStreamerTest, EveryRecordHasTheSameSize) {
  TList3 list;
  EXPECT_EQ(Written(list).size(), size_t(kRecordSize));
  for (UInt_t n = 1; n <= 2880; ++n)
    list.Add(n);
  EXPECT_EQ(Written(list).size(), size_t(kRecordSize));
}

TEST_F(StnPixelListStreamerTest, ReadsBackWhatItWrote) {
  TList3 source({7, 1, 2880});
  TList3 target({9});
  target.SetStnNo(1);
  EXPECT_EQ(Read(target, Written(source)), kRecordSize);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(target.GetStnNo(), kStn);
  EXPECT_EQ(target.GetPixels(), Pixels({1, 7, 2880}));
  EXPECT_TRUE(target == source);
}

TEST_F(StnPixelListStreamerTest, RemembersTheVersionThatItRead) {
  TList3 list;
  Read(list, Version4(kStn, 0, std::vector<UInt_t>(90)));
  EXPECT_EQ(list.GetStreamerVersion(), 4);
}

TEST_F(StnPixelListStreamerTest, ShowsTheVersionThatItRead) {
  TList3 list;
  Read(list, Version4(kStn, 0, std::vector<UInt_t>(90)));
  EXPECT_EQ(list.GetText(),
            "--- TStnPixelList ---\n"
            " Stn number      : 3\n"
            " Number of pixels: 0\n"
            " Streamer version: 4\n"
            " Class version   : 4\n"
            " Pixel numbers   : \n"
            "---------------------\n");
}

TEST_F(StnPixelListStreamerTest, AssignmentTakesTheVersionAlong) {
  TList3 list, target;
  Read(list, Version4(kStn, 0, std::vector<UInt_t>(90)));
  target = list;
  EXPECT_EQ(target.GetStreamerVersion(), 4);
  EXPECT_EQ(TList3(list).GetStreamerVersion(), 4);
}

TEST_F(StnPixelListStreamerTest, ClearForgetsTheVersion) {
  TList3 list;
  Read(list, Version4(kStn, 0, std::vector<UInt_t>(90)));
  list.Clear();
  EXPECT_EQ(list.GetStreamerVersion(), 0);
}

TEST_F(StnPixelListStreamerTest, ReadingDoesNotTouchTheExpandedList) {
  TList3 source({7, 8});
  TList3 target({9});
  target.GetPixel(0);
  Read(target, Written(source));
  EXPECT_EQ(VdUtil::Vd::GetStnPixelNo(target.GetPixel(0)), 9U);
  EXPECT_EQ(target.GetPixel(1), nullptr);
}

TEST_F(StnPixelListStreamerTest, ReportsAtPrintLevel2) {
  TList3 list;
  TStnEvent::fgPrintLevel = 2;
  const TBytes bytes = Written(list);
  EXPECT_EQ(fLog.Take(), "INF:TStnPixelList::Streamer() - wrote fStnNo= 2\n");
  Read(list, bytes);
  EXPECT_EQ(fLog.Take(), "INF:TStnPixelList::Streamer() - read fStreamerVersion= 4, fStnNo= 2\n");
}

TEST_F(StnPixelListStreamerTest, IsSilentAtPrintLevel1) {
  TList3 list;
  TStnEvent::fgPrintLevel = 1;
  Read(list, Written(list));
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelListStreamerTest, ReadsAnObjectThatIsReferenced) {
  TList3 source({7});
  TProcessID::AssignID(&source);
  const TBytes bytes = Written(source);
  EXPECT_EQ(bytes.size(), size_t(kRecordSize + 2));
  TList3 target;
  EXPECT_EQ(Read(target, bytes), kRecordSize + 2);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(target.GetPixels(), Pixels({7}));
}

TEST_F(StnPixelListStreamerTest, DescriptionHasNothingTransient) {
  std::vector<std::string> names;
  for (TObject* element : *TStnPixelList::Class()->GetStreamerInfo()->GetElements())
    names.push_back(element->GetName());
  EXPECT_THAT(names, testing::ElementsAre("TObject", "fStnNo", "fNPixels", "fPixelVectorSize", "fPixelVector"));
}

TEST_F(StnPixelListStreamerTest, LeavesTheNextRecordInPlace) {
  TList3 first({7}), second({8}), target;
  TGuarded guarded(Written(first) + Written(second));
  TBufferFile b(TBuffer::kRead, 2 * kRecordSize, guarded.Get(), false);
  target.Streamer(b);
  EXPECT_EQ(target.GetPixels(), Pixels({7}));
  TList3 next;
  next.Streamer(b);
  EXPECT_EQ(next.GetPixels(), Pixels({8}));
}

// Vectors of other sizes

TEST_F(StnPixelListStreamerTest, ReadsAShortVector) {
  TList3 list({2880});
  EXPECT_EQ(Read(list, Version4(kStn, 2, {1, 0x80000000})), 6 + 10 + 12 + 1 + 8);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetPixels(), Pixels({1, 64}));
}

TEST_F(StnPixelListStreamerTest, ReadsAnEmptyVector) {
  TList3 list({2880});
  Read(list, Version4(kStn, 0, {}));
  EXPECT_EQ(list.GetPixels(), Pixels({}));
  EXPECT_FALSE(list.Test(1));
}

TEST_F(StnPixelListStreamerTest, WritesAShortVectorAsItWasRead) {
  TList3 list;
  const TBytes bytes = Version4(kStn, 2, {1, 0x80000000});
  Read(list, bytes);
  EXPECT_EQ(Written(list), bytes);
}

TEST_F(StnPixelListStreamerTest, TestPixelBeyondAShortVectorIsFalse) {
  TList3 list;
  Read(list, Version4(kStn, 1, {1, 0x80000000}));
  EXPECT_TRUE(list.Test(63));
  EXPECT_FALSE(list.Test(64));
}

TEST_F(StnPixelListStreamerTest, ListWithAShortVectorTakesEveryPixel) {
  TList3 list;
  Read(list, Version4(kStn, 1, {1}));
  list.Add(2880);
  EXPECT_EQ(list.GetPixels(), Pixels({1, 2880}));
}

TEST_F(StnPixelListStreamerTest, PixelBeyondAShortVectorIsWrittenWithAWholeOne) {
  TList3 list;
  Read(list, Version4(kStn, 1, {1, 0, 0}));
  list.Add(97);
  EXPECT_EQ(Written(list), Version4(kStn, 2, Words({1, 97})));
}

TEST_F(StnPixelListStreamerTest, PixelInsideAShortVectorLeavesItsSize) {
  TList3 list;
  Read(list, Version4(kStn, 1, {1, 0, 0}));
  list.Add(96);
  EXPECT_EQ(Written(list), Version4(kStn, 2, {1, 0, 0x80000000}));
}

TEST_F(StnPixelListStreamerTest, PixelBeyondAShortVectorReadsBack) {
  TList3 list, target;
  Read(list, Version2(1, {1}));
  list.Add(2880);
  Read(target, Written(list));
  EXPECT_EQ(target.GetPixels(), Pixels({1, 2880}));
}

TEST_F(StnPixelListStreamerTest, ClearMakesAShortVectorWhole) {
  TList3 list;
  Read(list, Version4(kStn, 1, {1}));
  list.Clear();
  EXPECT_EQ(Written(list).size(), size_t(kRecordSize));
}

TEST_F(StnPixelListStreamerTest, RemovePixelBeyondAShortVectorOnlyCounts) {
  TList3 list;
  Read(list, Version4(kStn, 1, {1}));
  list.Remove(2879);
  EXPECT_EQ(list.GetNumPixels(), 0U);
}

TEST_F(StnPixelListStreamerTest, CopiesOfAShortVectorAreWhole) {
  TList3 list, target({2880});
  Read(list, Version4(kStn, 1, {1}));
  TList3 copy(list);
  copy.Add(2880);
  EXPECT_EQ(copy.GetPixels(), Pixels({1, 2880}));
  target = list;
  EXPECT_EQ(target.GetPixels(), Pixels({1}));
}

TEST_F(StnPixelListStreamerTest, ComparesTheWordsOfTheListAtTheLeft) {
  TList3 whole({1, 2880}), part;
  Read(part, Version4(kStn, 1, {1}));
  EXPECT_TRUE(part == whole);
  EXPECT_FALSE(whole == part);
}

TEST_F(StnPixelListStreamerTest, ListsWithoutWordsAreEqual) {
  TList3 whole({1}), part;
  Read(part, Version4(kStn, 0, {}));
  EXPECT_TRUE(part == whole);
}

TEST_F(StnPixelListStreamerTest, ReadsALongVector) {
  std::vector<UInt_t> words(100);
  words[90] = 1;
  words[89] = 0x80000000;
  TList3 list;
  Read(list, Version4(kStn, 1, words));
  EXPECT_EQ(list.GetPixels(), Pixels({2880}));
  EXPECT_TRUE(list.Test(2880));
  list.Remove(2880);
  EXPECT_FALSE(list.Test(2880));
}

TEST_F(StnPixelListStreamerTest, CopiesALongVector) {
  std::vector<UInt_t> words(100);
  words[90] = 1;
  TList3 list, target;
  Read(list, Version4(kStn, 0, words));
  TList3 copy(list);
  target = list;
  EXPECT_TRUE(copy.Test(2880));
  EXPECT_TRUE(target.Test(2880));
  EXPECT_TRUE(copy == target);
}

TEST_F(StnPixelListStreamerTest, WordsThatAShorterListLacksCountAsZero) {
  std::vector<UInt_t> words(100);
  TList3 longer, whole;
  Read(longer, Version4(kStn, 0, words));
  EXPECT_TRUE(longer == whole);
  words[99] = 1;
  Read(longer, Version4(kStn, 0, words));
  EXPECT_FALSE(longer == whole);
}

// Damaged records of the present version

TEST_F(StnPixelListRefusalTest, RecordCutAnywhere) {
  TList3 source({7});
  const TBytes bytes = Written(source);
  for (Int_t size = 0; size < kRecordSize; ++size) {
    SCOPED_TRACE(size);
    ExpectRefusedWithSomeLine(bytes.substr(0, size), size);
  }
}

TEST_F(StnPixelListRefusalTest, ByteCountTooSmall) {
  TList3 source({7});
  const TBytes bytes = Written(source);
  for (UInt_t count = 1; count < kRecordSize - 4; ++count) {
    SCOPED_TRACE(count);
    ExpectRefusedWithSomeLine(TBytes(bytes).Set4(0, 0x40000000 | count), 4 + count);
  }
}

TEST_F(StnPixelListRefusalTest, ByteCountBeyondTheBuffer) {
  TList3 source({7});
  ExpectRefused(Written(source).Set4(0, 0x40000000 | 386), kRecordSize,
                "ERR:TStnPixelList::Streamer() - byte count: found 386, expected at most 385, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, ByteCountBeyondTheBufferAfterOtherRecords) {
  TList3 source({7}), target({5});
  const std::string before(20, 'x');
  EXPECT_EQ(Read(target, before + Written(source).Set4(0, 0x40000000 | 386), 20), 20 + kRecordSize);
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnPixelList::Streamer() - byte count: found 386, expected at most 385, record skipped\n");
  EXPECT_EQ(target.GetPixels(), Pixels({5}));
}

TEST_F(StnPixelListRefusalTest, RecordOfNothing) {
  ExpectRefused("", 0, "ERR:TStnPixelList::Streamer() - frame: found 0 bytes, expected at least 4, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, RecordThatEndsInItsObject) {
  ExpectRefused(Framed(4, Object().substr(0, 9)), 15,
                "ERR:TStnPixelList::Streamer() - TObject: found 9 bytes, expected at least 10, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, RecordThatEndsInTheByteCountOfItsObject) {
  ExpectRefused(Framed(4, TBytes().Add4(0x40000008).Add2(1).Add4(0).Add2(0)), 18,
                "ERR:TStnPixelList::Streamer() - TObject: found 12 bytes, expected at least 14, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, FrameThatEndsInItsVersion) {
  ExpectRefused(TBytes().Add4(0x40000002).Add1(0), 5,
                "ERR:TStnPixelList::Streamer() - frame: found 5 bytes, expected at least 6, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, FrameThatEndsInItsVersionAfterOtherRecords) {
  TList3 list({5});
  const std::string before(20, 'x');
  EXPECT_EQ(Read(list, before + TBytes().Add4(0x40000002).Add1(0), 20), 25);
  EXPECT_EQ(fLog.Take(), "ERR:TStnPixelList::Streamer() - frame: found 5 bytes, expected at least 6, record skipped\n");
  EXPECT_EQ(list.GetPixels(), Pixels({5}));
}

TEST_F(StnPixelListRefusalTest, RecordOfAFrameAlone) {
  ExpectRefused(Framed(4, ""), 6,
                "ERR:TStnPixelList::Streamer() - TObject: found 0 bytes, expected at least 10, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, RecordThatEndsInTheReferenceOfItsObject) {
  ExpectRefused(Framed(4, Object(TObject::kIsReferenced)), 16,
                "ERR:TStnPixelList::Streamer() - TObject: found 10 bytes, expected at least 12, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, RecordThatEndsBeforeTheMarkOfItsVector) {
  ExpectRefused(Framed(4, Object().Add4(2).Add4(1).Add4(1)), 28,
                "ERR:TStnPixelList::Streamer() - fPixelVector: found 0 bytes, expected at least 1, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, Version2ThatEndsInItsNumberOfPixels) {
  ExpectRefused(Framed(2, Object().Add2(0)), 18,
                "ERR:TStnPixelList::Streamer() - fNPixels: found 2 bytes, expected at least 4, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, Version2ThatEndsInTheSizeOfItsVector) {
  ExpectRefused(
      Framed(2, Object().Add4(1).Add2(0)), 22,
      "ERR:TStnPixelList::Streamer() - fPixelVectorSize: found 2 bytes, expected at least 4, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, RecordThatEndsInANumber) {
  ExpectRefused(Framed(4, Object().Add4(2).Add2(0)), 22,
                "ERR:TStnPixelList::Streamer() - fNPixels: found 2 bytes, expected at least 4, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, VectorThatIsMarkedAsAbsent) {
  TList3 source({7});
  TBytes bytes = Written(source);
  bytes[28] = 0;
  ExpectRefused(bytes, kRecordSize,
                "ERR:TStnPixelList::Streamer() - fPixelVector: found 0, expected 1, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, VectorSizeOneTooLarge) {
  TList3 source({7});
  ExpectRefused(Written(source).Set4(24, 91), kRecordSize,
                "ERR:TStnPixelList::Streamer() - fPixelVectorSize: found 91, expected at most 90, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, VectorSizesOfDamagedFiles) {
  TList3 source({7});
  for (UInt_t size : {0x40000000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    ExpectRefused(Written(source).Set4(24, size), kRecordSize,
                  "ERR:TStnPixelList::Streamer() - fPixelVectorSize: found " + std::to_string(size) +
                      ", expected at most 90, record skipped\n");
  }
}

TEST_F(StnPixelListRefusalTest, VectorSizeThatFitsTheBufferButNotTheRecord) {
  TList3 source({7});
  ExpectRefused(Written(source).Set4(24, 91).append(100, '\0'), kRecordSize,
                "ERR:TStnPixelList::Streamer() - fPixelVectorSize: found 91, expected at most 90, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, FlagWordThatMakesTheObjectLonger) {
  const UInt_t flags = TObject::kIsReferenced;
  TList3 source({7});
  TBytes bytes = Written(source);
  ExpectRefusedWithSomeLine(bytes.Set4(12, flags), kRecordSize);
}

TEST_F(StnPixelListStreamerTest, RecordAfterARefusedOneIsRead) {
  TList3 source({7}), target;
  TGuarded guarded(Written(source).Set4(24, 5000) + Written(source));
  TBufferFile b(TBuffer::kRead, 2 * kRecordSize, guarded.Get(), false);
  target.Streamer(b);
  EXPECT_EQ(target.GetPixels(), Pixels({}));
  target.Streamer(b);
  EXPECT_EQ(target.GetPixels(), Pixels({7}));
}

// Version 2

TEST_F(StnPixelListStreamerTest, ReadsVersion2) {
  TStnPixelList list;
  std::vector<UInt_t> words(90);
  words[0] = 1;
  words[89] = 0x80000000;
  EXPECT_EQ(Read(list, Version2(2, words)), 6 + 10 + 8 + 360);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetNumPixels(), 2U);
  EXPECT_EQ(VdUtil::Vd::GetStnPixelNo(list.GetPixel(0)), 1U);
  EXPECT_EQ(VdUtil::Vd::GetStnPixelNo(list.GetPixel(1)), 2880U);
}

TEST_F(StnPixelListStreamerTest, NewListReadFromVersion2HasTheStationOfTheHost) {
  TStnPixelList list;
  Read(list, Version2(0, std::vector<UInt_t>(90)));
  EXPECT_EQ(list.GetStnNo(), 4U);
}

TEST_F(StnPixelListStreamerTest, Version2LeavesTheStation) {
  TList3 list;
  Read(list, Version2(0, std::vector<UInt_t>(90)));
  EXPECT_EQ(list.GetStnNo(), kStn);
  EXPECT_EQ(list.GetStreamerVersion(), 2);
}

TEST_F(StnPixelListStreamerTest, Version2IsReportedAtPrintLevel1) {
  TList3 list;
  TStnEvent::fgPrintLevel = 1;
  Read(list, Version2(0, std::vector<UInt_t>(90)));
  EXPECT_EQ(fLog.Take(), "INF:TStnPixelList::Streamer() - fix for version= 2 !\n");
}

TEST_F(StnPixelListStreamerTest, Version2IsReportedInFullAtPrintLevel2) {
  TList3 list;
  TStnEvent::fgPrintLevel = 2;
  Read(list, Version2(0, std::vector<UInt_t>(90)));
  EXPECT_EQ(fLog.Take(),
            "INF:TStnPixelList::Streamer() - fix for version= 2 !\n"
            "INF:TStnPixelList::Streamer() - read fStreamerVersion= 2, fStnNo= 2\n");
}

TEST_F(StnPixelListStreamerTest, ReadsVersion2WithoutAByteCount) {
  TList3 list;
  TBytes bytes;
  bytes.Add2(2) += Content2(1, {4});
  EXPECT_EQ(Read(list, bytes), Int_t(bytes.size()));
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetPixels(), Pixels({3}));
}

TEST_F(StnPixelListStreamerTest, ReadsVersion2WithAByteCountInItsObject) {
  TList3 list;
  TBytes content;
  content.Add4(0x4000000A).Add2(1).Add4(0).Add4(0).Add4(1).Add4(1).Add4(4);
  Read(list, Framed(2, content));
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetPixels(), Pixels({3}));
}

TEST_F(StnPixelListStreamerTest, ListWithAShortVersion2VectorTakesEveryPixel) {
  TList3 list({2880});
  Read(list, Version2(1, {4}));
  EXPECT_EQ(list.GetPixels(), Pixels({3}));
  TList3 fresh;
  Read(fresh, Version2(1, {4}));
  fresh.Add(2880);
  EXPECT_EQ(fresh.GetPixels(), Pixels({3, 2880}));
}

TEST_F(StnPixelListStreamerTest, ReadsALongVersion2Vector) {
  std::vector<UInt_t> words(100);
  words[90] = 1;
  TList3 list;
  Read(list, Version2(0, words));
  EXPECT_TRUE(list.Test(2880));
}

TEST_F(StnPixelListRefusalTest, Version2CutAnywhere) {
  const TBytes bytes = Version2(1, std::vector<UInt_t>(90, 1));
  for (size_t size = 0; size < bytes.size(); ++size) {
    SCOPED_TRACE(size);
    ExpectRefusedWithSomeLine(bytes.substr(0, size), size);
  }
}

TEST_F(StnPixelListRefusalTest, Version2WithoutAByteCountCutAnywhere) {
  TBytes bytes;
  bytes.Add2(2) += Content2(1, {1, 2, 3});
  for (size_t size = 0; size < bytes.size(); ++size) {
    SCOPED_TRACE(size);
    ExpectRefusedWithSomeLine(bytes.substr(0, size), size);
  }
}

TEST_F(StnPixelListRefusalTest, Version2WithAVectorSizeTooLarge) {
  ExpectRefused(Version2(1, std::vector<UInt_t>(90, 1)).Set4(20, 91), 384,
                "ERR:TStnPixelList::Streamer() - fPixelVectorSize: found 91, expected at most 90, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, Version2WithAFlagWordThatMakesTheObjectLonger) {
  ExpectRefused(
      Version2(1, std::vector<UInt_t>(90, 1)).Set4(12, TObject::kIsReferenced), 384,
      "ERR:TStnPixelList::Streamer() - fPixelVectorSize: found 5898240, expected at most 89, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, Version2WithoutAByteCountOfFourBytes) {
  ExpectRefused(TBytes().Add2(2).Add2(1), 4,
                "ERR:TStnPixelList::Streamer() - TObject: found 2 bytes, expected at least 10, record skipped\n");
}

TEST_F(StnPixelListStreamerTest, Version2EndsWhereItsByteCountSays) {
  TList3 list;
  const TBytes bytes = Framed(2, Content2(1, {1}) + "more");
  EXPECT_EQ(Read(list, bytes), Int_t(bytes.size()));
  EXPECT_EQ(list.GetPixels(), Pixels({1}));
}

// Versions that cannot be read

TEST_F(StnPixelListStreamerTest, RefusesVersion1WhereItStands) {
  TList3 list({5});
  EXPECT_EQ(Read(list, Framed(1, Content2(1, {1}))), 6);
  EXPECT_EQ(fLog.Take(), "ERR:TStnPixelList::Streamer() - version == 1 not streamable !\n");
  EXPECT_EQ(list.GetPixels(), Pixels({5}));
  EXPECT_EQ(list.GetStreamerVersion(), 1);
}

TEST_F(StnPixelListStreamerTest, RefusesVersion1WithoutAByteCount) {
  TList3 list({5});
  EXPECT_EQ(Read(list, TBytes().Add2(1).Add2(0)), 2);
  EXPECT_EQ(fLog.Take(), "ERR:TStnPixelList::Streamer() - version == 1 not streamable !\n");
}

TEST_F(StnPixelListStreamerTest, RefusesVersion0AfterItsChecksum) {
  TList3 list({5});
  EXPECT_EQ(Read(list, Framed(0, TBytes().Add4(1234))), 10);
  EXPECT_EQ(fLog.Take(), "ERR:TStnPixelList::Streamer() - version == 1 not streamable !\n");
  EXPECT_EQ(list.GetPixels(), Pixels({5}));
}

TEST_F(StnPixelListStreamerTest, RefusedVersionIsReportedAtPrintLevel2) {
  TList3 list;
  TStnEvent::fgPrintLevel = 2;
  Read(list, Framed(1, Content2(1, {1})));
  EXPECT_EQ(fLog.Take(),
            "ERR:TStnPixelList::Streamer() - version == 1 not streamable !\n"
            "INF:TStnPixelList::Streamer() - read fStreamerVersion= 1, fStnNo= 2\n");
}

TEST_F(StnPixelListRefusalTest, ChecksumThatIsCut) {
  const std::string line =
      "ERR:TStnPixelList::Streamer() - frame: found %d bytes, expected at least 10, record skipped\n";
  for (UInt_t version : {0U, 0x8000U, 0xFFFFU}) {
    ExpectRefused(Framed(version, ""), 6, Form(line.c_str(), 6));
    ExpectRefused(Framed(version, "abc"), 9, Form(line.c_str(), 9));
  }
}

TEST_F(StnPixelListRefusalTest, VersionsAbove255HaveNoChecksum) {
  const Int_t level = gErrorIgnoreLevel;
  gErrorIgnoreLevel = kFatal;
  TList3 list({5});
  EXPECT_EQ(Read(list, Framed(256, "")), 6);
  Read(list, TBytes().Add2(256).Add2(0));
  EXPECT_EQ(fLog.Take(), "");
  gErrorIgnoreLevel = level;
}

// Versions that only a description tells

/// Adds the description of another version to those that the class knows.
class TDescription {
 public:
  explicit TDescription(Int_t version) : fInfo(new TStreamerInfo(TStnPixelList::Class())), fVersion(version) {
    fInfo->SetClassVersion(version);
    auto* base = new TStreamerBase("TObject", "Basic ROOT object", 0);
    base->SetBaseVersion(1);
    fInfo->GetElements()->Add(base);
  }
  TDescription& Add(TStreamerElement* element) {
    fInfo->GetElements()->Add(element);
    return *this;
  }
  TDescription& AddNumber(const char* name, Int_t type, const char* type_name, Int_t size) {
    auto* number = new TStreamerBasicType(name, "", 0, type, type_name);
    number->SetSize(size);
    return Add(number);
  }
  TDescription& AddSize() { return AddNumber("fPixelVectorSize", TStreamerInfo::kUInt, "UInt_t", 4); }
  TDescription& AddVector() {
    auto* vector = new TStreamerBasicPointer("fPixelVector", "[fPixelVectorSize]", 0, TStreamerInfo::kUInt,
                                             "fPixelVectorSize", "TStnPixelList", fVersion, "UInt_t*");
    vector->SetSize(sizeof(UInt_t*));
    return Add(vector);
  }
  void Register() { TStnPixelList::Class()->RegisterStreamerInfo(fInfo); }

 private:
  TStreamerInfo* fInfo;  // belongs to the class once it is registered
  Int_t fVersion;
};

void DescribeVersion3() {
  if (TStnPixelList::Class()->GetStreamerInfos()->At(3)) return;
  TDescription(3).AddNumber("fNPixels", TStreamerInfo::kUInt, "UInt_t", 4).AddSize().AddVector().Register();
}

TEST_F(StnPixelListStreamerTest, ReadsVersion3ByItsDescription) {
  DescribeVersion3();
  TList3 list({2880});
  const TBytes bytes = Framed(3, Object().Add4(1).Add4(2).Add1(1).AddWords({0, 1}));
  EXPECT_EQ(Read(list, bytes), Int_t(bytes.size()));
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetStnNo(), kStn);
  EXPECT_EQ(list.GetPixels(), Pixels({33}));
  EXPECT_EQ(list.GetStreamerVersion(), 3);
}

TEST_F(StnPixelListRefusalTest, Version3CutAnywhere) {
  DescribeVersion3();
  const TBytes bytes = Framed(3, Object().Add4(1).Add4(2).Add1(1).AddWords({0, 1}));
  for (size_t size = 0; size < bytes.size(); ++size) {
    SCOPED_TRACE(size);
    ExpectRefusedWithSomeLine(bytes.substr(0, size), size);
  }
}

TEST_F(StnPixelListRefusalTest, Version3WithAVectorSizeTooLarge) {
  DescribeVersion3();
  ExpectRefused(Framed(3, Object().Add4(1).Add4(3).Add1(1).AddWords({0, 1})), 33,
                "ERR:TStnPixelList::Streamer() - fPixelVectorSize: found 3, expected at most 2, record skipped\n");
}

TEST_F(StnPixelListStreamerTest, DescriptionDecidesTheTypeOnFile) {
  TDescription(5)
      .AddNumber("fStnNo", TStreamerInfo::kUShort, "UShort_t", 2)
      .AddNumber("fNPixels", TStreamerInfo::kUInt, "UInt_t", 4)
      .AddSize()
      .AddVector()
      .Register();
  TList3 list;
  Read(list, Framed(5, Object().Add2(4).Add4(1).Add4(1).Add1(1).AddWords({2})));
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetStnNo(), 5U);
  EXPECT_EQ(list.GetPixels(), Pixels({2}));
}

TEST_F(StnPixelListStreamerTest, SizeOfTheVectorNeedNotStandRightBeforeIt) {
  TDescription(14).AddSize().AddNumber("fNPixels", TStreamerInfo::kUInt, "UInt_t", 4).AddVector().Register();
  TList3 list;
  Read(list, Framed(14, Object().Add4(1).Add4(2).Add1(1).AddWords({3})));
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetPixels(), Pixels({1, 2}));
}

TEST_F(StnPixelListRefusalTest, DescriptionWithoutAVector) {
  TDescription(6).AddNumber("fNPixels", TStreamerInfo::kUInt, "UInt_t", 4).AddSize().Register();
  ExpectRefused(Framed(6, Object().Add4(1).Add4(0)), 24,
                "ERR:TStnPixelList::Streamer() - fPixelVector: found none in the description of the record, expected "
                "an array of fPixelVectorSize words, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, DescriptionWithAVectorBeforeItsSize) {
  TDescription(8).AddNumber("fNPixels", TStreamerInfo::kUInt, "UInt_t", 4).AddVector().AddSize().Register();
  ExpectRefused(Framed(8, Object().Add4(0).Add1(1).Add4(0)), 25,
                "ERR:TStnPixelList::Streamer() - fPixelVector: found a member of unknown size before fPixelVector, "
                "expected numbers only, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, DescriptionWithAMemberOfUnknownSize) {
  TDescription(7).Add(new TStreamerString("fName", "", 0)).AddSize().AddVector().Register();
  ExpectRefused(Framed(7, Object().Add1(0).Add4(0).Add1(1)), 22,
                "ERR:TStnPixelList::Streamer() - fName: found a member of unknown size before fPixelVector, expected "
                "numbers only, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, MemberBehindTheVectorThatIsNotThere) {
  TDescription(15)
      .AddNumber("fNPixels", TStreamerInfo::kUInt, "UInt_t", 4)
      .AddSize()
      .AddVector()
      .AddNumber("fMore", TStreamerInfo::kUInt, "UInt_t", 4)
      .Register();
  ExpectRefused(Framed(15, Object().Add4(1).Add4(2).Add1(1).AddWords({3, 0})), 33,
                "ERR:TStnPixelList::Streamer() - fMore: found 0 bytes, expected at least 4, record skipped\n");
}

TEST_F(StnPixelListRefusalTest, DescriptionThatTakesThePlaceOfAnother) {
  TDescription description(16);
  description.AddNumber("fNPixels", TStreamerInfo::kUInt, "UInt_t", 4).AddSize().AddVector().Register();
  const TBytes bytes = Framed(16, Object().Add4(1).Add4(2).Add1(1).AddWords({4, 0}));
  TList3 list;
  Read(list, bytes);
  EXPECT_EQ(list.GetPixels(), Pixels({3}));
  description.AddNumber("fMore", TStreamerInfo::kUInt, "UInt_t", 4);
  static_cast<TStreamerInfo*>(TStnPixelList::Class()->GetStreamerInfos()->At(16))->SetCheckSum(1);
  ExpectRefused(bytes, 33,
                "ERR:TStnPixelList::Streamer() - fMore: found 0 bytes, expected at least 4, record skipped\n");
}

TEST_F(StnPixelListStreamerTest, MemberOfAnUnknownKindBehindTheVectorIsLeftToRoot) {
  TDescription(17)
      .AddNumber("fNPixels", TStreamerInfo::kUInt, "UInt_t", 4)
      .AddSize()
      .AddVector()
      .AddNumber("fWeight", TStreamerInfo::kDouble32, "Double32_t", 8)
      .Register();
  TList3 list;
  Read(list, Framed(17, Object().Add4(1).Add4(2).Add1(1).AddWords({4, 0}).Add4(0)));
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetPixels(), Pixels({3}));
}

TEST_F(StnPixelListStreamerTest, RecordThatNothingDescribesIsSkippedByRoot) {
  const Int_t level = gErrorIgnoreLevel;
  gErrorIgnoreLevel = kFatal;
  for (UInt_t version : {9U, 12U, 100U, 32767U}) {
    TList3 list({5, 2880});
    const TBytes bytes = Framed(version, Object().Add4(1).Add4(0));
    EXPECT_EQ(Read(list, bytes), Int_t(bytes.size()));
    EXPECT_EQ(list.GetPixels(), Pixels({5, 2880}));
    EXPECT_EQ(list.GetStreamerVersion(), Int_t(version));
  }
  gErrorIgnoreLevel = level;
}

}  // namespace
