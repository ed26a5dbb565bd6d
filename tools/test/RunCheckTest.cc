#include "RunCheck.h"

#include <VdUtil/VdNumbering.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace StnTools;
using VdRoot::TTimeStamp;

class RunCheckTest : public testing::Test {
 protected:
  RunCheckTest() {
    header->SetRunNo(7);
    header->SetStnNo(2);
    trailer->SetNEvents(1);
    trailer->SetStartTime(TTimeStamp(1000, 0));
    trailer->SetStopTime(TTimeStamp(1100, 0));
    event.GetEventHeader()->SetRunNo(7);
    event.GetEventHeader()->SetStnNo(2);
    event.GetEventHeader()->SetEventNo(1);
    event.GetEventHeader()->SetTimeStamp(TTimeStamp(1050, 0));
  }

  // Texts of the findings in a run of this one event.
  std::vector<std::string> Run() {
    std::vector<std::string> texts;
    RunCheck check([&texts](const Finding& finding) {
      texts.push_back((finding.fKind == Finding::kNote ? "note: " : "") + finding.GetText());
    });
    check.Begin(std::move(header), std::move(trailer));
    check.Check(0, event);
    check.End(1);
    return texts;
  }

  std::unique_ptr<TStnRunHeader> header{new TStnRunHeader};
  std::unique_ptr<TStnRunTrailer> trailer{new TStnRunTrailer};
  TStnEvent event;
};

using Texts = std::vector<std::string>;

TEST_F(RunCheckTest, FindsNothingWhereAllAgrees) { EXPECT_EQ(Run(), Texts()); }

TEST_F(RunCheckTest, NotesAMissingRunHeader) {
  header.reset();
  EXPECT_EQ(Run(), Texts{"note: RunHeader: expected a record, found none, the run was not begun as it should be"});
}

TEST_F(RunCheckTest, NotesAMissingRunTrailer) {
  trailer.reset();
  EXPECT_EQ(Run(), Texts{"note: RunTrailer: expected a record, found none, the run was not ended"});
}

TEST_F(RunCheckTest, FindsAnEventOfAnotherRun) {
  event.GetEventHeader()->SetRunNo(8);
  EXPECT_EQ(Run(), Texts{"event 0, fEventHeader: run number: expected 7, found 8"});
}

TEST_F(RunCheckTest, TakesARunNumberOfZeroForNone) {
  event.GetEventHeader()->SetRunNo(0);
  EXPECT_EQ(Run(), Texts());
}

TEST_F(RunCheckTest, FindsAnEventOfAnotherStation) {
  event.GetEventHeader()->SetStnNo(3);
  EXPECT_EQ(Run(), Texts{"event 0, fEventHeader: station: expected 2, found 3"});
}

TEST_F(RunCheckTest, TakesNoStationFromARunHeaderThatNobodyFilled) {
  header->SetRunNo(0);
  event.GetEventHeader()->SetStnNo(3);
  EXPECT_EQ(Run(), Texts());
}

TEST_F(RunCheckTest, FindsAnotherCountInTheTrailer) {
  trailer->SetNEvents(2);
  EXPECT_EQ(Run(), Texts{"events by the run trailer: expected 2, found 1"});
}

TEST_F(RunCheckTest, NotesAnEventBeforeTheRun) {
  event.GetEventHeader()->SetTimeStamp(TTimeStamp(999, 0));
  EXPECT_EQ(Run(), Texts{"note: event 0, fEventHeader: time: expected 1000 s to 1100 s, found 999 s"});
}

TEST_F(RunCheckTest, NotesAnEventAfterTheRun) {
  event.GetEventHeader()->SetTimeStamp(TTimeStamp(1101, 0));
  EXPECT_EQ(Run(), Texts{"note: event 0, fEventHeader: time: expected 1000 s to 1100 s, found 1101 s"});
}

TEST_F(RunCheckTest, TakesATimeOfZeroForNone) {
  event.GetEventHeader()->SetTimeStamp(TTimeStamp(0, 0));
  EXPECT_EQ(Run(), Texts());
}

TEST_F(RunCheckTest, FindsATraceOfAMirrorThatTheHeaderLacks) {
  TFADCData trace;
  VdUtil::Vd::SetStnNo(&trace.GetRecord()->fPixelNumber, 2);
  VdUtil::Vd::SetMirrorNo(&trace.GetRecord()->fPixelNumber, 4);
  VdUtil::Vd::SetPixelNo(&trace.GetRecord()->fPixelNumber, 1);
  event.GetFADCData()->AddFADCData(&trace);
  EXPECT_EQ(Run(),
            Texts{"event 0, fFADCData: mirror of a trace: expected one of the header's mirrors, found mirror 4"});
}

}  // namespace
