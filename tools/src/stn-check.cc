#include "CommandLine.h"
#include "FileCheck.h"
#include "ToolError.h"
#include "Worker.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iostream>
#include <map>
#include <vector>

namespace {

using namespace StnTools;
using nlohmann::ordered_json;

struct Options {
  std::vector<std::string> fInputs;
  int fTimeLimit = 60;
  bool fJson = false;
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.fInputs, "station files to check")->required();
  app.add_option("--time-limit", options.fTimeLimit, "seconds that one event may take")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  app.add_flag("--json", options.fJson, "answer in JSON");
}

// A file in which so many places end the process is damaged enough.
const std::size_t kMostBadSteps = 20;

struct Verdict {
  ExitCode fCode = kFine;
  std::string fError;  // why the file could not be checked
  std::uint64_t fNEvents = 0;
  std::vector<Finding> fFindings;
};

const char* GetState(ExitCode code) { return code == kFine ? "sound" : code == kDamage ? "damaged" : "unreadable"; }

// Steps at which the process ended, and how.
using BadSteps = std::map<std::string, std::string>;

int Check(const std::string& path, const BadSteps& bad_steps, WorkerLine& line) {
  auto step = [&](const std::string& name) {
    line.Begin(name);
    return bad_steps.count(name) == 0;
  };
  FileCheck check(path, step, [&](const Finding& finding) { line.Say(finding.GetJson()); });
  return static_cast<int>(check.Run());
}

Verdict Judge(std::vector<Finding> findings, const BadSteps& bad_steps, int n_events) {
  Verdict verdict;
  verdict.fFindings = std::move(findings);
  verdict.fNEvents = static_cast<std::uint64_t>(n_events);
  for (const auto& bad : bad_steps) {
    Finding finding;
    finding.fWhat = bad.first;
    finding.fExpected = "something that can be read";
    finding.fFound = bad.second;
    verdict.fFindings.push_back(finding);
  }
  bool is_damaged = std::any_of(verdict.fFindings.begin(), verdict.fFindings.end(),
                                [](const Finding& finding) { return finding.fKind == Finding::kIsDamaged; });
  verdict.fCode = is_damaged ? kDamage : kFine;
  return verdict;
}

// Each time that the process ends the check begins again and leaves out what it was at.
Verdict CheckInWorkers(const std::string& path, const Options& options) {
  Worker::Limits limits;
  limits.fSeconds = options.fTimeLimit;
  BadSteps bad_steps;
  std::vector<Finding> findings;
  while (true) {
    findings.clear();
    auto work = [&](WorkerLine& line) { return Check(path, bad_steps, line); };
    auto listen = [&](const std::string& text) { findings.push_back(Finding::FromJson(text)); };
    Worker::Result result = Worker::Run(work, listen, limits);
    if (result.fIsDone) return Judge(std::move(findings), bad_steps, result.fCode);
    bool is_new = bad_steps.emplace(result.fStep, result.fReason).second;
    if (!is_new || bad_steps.size() == kMostBadSteps) return Judge(std::move(findings), bad_steps, 0);
  }
}

Verdict CheckFile(const std::string& path, const Options& options) {
  try {
    return CheckInWorkers(path, options);
  } catch (const ToolError& error) {
    Verdict verdict;
    verdict.fCode = error.GetCode();
    verdict.fError = error.what();
    return verdict;
  }
}

void ShowText(const std::string& path, const Verdict& verdict) {
  for (const Finding& finding : verdict.fFindings)
    std::cout << path << ": " << (finding.fKind == Finding::kNote ? "note: " : "") << finding.GetText() << std::endl;
  if (!verdict.fError.empty()) {
    std::cerr << "stn-check: " << verdict.fError << std::endl;
    return;
  }
  std::cout << path << ": " << GetState(verdict.fCode) << ", " << verdict.fNEvents << " events can be read"
            << (verdict.fCode == kDamage ? "; stn-recover saves what is whole" : "") << std::endl;
}

ordered_json GetJson(const std::string& path, const Verdict& verdict) {
  ordered_json json = {{"file", path}, {"state", GetState(verdict.fCode)}, {"events", verdict.fNEvents}};
  if (!verdict.fError.empty()) json["error"] = verdict.fError;
  json["findings"] = ordered_json::array();
  for (const Finding& finding : verdict.fFindings)
    json["findings"].push_back(ordered_json::parse(finding.GetJson()));
  return json;
}

// A name may be of any bytes, and a damaged file may hold any text.
std::string Print(const ordered_json& json) { return json.dump(1, ' ', false, ordered_json::error_handler_t::replace); }

int CheckFiles(const Options& options) {
  ExitCode worst = kFine;
  ordered_json report = {{"format", "stn-check 1"}, {"files", ordered_json::array()}};
  for (const std::string& path : options.fInputs) {
    Verdict verdict = CheckFile(path, options);
    worst = std::max(worst, verdict.fCode);
    if (options.fJson)
      report["files"].push_back(GetJson(path, verdict));
    else
      ShowText(path, verdict);
  }
  if (options.fJson) std::cout << Print(report) << std::endl;
  return worst;
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("stn-check", "Reads everything in station files and reports what is damaged or does not agree.",
                    AddOptions, CheckFiles, argc, argv);
}
