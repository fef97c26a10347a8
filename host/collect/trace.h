// A trace: one JSON object per line for everything that the modules do, in order.
#pragma once

#include <ostream>
#include <string>

#include "host/collect/collection_listener.h"
#include "host/logger/logger.h"
#include "host/repository/observer.h"
#include "host/text/json_text.h"

namespace host {

/// Writes the events that it sees, and those that the host tells it, to `out`. Every byte of a text
/// becomes the character with that code.
class TraceWriter : public RepositoryObserver, public CollectionListener {
 public:
  explicit TraceWriter(std::ostream& out) : out(out) {}

  RepositoryObserver* Calls() override { return this; }
  bool WantsLog() const override { return true; }
  void Module(const std::string& name, const std::string& description) override;
  /// The layout calls that follow are for `table`.
  void Layout(const std::string& table) override;
  void Enumerate(const std::string& module, const std::string& table) override;
  void Log(const LogLine& line) override;

  void OnInstance(std::uint64_t id, const std::string& className, const std::string& key,
                  int number) override;
  void OnProperty(std::uint64_t id, const std::string& key, const std::string& label,
                  const std::string& value, bool flag) override;
  void OnProperty(std::uint64_t id, const std::string& key, const std::string& label, int value,
                  bool flag) override;
  void OnAttribute(std::uint64_t id, const std::string& propertyKey, const std::string& name,
                   const std::string& value) override;
  void OnAdd(std::uint64_t id) override;
  void OnRelease(std::uint64_t id) override;
  void OnRowHeaders(const halyard::repository::RInstancesWrapper& table,
                    const std::vector<std::string>& names, const std::vector<unsigned>& widths,
                    bool flag) override;
  void OnColumnHeaders(const halyard::repository::RInstancesWrapper& table,
                       const std::vector<std::string>& headers, unsigned first,
                       unsigned second) override;
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override;
  void OnSystem(const std::string& command) override;
  void OnOpen(const std::string& path, const std::string& mode) override;
  void OnConsole(std::string_view text) override;

 private:
  JsonObject BeginLayout(const char* call, const std::vector<std::string>& names) const;
  void Write(JsonObject& event);
  /// With one more member, which may be all that a tool printed, and `rest` behind it.
  void Write(JsonObject& event, std::string_view name, std::string_view bytes,
             std::string_view rest = {});

  std::ostream& out;
  std::string layoutTable;
};

}  // namespace host
