#include <StnEvent/StnRunTrailer.h>

#include <LogCapture.h>
#include <Members.h>
#include <MrEvent/MrRunTrailer.h>

#include <TBufferFile.h>
#include <TClass.h>
#include <TSystem.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>

namespace {

using testing::HasSubstr;
using VdRoot::TTimeStamp;

/// What a call writes to `std::cerr`; nothing of it may reach the logger.
std::string Complaints(const std::function<void()>& call) {
  LogCapture log;
  testing::internal::CaptureStderr();
  call();
  std::string text = testing::internal::GetCapturedStderr();
  EXPECT_EQ(log.Take(), "");
  return text;
}

std::string IllegalId(const std::string& operation, UInt_t id) {
  return "TStnRunTrailer::" + operation + "(" + std::to_string(id) + ") - illegal Mirror id passed !\n";
}

void Fill(TStnRunTrailer* trailer) {
  trailer->SetMirrorStatus(0x25);
  trailer->SetNEvents(500);
  trailer->SetVetoTimeCounter(0x100000007);
  for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
    trailer->SetDeadTimeCounter(0x200000000 + mirror, mirror);
    trailer->SetLifeTimeCounter(20 + mirror, mirror);
    trailer->SetMirrorDaqDeadTime(0x300000000 + mirror, mirror);
    trailer->SetMirrorNSkippedTriggers(30 + mirror, mirror);
  }
  trailer->SetStnDaqDeadTime(0x400000000);
  trailer->SetNumberOfT3(41);
  trailer->SetNumberOfRejectedT3(42);
  trailer->SetTotalT3DeadTime(4.5F);
  trailer->SetStartTime(TTimeStamp(1500000000, 1));
  trailer->SetStopTime(TTimeStamp(1500000100, 2));
  trailer->SetTotalTime(99);
}

void ExpectFilled(const TStnRunTrailer& trailer) {
  EXPECT_EQ(trailer.GetMirrorStatus(), 0x25U);
  EXPECT_EQ(trailer.GetNEvents(), 500U);
  EXPECT_EQ(trailer.GetVetoTimeCounter(), 0x100000007U);
  for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
    EXPECT_EQ(trailer.GetDeadTimeCounter(mirror), 0x200000000U + mirror);
    EXPECT_EQ(trailer.GetLifeTimeCounter(mirror), 20 + mirror);
    EXPECT_EQ(trailer.GetMirrorDaqDeadTime(mirror), 0x300000000U + mirror);
    EXPECT_EQ(trailer.GetMirrorNSkippedTriggers(mirror), 30 + mirror);
  }
  EXPECT_EQ(trailer.GetStnDaqDeadTime(), 0x400000000U);
  EXPECT_EQ(trailer.GetNumberOfT3(), 41U);
  EXPECT_EQ(trailer.GetNumberOfRejectedT3(), 42U);
  EXPECT_EQ(trailer.GetTotalT3DeadTime(), 4.5F);
  EXPECT_EQ(trailer.GetStartTime().GetSec(), 1500000000);
  EXPECT_EQ(trailer.GetStartTime().GetNanoSec(), 1);
  EXPECT_EQ(trailer.GetStopTime().GetSec(), 1500000100);
  EXPECT_EQ(trailer.GetStopTime().GetNanoSec(), 2);
  EXPECT_EQ(trailer.GetTotalTime(), 99U);
}

void ExpectCleared(const TStnRunTrailer& trailer) {
  EXPECT_EQ(trailer.GetMirrorStatus(), 0U);
  EXPECT_EQ(trailer.GetNEvents(), 0U);
  EXPECT_EQ(trailer.GetVetoTimeCounter(), 0U);
  for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
    EXPECT_EQ(trailer.GetDeadTimeCounter(mirror), 0U);
    EXPECT_EQ(trailer.GetLifeTimeCounter(mirror), 0U);
    EXPECT_EQ(trailer.GetMirrorDaqDeadTime(mirror), 0U);
    EXPECT_EQ(trailer.GetMirrorNSkippedTriggers(mirror), 0U);
  }
  EXPECT_EQ(trailer.GetStnDaqDeadTime(), 0U);
  EXPECT_EQ(trailer.GetNumberOfT3(), 0U);
  EXPECT_EQ(trailer.GetNumberOfRejectedT3(), 0U);
  EXPECT_EQ(trailer.GetTotalT3DeadTime(), 0.0F);
  for (const TTimeStamp* stamp : {&trailer.GetStartTime(), &trailer.GetStopTime()}) {
    EXPECT_EQ(stamp->GetSec(), 0);
    EXPECT_EQ(stamp->GetNanoSec(), 0);
  }
  EXPECT_EQ(trailer.GetTotalTime(), 0U);
}

