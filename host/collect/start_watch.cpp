#include "host/collect/start_watch.h"

#include <utility>

#include "frame/platform.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/failures.h"

namespace host {
namespace {

/// Whether `text` says that a tool did not start because its command line is too long.
bool TellsTooLong(std::string_view text) {
  const pq::FailureSentence* known = FindFailureSentence(text);
  return known != nullptr && known->failure == pq::StepFailure::kToolNotRun &&
         text.substr(known->sentence.size()) == std::to_string(pq::kErrorFilenameTooLong) + ")";
}

}  // namespace

void StartWatch::Module(const std::string& name) {
  module = name;
  loggedLine.clear();
  justTried = false;
}

void StartWatch::Start() {
  loggedLine.clear();
  justTried = true;
}

std::optional<std::string> StartWatch::Log(std::string_view text) {
  if (std::exchange(justTried, false)) return std::nullopt;
  if (TellsTooLong(text)) {
    std::string line = std::exchange(loggedLine, {});
    const pq::ModuleDescription* description = FindModuleDescription(module);
    if (line.empty() && description != nullptr)
      line = "/c \"" + description->unloggedProgram + "\"";
    return line;
  }
  const std::size_t line = text.find("/c \"");
  if (line != std::string_view::npos) loggedLine = text.substr(line);
  return std::nullopt;
}

}  // namespace host
