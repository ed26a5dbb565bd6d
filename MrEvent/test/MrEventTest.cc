#include <MrEvent/MrEvent.h>
#include <MrEvent/MrEventVersion.h>
#include <MrEvent/MrRunTrailer.h>

#include <RecordBuffers.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <utility>

namespace {

void Fill(TMirrorEvent& event) {
  event.GetEventHeader()->SetEventNo(17);
  event.GetPixelData()->SetTriggered(1, 2, 3);
  _PixelNumber pixel;
  pixel.fPixelNumber = 2;
  event.GetPixelList()->AddPixel(&pixel);
  TFADCData trace;
  trace.GetRecord()->fFadcData[4].fWord = 5;
  event.GetFADCData()->SetPixelFADCData(&pixel, &trace);
}

void ExpectFilled(TMirrorEvent& event) {
  EXPECT_TRUE(event.HasPixelData());
  EXPECT_TRUE(event.HasPixelList());
  EXPECT_TRUE(event.HasFADCData());
  EXPECT_EQ(event.GetEventHeader()->GetEventNo(), 17u);
  EXPECT_EQ(event.GetPixelData()->GetFirstTriggeredTimeBin(1, 2, 0, 99), 3);
  ASSERT_EQ(event.GetPixelList()->GetNumPixels(), 1u);
  EXPECT_EQ(event.GetPixelList()->GetPixel(0)->fPixelNumber, 2);
  ASSERT_TRUE(event.GetFADCData()->IsValidPixel(1, 2));
  EXPECT_EQ(event.GetFADCData()->GetFADCData(1, 2)->fFadcData[4].fWord, 5);
}

void ExpectEmpty(TMirrorEvent& event) {
  EXPECT_FALSE(event.HasPixelData());
  EXPECT_FALSE(event.HasPixelList());
  EXPECT_FALSE(event.HasFADCData());
  EXPECT_EQ(event.GetEventHeader()->GetEventNo(), 0u);
}

TEST(MrEvent, GettersGiveAlwaysTheSameObject) {
  TMirrorEvent event;
  ASSERT_NE(event.GetEventHeader(), nullptr);
  ASSERT_NE(event.GetPixelData(), nullptr);
  ASSERT_NE(event.GetPixelList(), nullptr);
  ASSERT_NE(event.GetFADCData(), nullptr);
  EXPECT_EQ(event.GetEventHeader(), event.GetEventHeader());
  EXPECT_EQ(event.GetPixelData(), event.GetPixelData());
  EXPECT_EQ(event.GetPixelList(), event.GetPixelList());
  EXPECT_EQ(event.GetFADCData(), event.GetFADCData());
}

TEST(MrEvent, NewEventHasNoData) {
  TMirrorEvent event;
  ExpectEmpty(event);
}

TEST(MrEvent, PartsWithoutContentAreNoData) {
  TMirrorEvent event;
  event.GetPixelData();
  event.GetPixelList();
  event.GetFADCData();
  ExpectEmpty(event);
}

TEST(MrEvent, TriggerInTheFirstOrLastSliceIsData) {
  for (UInt_t slice : {0u, 99u}) {
    TMirrorEvent event;
    event.GetPixelData()->SetTriggered(1, 1, slice);
    EXPECT_TRUE(event.HasPixelData());
  }
}

TEST(MrEvent, CopyOutlivesItsSource) {
  TMirrorEvent* source = new TMirrorEvent;
  Fill(*source);
  TMirrorEvent copy(*source);
  source->Clear();
  delete source;
  ExpectFilled(copy);
}

TEST(MrEvent, AssignmentKeepsTheAddressesOfTheParts) {
  TMirrorEvent source, target;
  Fill(source);
  TMirrorEventHeader* header = target.GetEventHeader();
  target = source;
  EXPECT_EQ(target.GetEventHeader(), header);
  EXPECT_NE(target.GetPixelData(), source.GetPixelData());
  ExpectFilled(target);
}

TEST(MrEvent, AssignmentEmptiesWhatTheSourceLacks) {
  TMirrorEvent target;
  Fill(target);
  target = TMirrorEvent();
  ExpectEmpty(target);
}

TEST(MrEvent, AssignmentToItselfChangesNothing) {
  TMirrorEvent event;
  Fill(event);
  TMirrorEvent& same = event;
  event = same;
  ExpectFilled(event);
}

TEST(MrEvent, ClearEmptiesThePartsAndKeepsTheirAddresses) {
  TMirrorEvent event;
  Fill(event);
  TMirrorFADCData* traces = event.GetFADCData();
  TMirrorPixelList* list = event.GetPixelList();
  event.Clear();
  ExpectEmpty(event);
  EXPECT_EQ(event.GetFADCData(), traces);
  EXPECT_EQ(event.GetPixelList(), list);
}

TEST(MrEvent, EventComesBackThroughAFile) {
  TMirrorEvent event;
  Fill(event);
  const auto back = ThroughFile(event);
  ASSERT_TRUE(back);
  ExpectFilled(*back);
}

TEST(MrEvent, EventWithoutPartsComesBackThroughAFile) {
  TMirrorEvent event;
  const auto back = ThroughFile(event);
  ASSERT_TRUE(back);
  ExpectEmpty(*back);
}

TEST(MrEvent, ShowsThePartsThatAreThere) {
  TMirrorEvent event;
  std::ostringstream text;
  event.Show(text);
  EXPECT_EQ(text.str(), "--- TMirrorEvent ---\n--------------------\n");
  Fill(event);
  std::ostringstream parts;
  parts << "--- TMirrorEvent ---\n";
  event.GetEventHeader()->Show(parts);
  event.GetPixelData()->Show(parts);
  event.GetPixelList()->Show(parts);
  event.GetFADCData()->Show(parts);
  parts << "--------------------\n";
  text.str("");
  event.Show(text);
  EXPECT_EQ(text.str(), parts.str());
}

/// Places of virtual operations in an object's table, by what a pointer to a member function holds.
template <class T>
Long_t SlotOf(T operation) {
  Long_t words[2];
  static_assert(sizeof(operation) == sizeof(words), "pointer to a virtual member function");
  std::memcpy(words, &operation, sizeof(words));
  return (words[0] - 1) / Long_t(sizeof(void*));
}

struct FirstOperation : TObject {
  virtual void First() {}
};

TEST(MrEvent, VirtualOperationsStandInTheirOrder) {
  // Both classes begin where TObject's operations end.
  const Long_t first = SlotOf(&FirstOperation::First);
  EXPECT_EQ(SlotOf(&TMirrorEvent::GetEventHeader), first);
  EXPECT_EQ(SlotOf(&TMirrorEvent::GetPixelData), first + 1);
  EXPECT_EQ(SlotOf(&TMirrorEvent::GetFADCData), first + 6);
  EXPECT_EQ(SlotOf(&TMirrorEvent::GetPixelList), first + 7);
  EXPECT_EQ(SlotOf(&TMirrorPixelList::AddPixel), first);
}

TEST(MrEvent, VersionIsTheOneOfItsText) {
  EXPECT_EQ(kMrEventVersion, 4);
  EXPECT_EQ(kMrEventSubVersion, 1);
  EXPECT_EQ(kMrEventSubSubVersion, 5);
  EXPECT_STREQ(kMrEventVersionString, "MrEvent 4.1.5");
}

template <class T>
class MirrorClass : public testing::Test {};

typedef testing::Types<TMirrorEvent, TMirrorEventHeader, TMirrorPixelData, TMirrorPixelList, TMirrorFADCData, TFADCData,
                       TMirrorRunTrailer>
    MirrorClasses;
TYPED_TEST_SUITE(MirrorClass, MirrorClasses);

TYPED_TEST(MirrorClass, IsAllocatedAsARootObject) {
  const std::unique_ptr<TypeParam> object(new TypeParam);
  EXPECT_TRUE(object->IsOnHeap());
}

TYPED_TEST(MirrorClass, CopyTakesTheObjectPartAlong) {
  TypeParam source;
  source.SetUniqueID(7);
  EXPECT_EQ(TypeParam(source).GetUniqueID(), 7u);
}

TYPED_TEST(MirrorClass, AssignmentAndClearLeaveTheObjectPart) {
  TypeParam source, target;
  source.SetUniqueID(7);
  target.SetUniqueID(8);
  target = source;
  EXPECT_EQ(target.GetUniqueID(), 8u);
  target.Clear();
  EXPECT_EQ(target.GetUniqueID(), 8u);
}

TEST(MrEvent, EachClassHasItsVersion) {
  const std::pair<const char*, Version_t> versions[] = {
      {"TMirrorEvent", 1},    {"TMirrorEventHeader", 1}, {"TMirrorPixelData", 1}, {"TMirrorPixelList", 1},
      {"TMirrorFADCData", 1}, {"TFADCData", 2},          {"TMirrorRunTrailer", 1}};
  for (const auto& [name, version] : versions) {
    TClass* cl = TClass::GetClass(name);
    ASSERT_NE(cl, nullptr) << name;
    EXPECT_EQ(cl->GetClassVersion(), version) << name;
    EXPECT_TRUE(cl->InheritsFrom("TObject")) << name;
    EXPECT_TRUE(cl->HasDefaultConstructor()) << name;
  }
}

// ROOT stores records of version 1 that have no ClassDef with a checksum in place of the version.
TEST(MrEvent, PlainRecordsHaveAVersionThatIsStored) {
  for (const char* name : {"TMirrorEventHeader::_MirrorEventHeaderRec", "TMirrorRunTrailer::_MirrorRunTrailerRec"}) {
    TClass* cl = TClass::GetClass(name);
    ASSERT_NE(cl, nullptr) << name;
    EXPECT_EQ(cl->GetClassVersion(), 2) << name;
  }
}

}  // namespace
