#include "tests/support/collected.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "frame/add_modules.h"
#include "frame/bound/machine_in_use.h"
#include "host/collect/trace.h"
#include "host/recorded/recorded_machine.h"
#include "host/repository/observer.h"

namespace test {
namespace {

using halyard::repository::RInstancesWrapper;
using halyard::repository::RModule;
using halyard::repository::RRepository;

constexpr char kPrefix[] = "[repo] ";

/// Keeps what the machine tells and passes it on to the trace.
class Watcher final : public host::MachineObserver {
 public:
  Watcher(Collected& collected, host::TraceWriter& trace) : collected(collected), trace(trace) {}

  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override {
    collected.commandLines.push_back(commandLine);
    trace.OnProcess(application, commandLine, inheritHandles, pipe);
  }
  void OnProcessEnd(std::uint32_t exitCode) override { trace.OnProcessEnd(exitCode); }
  void OnSystem(const std::string& command) override { trace.OnSystem(command); }
  void OnOpen(const std::string& path, const std::string& mode) override {
    collected.opened.push_back(path);
    trace.OnOpen(path, mode);
  }
  void OnConsole(std::string_view text) override {
    collected.console += text;
    trace.OnConsole(text);
  }
  void OnToolConsole(std::string_view text) override { trace.OnToolConsole(text); }

 private:
  Collected& collected;
  host::TraceWriter& trace;
};

/// Has log lines and repository calls arrive in the trace for as long as it lives.
class Listening {
 public:
  Listening(Collected& collected, host::TraceWriter& trace) {
    host::SetRepositoryObserver(&trace);
    host::SetLogSink([&](const host::LogLine& line) {
      collected.log.push_back(line);
      trace.Log(line);
    });
  }
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;
  ~Listening() {
    host::SetLogSink({});
    host::SetRepositoryObserver(nullptr);
  }
};

void EnumerateTable(RModule& module, const std::string& table, host::TraceWriter& trace,
                    RRepository& repository) {
  const halyard::repository::TableHandlers& handlers = module.Tables().at(table);
  RInstancesWrapper container;
  container.className = table;
  trace.Layout(table);
  handlers.layoutHandler(container);
  trace.Enumerate(module.GetName(), table);
  handlers.enumHandler(repository);
}

}  // namespace

std::vector<std::string> Collected::LogTexts() const {
  std::vector<std::string> texts;
  for (const host::LogLine& line : log) {
    const bool hasPrefix = line.text.starts_with(kPrefix);
    texts.push_back(std::to_string(line.level) + ' ' +
                    line.text.substr(hasPrefix ? sizeof(kPrefix) - 1 : 0));
  }
  return texts;
}

std::vector<std::vector<std::string>> Collected::Rows(const std::string& className) const {
  std::vector<std::vector<std::string>> rows;
  const auto table = Tables().find(className);
  if (table == Tables().end()) return rows;
  for (const host::Row& row : table->second.rows) {
    std::vector<std::string>& texts = rows.emplace_back();
    for (std::size_t i = 0; i < row.Values().size(); ++i) {
      texts.push_back(row.shape->columns[i].key + '=' + row.Values()[i]);
    }
  }
  return rows;
}

const std::map<std::string, host::Table>& Collected::Tables() const {
  return host::TablesOf(*repository);
}

Collected Collect(const host::Recording& recording, const std::string& module,
                  const std::vector<std::string>& tables) {
  Collected collected;
  collected.repository = std::make_unique<RRepository>();
  std::ostringstream traceText;
  host::TraceWriter trace(traceText);
  Watcher watcher(collected, trace);
  host::RecordedMachine machine(recording, &watcher);
  const pq::MachineInUse inUse(machine);
  host::SetLogFolder(recording.logFolder);
  const boost::shared_ptr<RModule> collecting = FindModule(module);
  {
    const Listening listening(collected, trace);
    trace.Module(collecting->GetName(), collecting->GetDescription());
    collecting->RegisterTables();
    std::vector<std::string> names = tables;
    if (names.empty()) {
      for (const auto& [name, handlers] : collecting->Tables()) names.push_back(name);
    }
    for (const std::string& name : names) {
      EnumerateTable(*collecting, name, trace, *collected.repository);
    }
  }
  collected.trace = std::move(traceText).str();
  collected.files = machine.Files();
  collected.openHandles = machine.OpenHandles();
  return collected;
}

boost::shared_ptr<RModule> FindModule(const std::string& name) {
  std::vector<boost::shared_ptr<RModule>> modules;
  AddModules(modules);
  for (const auto& module : modules) {
    if (module->GetName() == name) return module;
  }
  throw std::invalid_argument("no module is named " + name);
}

std::string SamplesFolder() { return PQ_SOURCE_FOLDER "/samples"; }

std::string TestData(const std::string& name) {
  const std::string path = PQ_SOURCE_FOLDER "/tests/data/" + name;
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path + " cannot be read");
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace test
