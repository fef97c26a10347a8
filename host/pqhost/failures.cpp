#include "host/pqhost/failures.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "host/pqhost/command_text.h"

namespace host {
namespace {

constexpr std::string_view kPrefix = "[repo] ";
constexpr unsigned kErrorLevel = 1;

/// How the lines begin that report a failure, and whether it is one of the tool started last.
struct FailureText {
  std::string_view beginning;
  bool ofLastTool;
};
constexpr FailureText kFailureTexts[] = {
    {"CreateProcess failed", true},         {"Failed to create pipe", false},
    {"Create Pipe failed", false},          {"Failed to open ", true},
    {"GetExitCodeProcess() failed:", true}, {"Malloc failed!", true},
    {"Get AMT IP failed", false},
};

/// The Microchip tool writes its report only when there is such a controller.
constexpr std::string_view kNothingThere = "Failed to open PMC Controller file";

const FailureText* FindFailureText(std::string_view text) {
  const auto* found =
      std::find_if(std::begin(kFailureTexts), std::end(kFailureTexts),
                   [&](const FailureText& known) { return text.starts_with(known.beginning); });
  return found == std::end(kFailureTexts) ? nullptr : found;
}

std::string_view WithoutPrefix(std::string_view text) {
  return text.starts_with(kPrefix) ? text.substr(kPrefix.size()) : text;
}

}  // namespace

bool ReportsFailure(const LogLine& line) {
  const std::string_view text = WithoutPrefix(line.text);
  if (text.starts_with(kNothingThere)) return false;
  return line.level == kErrorLevel || FindFailureText(text) != nullptr;
}

void FailureList::Module(const std::string& name, const std::string& /*description*/) {
  module = name;
  tool.clear();
}

void FailureList::OnProcess(const std::string& /*application*/, const std::string& commandLine,
                            bool /*inheritHandles*/, bool /*pipe*/) {
  tool = FindTool(commandLine);
}

void FailureList::Log(const LogLine& line) {
  if (!ReportsFailure(line)) return;
  const std::string_view text = WithoutPrefix(line.text);
  const FailureText* known = FindFailureText(text);
  const bool ofLastTool = known == nullptr || known->ofLastTool;
  failures.push_back({module, ofLastTool ? tool : "", std::string(text)});
}

}  // namespace host
