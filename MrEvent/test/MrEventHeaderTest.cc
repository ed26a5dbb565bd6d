#include <MrEvent/MrEventHeader.h>

#include <RecordBuffers.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>

namespace {

typedef TMirrorEventHeader Header;

/// A header with a different value in each field.
Header MakeHeader() {
  Header header;
  header.SetVersion(7);
  header.SetStnNo(3);
  header.SetMirrorNo(4);
  header.SetEventLabel(Header::kRejected);
  header.SetEventNo(101);
  header.SetEventType(Header::kSimulatedEvent);
  header.SetTriggerNo(102);
  header.SetTriggerTimeStamp(103);
  header.SetNextPageTime(104);
  header.SetNextPageNanoTime(105);
  header.SetNextPageDelay(65535);
  header.SetTimeCorrectionParameters(100.5f, -2.25f);
  header.SetTriggerSource(Header::kExternalTrigger);
  header.SetRunNo(106);
  header.SetT3Id(107);
  header.SetDeadTimeCounter(0x100000001);
  header.SetRunTimeCounter(0x200000002);
  header.SetVetoTimeCounter(0x300000003);
  header.SetDaqDeadTime(0xffffffffffffffff);
  header.SetNumSkippedTriggers(108);
  return header;
}

void ExpectMadeHeader(const Header& header) {
  EXPECT_EQ(header.GetVersion(), 7);
  EXPECT_EQ(header.GetStnNo(), 3u);
  EXPECT_EQ(header.GetMirrorNo(), 4u);
  EXPECT_EQ(header.GetEventLabel(), Header::kRejected);
  EXPECT_EQ(header.GetEventNo(), 101u);
  EXPECT_EQ(header.GetEventType(), Header::kSimulatedEvent);
  EXPECT_EQ(header.GetTriggerNo(), 102u);
  EXPECT_EQ(header.GetTriggerTimeStamp(), 103u);
  EXPECT_EQ(header.GetNextPageTime(), 104u);
  EXPECT_EQ(header.GetNextPageNanoTime(), 105u);
  EXPECT_EQ(header.GetNextPageDelay(), 65535u);
  Float_t t10, offset;
  header.GetTimeCorrectionParameters(&t10, &offset);
  EXPECT_EQ(t10, 100.5f);
  EXPECT_EQ(offset, -2.25f);
  EXPECT_EQ(header.GetTriggerSource(), Header::kExternalTrigger);
  EXPECT_EQ(header.GetRunNo(), 106u);
  EXPECT_EQ(header.GetT3Id(), 107u);
  EXPECT_EQ(header.GetDeadTimeCounter(), 0x100000001u);
  EXPECT_EQ(header.GetRunTimeCounter(), 0x200000002u);
  EXPECT_EQ(header.GetVetoTimeCounter(), 0x300000003u);
  EXPECT_EQ(header.GetDaqDeadTime(), 0xffffffffffffffffu);
  EXPECT_EQ(header.GetNumSkippedTriggers(), 108u);
}

TEST(MrEventHeader, NewHeaderIsZeroInTheCurrentFormat) {
  const Header header;
  EXPECT_EQ(header.GetVersion(), 4);
  EXPECT_EQ(header.GetMirrorNumber()->fMirrorNumber, 0);
  EXPECT_EQ(header.GetEventLabel(), Header::kUnlabelled);
  EXPECT_EQ(header.GetEventNo(), 0u);
  EXPECT_EQ(header.GetEventType(), Header::kUnknownEvent);
  EXPECT_EQ(header.GetTriggerNo(), 0u);
  EXPECT_EQ(header.GetTriggerTimeStamp(), 0u);
  EXPECT_EQ(header.GetNextPageTime(), 0u);
  EXPECT_EQ(header.GetNextPageNanoTime(), 0u);
  EXPECT_EQ(header.GetNextPageDelay(), 0u);
  Float_t t10, offset;
  header.GetTimeCorrectionParameters(&t10, &offset);
  EXPECT_EQ(t10, 0.f);
  EXPECT_EQ(offset, 0.f);
  EXPECT_EQ(header.GetTriggerSource(), Header::kUnknownTrigger);
  EXPECT_EQ(header.GetRunNo(), 0u);
  EXPECT_EQ(header.GetT3Id(), 0u);
  EXPECT_EQ(header.GetDeadTimeCounter(), 0u);
  EXPECT_EQ(header.GetRunTimeCounter(), 0u);
  EXPECT_EQ(header.GetVetoTimeCounter(), 0u);
  EXPECT_EQ(header.GetDaqDeadTime(), 0u);
  EXPECT_EQ(header.GetNumSkippedTriggers(), 0u);
}

TEST(MrEventHeader, EachFieldKeepsItsValue) { ExpectMadeHeader(MakeHeader()); }

TEST(MrEventHeader, FieldsOfTheRecordStandInTheirOrderWithTheirWidth) {
  typedef Header::_MirrorEventHeaderRec Record;
#define FIELD(name) offsetof(Record, name), sizeof(Record::name)
  const struct {
    size_t fOffset, fSize, fWidth;
  } kFields[] = {{FIELD(fVersion), 2},
                 {FIELD(fMirrorNumber), 4},
                 {FIELD(fEventLabel), 4},
                 {FIELD(fEventNo), 4},
                 {FIELD(fEventType), 1},
                 {FIELD(fTriggerNo), 4},
                 {FIELD(fTriggerTimeStamp), 4},
                 {FIELD(fNextPageTime), 4},
                 {FIELD(fNextPageNanoTime), 4},
                 {FIELD(fNextPageDelay), 4},
                 {FIELD(fTriggerSource), 1},
                 {FIELD(fRunNo), 4},
                 {FIELD(fT3Id), 2},
                 {FIELD(fDeadTimeCounter), 8},
                 {FIELD(fRunTimeCounter), 8},
                 {FIELD(fVetoTimeCounter), 8},
                 {FIELD(fDaqDeadTime), 8},
                 {FIELD(fNumSkippedTriggers), 4}};
#undef FIELD
  size_t end = 0;
  for (const auto& field : kFields) {
    EXPECT_GE(field.fOffset, end);
    EXPECT_EQ(field.fSize, field.fWidth);
    end = field.fOffset + field.fSize;
  }
}

TEST(MrEventHeader, MirrorNumberIsInsideTheHeader) {
  Header header;
  VdUtil::Vd::SetStnNo(header.GetMirrorNumber(), 2);
  VdUtil::Vd::SetMirrorNo(header.GetMirrorNumber(), 1);
  EXPECT_EQ(VdUtil::Vd::GetVdMirrorNo(header.GetMirrorNumber()), 7u);
  EXPECT_EQ(header.GetStnNo(), 2u);
  EXPECT_EQ(header.GetMirrorNo(), 1u);
}

TEST(MrEventHeader, TypeAndTriggerSourceKeepEightBits) {
  Header header;
  header.SetEventType(Header::EMrEventType(0x107));
  EXPECT_EQ(header.GetEventType(), 7);
  header.SetTriggerSource(Header::EMiTriggerSource(0x1ff));
  EXPECT_EQ(header.GetTriggerSource(), 0xff);
}

TEST(MrEventHeader, OldTimingFormatEndsWithVersionThree) {
  EXPECT_EQ(Header::kLastOldTimingVersion, 3);
  Header header;
  EXPECT_FALSE(header.IsOldTimingFormat());
  header.SetVersion(3);
  EXPECT_TRUE(header.IsOldTimingFormat());
  header.SetVersion(0);
  EXPECT_TRUE(header.IsOldTimingFormat());
  header.SetVersion(4);
  EXPECT_FALSE(header.IsOldTimingFormat());
}

TEST(MrEventHeader, NullTimeCorrectionParametersAreLeftOut) {
  const Header header = MakeHeader();
  Float_t value = 0;
  header.GetTimeCorrectionParameters(&value, nullptr);
  EXPECT_EQ(value, 100.5f);
  header.GetTimeCorrectionParameters(nullptr, &value);
  EXPECT_EQ(value, -2.25f);
}

TEST(MrEventHeader, EachLabelHasItsName) {
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::kUnlabelled), "Unlabelled");
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::kDefault), "Unlabelled");
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::kAcceptedEvent), "AcceptedEvent");
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::kMuonEvent), "MuonEvent");
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::kShowerCandidate), "ShowerCandidate");
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::kShowerEvent), "ShowerEvent");
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::kRandomEvent), "RandomEvent");
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::kManyPixelEvent), "ManyPixelEvent");
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::kRejected), "Rejected");
}

