// What tools were seen doing during a collection, and what modules logged about it. What follows
// from that for a table is explained elsewhere (status_explainer.h).
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/description.h"
#include "host/collect/collection_listener.h"
#include "host/collect/old_file.h"
#include "host/collect/start_watch.h"
#include "host/collect/tool_run.h"

namespace host {

/// Follows a collection and keeps what it sees.
class ToolHistory final : public CollectionListener {
 public:
  /// Whether the machine has the programs of a command line.
  using ProgramTest = std::function<bool(const std::string& commandLine)>;
  /// Size in bytes of a file of the log folder, if it is there.
  using FileSize = std::function<std::optional<std::uint64_t>(const std::string& fileName)>;

  /// What is known of a file, by its path as a module opens it, if it is from before.
  using OldFileTest = std::function<std::optional<OldFile>(const std::string& path)>;

  void Ask(ProgramTest programTest, FileSize fileSize, OldFileTest oldFileTest = {}) {
    hasPrograms = std::move(programTest);
    logFileSize = std::move(fileSize);
    findOldFile = std::move(oldFileTest);
  }

  /// The collection was interrupted: missing tables were never asked for.
  void Interrupted() { interrupted = true; }

  bool WasInterrupted() const { return interrupted; }
  /// All runs, in the order of their starts. They stay where they are until the next one.
  const std::vector<ToolRun>& Runs() const { return runs; }
  /// Those of `module` that were for `table`, in the order of its commands.
  std::vector<const ToolRun*> FindRuns(const std::string& module,
                                       const pq::TableDescription& table) const;
  /// The lines of the module's log, without their prefix, that its description explains.
  std::span<const std::string> TellingLines(const std::string& module) const;
  /// Whether the file of the log folder is there and not empty.
  bool HasLogText(const std::string& fileName) const;
  /// Whether the file of the log folder is known not to be there.
  bool LacksLogFile(const std::string& fileName) const;

  bool WantsLog() const override { return true; }
  void Module(const std::string& name, const std::string& description) override;
  void Enumerate(const std::string& module, const std::string& table) override;
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override;
  void OnProcessEnd(std::uint32_t exitCode) override;
  void OnAnswer(const ToolAnswer& answer) override;
  void OnToolEnded(unsigned seconds) override;
  void OnToolRefused(unsigned seconds) override;
  void OnToolOutOfMemory(unsigned mebibytes) override;
  void OnRefused() override;
  void OnSystem(const std::string& command) override;
  void OnOpen(const std::string& path, const std::string& mode) override;
  void Log(const LogLine& line) override;

 private:
  ToolRun& BeginRun(const std::string& commandLine, bool pipe);
  void NoteLog(std::string_view text);
  /// The module reads `path`, which `run` should have written.
  void NoteRead(ToolRun& run, const std::string& path);
  /// Whether the file of the log folder that `run`, which has just ended, was to write is missing
  /// or from before.
  bool LacksOutput(const ToolRun& run) const;

  ProgramTest hasPrograms;
  FileSize logFileSize;
  OldFileTest findOldFile;
  std::string module;
  const pq::ModuleDescription* description = nullptr;  ///< of the module; null of an unknown one
  StartWatch starts;
  std::vector<ToolRun> runs;
  bool runIsOpen = false;                               ///< log lines are about the last run
  std::map<std::string, std::vector<std::string>> log;  ///< telling lines, by module
  bool runJustBegan = false;  ///< nothing was seen since the last run was announced
  bool interrupted = false;
};

}  // namespace host
