#include <StnEvent/StnEvent.h>

#include <LogCapture.h>
#include <Members.h>
#include <MirrorEvents.h>
#include <RecordBuffers.h>

#include <TError.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

/// An event whose record has each part: a mirror with three traces, T3, trigger and geometry data.
void Fill(TStnEvent& event) {
  event.AddEvent(MakeMirrorEvent(2, 1).get());
  event.GetT3Data();
  event.GetTriggerData();
  event.GetGeometryData();
}

/// Where a text begins in a record.
size_t Find(const Bytes& bytes, const std::string& text) {
  return std::search(bytes.begin(), bytes.end(), text.begin(), text.end()) - bytes.begin();
}

/// Where the frame of the first object of a class begins.
size_t FindRecord(const Bytes& bytes, const std::string& class_name) {
  return Find(bytes, class_name + '\0') + class_name.size() + 1;
}

class DamagedRecordTest : public testing::Test {
 protected:
  DamagedRecordTest() : fErrorLevel(gErrorIgnoreLevel) {
    gErrorIgnoreLevel = kFatal;
    Fill(fEvent);
    fBytes = ToBytes(fEvent);
  }
  ~DamagedRecordTest() override { gErrorIgnoreLevel = fErrorLevel; }

  /// The record is refused with this line, and the event stays empty.
  void ExpectRefused(const std::string& line) {
    TStnEvent event;
    EXPECT_EQ(FromBytes(fBytes, event), Int_t(fBytes.size()));
    EXPECT_EQ(fLog.Take(), "ERR:" + line + ", record skipped\n");
    EXPECT_EQ(Member<void*>(event, "fFADCData"), nullptr);
  }

  /// Where the byte count of the pointer to the first object of a class stands.
  size_t FindPointer(const std::string& class_name) const { return Find(fBytes, class_name + '\0') - 8; }

  /// The byte count of the pointer says that the object ends so many bytes behind the name of its class.
  void CutObject(const std::string& class_name, size_t n_bytes) {
    Put(fBytes, FindPointer(class_name), 0x40000000 | (4 + class_name.size() + 1 + n_bytes), 4);
  }

  /// The record of the event ends here.
  void CutEvent(size_t size) {
    fBytes.resize(size);
    Put(fBytes, 0, 0x40000000 | (size - 4), 4);
  }

  Int_t fErrorLevel;
  LogCapture fLog;
  TStnEvent fEvent;
  Bytes fBytes;
};

// Whatever byte is damaged, nothing outside of the record is read: behind it lies memory that may not be.

class DamagedByteTest : public DamagedRecordTest, public testing::WithParamInterface<int> {};

TEST_P(DamagedByteTest, OfAnEventIsSurvived) {
  for (size_t i = 0; i < fBytes.size(); ++i) {
    Bytes damaged = fBytes;
    damaged[i] ^= GetParam();
    TStnEvent event;
    FromBytes(damaged, event);
  }
}

TEST_P(DamagedByteTest, OfAnEventHeaderIsSurvived) {
  const Bytes bytes = ToBytes(*fEvent.GetEventHeader());
  for (size_t i = 0; i < bytes.size(); ++i) {
    Bytes damaged = bytes;
    damaged[i] ^= GetParam();
    TStnEventHeader header;
    FromBytes(damaged, header);
  }
}

INSTANTIATE_TEST_SUITE_P(Bits, DamagedByteTest, testing::Values(0x01, 0x10, 0x40, 0x80, 0xFF));

// What is said of each kind of damage

TEST_F(DamagedRecordTest, TimeStampOfAHeaderThatIsTooLongIsRefused) {
  Bytes bytes = ToBytes(*fEvent.GetEventHeader());
  const size_t stamp = Find(bytes, std::string("\x40\0\0\x0a\0\1", 6));
  Put(bytes, stamp, 0x40000000 | 60000, 4);
  TStnEventHeader header;
  EXPECT_EQ(FromBytes(bytes, header), Int_t(bytes.size()));
  EXPECT_EQ(fLog.Take(), "ERR:VdRoot::TTimeStamp::Streamer() - byte count: found 60000, expected 2 to " +
                             std::to_string(bytes.size() - stamp - 4) + ", record skipped\n");
  EXPECT_EQ(header.GetMirrorDataBits(), 0U);
}