TEST(MrEventHeader, ValueThatIsNoLabelIsUnknown) {
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::EMrEventLabel(7)), "Unknown");
  EXPECT_EQ(Header::GetVerboseEventLabel(Header::EMrEventLabel(-1)), "Unknown");
}

TEST(MrEventHeader, EnumeratorsHaveTheirStoredValues) {
  EXPECT_EQ(Header::kUnknownEvent, 0);
  EXPECT_EQ(Header::kPhysicsEvent, 1);
  EXPECT_EQ(Header::kCalibrationEvent, 2);
  EXPECT_EQ(Header::kSimulatedEvent, 3);
  EXPECT_EQ(Header::kUnlabelled, 0);
  EXPECT_EQ(Header::kDefault, 0);
  EXPECT_EQ(Header::kAcceptedEvent, 1);
  EXPECT_EQ(Header::kMuonEvent, 2);
  EXPECT_EQ(Header::kShowerCandidate, 3);
  EXPECT_EQ(Header::kShowerEvent, 4);
  EXPECT_EQ(Header::kRandomEvent, 5);
  EXPECT_EQ(Header::kManyPixelEvent, 6);
  EXPECT_EQ(Header::kRejected, 99);
  EXPECT_EQ(Header::kUnknownTrigger, 0);
  EXPECT_EQ(Header::kIllegalTrigger, 0);
  EXPECT_EQ(Header::kSoftwareTrigger, 1);
  EXPECT_EQ(Header::kRightTrigger, 2);
  EXPECT_EQ(Header::kLeftTrigger, 4);
  EXPECT_EQ(Header::kInternalTrigger, 8);
  EXPECT_EQ(Header::kExternalTrigger, 16);
  EXPECT_EQ(Header::kTriggerMask, 31);
}