TMirrorRunTrailer MakeMirrorTrailer(ULong64_t counter) {
  TMirrorRunTrailer trailer;
  trailer.SetVetoTimeCounter(counter);
  trailer.SetDeadTimeCounter(counter + 1);
  trailer.SetDaqDeadTime(counter + 2);
  return trailer;
}

TEST(StnRunTrailer, IsAllZeroWhenItIsNew) { ExpectCleared(TStnRunTrailer()); }

TEST(StnRunTrailer, ClearSetsEveryFieldToZero) {
  TStnRunTrailer trailer;
  Fill(&trailer);
  trailer.Clear("option");
  ExpectCleared(trailer);
}

TEST(StnRunTrailer, KeepsWhatIsSet) {
  TStnRunTrailer trailer;
  Fill(&trailer);
  ExpectFilled(trailer);
}

TEST(StnRunTrailer, AssignmentCopiesEveryField) {
  TStnRunTrailer source;
  Fill(&source);
  TStnRunTrailer trailer;
  trailer = source;
  ExpectFilled(trailer);
}

TEST(StnRunTrailer, AssignmentToItselfChangesNothing) {
  TStnRunTrailer trailer;
  Fill(&trailer);
  const TStnRunTrailer& self = trailer;
  trailer = self;
  ExpectFilled(trailer);
}

TEST(StnRunTrailer, CopyHasEveryField) {
  TStnRunTrailer source;
  Fill(&source);
  const TStnRunTrailer copy(source);
  ExpectFilled(copy);
}

TEST(StnRunTrailer, StoresTheLowEightBitsOfTheStatus) {
  TStnRunTrailer trailer;
  trailer.SetMirrorStatus(0x103);
  EXPECT_EQ(trailer.GetMirrorStatus(), 3U);
}

struct Access {
  std::string fName;
  std::function<void(TStnRunTrailer&, UInt_t)> fSet;  // sets 5
  std::function<ULong64_t(const TStnRunTrailer&, UInt_t)> fGet;
};

class StnRunTrailerAccess : public testing::TestWithParam<Access> {};

TEST_P(StnRunTrailerAccess, ReachesTheFirstAndTheLastMirror) {
  TStnRunTrailer trailer;
  GetParam().fSet(trailer, 1);
  GetParam().fSet(trailer, 6);
  EXPECT_EQ(GetParam().fGet(trailer, 1), 5U);
  EXPECT_EQ(GetParam().fGet(trailer, 2), 0U);
  EXPECT_EQ(GetParam().fGet(trailer, 6), 5U);
}

TEST_P(StnRunTrailerAccess, ComplainsOfASetterForAMirrorThatCannotBe) {
  for (const UInt_t id : {0U, 7U, 33U}) {
    TStnRunTrailer trailer;
    EXPECT_EQ(Complaints([&] { GetParam().fSet(trailer, id); }), IllegalId("Set" + GetParam().fName, id));
    ExpectCleared(trailer);
  }
}

