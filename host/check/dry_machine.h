// A machine on which every command is only written down: the modules run on it as if each tool were
// there, so that all their commands come up.
#pragma once

#include <string>
#include <vector>

#include "frame/platform.h"
#include "host/recorded/handed_out.h"

namespace host {

/// The facts that a dry run assumes of the machine.
struct DryFacts {
  std::string hostExecutable;
  std::string logFolder;  ///< ends with a backslash
  std::uint32_t languageId = pq::kUsEnglish;
};

/// A command that a module would run.
struct DryCommand {
  std::string module;
  std::string commandLine;  ///< the interpreter's, after "/c ", or as given to `system`
};

/// Answers as a machine does that has everything: AMT, a BMC of the family with the most tables,
/// one LSI controller, an Intel tool that fails so that the other is asked too.
class DryMachine final : public pq::Platform {
 public:
  explicit DryMachine(DryFacts facts) : facts(std::move(facts)) {}

  std::string HostExecutable() override;
  std::uint32_t SystemLanguage() override;
  bool PathExists(const std::string& path) override;
  pq::Acquired<pq::Pipe> CreatePipe(const std::string& commandLine) override;
  pq::Acquired<pq::Process> StartInterpreter(const std::string& commandLine, bool inheritHandles,
                                             pq::Pipe* output) override;
  void RunSystem(const std::string& command) override;
  std::unique_ptr<pq::TextFile> OpenText(const std::string& path) override;
  void WriteConsole(std::string_view text) override;
  pq::ConsoleLine ReadConsoleLine(char* buffer, std::size_t size) override;
  [[noreturn]] void FailRangeCheck() override;

  /// Commands from now on are those of `name`.
  void BeginModule(const std::string& name) { module = name; }
  const std::vector<DryCommand>& Commands() const { return commands; }

 private:
  DryFacts facts;
  std::string module;
  std::vector<DryCommand> commands;
  HandedOutList handedOut;
};

/// The commands that a collection would run, in order: all modules and tables, or those named.
/// Throws UsageError for a name that does not fit.
std::vector<DryCommand> ListCommands(const DryFacts& facts,
                                     const std::vector<std::string>& moduleNames,
                                     const std::vector<std::string>& tableNames);

}  // namespace host
