#include <StnEvent/StnEntryCheck.h>

#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>

#include <LogCapture.h>
#include <Members.h>
#include <MirrorEvents.h>
#include <RecordBuffers.h>

#include <TBasket.h>
#include <TBranch.h>
#include <TError.h>
#include <TTree.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
using Unwatched = __lsan::ScopedDisabler;
#else
/// What is allocated during its life may be lost.
struct Unwatched {
  Unwatched() {}
};
#endif

namespace {

const char* const kFile = "damaged.root";
const UInt_t kByteCountFlag = 0x40000000;

/// Two events in a file without compression, whose bytes a test damages.
class StnEntryCheckTest : public testing::Test {
 protected:
  StnEntryCheckTest() : fErrorLevel(gErrorIgnoreLevel) {
    gErrorIgnoreLevel = kFatal;
    TStnEventFile file(kFile, "RECREATE", "", 0);
    TStnEvent the_event;
    TStnEvent* event = &the_event;
    for (UInt_t number : {11U, 12U}) {
      event->Clear();
      event->AddEvent(MakeMirrorEvent(2, 3).get());
      event->GetEventHeader()->SetEventNo(number);
      file.WriteEvent(&event);
    }
    file.Close();
  }
  ~StnEntryCheckTest() override {
    delete fEvent;
    gErrorIgnoreLevel = fErrorLevel;
  }

  static TBranch& GetBranch(TFile& file, const char* name) { return *file.Get<TTree>("StnEventTree")->GetBranch(name); }