TEST_P(StnRunTrailerAccess, ComplainsOfAGetterForAMirrorThatCannotBe) {
  TStnRunTrailer trailer;
  Fill(&trailer);
  for (const UInt_t id : {0U, 7U}) {
    EXPECT_EQ(Complaints([&] { EXPECT_EQ(GetParam().fGet(trailer, id), 0U); }),
              IllegalId("Get" + GetParam().fName, id));
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, StnRunTrailerAccess,
    testing::Values(Access{"DeadTimeCounter", [](auto& trailer, UInt_t id) { trailer.SetDeadTimeCounter(5, id); },
                           [](const auto& trailer, UInt_t id) { return trailer.GetDeadTimeCounter(id); }},
                    Access{"LifeTimeCounter", [](auto& trailer, UInt_t id) { trailer.SetLifeTimeCounter(5, id); },
                           [](const auto& trailer, UInt_t id) { return trailer.GetLifeTimeCounter(id); }},
                    Access{"MirrorDaqDeadTime", [](auto& trailer, UInt_t id) { trailer.SetMirrorDaqDeadTime(5, id); },
                           [](const auto& trailer, UInt_t id) { return trailer.GetMirrorDaqDeadTime(id); }},
                    Access{"MirrorNSkippedTriggers",
                           [](auto& trailer, UInt_t id) { trailer.SetMirrorNSkippedTriggers(5, id); },
                           [](const auto& trailer, UInt_t id) { return trailer.GetMirrorNSkippedTriggers(id); }}),
    [](const auto& info) { return info.param.fName; });

TEST(StnRunTrailer, MarksMirrorsAsPresent) {
  TStnRunTrailer trailer;
  trailer.SetMirrorPresent(1);
  trailer.SetMirrorPresent(6);
  EXPECT_EQ(trailer.GetMirrorStatus(), 0x21U);
}

TEST(StnRunTrailer, ComplainsOfThePresenceOfAMirrorThatCannotBe) {
  TStnRunTrailer trailer;
  EXPECT_EQ(Complaints([&] { trailer.SetMirrorPresent(0); }), IllegalId("SetMirrorPresent", 0));
  EXPECT_EQ(Complaints([&] { trailer.SetMirrorPresent(7); }), IllegalId("SetMirrorPresent", 7));
  EXPECT_EQ(trailer.GetMirrorStatus(), 0U);
}

TEST(StnRunTrailer, TellsPresentFromAbsentMirrorsWithoutComplaints) {
  TStnRunTrailer trailer;
  trailer.SetMirrorStatus(0x02);
  EXPECT_EQ(Complaints([&] {
              EXPECT_TRUE(trailer.IsMirrorPresent(2));
              EXPECT_FALSE(trailer.IsMirrorPresent(1));
              EXPECT_FALSE(trailer.IsMirrorPresent(3));
            }),
            "");
}

TEST(StnRunTrailer, LooksAtTheBitAlsoOfMirrorsThatCannotBe) {
  TStnRunTrailer trailer;
  trailer.SetMirrorStatus(0xff);
  EXPECT_EQ(Complaints([&] {
              EXPECT_FALSE(trailer.IsMirrorPresent(0));
              EXPECT_TRUE(trailer.IsMirrorPresent(7));
              EXPECT_TRUE(trailer.IsMirrorPresent(8));
              EXPECT_FALSE(trailer.IsMirrorPresent(9));
              EXPECT_FALSE(trailer.IsMirrorPresent(32));
            }),
            "");
}

TEST(StnRunTrailer, CountsTheMirrorNumberOfPresenceModulo32) {
  TStnRunTrailer trailer;
  trailer.SetMirrorStatus(0x01);
  EXPECT_TRUE(trailer.IsMirrorPresent(33));
  EXPECT_FALSE(trailer.IsMirrorPresent(34));
}

TEST(StnRunTrailer, AddsToTheLifeTime) {
  TStnRunTrailer trailer;
  trailer.AddToLifeTimeCounter(5, 3);
  trailer.AddToLifeTimeCounter(5, 3);
  EXPECT_EQ(trailer.GetLifeTimeCounter(3), 10U);
  trailer.AddToLifeTimeCounter(-5, 3);
  EXPECT_EQ(trailer.GetLifeTimeCounter(3), 5U);
}

TEST(StnRunTrailer, ComplainsOfTheLifeTimeOfAMirrorThatCannotBeUnderAnotherName) {
  TStnRunTrailer trailer;
  EXPECT_EQ(Complaints([&] { trailer.AddToLifeTimeCounter(5, 0); }), IllegalId("AddToTimeCounter", 0));
  EXPECT_EQ(Complaints([&] { trailer.AddToLifeTimeCounter(5, 7); }), IllegalId("AddToTimeCounter", 7));
  ExpectCleared(trailer);
}

TEST(StnRunTrailer, TakesThreeCountersOfAMirrorsTrailer) {
  TStnRunTrailer trailer;
  Fill(&trailer);
  const TMirrorRunTrailer mirror = MakeMirrorTrailer(0x500000000);
  trailer.AddMirrorRunTrailer(&mirror, 2);
  EXPECT_EQ(trailer.GetVetoTimeCounter(), 0x500000000U);
  EXPECT_EQ(trailer.GetDeadTimeCounter(2), 0x500000001U);
  EXPECT_EQ(trailer.GetMirrorDaqDeadTime(2), 0x500000002U);
  EXPECT_EQ(trailer.GetLifeTimeCounter(2), 22U);
  EXPECT_EQ(trailer.GetMirrorNSkippedTriggers(2), 32U);
  EXPECT_EQ(trailer.GetMirrorStatus(), 0x25U);
  EXPECT_EQ(trailer.GetDeadTimeCounter(1), 0x200000001U);
}

TEST(StnRunTrailer, KeepsTheVetoTimeOfTheMirrorAddedLast) {
  TStnRunTrailer trailer;
  const TMirrorRunTrailer first = MakeMirrorTrailer(100);
  const TMirrorRunTrailer second = MakeMirrorTrailer(200);
  trailer.AddMirrorRunTrailer(&first, 1);
  trailer.AddMirrorRunTrailer(&second, 2);
  EXPECT_EQ(trailer.GetVetoTimeCounter(), 200U);
  EXPECT_EQ(trailer.GetDeadTimeCounter(1), 101U);
}

TEST(StnRunTrailer, ReplacesWhatAMirrorHad) {
  TStnRunTrailer trailer;
  const TMirrorRunTrailer first = MakeMirrorTrailer(100);
  const TMirrorRunTrailer second = MakeMirrorTrailer(200);
  trailer.AddMirrorRunTrailer(&first, 4);
  trailer.AddMirrorRunTrailer(&second, 4);
  EXPECT_EQ(trailer.GetDeadTimeCounter(4), 201U);
  EXPECT_EQ(trailer.GetMirrorDaqDeadTime(4), 202U);
}

TEST(StnRunTrailer, TakesOnlyTheVetoTimeOfAMirrorThatCannotBe) {
  TStnRunTrailer trailer;
  const TMirrorRunTrailer mirror = MakeMirrorTrailer(100);
  EXPECT_EQ(
      Complaints([&] { trailer.AddMirrorRunTrailer(&mirror, 7); }),
      IllegalId("AddMirrorRunTrailer", 7) + IllegalId("SetDeadTimeCounter", 7) + IllegalId("SetMirrorDaqDeadTime", 7));
  EXPECT_EQ(trailer.GetVetoTimeCounter(), 100U);
  trailer.SetVetoTimeCounter(0);
  ExpectCleared(trailer);
}

TEST(StnRunTrailerDeathTest, AssertsThatThereIsAMirrorsTrailer) {
  EXPECT_DEATH(
      {
        gSystem->ResetSignals();
        TStnRunTrailer().AddMirrorRunTrailer(nullptr, 1);
      },
      "StnEvent/src/StnRunTrailer.cc:[0-9]+: void TStnRunTrailer::AddMirrorRunTrailer\\(const TMirrorRunTrailer ?\\*, "
      "unsigned int\\): Assertion `trailer != __null' failed");
}

TEST(StnRunTrailer, StampsThePresentMoment) {
  TStnRunTrailer trailer;
  const TTimeStamp before;
  trailer.SetStartTime();
  trailer.SetStopTime();
  const TTimeStamp after;
  EXPECT_FALSE(trailer.GetStartTime() < before);
  EXPECT_FALSE(trailer.GetStopTime() < trailer.GetStartTime());
  EXPECT_FALSE(after < trailer.GetStopTime());
}

/// The length that a trailer gives a run between two Unix seconds.
UInt_t TotalTime(time_t start, time_t stop) {
  TStnRunTrailer trailer;
  trailer.SetStartTime(TTimeStamp(start, 0));
  trailer.SetStopTime(TTimeStamp(stop, 0));
  trailer.SetTotalTime();
  return trailer.GetTotalTime();
}

TEST(StnRunTrailer, TakesTheLengthOfTheRunFromItsStamps) { EXPECT_EQ(TotalTime(1500000000, 1500000100), 100U); }

TEST(StnRunTrailer, CountsALeapSecondOfTheRun) {
  // The last second of 2016 was a leap second; 2017 began at Unix second 1483228800.
  EXPECT_EQ(TotalTime(1483228750, 1483228850), 101U);
}

TEST(StnRunTrailer, WrapsTheLengthOfARunThatEndsBeforeItBegins) {
  EXPECT_EQ(TotalTime(1500000100, 1500000000), 4294967196U);
}

TEST(StnRunTrailer, TakesALengthThatIsGiven) {
  TStnRunTrailer trailer;
  Fill(&trailer);
  trailer.SetTotalTime(7);
  EXPECT_EQ(trailer.GetTotalTime(), 7U);
}

std::string ShowText(const TStnRunTrailer& trailer) {
  std::ostringstream text;
  trailer.Show(text);
  return text.str();
}

TEST(StnRunTrailer, ShowsAllOfAFilledTrailer) {
  TStnRunTrailer trailer;
  Fill(&trailer);
  trailer.SetMirrorStatus(0xc5);
  EXPECT_EQ(ShowText(trailer),
            "--- TStnRunTrailer ---\n"
            " RUN started at  : " +
                std::string(TTimeStamp(1500000000, 1).AsString("")) +
                "\n"
                " RUN ended at    : " +
                std::string(TTimeStamp(1500000100, 2).AsString("")) +
                "\n"
                " Total RUN time  : 99 [s]\n"
                " Number of events: 500\n"
                " Number of T3    : 41\n"
                "  rejected T3    : 42\n"
                "  T3 dead time   : 4.5 [s]\n"
                " Mirrors present : 1 3 \n"
                " acc. VETO time :           4294967303 [* ]\n"
                " Dead time[1]   :           8589934593 [* 100 ns]\n"
                " Life time[1]   :         21 [* sec]\n"
                "Daq Dead time[1]:          12884901889 [* 100 ns]\n"
                "Skpd triggers[1]: 31\n"
                " Dead time[3]   :           8589934595 [* 100 ns]\n"
                " Life time[3]   :         23 [* sec]\n"
                "Daq Dead time[3]:          12884901891 [* 100 ns]\n"
                "Skpd triggers[3]: 33\n"
                " Stn DAQ Dead time:          17179869184 [* 100 ns]\n");
}

TEST(StnRunTrailer, ShowsNoOptionalLinesWithoutTheirValues) {
  TStnRunTrailer trailer;
  trailer.SetMirrorPresent(6);
  const std::string zero = TTimeStamp(0, 0).AsString("");
  EXPECT_EQ(ShowText(trailer),
            "--- TStnRunTrailer ---\n"
            " RUN started at  : " +
                zero +
                "\n"
                " RUN ended at    : " +
                zero +
                "\n"
                " Total RUN time  : 0 [s]\n"
                " Number of events: 0\n"
                " Mirrors present : 6 \n"
                " acc. VETO time :                    0 [* ]\n"
                " Dead time[6]   :                    0 [* 100 ns]\n"
                " Life time[6]   :          0 [* sec]\n");
}

TEST(StnRunTrailer, ShowsOptionalLinesFromOneOn) {
  TStnRunTrailer trailer;
  trailer.SetMirrorPresent(2);
  trailer.SetMirrorDaqDeadTime(1, 2);
  trailer.SetMirrorNSkippedTriggers(1, 2);
  trailer.SetNumberOfT3(1);
  trailer.SetStnDaqDeadTime(1);
  const std::string text = ShowText(trailer);
  EXPECT_THAT(text, HasSubstr("\n Number of T3    : 1\n  rejected T3    : 0\n  T3 dead time   : 0 [s]\n"));
  EXPECT_THAT(text, HasSubstr("\nDaq Dead time[2]:                    1 [* 100 ns]\nSkpd triggers[2]: 1\n"
                              " Stn DAQ Dead time:                    1 [* 100 ns]\n"));
}

TEST(StnRunTrailer, ComesBackFromABuffer) {
  TStnRunTrailer trailer;
  Fill(&trailer);
  TBufferFile buffer(TBuffer::kWrite);
  trailer.Streamer(buffer);
  buffer.SetReadMode();
  buffer.SetBufferOffset(0);
  TStnRunTrailer read;
  read.Streamer(buffer);
  ExpectFilled(read);
}

TEST(StnRunTrailer, HasTheDescribedMembers) {
  EXPECT_EQ(TStnRunTrailer::Class()->GetClassVersion(), 3);
  EXPECT_EQ(DescribedMembers(TStnRunTrailer::Class()),
            Descriptions({{"fMirrorStatus", "bit for each mirror in DAQ: bit (id - 1) for mirror id"},
                          {"fNEvents", "number of events in the file"},
                          {"fVetoTimeCounter", "accumulated VETO time"},
                          {"fDeadTimeCounter", "accumulated, individual DEAD time, in units of 100 ns"},
                          {"fLifeTimeCounter", "accumulated, individual life time [sec]"},
                          {"fMirrorDaqDeadTime", "acc. DAQ dead times, in units of 100 ns"},
                          {"fMirrorNSkippedTriggers", "triggers skipped, per mirror"},
                          {"fStnDaqDeadTime", "DAQ dead time of the station, in units of 100 ns"},
                          {"fNT3", "total number of T3, incl. rejected"},
                          {"fNRejectedT3", "number of T3 rejected by T3-CKAS VETO"},
                          {"fTotalT3DeadTime", "acc. deadtime by T3-CKAS VETO, in seconds"},
                          {"fStartTime", "timestamp when the RUN was started"},
                          {"fStopTime", "timestamp when the RUN was stopped"},
                          {"fTotalTime", "total number of seconds of the RUN"}}));
}

}  // namespace
