#include "host/commands/common_options.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <vector>

#include "host/program/result_output.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

std::vector<std::string> ListFormatNames(FormatsFor purpose) {
  std::vector<std::string> names;
  for (const Format& format : Formats()) {
    if (purpose == FormatsFor::kMachine || !format.isOfMachine) names.emplace_back(format.name);
  }
  return names;
}

}  // namespace

void AddTimeLimit(OptionSet& set, std::optional<unsigned>& seconds, const char* help) {
  constexpr unsigned kDay = 86400;
  set.AddSeconds("--time-limit", seconds, kDay, help);
}

void AddFormat(OptionSet& set, ResultOptions& result, const char* noun, FormatsFor purpose) {
  const std::vector<std::string> names = ListFormatNames(purpose);
  set.AddChoice("--format", names, result.format,
                fmt::format("Format of the {}: {}; {} unless given", noun, fmt::join(names, ", "),
                            result.format));
}

void AddIdentify(OptionSet& set, ResultOptions& result) {
  set.AddFlag("--identify", result.identifiesRows,
              "Begin each row of csv with machine, serial number, time and collection, as ndjson "
              "always does; label each sample of prometheus with the machine");
}

void AddOutput(OptionSet& set, ResultOptions& result, const char* noun) {
  set.AddDestination("--output", result.output, fmt::format("Write the {} to this file", noun));
}

void TellWritten(const char* what, const Destination& destination, const Console& console) {
  if (destination.IsStandardOutput()) return;
  console.error << what << ": " << EscapeControls(PathText(destination.path)) << '\n';
}

const Format& ChooseFormat(const ResultOptions& result, const Console& console) {
  const Format& format = *FindFormat(result.format);
  if (format.isBinary) RefuseBytesOnTerminal(result.format, result.output, console);
  return format;
}

}  // namespace host
