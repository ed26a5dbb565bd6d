#include "CommandLine.h"
#include "ExitCode.h"
#include "ToolError.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

class CommandLineTest : public testing::Test {
 protected:
  int Run(std::vector<std::string> args, const std::function<int()>& work) {
    std::vector<char*> argv;
    args.insert(args.begin(), "stn-test");
    for (std::string& arg : args)
      argv.push_back(&arg[0]);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    int code = StnTools::RunApp(fApp, static_cast<int>(argv.size()), argv.data(), work);
    fOutput = testing::internal::GetCapturedStdout();
    fError = testing::internal::GetCapturedStderr();
    return code;
  }

  int Throw(const std::exception& error) {
    return Run({}, [&error]() -> int {
      if (auto tool_error = dynamic_cast<const StnTools::ToolError*>(&error)) throw StnTools::ToolError(*tool_error);
      throw std::runtime_error(error.what());
    });
  }

  CLI::App fApp{"A test.", "stn-test"};
  std::string fOutput;
  std::string fError;
};

}  // namespace

TEST_F(CommandLineTest, AnswersWhatTheWorkAnswers) {
  EXPECT_EQ(Run({}, [] { return 1; }), 1);
  EXPECT_EQ(fError, "");
}

TEST_F(CommandLineTest, HelpsWithoutWorking) {
  EXPECT_EQ(Run({"--help"}, [] { return 1; }), StnTools::kFine);
  EXPECT_NE(fOutput.find(StnTools::kExitCodeHelp), std::string::npos);
}

TEST_F(CommandLineTest, TellsItsVersionWithoutWorking) {
  EXPECT_EQ(Run({"--version"}, [] { return 1; }), StnTools::kFine);
  EXPECT_EQ(fOutput, "stn-test (StnEvent 2.1.100)\n");
}

TEST_F(CommandLineTest, RefusesWhatItDoesNotKnow) {
  EXPECT_EQ(Run({"surprise"}, [] { return 0; }), StnTools::kUsage);
  EXPECT_EQ(fError, "The following argument was not expected: surprise\nRun with --help for more information.\n");
}

TEST_F(CommandLineTest, MakesOneLineAndACodeOfAnError) {
  EXPECT_EQ(Throw(StnTools::ToolError(StnTools::kCannotWrite, "no room")), StnTools::kCannotWrite);
  EXPECT_EQ(fError, "stn-test: no room\n");
}

TEST_F(CommandLineTest, MakesOneLineOfAnErrorThatNobodyExpected) {
  EXPECT_EQ(Throw(std::runtime_error("out of luck")), StnTools::kDamage);
  EXPECT_EQ(fError, "stn-test: out of luck\n");
}

namespace {

struct NoOptions {};

void FailToAddOptions(CLI::App&, NoOptions&) { throw std::bad_alloc(); }

int DoNothing(const NoOptions&) { return 0; }

}  // namespace

TEST(RunProgramTest, EndsWithALineIfNotEvenTheOptionsCanBeMade) {
  char name[] = "stn-test";
  char* argv[] = {name};
  testing::internal::CaptureStderr();
  EXPECT_EQ(StnTools::RunProgram("stn-test", "A test.", FailToAddOptions, DoNothing, 1, argv), StnTools::kDamage);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "stn-test: out of memory, or an error in the program\n");
}
