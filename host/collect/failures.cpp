#include "host/collect/failures.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "frame/module.h"
#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/command_text.h"

namespace host {
namespace {

constexpr std::string_view kMissing = "the program is missing";
constexpr std::string_view kNoAnswer = "the recording has no such answer";
constexpr char kNotKnown[] = ", so it is not known whether the machine has ";

/// The tool that `text`, a log line about a failure, is about: mostly the `last` one.
std::string FindToolOf(std::string_view text, const std::string& last) {
  const pq::FailureSentence* known = FindFailureSentence(text);
  if (known == nullptr) return last;
  if (known->failure == pq::StepFailure::kBeforeTool) return {};
  return known->program.empty() ? last : FindTool("/c \"" + known->program + "\"");
}

/// Whether `text`, a log line, tells of a step that ended before it started its tool.
bool IsBeforeTool(std::string_view text) {
  const pq::FailureSentence* known = FindFailureSentence(text);
  return known != nullptr && known->failure == pq::StepFailure::kBeforeTool;
}

/// The failure sentences by their first byte: every log line is held against them.
using SentenceIndex = std::array<std::vector<const pq::FailureSentence*>, 256>;

SentenceIndex MakeSentenceIndex() {
  SentenceIndex index;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::FailureSentence& known : module.failures) {
      index[static_cast<unsigned char>(known.sentence.front())].push_back(&known);
    }
  }
  return index;
}

}  // namespace

std::string DescribeSeconds(unsigned seconds) {
  return seconds == 0 ? "" : " after " + std::to_string(seconds) + " s";
}

std::string_view RemoveLogPrefix(std::string_view text) {
  if (text.starts_with(pq::kLogPrefix)) text.remove_prefix(std::string_view(pq::kLogPrefix).size());
  return text;
}

const pq::FailureSentence* FindFailureSentence(std::string_view text) {
  static const SentenceIndex kIndex = MakeSentenceIndex();
  if (text.empty()) return nullptr;
  for (const pq::FailureSentence* known : kIndex[static_cast<unsigned char>(text.front())]) {
    if (text.starts_with(known->sentence)) return known;
  }
  return nullptr;
}

const pq::PresenceTest* FindPresenceTest(std::string_view commandLine) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::PresenceTest& test : module.presenceTests) {
      if (commandLine.ends_with(test.commandEnd)) return &test;
    }
  }
  return nullptr;
}

bool ReportsFailure(const LogLine& line) {
  const pq::FailureSentence* known = FindFailureSentence(RemoveLogPrefix(line.text));
  if (known == nullptr) return line.level == pq::kError;
  return known->failure != pq::StepFailure::kNothingToReport;
}

void FailureList::Module(const std::string& name, const std::string& /*description*/) {
  module = name;
  tool.clear();
  toolRefused = false;
  starts.Module(name);
}

void FailureList::OnProcess(const std::string& /*application*/, const std::string& commandLine,
                            bool /*inheritHandles*/, bool pipe) {
  tool = FindTool(commandLine);
  toolRefused = false;
  readThroughPipe = pipe;
  starts.Start();
  const pq::PresenceTest* presence = FindPresenceTest(commandLine);
  if (presence == nullptr || !isProgramThere) return;
  if (isProgramThere(commandLine)) {
    answering.insert(tool);
  } else {
    AddMissing(*presence);
  }
}

void FailureList::OnProcessEnd(std::uint32_t /*exitCode*/) { starts.End(); }

void FailureList::OnSystem(const std::string& command) {
  tool = FindTool("/c " + command);
  toolRefused = false;
  readThroughPipe = false;
  starts.Start();
  starts.End();
}

bool ExceedsPipe(const ToolAnswer& answer) { return answer.output.size() > pq::kPipeOutputLimit; }

void FailureList::OnAnswer(const ToolAnswer& answer) {
  if (!readThroughPipe || !ExceedsPipe(answer)) return;
  failures.push_back({module, tool,
                      "printed more than " + std::to_string(pq::kPipeOutputLimit >> 20) +
                          " MiB; the rest is in no table"});
}

void FailureList::OnToolEnded(unsigned seconds) {
  failures.push_back(
      {module, tool, "did not end by itself and was ended" + DescribeSeconds(seconds)});
}

void FailureList::OnToolRefused(unsigned seconds) {
  toolRefused = true;
  AddOnce({module, tool,
           "was not started again, because it had been ended" + DescribeSeconds(seconds)});
}

void FailureList::OnToolOutOfMemory(unsigned mebibytes) {
  failures.push_back({module, tool,
                      "wanted more memory than its limit of " + std::to_string(mebibytes) +
                          " MiB; what it printed may not be whole"});
}

void FailureList::OnNoLogin(const std::string& why) {
  AddOnce({module, "", "asked for a login and got none, so its log is not collected: " + why});
}

void FailureList::AddOnce(Failure failure) {
  const bool isKnown = std::any_of(failures.begin(), failures.end(), [&](const Failure& known) {
    return known.module == failure.module && known.tool == failure.tool &&
           known.text == failure.text;
  });
  if (!isKnown) failures.push_back(std::move(failure));
}

// One program looks for several devices, each for a module of its own, and AMT at every
// enumeration.
void FailureList::AddMissing(const pq::PresenceTest& presence) {
  const auto known = std::ranges::find_if(failures, [&](const Failure& failure) {
    return failure.tool == tool && failure.text.starts_with(kMissing);
  });
  if (known == failures.end()) {
    failures.push_back({module, tool, std::string(kMissing) + kNotKnown + presence.device});
  } else if (known->text.find(presence.device) == std::string::npos) {
    if (known->module.find(module) == std::string::npos) known->module += " and " + module;
    known->text += " or " + presence.device;
  }
}

std::vector<Failure> FailureList::Failures() const {
  std::vector<Failure> told = failures;
  for (Failure& failure : told) {
    if (!failure.text.starts_with(kMissing) || !answering.contains(failure.tool)) continue;
    failure.text.replace(0, kMissing.size(), kNoAnswer);
  }
  return told;
}

void FailureList::Log(const LogLine& line) {
  const std::string_view text = RemoveLogPrefix(line.text);
  if (const auto commandLine = starts.Log(text)) tool = FindTool(*commandLine);
  if (interrupted || !ReportsFailure(line)) return;
  if (toolRefused && !IsBeforeTool(text)) return;
  AddOnce({module, FindToolOf(text, tool), std::string(text)});
}

}  // namespace host
