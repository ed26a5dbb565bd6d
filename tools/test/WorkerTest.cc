#include "Worker.h"

#include "ToolError.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <vector>

namespace {

using namespace StnTools;

const Worker::Limits kLimits = {20, 4ULL << 30};

Worker::Result RunWork(const Worker::Work& work, const Worker::Limits& limits = kLimits) {
  return Worker::Run(
      work, [](const std::string&) {}, limits);
}

// What becomes of a worker that begins "the step" and then ends in some way.
Worker::Result RunToItsEnd(const std::function<void()>& end, const Worker::Limits& limits = kLimits) {
  return RunWork(
      [&end](WorkerLine& line) {
        line.Begin("the step");
        end();
        return 0;
      },
      limits);
}

TEST(Worker, BringsTheAnswer) {
  Worker::Result result = RunWork([](WorkerLine&) { return 17; });
  EXPECT_TRUE(result.fIsDone);
  EXPECT_EQ(result.fCode, 17);
}

TEST(Worker, BringsAllThatIsSaid) {
  std::vector<std::string> heard;
  std::string large(200000, 'x');
  auto work = [&large](WorkerLine& line) {
    line.Say("one\ntwo");
    line.Say("");
    line.Say(large);
    return 0;
  };
  Worker::Run(
      work, [&heard](const std::string& text) { heard.push_back(text); }, kLimits);
  EXPECT_EQ(heard, (std::vector<std::string>{"one\ntwo", "", large}));
}

TEST(Worker, ThrowsWhatTheWorkThrows) {
  try {
    RunWork([](WorkerLine&) -> int { throw ToolError(kCannotOpen, "no such thing"); });
    FAIL();
  } catch (const ToolError& error) {
    EXPECT_EQ(error.GetCode(), kCannotOpen);
    EXPECT_STREQ(error.what(), "no such thing");
  }
}

TEST(Worker, NamesStepAndSignalOfACrash) {
  Worker::Result result = RunToItsEnd([] {
    std::signal(SIGSEGV, SIG_DFL);
    raise(SIGSEGV);
  });
  EXPECT_FALSE(result.fIsDone);
  EXPECT_EQ(result.fStep, "the step");
  EXPECT_EQ(result.fReason, "crash: Segmentation fault");
}

TEST(Worker, NamesTheLastWordsOfAProcessThatEnds) {
  Worker::Result result = RunToItsEnd([] {
    std::cerr << "something\nwent wrong" << std::endl;
    std::_Exit(1);
  });
  EXPECT_FALSE(result.fIsDone);
  EXPECT_EQ(result.fReason, "went wrong");
}

TEST(Worker, NamesASilentEnd) {
  EXPECT_EQ(RunToItsEnd([] { std::_Exit(0); }).fReason, "the process was ended");
}

TEST(Worker, EndsWorkThatDoesNotGoOn) {
  Worker::Result result = RunToItsEnd([] { pause(); }, {1, 4ULL << 30});
  EXPECT_EQ(result.fStep, "the step");
  EXPECT_EQ(result.fReason, "no end in sight after 1 s");
}

TEST(Worker, EndsWorkThatOnlyComplains) {
  Worker::Result result = RunToItsEnd(
      [] {
        while (true) {
          std::cerr << "oh dear" << std::endl;
          usleep(10000);
        }
      },
      {1, 4ULL << 30});
  EXPECT_EQ(result.fReason, "no end in sight after 1 s");
}

#ifndef __SANITIZE_ADDRESS__
TEST(Worker, LimitsMemory) {
  Worker::Result result = RunToItsEnd([] { std::vector<char> large(8ULL << 30); });
  EXPECT_FALSE(result.fIsDone);
  EXPECT_EQ(result.fReason, "std::bad_alloc");
}
#endif

TEST(WorkerDeathTest, EndsAsItsWorkerIsEnded) {
  EXPECT_EXIT(RunToItsEnd([] { raise(SIGTERM); }), testing::KilledBySignal(SIGTERM), "");
}

TEST(Worker, PutsOutputsAway) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  RunToItsEnd([] {
    std::cout << "output" << std::endl;
    std::cerr << "error" << std::endl;
  });
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
