#include "host/collect/failures.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "host/collect/command_text.h"

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

/// A program whose exit code says whether something is there, by the end of its command line.
struct PresenceTest {
  std::string_view commandEnd;
  std::string_view failure;
};
constexpr PresenceTest kPresenceTests[] = {
    {"\\check_amt_bmc.exe\" amt",
     "the program is missing, so it is not known whether the machine has AMT"},
    {"\\check_amt_bmc.exe\" bmc",
     "the program is missing, so it is not known whether the machine has a BMC"},
};

const PresenceTest* FindPresenceTest(std::string_view commandLine) {
  const auto* found = std::find_if(
      std::begin(kPresenceTests), std::end(kPresenceTests),
      [&](const PresenceTest& test) { return commandLine.ends_with(test.commandEnd); });
  return found == std::end(kPresenceTests) ? nullptr : found;
}

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
  const PresenceTest* presence = FindPresenceTest(commandLine);
  if (presence == nullptr || !isProgramThere || isProgramThere(commandLine)) return;
  AddOnce({module, tool, std::string(presence->failure)});
}

void FailureList::OnToolEnded(unsigned seconds) {
  failures.push_back(
      {module, tool,
       "did not end by itself and was ended after " + std::to_string(seconds) + " s"});
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
  const std::string_view text = WithoutPrefix(line.text);
  const FailureText* known = FindFailureText(text);
  const bool ofLastTool = known == nullptr || known->ofLastTool;
  failures.push_back({module, ofLastTool ? tool : "", std::string(text)});
}

}  // namespace host
