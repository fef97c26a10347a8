#include "tests/support/collected.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "frame/add_modules.h"
#include "host/collect/recorded_source.h"
#include "host/collect/trace.h"

namespace test {
namespace {

using halyard::repository::RModule;

constexpr char kPrefix[] = "[repo] ";

/// Keeps the machine's events and passes them on to the trace.
class Watcher final : public host::CollectionListener {
 public:
  Watcher(Collected& collected, host::TraceWriter& trace) : collected(collected), trace(trace) {}

  host::RepositoryObserver* Calls() override { return &trace; }
  bool WantsLog() const override { return true; }
  void Module(const std::string& name, const std::string& description) override {
    trace.Module(name, description);
  }
  void Layout(const std::string& table) override { trace.Layout(table); }
  void Enumerate(const std::string& module, const std::string& table) override {
    trace.Enumerate(module, table);
  }
  void Log(const host::LogLine& line) override {
    collected.log.push_back(line);
    trace.Log(line);
  }
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override {
    collected.commandLines.push_back(commandLine);
    trace.OnProcess(application, commandLine, inheritHandles, pipe);
  }
  void OnSystem(const std::string& command) override { trace.OnSystem(command); }
  void OnOpen(const std::string& path, const std::string& mode) override {
    collected.opened.push_back(path);
    trace.OnOpen(path, mode);
  }
  void OnConsole(std::string_view text) override {
    collected.console += text;
    trace.OnConsole(text);
  }

 private:
  Collected& collected;
  host::TraceWriter& trace;
};

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
    for (std::size_t i = 0; i < row.ValueCount(); ++i) {
      texts.push_back(row.shape->columns[i].key + '=' + std::string(row.Value(i)));
    }
  }
  return rows;
}

const std::map<std::string, host::Table>& Collected::Tables() const {
  return host::TablesOf(*collection.repository);
}

Collected Collect(const host::Recording& recording, const std::string& module,
                  const std::vector<std::string>& tables) {
  Collected collected;
  std::ostringstream traceText;
  host::TraceWriter trace(traceText);
  Watcher watcher(collected, trace);
  host::RecordedSource source(recording);
  collected.collection = host::Collect(source, {{module}, tables}, watcher);
  collected.trace = std::move(traceText).str();
  for (const auto& [path, bytes] : collected.collection.files) collected.files[path] = bytes;
  collected.openHandles = source.CountOpenHandles();
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