TEST_F(DamagedRecordTest, EventOfItsObjectPartAloneIsRefused) {
  CutEvent(16);
  ExpectRefused("TStnEventHeader::Streamer() - object: found 0 bytes, expected at least 4");
}

TEST_F(DamagedRecordTest, PointerBeyondTheRecordIsRefused) {
  const size_t at = Find(fBytes, "TStnFADCData") - 8;
  Put(fBytes, at, 0x40000000 | fBytes.size(), 4);
  ExpectRefused("TStnFADCData::Streamer() - byte count of object: found " + std::to_string(fBytes.size()) +
                ", expected 4 to " + std::to_string(fBytes.size() - at - 4));
}

TEST_F(DamagedRecordTest, PointerToAnObjectElsewhereIsRefused) {
  const size_t at = Find(fBytes, "TStnFADCData") - 8;
  Put(fBytes, at, 0x00000102, 4);
  ExpectRefused("TStnFADCData::Streamer() - byte count of object: found 1073742082, expected 4 to " +
                std::to_string(fBytes.size() - at - 4));
}

TEST_F(DamagedRecordTest, VersionThatRootLooksUpBehindItsTableIsRefused) {
  const TObjArray* descriptions = TStnT3Data::Class()->GetStreamerInfos();
  const Int_t end = descriptions->LowerBound() + descriptions->GetSize();
  ASSERT_LT(end, descriptions->GetSize());
  Put(fBytes, FindRecord(fBytes, "TStnT3Data") + 4, end, 2);
  ExpectRefused("TStnT3Data::Streamer() - version: found " + std::to_string(end) + ", expected at most " +
                std::to_string(end - 1));
}

TEST_F(DamagedRecordTest, VersionsAtBothSidesOfTheTablesEndAreLeftToRoot) {
  const TObjArray* descriptions = TStnT3Data::Class()->GetStreamerInfos();
  const size_t at = FindRecord(fBytes, "TStnT3Data") + 4;
  for (const Int_t version : {descriptions->LowerBound() + descriptions->GetSize() - 1, descriptions->GetSize()}) {
    Put(fBytes, at, version, 2);
    TStnEvent event;
    EXPECT_EQ(FromBytes(fBytes, event), Int_t(fBytes.size()));
    EXPECT_EQ(fLog.Take(), "");
    EXPECT_NE(Member<void*>(event, "fFADCData"), nullptr);
  }
}

TEST_F(DamagedRecordTest, PointerToAnObjectOfAnotherClassIsRefused) {
  const size_t at = Find(fBytes, "TStnT3Data");
  std::copy_n("TStnEvent\0", 10, fBytes.begin() + at);
  ExpectRefused("TStnT3Data::Streamer() - class: found TStnEvent, expected TStnT3Data");
}

TEST_F(DamagedRecordTest, ClassWithoutANameIsRefused) {
  const size_t at = Find(fBytes, "TStnT3Data");
  fBytes[at] = '<';
  ExpectRefused("TStnT3Data::Streamer() - class: found no name, expected TStnT3Data");
}

TEST_F(DamagedRecordTest, NameWithOtherThanPairsOfColonsBetweenWordsIsNone) {
  const size_t at = Find(fBytes, "TStnT3Data");
  for (const std::string name : {"std:::Data", "TStn:T3Dat", "::StnT3Dat", "TStnT3Da::", "TStnT3Dat:"}) {
    std::copy(name.begin(), name.end(), fBytes.begin() + at);
    ExpectRefused("TStnT3Data::Streamer() - class: found no name, expected TStnT3Data");
  }
}

