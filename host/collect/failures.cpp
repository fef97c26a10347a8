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

/// The presence test that the command line runs; null when it runs none.
const pq::PresenceTest* FindPresenceTest(std::string_view commandLine) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::PresenceTest& test : module.presenceTests) {
      if (commandLine.ends_with(test.commandEnd)) return &test;
    }
  }
  return nullptr;
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

bool ReportsFailure(const LogLine& line) {
  const pq::FailureSentence* known = FindFailureSentence(RemoveLogPrefix(line.text));
  if (known == nullptr) return line.level == pq::kError;
  return known->failure != pq::StepFailure::kNothingToReport;
}

void FailureList::Module(const std::string& name, const std::string& /*description*/) {
  module = name;
  tool.clear();
}

void FailureList::OnProcess(const std::string& /*application*/, const std::string& commandLine,
                            bool /*inheritHandles*/, bool pipe) {
  tool = FindTool(commandLine);
  readThroughPipe = pipe;
  const pq::PresenceTest* presence = FindPresenceTest(commandLine);
  if (presence == nullptr || !isProgramThere || isProgramThere(commandLine)) return;
  AddOnce({module, tool, presence->whenMissing});
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
      {module, tool,
       "did not end by itself and was ended after " + std::to_string(seconds) + " s"});
}

void FailureList::OnToolOutOfMemory(unsigned mebibytes) {
  failures.push_back({module, tool,
                      "wanted more memory than its limit of " + std::to_string(mebibytes) +
                          " MiB; what it printed may not be whole"});
}

void FailureList::OnNoLogin(const std::string& why) {
  AddOnce({module, "", "asked for a login and got none, so its log is not collected: " + why});
}

// The AMT module tests at every enumeration; a program that is missing is so once.
void FailureList::AddOnce(Failure failure) {
  const bool isKnown = std::any_of(failures.begin(), failures.end(), [&](const Failure& known) {
    return known.module == failure.module && known.text == failure.text;
  });
  if (!isKnown) failures.push_back(std::move(failure));
}

void FailureList::Log(const LogLine& line) {
  if (interrupted || !ReportsFailure(line)) return;
  const std::string_view text = RemoveLogPrefix(line.text);
  const pq::FailureSentence* known = FindFailureSentence(text);
  const bool ofLastTool = known == nullptr || known->failure != pq::StepFailure::kBeforeTool;
  failures.push_back({module, ofLastTool ? tool : "", std::string(text)});
}

}  // namespace host
