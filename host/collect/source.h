// The source of a collection: a machine, and modules that know it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "frame/platform.h"
#include "host/collect/collection_listener.h"
#include "host/collect/machine_facts.h"
#include "host/collect/old_file.h"
#include "host/collect/selection.h"
#include "host/text/bytes.h"

namespace host {

/// Good for one collection. All of it is called on the collecting thread. Texts are bytes in the
/// machine's code page.
class Source {
 public:
  virtual ~Source() = default;
  /// Comes first. `listener` follows the modules' work on the machine and says when to end; it
  /// outlives the collection.
  virtual void Begin(CollectionListener& listener) = 0;
  virtual void AddModules(ModuleList& modules) = 0;
  /// The machine that the modules are to see; null: they bring their own.
  virtual pq::Platform* Machine() = 0;
  virtual MachineFacts Facts() = 0;
  /// The log folder that the modules get; mostly that of Facts().
  virtual std::string LogFolder() { return Facts().logFolder; }
  /// Whether the machine has the programs of a command line.
  virtual bool HasPrograms(const std::string& commandLine) = 0;
  /// Size in bytes of a file of the log folder, if it is there.
  virtual std::optional<std::uint64_t> LogFileSize(const std::string& fileName) = 0;
  /// What is known of the file `path`, as a module opens it, if it is older than the collection.
  virtual std::optional<OldFile> FindOldFile(const std::string& /*path*/) { return std::nullopt; }
  /// Whether the log folder is there.
  virtual bool HasLogFolder() { return true; }
  /// Why the machine may not be as it seems: a line of UTF-8 each.
  virtual std::vector<std::string> Doubts() { return {}; }
  /// The files of a recorded machine as they are now, by their path.
  virtual std::map<std::string, Bytes> Files() { return {}; }
};

/// The linked-in modules on a machine that the caller keeps.
class PlatformSource : public Source {
 public:
  PlatformSource(pq::Platform& machine, MachineFacts facts)
      : machine(machine), facts(std::move(facts)) {}

  void Begin(CollectionListener& /*listener*/) override {}
  void AddModules(ModuleList& modules) override;
  pq::Platform* Machine() override { return &machine; }
  MachineFacts Facts() override { return facts; }
  bool HasPrograms(const std::string& /*commandLine*/) override { return true; }
  std::optional<std::uint64_t> LogFileSize(const std::string& /*fileName*/) override {
    return std::nullopt;
  }

 private:
  pq::Platform& machine;
  MachineFacts facts;
};

}  // namespace host