TEST_F(DamagedRecordTest, NameOfAClassThatIsNotThereIsToldAsItStands) {
  const size_t at = Find(fBytes, "TStnT3Data");
  for (const std::string name : {"TStn_T3Dat", "TStn::T3Da", "TStn5T3Dat"}) {
    std::copy(name.begin(), name.end(), fBytes.begin() + at);
    ExpectRefused("TStnT3Data::Streamer() - class: found " + name + ", expected TStnT3Data");
  }
}

TEST_F(DamagedRecordTest, NameOfAClassHas79LettersAtMost) {
  const std::string name(79, 'A');
  const size_t at = Find(fBytes, "TStnFADCData");
  std::copy_n(name.c_str(), name.size() + 1, fBytes.begin() + at);
  ExpectRefused("TStnFADCData::Streamer() - class: found " + name + ", expected TStnFADCData");
  fBytes[at + 79] = 'A';
  fBytes[at + 80] = 0;
  ExpectRefused("TStnFADCData::Streamer() - class: found no name, expected TStnFADCData");
}

TEST_F(DamagedRecordTest, NameOfAClassThatTheRecordCutsIsRefused) {
  const size_t at = FindPointer("TStnT3Data");
  CutEvent(at + 8 + 5);
  Put(fBytes, at, 0x40000000 | (4 + 5), 4);
  ExpectRefused("TStnT3Data::Streamer() - class: found no name, expected TStnT3Data");
}

TEST_F(DamagedRecordTest, PointerThatTheRecordCutsIsRefused) {
  CutEvent(FindPointer("TStnT3Data") + 7);
  ExpectRefused("TStnT3Data::Streamer() - object: found 7 bytes, expected at least 8");
  CutEvent(fBytes.size() - 4);
  ExpectRefused("TStnT3Data::Streamer() - object: found 3 bytes, expected at least 4");
}

TEST_F(DamagedRecordTest, PartThatEndsInItsFrameIsRefused) {
  for (size_t size : {0, 5}) {
    CutObject("TStnT3Data", size);
    ExpectRefused("TStnT3Data::Streamer() - frame: found " + std::to_string(size) + " bytes, expected at least 6");
  }
}

TEST_F(DamagedRecordTest, ByteCountOfAPartCoversItsVersion) {
  const size_t at = FindRecord(fBytes, "TStnT3Data");
  const UInt_t most =
      (UChar_t(fBytes[FindPointer("TStnT3Data") + 3]) | UChar_t(fBytes[FindPointer("TStnT3Data") + 2]) << 8) - 4 -
      sizeof("TStnT3Data") - 4;
  for (UInt_t count : {0, 1, Int_t(most) + 1}) {
    Put(fBytes, at, 0x40000000 | count, 4);
    ExpectRefused("TStnT3Data::Streamer() - byte count: found " + std::to_string(count) + ", expected 2 to " +
                  std::to_string(most));
  }
  Put(fBytes, at, 0x40000002, 4);
  ExpectRefused("TStnT3Data::Streamer() - TObject: found 0 bytes, expected at least 10");
}

TEST_F(DamagedRecordTest, ByteCountOfAPointerCoversItsClassTag) {
  const size_t at = FindPointer("TStnT3Data");
  for (UInt_t count : {0, 3}) {
    Put(fBytes, at, 0x40000000 | count, 4);
    ExpectRefused("TStnT3Data::Streamer() - byte count of object: found " + std::to_string(count) + ", expected 4 to " +
                  std::to_string(fBytes.size() - at - 4));
  }
  Put(fBytes, at, 0x40000004, 4);
  ExpectRefused("TStnT3Data::Streamer() - class: found no name, expected TStnT3Data");
}

TEST_F(DamagedRecordTest, ArrayThatEndsBeforeItsTracesIsRefused) {
  const std::pair<size_t, const char*> texts[] = {
      {0, "frame: found 0 bytes, expected at least 6"},       {5, "frame: found 5 bytes, expected at least 6"},
      {6, "TObject: found 0 bytes, expected at least 10"},    {15, "TObject: found 9 bytes, expected at least 10"},
      {16, "fName: found 0 bytes, expected at least 1"},      {17, "fSize: found 0 bytes, expected at least 4"},
      {20, "fSize: found 3 bytes, expected at least 4"},      {21, "fLowerBound: found 0 bytes, expected at least 4"},
      {24, "fLowerBound: found 3 bytes, expected at least 4"}};
  for (const auto& [size, text] : texts) {
    CutObject("TObjArray", size);
    ExpectRefused(std::string("TObjArray::Streamer() - ") + text);
  }
}

