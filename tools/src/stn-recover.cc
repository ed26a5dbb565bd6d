#include "CommandLine.h"
#include "FileName.h"
#include "Recovery.h"
#include "ToolError.h"
#include "Worker.h"

#include <nlohmann/json.hpp>

#include <iostream>
#include <map>

namespace {

using namespace StnTools;

struct Options {
  std::string fInput;
  std::string fOutput;
  std::size_t fTree = 0;
  bool fPartial = false;
  bool fForce = false;
};

// Steps at which ROOT ended the process, and how.
using BadSteps = std::map<std::string, std::string>;

// A file in which so many places end the process is none to be mended.
const std::size_t kMostBadSteps = 100;

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("IN", options.fInput, "station file to recover; it is only read")->required();
  app.add_option("OUT", options.fOutput, "station file to write")->required();
  app.add_option("--tree", options.fTree, "of several trees in IN the one to take, from 1 (default: the last)")
      ->check(CLI::PositiveNumber);
  app.add_flag("--partial", options.fPartial, "also write events that lack something other than their header");
  app.add_flag("-f,--force", options.fForce, "replace OUT if it exists");
}

std::size_t ChooseTree(const Options& options, const Recovery& recovery, nlohmann::json& report) {
  std::size_t n_trees = recovery.GetNTrees();
  if (options.fTree > n_trees) {
    throw ToolError(kUsage, options.fInput + " has no tree " + std::to_string(options.fTree) + ": it has " +
                                std::to_string(n_trees));
  }
  std::size_t tree = options.fTree > 0 ? options.fTree : n_trees;
  for (std::size_t other = 1; n_trees > 1 && other <= n_trees; ++other) {
    report["losses"].push_back("tree " + std::to_string(other) + " of " + std::to_string(n_trees) + " with " +
                               std::to_string(recovery.GetNEvents(other)) + " events was " +
                               (other == tree ? "taken" : "left out: --tree " + std::to_string(other) + " takes it"));
  }
  return tree;
}

int Recover(const Options& options, const BadSteps& bad_steps, WorkerLine& line) {
  Recovery::DescribeClasses();
  Recovery recovery(options.fInput, [&](const std::string& step) {
    line.Begin(step);
    return bad_steps.count(step) == 0;
  });
  nlohmann::json report = {{"losses", nlohmann::json::array()}};
  std::size_t tree = ChooseTree(options, recovery, report);
  line.Begin("the output");
  OutputFile output(options.fOutput, options.fForce, recovery.GetFile().GetFrame().fCompression);
  Recovery::Summary summary = recovery.Write(tree, options.fPartial, output);
  if (summary.fNWritten == 0 && !summary.fHasRunHeader && !summary.fHasRunTrailer)
    throw ToolError(kDamage, options.fInput + ": nothing can be recovered, no event is whole");
  line.Begin("the end of the output");
  output.Finish();
  for (const std::string& loss : summary.fLosses)
    report["losses"].push_back(loss);
  report["whole"] = summary.fNWhole;
  report["partial"] = summary.fNPartial;
  report["written"] = summary.fNWritten;
  report["header"] = summary.fHasRunHeader;
  report["trailer"] = summary.fHasRunTrailer;
  line.Say(report.dump());
  return kFine;
}

int Report(const Options& options, const BadSteps& bad_steps, const nlohmann::json& report) {
  std::string warning = "stn-recover: warning: " + options.fInput + ": ";
  for (const auto& bad : bad_steps)
    std::cerr << warning << bad.first << " was left out: " << bad.second << std::endl;
  for (const auto& loss : report["losses"])
    std::cerr << warning << loss.get<std::string>() << std::endl;
  std::cout << options.fOutput << ": " << report["written"] << " events, " << (report["header"] ? "with" : "without")
            << " run header, " << (report["trailer"] ? "with" : "without") << " run trailer" << std::endl;
  return bad_steps.empty() && report["losses"].empty() ? kFine : kDamage;
}

int RecoverInWorker(const Options& options) {
  RequireOtherFile(options.fInput, options.fOutput);
  BadSteps bad_steps;
  while (bad_steps.size() < kMostBadSteps) {
    nlohmann::json report;
    auto work = [&](WorkerLine& line) { return Recover(options, bad_steps, line); };
    auto listen = [&](const std::string& text) { report = nlohmann::json::parse(text); };
    Worker::Result result = Worker::Run(work, listen, Worker::Limits());
    if (result.fIsDone) return Report(options, bad_steps, report);
    RemovePart(options.fOutput);
    if (!bad_steps.emplace(result.fStep, result.fReason).second) break;
  }
  throw ToolError(kDamage, options.fInput + " cannot be recovered: ROOT ended at " + bad_steps.begin()->first + " (" +
                               bad_steps.begin()->second + "), and at other places");
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("stn-recover",
                    "Brings back the events of a station file that ROOT cannot open, or not in full: one whose writer "
                    "died, that was cut short, or that is damaged.",
                    AddOptions, RecoverInWorker, argc, argv);
}
