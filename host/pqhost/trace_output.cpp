#include "host/pqhost/trace_output.h"

#include <cerrno>
#include <stdexcept>

#include "host/files/output_file.h"
#include "host/files/whole_file.h"
#include "host/text/usage_error.h"

namespace host {

TraceOutput::TraceOutput(const Destination& destination, const Console& console)
    : path(destination.path),
      forTerminal(console.out),
      writer(destination.IsStandardOutput() ? UseStandardOutput(console) : Open(destination.path)) {
}

void TraceOutput::Close() {
  if (!file.Handle().IsOpen()) return;
  errno = 0;
  if (!file.Close()) throw std::runtime_error(DescribeUnwritable(path));
}

std::ostream& TraceOutput::Open(const std::filesystem::path& target) {
  RefuseLink(target);
  errno = 0;
  FileHandle handle = OpenToOverwrite(target);
  if (!handle.IsOpen()) throw UsageError(DescribeUnwritable(target));
  file.Open(std::move(handle));
  return file;
}

std::ostream& TraceOutput::UseStandardOutput(const Console& console) {
  return console.outIsTerminal ? forTerminal.Stream() : console.out;
}

}  // namespace host