TEST_F(DamagedRecordTest, ArrayWithALongNameIsRefusedIfTheNameIsCut) {
  const size_t object = FindPointer("TObjArray");
  const UInt_t count = UChar_t(fBytes[object + 2]) << 8 | UChar_t(fBytes[object + 3]);
  const size_t name = FindRecord(fBytes, "TObjArray") + 6 + 10;
  Put(fBytes, name, 0xFF, 1);
  Put(fBytes, name + 1, 0x7FFFFFFF, 4);
  ExpectRefused("TObjArray::Streamer() - fName: found 2147483647, expected at most " +
                std::to_string(object + 4 + count - name - 5));
  CutObject("TObjArray", 6 + 10 + 1 + 3);
  ExpectRefused("TObjArray::Streamer() - fName: found 3 bytes, expected at least 4");
}

TEST_F(DamagedRecordTest, ArrayWithoutAByteCountIsRefused) {
  Put(fBytes, FindRecord(fBytes, "TObjArray"), 0, 4);
  ExpectRefused("TObjArray::Streamer() - version: found 0, expected 3");
}

TEST_F(DamagedRecordTest, OtherArrayOfROOTsIsRefused) {
  std::copy_n("TClonesArray\0", 13, fBytes.begin() + Find(fBytes, "TObjArray"));
  ExpectRefused("TObjArray::Streamer() - class: found TClonesArray, expected TObjArray");
}

TEST_F(DamagedRecordTest, ArrayThatNamesOneMoreTraceThanItHoldsIsRefused) {
  TStnEvent event;
  event.AddEvent(MakeMirrorEvent(2, 1).get());
  fBytes = ToBytes(event);
  ++fBytes[FindRecord(fBytes, "TObjArray") + 6 + 10 + 1 + 3];
  // Behind the array, what could be taken for one more empty slot.
  Put(fBytes, FindPointer("TStnPixelList"), 0, 4);
  ExpectRefused("TFADCData::Streamer() - object: found 0 bytes, expected at least 4");
}

TEST_F(DamagedRecordTest, ArrayOfMoreTracesThanTheRecordHoldsIsRefused) {
  // Frame, TObject part and name stand before the size.
  Put(fBytes, FindRecord(fBytes, "TObjArray") + 6 + 10 + 1, 0x7FFFFFFF, 4);
  TStnEvent event;
  EXPECT_EQ(FromBytes(fBytes, event), Int_t(fBytes.size()));
  EXPECT_EQ(fLog.Take(), "ERR:TFADCData::Streamer() - object: found 0 bytes, expected at least 4, record skipped\n");
}

TEST_F(DamagedRecordTest, ArrayThatBeginsElsewhereIsRefused) {
  Put(fBytes, FindRecord(fBytes, "TObjArray") + 6 + 10 + 1 + 4, 2, 4);
  ExpectRefused("TObjArray::Streamer() - fLowerBound: found 2, expected 0 or 1");
}

TEST_F(DamagedRecordTest, ArrayOfAnUnknownVersionIsRefused) {
  Put(fBytes, FindRecord(fBytes, "TObjArray") + 4, 2, 2);
  ExpectRefused("TObjArray::Streamer() - version: found 2, expected 3");
}

TEST_F(DamagedRecordTest, SlotWithAnObjectThatIsNoTraceIsRefused) {
  const size_t at = Find(fBytes, "TFADCData");
  std::copy_n("TNamed\0\0\0", 9, fBytes.begin() + at);
  ExpectRefused("TFADCData::Streamer() - class: found TNamed, expected TFADCData");
}

