#include "InputFile.h"
#include "OutputFile.h"
#include "Simulation.h"
#include "ToolError.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

using StnTools::InputFile;
using StnTools::OutputFile;
using StnTools::Simulation;
using StnTools::SimulationSettings;

class InputFileTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    SimulationSettings settings = SimulationSettings::Light();
    settings.fRun = 42;
    Simulation simulation(settings);
    OutputFile file("run.root", true, 1);
    TStnRunHeader header;
    simulation.FillRunHeader(header);
    file.WriteRunHeader(header);
    for (UInt_t trigger = 1; trigger <= 4; ++trigger) {
      simulation.Simulate(trigger);
      simulation.Build(file.GetEvent());
      file.WriteEvent();
    }
    TStnRunTrailer trailer;
    simulation.FillRunTrailer(trailer, 4);
    file.WriteRunTrailer(trailer);
    file.Finish();
  }

  InputFile fFile{"stn-test", "run.root"};
};

}  // namespace

TEST_F(InputFileTest, KnowsWhatItOpened) {
  EXPECT_EQ(fFile.GetPath(), "run.root");
  EXPECT_EQ(fFile.GetState(), StnTools::kFine);
  EXPECT_EQ(fFile.GetNEvents(), 4u);
  EXPECT_TRUE(fFile.HasRunHeader());
  EXPECT_TRUE(fFile.HasRunTrailer());
}

TEST_F(InputFileTest, ReadsEventsInAnyOrder) {
  EXPECT_EQ(fFile.ReadEvent(3)->GetEventHeader()->GetEventNo(), 4u);
  EXPECT_EQ(fFile.ReadEvent(0)->GetEventHeader()->GetEventNo(), 1u);
}

TEST_F(InputFileTest, ReadsHeadersAndEventsInTurn) {
  EXPECT_EQ(fFile.ReadEventHeader(2).GetEventNo(), 3u);
  EXPECT_EQ(fFile.ReadEvent(1)->GetFADCData()->GetNTraces(), 8u);
  EXPECT_EQ(fFile.ReadEventHeader(0).GetEventNo(), 1u);
}

TEST_F(InputFileTest, RefusesEntriesThatDoNotExist) {
  EXPECT_THROW(fFile.ReadEvent(4), StnTools::ToolError);
  EXPECT_THROW(fFile.ReadEventHeader(4), StnTools::ToolError);
  EXPECT_NO_THROW(fFile.RequireEntry(3));
}

TEST_F(InputFileTest, ReadsTheRunRecords) {
  EXPECT_EQ(fFile.ReadRunHeader()->GetRunNo(), 42u);
  EXPECT_EQ(fFile.ReadRunTrailer()->GetNEvents(), 4u);
}

TEST_F(InputFileTest, ShowsTheFile) {
  std::ostringstream text;
  fFile.Show(text);
  EXPECT_NE(text.str().find(" File run.root opened for reading\n"), std::string::npos);
}

TEST(GuardAgainstCrashTest, EndsACrashWithOneLine) {
  for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) {
    EXPECT_EXIT(
        {
          StnTools::GuardAgainstCrash("stn-test", "bad.root");
          raise(signal);
        },
        testing::ExitedWithCode(1),
        "^stn-test: bad.root could not be read: ROOT crashed on it, so it is most likely damaged; "
        "copy or write it again\n$");
  }
}
