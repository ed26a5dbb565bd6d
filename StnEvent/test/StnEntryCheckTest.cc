#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>

#include <LogCapture.h>
#include <MirrorEvents.h>
#include <RecordBuffers.h>

#include <TError.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>

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

  /// Overwrites the 32 bits so many bytes from the name of a class in its entry of the first event.
  static void Damage(const std::string& class_name, int offset, UInt_t value) {
    std::ifstream in(kFile, std::ios::binary);
    Bytes bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const std::string tag = "\xff\xff\xff\xff" + class_name + '\0';
    const auto entry = std::search(bytes.begin(), bytes.end(), tag.begin(), tag.end());
    ASSERT_NE(entry, bytes.end());
    Put(bytes, entry - bytes.begin() + 4 + offset, value, 4);
    std::ofstream(kFile, std::ios::binary).write(bytes.data(), bytes.size());
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

}  // namespace
