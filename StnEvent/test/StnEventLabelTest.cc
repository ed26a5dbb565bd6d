#include <StnEvent/StnEvent.h>

#include <LogCapture.h>
#include <MirrorEvents.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Header = TStnEventHeader;
using Label = TMirrorEventHeader::EMrEventLabel;

const std::vector<Int_t> kLabels = {0, 1, 2, 3, 4, 5, 6, 99};

struct ClassRow {
  Int_t fInitial;
  std::vector<Int_t> fFinal;  // one for each label
};

// Written with the stored numbers: class 0 unclassified, 2 large event, 3 unhandled signature, 5 muon, 8 noise, 9 muon
// and noise, 11 shower candidate, 13 shower, 98 rejected.
// clang-format off
const std::vector<ClassRow> kClassRows = {
    {0,  {0,  3,  5,  11, 13, 8,  2,  98}},
    {3,  {3,  3,  5,  11, 13, 8,  2,  3}},
    {5,  {5,  5,  5,  11, 13, 9,  5,  5}},
    {9,  {9,  9,  9,  11, 13, 9,  9,  9}},
    {11, {11, 11, 11, 11, 13, 11, 11, 11}},
    {13, {13, 13, 13, 13, 13, 13, 13, 13}},
    {8,  {8,  3,  5,  11, 13, 8,  2,  8}},
    {2,  {2,  2,  2,  11, 13, 2,  2,  2}},
    {98, {0,  3,  5,  11, 13, 8,  2,  98}},
};
// clang-format on

/// The class after a mirror with this label comes into an event of this class.
Int_t ClassAfter(Int_t initial, Int_t label) {
  TStnEvent event;
  event.GetEventHeader()->SetEventClass(static_cast<Header::EEventClass>(initial));
  MirrorSpec spec;
  spec.fPixels = {};
  spec.fLabel = static_cast<Label>(label);
  EXPECT_TRUE(event.AddEvent(MakeMirrorEvent(spec).get()));
  EXPECT_EQ(event.GetEventHeader()->GetMirrorEventLabel(1), label);
  return event.GetEventHeader()->GetEventClass();
}

class StnEventClass : public testing::TestWithParam<ClassRow> {};

TEST_P(StnEventClass, MovesWithTheMirrorsLabel) {
  LogCapture log;
  for (size_t i = 0; i < kLabels.size(); ++i) {
    EXPECT_EQ(ClassAfter(GetParam().fInitial, kLabels[i]), GetParam().fFinal[i])
        << "class " << GetParam().fInitial << ", label " << kLabels[i];
  }
  EXPECT_EQ(log.Take(), "");
}

INSTANTIATE_TEST_SUITE_P(All, StnEventClass, testing::ValuesIn(kClassRows),
                         [](const auto& info) { return "FromClass" + std::to_string(info.param.fInitial); });

class OtherStnEventClass : public testing::TestWithParam<Int_t> {};

TEST_P(OtherStnEventClass, StaysWithAnErrorForEveryLabel) {
  const auto initial = static_cast<Header::EEventClass>(GetParam());
  for (const Int_t label : kLabels) {
    LogCapture log;
    EXPECT_EQ(ClassAfter(initial, label), initial);
    EXPECT_EQ(log.Take(), std::string("ERR:Initial StnEvent class= ") + Header::GetVerboseEventClass(initial) +
                              ", MrEventLabel= " + TMirrorEventHeader::GetVerboseEventLabel(static_cast<Label>(label)) +
                              " --> final class= ???\n");
  }
}

INSTANTIATE_TEST_SUITE_P(All, OtherStnEventClass,
                         testing::Values(Header::kNoPhysicsEvent, Header::kEmpty, Header::kLongMuon,
                                         Header::kCloseShower, Header::kVetoedEvent, Header::kHorizontalShower,
                                         Header::kUBANoise, Header::kUserDefined2, Header::kUserDefined3,
                                         Header::kUserDefined4, Header::kInvalidClass, 14, -1));

TEST(StnEventClassError, NamesClassAndLabel) {
  LogCapture log;
  ClassAfter(Header::kEmpty, TMirrorEventHeader::kRejected);
  EXPECT_EQ(log.Take(), "ERR:Initial StnEvent class= 'Empty', MrEventLabel= Rejected --> final class= ???\n");
}

TEST(StnEventClassError, IsWrittenForAnUnknownLabel) {
  LogCapture log;
  EXPECT_EQ(ClassAfter(Header::kIsMuon, 7), Header::kIsMuon);
  EXPECT_EQ(log.Take(), "ERR:Initial StnEvent class= 'Muon', MrEventLabel= Unknown --> final class= ???\n");
}

/// The class of an event after mirrors with these labels came in, one after the other.
Int_t ClassOf(const std::vector<Label>& labels) {
  TStnEvent event;
  MirrorSpec spec;
  spec.fPixels = {};
  spec.fMirror = 0;
  for (const Label label : labels) {
    ++spec.fMirror;
    spec.fLabel = label;
    EXPECT_TRUE(event.AddEvent(MakeMirrorEvent(spec).get()));
  }
  return event.GetEventHeader()->GetEventClass();
}

TEST(StnEventClassOfSeveralMirrors, DependsOnTheOrderOfArrival) {
  EXPECT_EQ(ClassOf({TMirrorEventHeader::kRandomEvent, TMirrorEventHeader::kMuonEvent}), Header::kIsMuon);
  EXPECT_EQ(ClassOf({TMirrorEventHeader::kMuonEvent, TMirrorEventHeader::kRandomEvent}), Header::kMuonAndNoise);
}

TEST(StnEventClassOfSeveralMirrors, ClimbsFromMuonToShower) {
  EXPECT_EQ(ClassOf({TMirrorEventHeader::kMuonEvent, TMirrorEventHeader::kRandomEvent,
                     TMirrorEventHeader::kShowerCandidate, TMirrorEventHeader::kShowerEvent}),
            Header::kIsShower);
}

TEST(StnEventClassOfSeveralMirrors, ARejectedEventIsUnclassifiedAfterAnUnlabelledMirror) {
  EXPECT_EQ(ClassOf({TMirrorEventHeader::kRejected}), Header::kRejected);
  EXPECT_EQ(ClassOf({TMirrorEventHeader::kRejected, TMirrorEventHeader::kUnlabelled}), Header::kUnClassified);
}

}  // namespace
