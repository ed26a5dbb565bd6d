#include <MrEvent/MrRunTrailer.h>

#include <RecordBuffers.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>

namespace {

TMirrorRunTrailer MakeTrailer() {
  TMirrorRunTrailer trailer;
  trailer.SetStnNo(5);
  trailer.SetMirrorNo(3);
  trailer.SetRunNo(11);
  trailer.SetNumEvents(12);
  trailer.SetDeadTimeCounter(0x100000001);
  trailer.SetVetoTimeCounter(0x200000002);
  trailer.SetDaqDeadTime(0xffffffffffffffff);
  return trailer;
}

void ExpectMadeTrailer(const TMirrorRunTrailer& trailer) {
  EXPECT_EQ(trailer.GetStnNo(), 5u);
  EXPECT_EQ(trailer.GetMirrorNo(), 3u);
  EXPECT_EQ(VdUtil::Vd::GetVdMirrorNo(trailer.GetMirrorNumber()), 27u);
  EXPECT_EQ(trailer.GetRunNo(), 11u);
  EXPECT_EQ(trailer.GetNumEvents(), 12u);
  EXPECT_EQ(trailer.GetDeadTimeCounter(), 0x100000001u);
  EXPECT_EQ(trailer.GetVetoTimeCounter(), 0x200000002u);
  EXPECT_EQ(trailer.GetDaqDeadTime(), 0xffffffffffffffffu);
}

void ExpectZero(const TMirrorRunTrailer& trailer) {
  EXPECT_EQ(trailer.GetMirrorNumber()->fMirrorNumber, 0);
  EXPECT_EQ(trailer.GetRunNo(), 0u);
  EXPECT_EQ(trailer.GetNumEvents(), 0u);
  EXPECT_EQ(trailer.GetDeadTimeCounter(), 0u);
  EXPECT_EQ(trailer.GetVetoTimeCounter(), 0u);
  EXPECT_EQ(trailer.GetDaqDeadTime(), 0u);
}

TEST(MrRunTrailer, NewTrailerIsZero) { ExpectZero(TMirrorRunTrailer()); }

TEST(MrRunTrailer, EachFieldKeepsItsValue) { ExpectMadeTrailer(MakeTrailer()); }

TEST(MrRunTrailer, CountersStandInTheirOrder) {
  typedef TMirrorRunTrailer::_MirrorRunTrailerRec Record;
  EXPECT_EQ(offsetof(Record, fVetoTimeCounter), offsetof(Record, fDeadTimeCounter) + 8);
  EXPECT_EQ(offsetof(Record, fDaqDeadTime), offsetof(Record, fVetoTimeCounter) + 8);
}

TEST(MrRunTrailer, CopyOutlivesItsSource) {
  TMirrorRunTrailer* source = new TMirrorRunTrailer(MakeTrailer());
  const TMirrorRunTrailer copy(*source);
  source->Clear();
  delete source;
  ExpectMadeTrailer(copy);
}

TEST(MrRunTrailer, AssignmentIsDeep) {
  TMirrorRunTrailer target;
  {
    TMirrorRunTrailer source = MakeTrailer();
    target = source;
    source.SetRunNo(0);
  }
  ExpectMadeTrailer(target);
}

TEST(MrRunTrailer, AssignmentToItselfChangesNothing) {
  TMirrorRunTrailer made = MakeTrailer();
  TMirrorRunTrailer& same = made;
  made = same;
  ExpectMadeTrailer(made);
}

TEST(MrRunTrailer, ClearGivesANewTrailer) {
  TMirrorRunTrailer trailer = MakeTrailer();
  trailer.Clear();
  ExpectZero(trailer);
}

TEST(MrRunTrailer, TrailerComesBackThroughAFile) {
  TMirrorRunTrailer trailer = MakeTrailer();
  const auto back = ThroughFile(trailer);
  ASSERT_TRUE(back);
  ExpectMadeTrailer(*back);
}

TEST(MrRunTrailer, ShowsEveryValue) {
  std::ostringstream text;
  MakeTrailer().Show(text);
  EXPECT_EQ(text.str(),
            "--- TMirrorRunTrailer ---\n"
            " Station, mirror  : 5, 3\n"
            " Run number       : 11\n"
            " Number of events : 12\n"
            " Dead time        : 4294967297 * 100 ns\n"
            " Veto time        : 8589934594 * 100 ns\n"
            " DAQ dead time    : 18446744073709551615 * 100 ns\n"
            "--------------------\n");
}

TEST(MrRunTrailer, ShowsNoMirrorForANewTrailer) {
  std::ostringstream text;
  TMirrorRunTrailer().Show(text);
  EXPECT_NE(text.str().find(" Station, mirror  : 0, 0\n"), std::string::npos);
}

}  // namespace
