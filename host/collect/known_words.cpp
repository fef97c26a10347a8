#include "host/collect/known_words.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "frame/sentences.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/failures.h"
#include "host/text/screen_text.h"
#include "host/text/trim.h"

namespace host {
namespace {

/// Whether `test` holds for a line of `text`, which may end with CR; the lines after that one are
/// not looked at.
template <typename Test>
bool AnyLine(std::string_view text, const Test& test) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (test(text.substr(0, end))) return true;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return false;
}

/// What the tool itself printed, wherever that went.
std::string_view GetPrinted(const ToolAnswer& answer) {
  if (!answer.unfiltered.empty()) return answer.unfiltered;
  return answer.file.empty() ? answer.output : answer.fileText;
}

bool HasErrorLine(const pq::ModuleDescription& module, std::string_view printed) {
  return !module.errorLines.empty() && AnyLine(printed, [&](std::string_view line) {
    return std::ranges::any_of(module.errorLines, [&](const pq::ErrorLine& error) {
      return line.starts_with(error.beginning) && line.find(error.part) != std::string_view::npos;
    });
  });
}

/// The tool's own words for why it failed; empty without, or if they are not plain.
std::string FindReason(const ToolRun& run, const pq::ModuleDescription& module,
                       std::string_view printed) {
  constexpr std::size_t kLongestReason = 80;  // columns
  // In bytes. Reports can be long, and their heads have the reason.
  constexpr std::size_t kLongestHead = 4096;
  for (const pq::ReasonLine& known : module.reasonLines) {
    if (!IsOfProgram(run, known.program)) continue;
    std::string reason;
    AnyLine(printed.substr(0, kLongestHead), [&](std::string_view line) {
      if (!line.starts_with(known.label)) return false;
      reason = Trim(line.substr(known.label.size()));
      return true;
    });
    const bool isPlain = std::ranges::all_of(reason, [](char c) { return c >= ' ' && c <= '~'; });
    return isPlain && reason != known.nothing ? CutText(reason, kLongestReason) : std::string();
  }
  return {};
}

/// What the program printed that explains something.
const pq::AnswerExplanation* FindExplanation(const ToolRun& run,
                                             const pq::ModuleDescription& module,
                                             std::string_view printed) {
  const auto found = std::ranges::find_if(module.answers, [&](const pq::AnswerExplanation& known) {
    return IsOfProgram(run, known.command.program) && run.arguments == known.command.arguments &&
           printed.find(known.words) != std::string_view::npos;
  });
  return found == module.answers.end() ? nullptr : &*found;
}

}  // namespace

bool Explains(const pq::Explanation& explanation, std::string_view text) {
  if (explanation.usualValue.empty()) return text == explanation.sentence;
  return text.starts_with(explanation.sentence) &&
         text.substr(explanation.sentence.size()) != explanation.usualValue;
}

void NoteAnswer(ToolRun& run, const ToolAnswer& answer) {
  if (run.readThroughPipe) run.wasCut = ExceedsPipe(answer);
  const pq::ModuleDescription* module = FindModuleDescription(run.module);
  if (module == nullptr) return;
  const std::string_view printed = GetPrinted(answer);
  run.explanation = FindExplanation(run, *module, printed);
  run.printedErrorLine = HasErrorLine(*module, printed);
  run.reason = FindReason(run, *module, printed);
}

void NoteLogLine(ToolRun& run, std::string_view text, const pq::FailureSentence* known,
                 const pq::ModuleDescription* module) {
  if (known != nullptr) {
    if (known->failure == pq::StepFailure::kToolNotRun) run.startFailure = text;
    if (known->failure == pq::StepFailure::kOutputNotOpened) run.openFailure = text;
    if (known->failure == pq::StepFailure::kNothingToReport) {
      run.openFailure = text;
      run.hadNothingToReport = true;
    }
  } else if (text.starts_with(pq::kChunkSize)) {
    run.printed = true;
    run.reportedError = true;  // Until the whole output is taken.
  } else if (text.starts_with(pq::kWholeOutput)) {
    const std::string_view error = module == nullptr ? "" : std::string_view(module->toolErrorText);
    run.reportedError = !error.empty() && text.find(error) != std::string_view::npos;
  }
}

}  // namespace host
