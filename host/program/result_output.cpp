#include "host/program/result_output.h"

#include <fmt/format.h>

#include "host/text/usage_error.h"

namespace host {

ResultOutput::ResultOutput(const Destination& destination, const Console& console)
    : console(console) {
  if (!destination.IsStandardOutput()) file.emplace(destination.path);
}

void ResultOutput::Write(const std::function<void(const Screen&, std::ostream&)>& write) {
  if (!file) {
    write(DescribeScreen(console), console.out);
    return;
  }
  write({.isTerminal = false, .colors = false, .width = console.width}, file->Stream());
  file->Complete();
}

void RefuseBytesOnTerminal(const std::string& format, const Destination& destination,
                           const Console& console) {
  if (!console.outIsTerminal || !destination.IsStandardOutput()) return;
  throw UsageError(fmt::format("--format {} is nothing for a terminal: add --output FILE", format));
}

}  // namespace host
