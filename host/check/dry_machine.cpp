#include "host/check/dry_machine.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "host/collect/collect.h"

namespace host {
namespace {

/// The answer of a program whose exit code decides the next step.
struct DryExit {
  std::string_view command;  ///< part of the command line
  std::uint32_t exitCode;
};
constexpr DryExit kExits[] = {
    {"\\check_amt_bmc.exe\" amt", 1},
    {"\\check_amt_bmc.exe\" bmc", 5},
    {"\\rstcli64_5.exe\"", 1},
};

/// Files whose text decides whether a further tool runs. All others are empty.
struct DryFile {
  std::string_view end;  ///< of the path
  const char* line;
};
constexpr DryFile kFiles[] = {
    {"\\raidevents.txt", "seqNum: 0\n"},
};

constexpr char kOperatorLine[] = "ADDRESS USER PASSWORD";

class DryPipe final : public pq::Pipe {
 public:
  void CloseWriteEnd() override {}
  bool Read(char* /*buffer*/, std::size_t /*size*/, std::size_t& count) override {
    count = 0;
    return false;
  }
};

class DryProcess final : public pq::Process, private HandedOut {
 public:
  DryProcess(std::uint32_t exitCode, HandedOutList& list) : HandedOut(list), exitCode(exitCode) {}
  void Wait() override {}
  std::uint32_t ReadExitCode(std::uint32_t& code) override {
    code = exitCode;
    return 0;
  }

 private:
  std::uint32_t exitCode;
};

class DryText final : public pq::TextFile, private HandedOut {
 public:
  DryText(std::string_view line, HandedOutList& list) : HandedOut(list), line(line) {}
  bool ReadLine(char* buffer, std::size_t size) override {
    if (wasRead || line.empty()) return false;
    wasRead = true;
    buffer[line.copy(buffer, size - 1)] = '\0';
    return true;
  }
  void Rewind() override { wasRead = false; }
  std::uint64_t SizeAndRewind() override {
    wasRead = false;
    return line.size();
  }

 private:
  std::string_view line;
  bool wasRead = false;
};

/// Tells the machine which module runs.
class ModuleTeller final : public CollectionListener {
 public:
  explicit ModuleTeller(DryMachine& machine) : machine(machine) {}
  void Module(const std::string& name, const std::string& /*description*/) override {
    machine.BeginModule(name);
  }

 private:
  DryMachine& machine;
};

}  // namespace

std::string DryMachine::HostExecutable() { return facts.hostExecutable; }
std::uint32_t DryMachine::SystemLanguage() { return facts.languageId; }
bool DryMachine::PathExists(const std::string& /*path*/) { return true; }

pq::Acquired<pq::Pipe> DryMachine::CreatePipe(const std::string& /*commandLine*/) {
  return {std::make_unique<DryPipe>(), 0};
}

pq::Acquired<pq::Process> DryMachine::StartInterpreter(const std::string& commandLine,
                                                       bool /*inheritHandles*/,
                                                       pq::Pipe* /*output*/) {
  commands.push_back({module, commandLine});
  const auto* known = std::find_if(std::begin(kExits), std::end(kExits), [&](const DryExit& exit) {
    return commandLine.find(exit.command) != std::string::npos;
  });
  const std::uint32_t exitCode = known == std::end(kExits) ? 0 : known->exitCode;
  return {std::make_unique<DryProcess>(exitCode, handedOut), 0};
}

void DryMachine::RunSystem(const std::string& command) { commands.push_back({module, command}); }

std::unique_ptr<pq::TextFile> DryMachine::OpenText(const std::string& path) {
  const auto* known = std::find_if(std::begin(kFiles), std::end(kFiles),
                                   [&](const DryFile& file) { return path.ends_with(file.end); });
  return std::make_unique<DryText>(known == std::end(kFiles) ? "" : known->line, handedOut);
}

void DryMachine::WriteConsole(std::string_view /*text*/) {}

pq::ConsoleLine DryMachine::ReadConsoleLine(char* buffer, std::size_t size) {
  const std::string_view line = kOperatorLine;
  buffer[line.copy(buffer, size - 1)] = '\0';
  return pq::ConsoleLine::kRead;
}

void DryMachine::FailRangeCheck() { std::abort(); }

std::vector<DryCommand> ListCommands(const DryFacts& facts,
                                     const std::vector<std::string>& moduleNames,
                                     const std::vector<std::string>& tableNames) {
  DryMachine machine(facts);
  MachineFacts machineFacts;
  machineFacts.hostExecutable = facts.hostExecutable;
  machineFacts.logFolder = facts.logFolder;
  PlatformSource source(machine, machineFacts);
  ModuleTeller teller(machine);
  Collect(source, {moduleNames, tableNames}, teller);
  return machine.Commands();
}

}  // namespace host
