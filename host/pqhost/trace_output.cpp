#include "host/pqhost/trace_output.h"

#include <fmt/format.h>

#include <cerrno>
#include <stdexcept>

#include "host/files/output_file.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {

TraceOutput::TraceOutput(const Destination& destination, const Console& console,
                         Passwords passwords)
    : path(destination.path),
      forTerminal(console.out),
      writer(destination.IsStandardOutput() ? UseStandardOutput(console) : Open(destination.path),
             passwords) {
  SetRepositoryObserver(&writer);
}

TraceOutput::~TraceOutput() { SetRepositoryObserver(nullptr); }

void TraceOutput::Close() {
  if (!file.is_open()) return;
  errno = 0;
  file.close();
  if (file) return;
  const std::string why = ExplainUnwritable(path);
  throw std::runtime_error(fmt::format("cannot write {}: {}", PathText(path), why));
}

std::ostream& TraceOutput::Open(const std::filesystem::path& target) {
  errno = 0;
  file.open(target, std::ios::binary);
  if (!file.is_open()) {
    const std::string why = ExplainUnwritable(target);
    throw UsageError(fmt::format("cannot write {}: {}", PathText(target), why));
  }
  return file;
}

std::ostream& TraceOutput::UseStandardOutput(const Console& console) {
  return console.outIsTerminal ? forTerminal.Stream() : console.out;
}

}  // namespace host
