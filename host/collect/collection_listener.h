// Who follows a collection: the trace, the progress display, the list of failures.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/logger/logger.h"
#include "host/recorded/machine_observer.h"
#include "host/repository/observer.h"

namespace host {

/// Called on the collecting thread, in order. Texts are bytes in the machine's code page.
class CollectionListener : public MachineObserver {
 public:
  /// Nothing can be refused any more, and no module has been used yet. An exception ends the
  /// collection.
  virtual void Begin() {}
  /// How many modules are about to be used; after Begin().
  virtual void Plan(std::size_t /*modules*/) {}
  /// Who sees the calls on the repository; asked once, after Begin(). Null: nobody.
  virtual RepositoryObserver* Calls() { return nullptr; }
  /// Whether Log() is to be called; asked once, after Begin(). Log lines that nobody wants are
  /// never put together.
  virtual bool WantsLog() const { return false; }
  /// Whether the collection is to end early: no further tool is started then, and no further table
  /// enumerated.
  virtual bool WantsEnd() { return false; }
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
  /// The caller keeps ownership. Also from within Begin().
  void Add(CollectionListener& listener) { listeners.push_back(&listener); }

  void Begin() override;
  void Plan(std::size_t modules) override;
  RepositoryObserver* Calls() override;
  bool WantsLog() const override;
  bool WantsEnd() override;
  void Module(const std::string& name, const std::string& description) override;
  void Layout(const std::string& table) override;
  void Enumerate(const std::string& module, const std::string& table) override;
  void Log(const LogLine& line) override;
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override;
  void OnAnswer(const ToolAnswer& answer) override;
  void OnProcessEnd(std::uint32_t exitCode) override;
  void OnToolEnded(unsigned seconds) override;
  void OnToolRefused(unsigned seconds) override;
  void OnToolOutOfMemory(unsigned mebibytes) override;
  void OnNoLogin(const std::string& why) override;
  void OnRefused() override;
  void OnSystem(const std::string& command) override;
  void OnOpen(const std::string& path, const std::string& mode) override;
  void OnConsole(std::string_view text) override;
  void OnToolConsole(std::string_view text) override;

 private:
  std::vector<CollectionListener*> listeners;
};

}  // namespace host
