#include "host/pqhost/collection_progress.h"

#include <fmt/format.h>

#include "host/collect/command_text.h"
#include "host/text/decoder.h"

namespace host {
namespace {

/// Names of modules and tools are ASCII; anything else is made valid UTF-8.
std::string MakeUtf8(const std::string& bytes) { return TextDecoder(kUtf8CodePage)(bytes); }

}  // namespace

void CollectionProgress::Module(const std::string& name, const std::string& /*description*/) {
  ++moduleNumber;
  line.BeginTask(moduleCount > 1
                     ? fmt::format("{} of {}  {}", moduleNumber, moduleCount, MakeUtf8(name))
                     : MakeUtf8(name));
}

void CollectionProgress::OnProcess(const std::string& /*application*/,
                                   const std::string& commandLine, bool /*inheritHandles*/,
                                   bool /*pipe*/) {
  line.BeginStep(MakeUtf8(FindTool(commandLine)));
}

void CollectionProgress::OnProcessEnd(std::uint32_t /*exitCode*/) { line.BeginStep(""); }

void CollectionProgress::OnSystem(const std::string& command) {
  line.BeginStep(MakeUtf8(FindTool(command)));
}

// Modules and tools may ask something there and wait for the answer.
void CollectionProgress::OnConsole(std::string_view /*text*/) { line.Hide(); }
void CollectionProgress::OnToolConsole(std::string_view /*text*/) { line.Hide(); }

}  // namespace host