  static Bytes Load() {
    std::ifstream in(kFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  static void Save(const Bytes& bytes) { std::ofstream(kFile, std::ios::binary).write(bytes.data(), bytes.size()); }

  /// Overwrites the 32 bits so many bytes from the name of a class in its entry of the first event.
  static void Damage(const std::string& class_name, int offset, UInt_t value) {
    Bytes bytes = Load();
    const std::string tag = "\xff\xff\xff\xff" + class_name + '\0';
    const auto entry = std::search(bytes.begin(), bytes.end(), tag.begin(), tag.end());
    ASSERT_NE(entry, bytes.end());
    Put(bytes, entry - bytes.begin() + 4 + offset, value, 4);
    Save(bytes);
  }

  /// Overwrites numbers of the table behind the entries of a branch: how many there are, and where each begins.
  static void DamageTable(const std::vector<std::pair<size_t, UInt_t>>& numbers, const char* branch = "fPixelList") {
    Bytes bytes = Load();
    {
      TStnEventFile file(kFile);
      const TBasket& basket = *GetBranch(file, branch).GetBasket(0);
      for (const auto& [index, number] : numbers)
        Put(bytes, basket.GetSeekKey() + basket.GetLast() + 4 * index, number, 4);
    }
    Save(bytes);
  }

  /// Whether the pixel list of an entry is sound, and what is said of it.
  static std::pair<bool, std::string> Check(Long64_t entry) {
    TStnEventFile file(kFile);
    LogCapture log;
    const bool is_sound = IsEntrySound(GetBranch(file, "fPixelList"), entry);
    return {is_sound, log.Take()};
  }

  static std::pair<bool, std::string> NoPlace(const char* entry) {
    return {false, std::string("ERR:TStnPixelList::Streamer() - place of entry ") + entry +
                       ": found none, expected one inside its basket, record skipped\n"};
  }

  void ExpectLeftOut(const std::string& branch, const std::string& complaint) {
    TStnEventFile file(kFile);
    LogCapture log;
    ASSERT_TRUE(file.ReadEvent(&fEvent));
    EXPECT_EQ(log.Take(), "ERR:" + complaint +
                              ", record skipped\nERR:TStnEventFile::ReadEvent() - file 'damaged.root', entry 0: '" +
                              branch + "' is damaged, not read\n");
  }

  Int_t fErrorLevel;
  TStnEvent* fEvent = nullptr;
};

TEST_F(StnEntryCheckTest, SoundFileIsReadWithoutAWord) {
  TStnEventFile file(kFile);
  LogCapture log;
  ASSERT_TRUE(file.ReadEvent(&fEvent));
  EXPECT_EQ(fEvent->GetFADCData()->GetNTraces(), 3U);
  EXPECT_EQ(log.Take(), "");
}

TEST_F(StnEntryCheckTest, TracesThatGoOnBehindTheirEntryAreLeftOut) {
  Damage("TStnFADCData", -8, kByteCountFlag | 30000);
  ExpectLeftOut("fFADCData", "TStnFADCData::Streamer() - byte count of object: found 30000, expected 4 to 6495");
  EXPECT_EQ(fEvent->GetFADCData()->GetNTraces(), 0U);
  EXPECT_EQ(fEvent->GetEventHeader()->GetEventNo(), 11U);
  EXPECT_EQ(fEvent->GetPixelList()->GetNumPixels(), 3U);
}

TEST_F(StnEntryCheckTest, WholeEventsAreReadAfterADamagedOne) {
  Damage("TStnFADCData", -8, kByteCountFlag | 30000);
  TStnEventFile file(kFile);
  const LogCapture log;
  ASSERT_TRUE(file.ReadEvent(&fEvent));
  ASSERT_TRUE(file.ReadEvent(&fEvent));
  EXPECT_EQ(fEvent->GetEventHeader()->GetEventNo(), 12U);
  EXPECT_EQ(fEvent->GetFADCData()->GetNTraces(), 3U);
}

TEST_F(StnEntryCheckTest, ArrayOfTooManyTracesIsLeftOut) {
  Damage("TObjArray", 10 + 6 + 10 + 1, 0x7FFFFFFF);
  ExpectLeftOut("fFADCData", "TFADCData::Streamer() - object: found 0 bytes, expected at least 4");
}

TEST_F(StnEntryCheckTest, ListOfAnotherClassIsLeftOut) {
  Damage("TStnPixelList", 4, 0x54455354);
  ExpectLeftOut("fPixelList", "TStnPixelList::Streamer() - class: found TStnTESTlList, expected TStnPixelList");
  EXPECT_EQ(fEvent->GetFADCData()->GetNTraces(), 3U);
}

TEST_F(StnEntryCheckTest, PixelDataWithAWildClassTagIsLeftOut) {
  Damage("TMirrorPixelData", -4, 0x8000FFFF);
  ExpectLeftOut("fPixelData",
                "TMirrorPixelData::Streamer() - class tag: found 2147549183, expected that of TMirrorPixelData");
}

TEST_F(StnEntryCheckTest, HeaderThatEndsTooEarlyIsLeftOut) {
  Damage("TStnEventHeader", -8, kByteCountFlag | 3);
  ExpectLeftOut("fEventHeader", "TStnEventHeader::Streamer() - byte count of object: found 3, expected 4 to 455");
  EXPECT_EQ(fEvent->GetEventHeader()->GetEventNo(), 0U);
}

TEST_F(StnEntryCheckTest, DamagedHeaderIsNotReadAlone) {
  Damage("TStnEventHeader", -8, kByteCountFlag | 30000);
  TStnEventFile file(kFile);
  TStnEventHeader* header = nullptr;
  LogCapture log;
  EXPECT_FALSE(file.ReadEventHeader(&header));
  EXPECT_EQ(
      log.Take(),
      "ERR:TStnEventHeader::Streamer() - byte count of object: found 30000, expected 4 to 455, record skipped\n"
      "ERR:TStnEventFile::ReadEventHeader() - file 'damaged.root', entry 0: 'fEventHeader' is damaged, not read\n");
  EXPECT_EQ(header, nullptr);
  EXPECT_EQ(file.GetCurrentEntryId(), 0U);
  file.Seek(1);
  ASSERT_TRUE(file.ReadEventHeader(&header));
  EXPECT_EQ(header->GetEventNo(), 12U);
}

TEST_F(StnEntryCheckTest, EntryThatIsNotThereIsSound) {
  TStnEventFile file(kFile);
  for (Long64_t entry : {-1, 2})
    EXPECT_TRUE(IsEntrySound(GetBranch(file, "fPixelList"), entry));
  EXPECT_TRUE(IsEntrySound(GetBranch(file, "StnEvent"), 0));
}

TEST_F(StnEntryCheckTest, EntryThatIsOnlyInMemoryIsSound) {
  TStnEventFile file("written.root", "RECREATE");
  TStnEvent the_event;
  TStnEvent* event = &the_event;
  file.WriteEvent(&event);
  EXPECT_TRUE(IsEntrySound(GetBranch(file, "fPixelList"), 0));
}

TEST_F(StnEntryCheckTest, EntriesOfEachOfSeveralBasketsAreLookedAt) {
  {
    TStnEventFile file("baskets.root", "RECREATE");
    TStnEvent the_event;
    TStnEvent* event = &the_event;
    for (UInt_t number = 0; number < 7; ++number) {
      file.WriteEvent(&event);
      if (number % 3 == 2) file.Get<TTree>("StnEventTree")->FlushBaskets();
    }
  }
  TStnEventFile file("baskets.root");
  LogCapture log;
  TBranch& branch = GetBranch(file, "fPixelList");
  for (Long64_t entry = 0; entry < 7; ++entry)
    EXPECT_TRUE(IsEntrySound(branch, entry));
  EXPECT_EQ(log.Take(), "");
  // Where the last basket's only entry begins.
  const_cast<Int_t*>(branch.GetBasket(2)->GetEntryOffset())[0] = 1;
  EXPECT_FALSE(IsEntrySound(branch, 6));
  EXPECT_TRUE(IsEntrySound(branch, 5));
}

TEST_F(StnEntryCheckTest, EntryOfABranchThatIsDamagedItselfIsLeftToRoot) {
  TStnEventFile file(kFile);
  TBranch& branch = GetBranch(file, "fPixelList");
  auto& last = Member<Int_t>(branch, "fWriteBasket", TBranch::Class());
  for (Int_t wrong : {-1, -(1 << 28), 1 << 28}) {
    last = wrong;
    EXPECT_TRUE(IsEntrySound(branch, 0)) << wrong;
  }
  last = 1;
  auto& first_entries = Member<Long64_t*>(branch, "fBasketEntry", TBranch::Class());
  Long64_t* const there = std::exchange(first_entries, nullptr);
  EXPECT_TRUE(IsEntrySound(branch, 0));
  first_entries = there;
}

TEST_F(StnEntryCheckTest, EntryOfABasketThatRootCannotReadIsLeftToIt) {
  const Unwatched memory;  // ROOT loses a basket that it can't read
  TStnEventFile file(kFile);
  TBranch& branch = GetBranch(file, "fPixelList");
  Member<Long64_t*>(branch, "fBasketSeek", TBranch::Class())[0] = 1 << 28;
  EXPECT_TRUE(IsEntrySound(branch, 0));
}

TEST_F(StnEntryCheckTest, EntryThatItsBasketDoesNotCountIsRefused) {
  Bytes bytes = Load();
  {
    TStnEventFile file(kFile);
    const TBasket& basket = *GetBranch(file, "fPixelList").GetBasket(0);
    Put(bytes, basket.GetSeekKey() + basket.GetKeylen() - 9, 1, 4);
  }
  Save(bytes);
  EXPECT_EQ(Check(0), std::pair(true, std::string()));
  EXPECT_EQ(Check(1), NoPlace("1"));
}

TEST_F(StnEntryCheckTest, TableOfAllEntriesIsEnough) {
  DamageTable({{0, 2}});
  EXPECT_EQ(Check(0), std::pair(true, std::string()));
  EXPECT_EQ(Check(1), std::pair(true, std::string()));
}

TEST_F(StnEntryCheckTest, TableOfFewerEntriesIsRefused) {
  DamageTable({{0, 1}});
  EXPECT_EQ(Check(0), NoPlace("0"));
  EXPECT_EQ(Check(1), NoPlace("1"));
}

TEST_F(StnEntryCheckTest, EntryBeforeTheFirstIsRefused) {
  DamageTable({{1, 20}});
  EXPECT_EQ(Check(0), NoPlace("0"));
  EXPECT_EQ(Check(1), std::pair(true, std::string()));
}

TEST_F(StnEntryCheckTest, EntryBehindTheLastIsRefused) {
  DamageTable({{2, 60000}});
  EXPECT_EQ(Check(0), NoPlace("0"));
  EXPECT_EQ(Check(1), NoPlace("1"));
}

TEST_F(StnEntryCheckTest, EntryThatEndsBeforeItBeginsIsRefused) {
  DamageTable({{2, 20}});
  EXPECT_EQ(Check(0), NoPlace("0"));
  EXPECT_EQ(Check(1), NoPlace("1"));
}

TEST_F(StnEntryCheckTest, EntryOfNoBytesHasAPlaceButNoRecord) {
  UInt_t begin;
  {
    TStnEventFile file(kFile);
    begin = GetBranch(file, "fPixelList").GetBasket(0)->GetKeylen();
  }
  DamageTable({{2, begin}});
  EXPECT_EQ(Check(0), std::pair(false, std::string("ERR:TStnPixelList::Streamer() - object: found 0 bytes, expected at "
                                                   "least 4, record skipped\n")));
}

TEST_F(StnEntryCheckTest, PlaceOfTheEventsOwnPartOutsideItsBasketIsNotRead) {
  DamageTable({{1, 1 << 24}}, "TObject");
  ExpectLeftOut("TObject", "TObject::Streamer() - place of entry 0: found none, expected one inside its basket");
  EXPECT_EQ(fEvent->GetEventHeader()->GetEventNo(), 11U);
  EXPECT_EQ(fEvent->GetFADCData()->GetNTraces(), 3U);
}

TEST_F(StnEntryCheckTest, EventsOwnPartThatIsCutIsNotRead) {
  Int_t begin;
  {
    TStnEventFile file(kFile);
    begin = GetBranch(file, "TObject").GetBasket(0)->GetKeylen();
  }
  DamageTable({{2, begin + 9}}, "TObject");
  ExpectLeftOut("TObject", "TObject::Streamer() - TObject: found 9 bytes, expected at least 10");
  EXPECT_EQ(fEvent->GetEventHeader()->GetEventNo(), 11U);
}

TEST_F(StnEntryCheckTest, ClassThatOnlyTheEventBeforeNamedIsRefused) {
  Bytes bytes = Load();
  const std::string name = std::string("\xff\xff\xff\xffTMirrorPixelData") + '\0';
  const auto first = std::search(bytes.begin(), bytes.end(), name.begin(), name.end());
  const auto second = std::search(first + 1, bytes.end(), name.begin(), name.end());
  ASSERT_NE(second, bytes.end());
  Long64_t basket;
  {
    TStnEventFile file(kFile);
    basket = GetBranch(file, "fPixelData").GetBasketSeek(0);
  }
  const UInt_t tag = 0x80000000 | (first - bytes.begin() - basket + 2);
  Put(bytes, second - bytes.begin(), tag, 4);
  Save(bytes);
  TStnEventFile file(kFile);
  LogCapture log;
  ASSERT_TRUE(file.ReadEvent(&fEvent));
  EXPECT_EQ(log.Take(), "");
  ASSERT_TRUE(file.ReadEvent(&fEvent));
  EXPECT_EQ(log.Take(),
            "ERR:TMirrorPixelData::Streamer() - class tag: found " + std::to_string(tag) +
                ", expected that of TMirrorPixelData, record skipped\n"
                "ERR:TStnEventFile::ReadEvent() - file 'damaged.root', entry 1: 'fPixelData' is damaged, not "
                "read\n");
}

}  // namespace