TEST(MrEventHeader, CopyOutlivesItsSource) {
  Header* source = new Header(MakeHeader());
  const Header copy(*source);
  source->Clear();
  delete source;
  ExpectMadeHeader(copy);
}

TEST(MrEventHeader, AssignmentIsDeep) {
  Header target;
  {
    Header source = MakeHeader();
    target = source;
    source.SetEventNo(0);
  }
  ExpectMadeHeader(target);
}

TEST(MrEventHeader, AssignmentToItselfChangesNothing) {
  Header made = MakeHeader();
  Header& same = made;
  made = same;
  ExpectMadeHeader(made);
}

TEST(MrEventHeader, ClearGivesANewHeader) {
  Header header = MakeHeader();
  header.Clear();
  EXPECT_EQ(header.GetVersion(), Header::kCurrentVersion);
  EXPECT_EQ(header.GetEventNo(), 0u);
  EXPECT_EQ(header.GetMirrorNumber()->fMirrorNumber, 0);
}

TEST(MrEventHeader, HeaderComesBackThroughAFile) {
  Header header = MakeHeader();
  const auto back = ThroughFile(header);
  ASSERT_TRUE(back);
  ExpectMadeHeader(*back);
  back->SetEventNo(1);
  EXPECT_EQ(back->GetEventNo(), 1u);
}

TEST(MrEventHeader, ShowsEveryValue) {
  std::ostringstream text;
  MakeHeader().Show(text);
  EXPECT_EQ(text.str(),
            "--- TMirrorEventHeader ---\n"
            " Format version     : 7\n"
            " Station, mirror    : 3, 4\n"
            " Run number         : 106\n"
            " Event number       : 101\n"
            " Event type         : 3\n"
            " Event label        : 99 (Rejected)\n"
            " Trigger number     : 102\n"
            " Trigger source     : 16\n"
            " Trigger time stamp : 103\n"
            " Next page time     : 104 s, 105 ns\n"
            " Next page delay    : 65535\n"
            " 10 MHz cycle       : 100.5 ns\n"
            " Second offset      : -2.25 ns\n"
            " T3 identifier      : 107\n"
            " Dead time          : 4294967297 * 100 ns\n"
            " Run time           : 8589934594 * 100 ns\n"
            " Veto time          : 12884901891 * 100 ns\n"
            " DAQ dead time      : 18446744073709551615 * 100 ns\n"
            " Skipped triggers   : 108\n"
            "--------------------\n");
}

TEST(MrEventHeader, ShowsNoMirrorForANewHeader) {
  std::ostringstream text;
  Header().Show(text);
  EXPECT_NE(text.str().find(" Station, mirror    : 0, 0\n"), std::string::npos);
}

}  // namespace