TEST_F(DamagedRecordTest, TagsOfARecordThatWasMovedAreTaken) {
  const UInt_t place = Find(fBytes, "TFADCData") - 4 + 2;
  Bytes moved = fBytes;
  for (size_t at = 0; at + 4 <= moved.size(); ++at) {
    Bytes tag(4);
    Put(tag, 0, 0x80000000 | place, 4);
    if (std::equal(tag.begin(), tag.end(), moved.begin() + at)) Put(moved, at, 0x80000000 | (place - 8), 4);
  }
  ASSERT_NE(moved, fBytes);
  GuardedBytes memory(moved);
  TBufferFile read(TBuffer::kRead, moved.size(), memory.Data(), kFALSE);
  read.SetBufferDisplacement(-8);
  TStnEvent event;
  event.Streamer(read);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(ToBytes(event), fBytes);
}

TEST_F(DamagedRecordTest, TraceWithTheTagOfAnotherClassIsRefused) {
  const UInt_t tag = 0x80000000 | (Find(fBytes, "TFADCData") - 4 + 2);
  Bytes tag_bytes(4);
  Put(tag_bytes, 0, tag, 4);
  const size_t at = Find(fBytes, std::string(tag_bytes.begin(), tag_bytes.end()));
  ASSERT_LT(at, fBytes.size());
  const UInt_t other = 0x80000000 | (Find(fBytes, "TStnFADCData") - 4 + 2);
  Put(fBytes, at, other, 4);
  ExpectRefused("TFADCData::Streamer() - class tag: found " + std::to_string(other) + ", expected that of TFADCData");
}

TEST_F(DamagedRecordTest, ClassThatStoodInTheRecordBeforeIsTaken) {
  TStnEvent other, first, second;
  Fill(other);
  TBufferFile written(TBuffer::kWrite);
  fEvent.Streamer(written);
  const Int_t place = written.Length();
  other.Streamer(written);
  EXPECT_LT(written.Length(), 2 * place);
  GuardedBytes memory(Bytes(written.Buffer(), written.Buffer() + written.Length()));
  TBufferFile read(TBuffer::kRead, written.Length(), memory.Data(), kFALSE);
  first.Streamer(read);
  second.Streamer(read);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(ToBytes(second), fBytes);
}

TEST_F(DamagedRecordTest, OneTraceThatIsDamagedInsideCostsNoOther) {
  // Frame, TObject part, and five members stand before the number of bytes with near words.
  Put(fBytes, FindRecord(fBytes, "TFADCData") + 36, 0x7FFFFFFF, 4);
  TStnEvent event;
  FromBytes(fBytes, event);
  EXPECT_THAT(fLog.Take(),
              testing::MatchesRegex("ERR:TFADCData::Streamer\\(\\) - fNNear: found 2147483647, expected 0 or "
                                    "[0-9]+, record skipped\n"));
  EXPECT_EQ(event.GetFADCData()->GetNTraces(), 3U);
  EXPECT_EQ(event.GetPixelList()->GetNumPixels(), 3U);
}

TEST_F(DamagedRecordTest, PartWithoutAVersionIsRefused) {
  Put(fBytes, FindRecord(fBytes, "TStnGeometryData") + 4, 0, 2);
  ExpectRefused("TStnGeometryData::Streamer() - version: found 0, expected at least 1");
}

TEST_F(DamagedRecordTest, PartOfAFirstVersionThatNothingDescribesIsHeldAgainstTodays) {
  const size_t at = FindRecord(fBytes, "TStnT3Data");
  Put(fBytes, at, 0x40000000 | 20, 4);
  Put(fBytes, at + 4, 1, 2);
  ExpectRefused("TStnT3Data::Streamer() - fSDPPhi: found 0 bytes, expected at least 4");
}

TEST_F(DamagedRecordTest, PartThatIsTooShortIsRefused) {
  const size_t at = FindRecord(fBytes, "TStnGeometryData");
  Put(fBytes, at, 0x40000000 | 20, 4);
  ExpectRefused("TStnGeometryData::Streamer() - fAxisAzimuth: found 8 bytes, expected at least 24");
}

}  // namespace
