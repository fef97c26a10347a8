// Who wants to know how a collection goes on: the trace, the progress display, the list of
// failures.
#pragma once

#include <string>
#include <vector>

#include "host/logger/logger.h"
#include "host/recorded/machine_observer.h"

namespace host {

/// Called on the collecting thread, in order. Texts are bytes in the machine's code page.
class CollectionListener : public MachineObserver {
 public:
  /// The module is about to be used.
  virtual void Module(const std::string& /*name*/, const std::string& /*description*/) {}
  /// The table's layout is about to be asked for.
  virtual void Layout(const std::string& /*table*/) {}
  /// The table is about to be enumerated.
  virtual void Enumerate(const std::string& /*module*/, const std::string& /*table*/) {}
  virtual void Log(const LogLine& /*line*/) {}
};

/// Passes everything on to several listeners, in the order in which they were added.
class CollectionListeners final : public CollectionListener {
 public:
  /// The caller keeps ownership.
  void Add(CollectionListener& listener) { listeners.push_back(&listener); }

  void Module(const std::string& name, const std::string& description) override;
  void Layout(const std::string& table) override;
  void Enumerate(const std::string& module, const std::string& table) override;
  void Log(const LogLine& line) override;
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override;
  void OnProcessEnd(std::uint32_t exitCode) override;
  void OnToolEnded(unsigned seconds) override;
  void OnRefused() override;
  void OnSystem(const std::string& command) override;
  void OnOpen(const std::string& path, const std::string& mode) override;
  void OnConsole(std::string_view text) override;
  void OnToolConsole(std::string_view text) override;

 private:
  std::vector<CollectionListener*> listeners;
};

}  // namespace host
