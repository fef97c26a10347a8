// Why a table has rows, or none: worked out in this one place from the host's observations.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/description.h"
#include "host/collect/collection_listener.h"
#include "host/collect/failures.h"
#include "host/collect/old_file.h"
#include "host/collect/start_watch.h"

namespace host {

/// Among labels: all of them.
constexpr char kAnyLabel[] = "*";

struct TableStatus {
  /// One of the words of docs/json.md, such as "rows" or "tool missing".
  std::string outcome;
  std::string text;  ///< UTF-8, for people
  /// More that is true of the table, such as what it leaves out: a sentence each. UTF-8.
  std::vector<std::string> notes = {};
  /// Of rows that are not the tool's, which is missing: why. `text` has it, too.
  std::string missing = {};
  /// Of rows from files that were there before: since when, and why there are no newer ones. A note
  /// as well.
  std::string oldFiles = {};
  /// Labels of cells that show something else than the report, or kAnyLabel. A note tells.
  std::vector<std::string> unfitLabels = {};

  /// Whether an output was read for the table, with rows for it or without.
  bool IsOfAnOutput() const { return outcome == "rows" || outcome == "no rows in output"; }
};

/// Text and notes of the status, in one line.
std::string DescribeStatus(const TableStatus& status);

/// All that a program of the machine was seen doing.
struct ToolRun {
  std::string module;
  std::string commandLine;
  std::string program;    ///< as on the command line, without quotes
  std::string arguments;  ///< of the first program of a pipe
  std::string file;       ///< of the log folder, that it writes; empty without
  /// The file of the working folder that it writes, for another program; empty without.
  std::string handedOn = {};
  bool isThere = true;  ///< the machine has the program
  bool readThroughPipe = false;
  bool isFiltered = false;                ///< another program passes on what it prints
  std::optional<std::uint32_t> exitCode;  ///< its own; none of a program whose output is filtered
  std::string startFailure;               ///< the module's words
  std::string openFailure;                ///< the module's words
  bool hadNothingToReport = false;        ///< so that there was nothing to open
  /// What it printed explains why tables are empty.
  const pq::AnswerExplanation* explanation = nullptr;
  bool printed = false;           ///< something came through the pipe
  bool reportedError = false;     ///< as the log shows, if no rows came of it
  bool printedErrorLine = false;  ///< whatever came of it
  std::string reason = {};        ///< its own words for its exit code, in ASCII
  bool wasCut = false;            ///< it printed more than the module keeps
  bool isUnwritable = false;      ///< never started, because its output had no file to go to
  bool refused = false;           ///< never started, because the collection was interrupted
  std::optional<unsigned> endedAfterSeconds;  ///< the host ended it; 0: nobody knows when
  bool endedBefore = false;  ///< that was an earlier run, so this one was never started
  unsigned memoryLimit = 0;  ///< MiB; not 0: it wanted more
  /// A file from before was read in the place of what it should have written: the oldest one.
  std::optional<OldFile> oldFile;
};

/// Follows a collection and answers for its tables.
class StatusTracker final : public CollectionListener {
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

  /// The status of `className`, a table of `module` with `rowCount` rows.
  TableStatus FindStatus(const std::string& module, const std::string& className,
                         std::size_t rowCount) const;

  /// What is to be said of the table beside its rows.
  std::vector<std::string> FindNotes(const std::string& module, const std::string& className) const;

  /// Why `fileNames`, reports in the log folder that are attached to rows of `module`, are empty: a
  /// sentence for each reason. Names are without the extension.
  std::vector<std::string> DescribeEmptyFiles(const std::string& module,
                                              const std::vector<std::string>& fileNames) const;

  /// The tools that failed although the log does not tell: each with each of its reasons once.
  /// `hasRows` answers for table classes.
  std::vector<Failure> FindFailedTools(
      const std::function<bool(const std::string& className)>& hasRows) const;

  /// The collection was interrupted: missing tables were never asked for.
  void Interrupted() { interrupted = true; }

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
  std::vector<const ToolRun*> FindRuns(const std::string& module,
                                       const pq::TableDescription& table) const;
  /// The tables that `run` was for.
  std::vector<const pq::TableDescription*> FindTables(const ToolRun& run) const;
  TableStatus DescribeRows(const std::string& module, const pq::TableDescription* table,
                           std::size_t rowCount) const;
  TableStatus ExplainMissing(const std::vector<const ToolRun*>& runs) const;
  /// Why nobody knows whether the device is there that `run` looked for; none when it is known, or
  /// the run looked for none.
  std::optional<TableStatus> ExplainPresenceTest(const ToolRun& run) const;
  TableStatus ExplainRuns(const std::vector<const ToolRun*>& runs,
                          const pq::TableDescription& table) const;
  TableStatus ExplainWithoutRun(const std::string& module, const pq::TableDescription& table) const;
  std::optional<TableStatus> ExplainByLog(const std::string& module,
                                          const pq::TableDescription& table) const;
  std::optional<TableStatus> ExplainByAnswers(const std::string& module,
                                              const pq::TableDescription& table) const;
  /// Whether the failure of `run` leaves nothing out of `table`.
  bool IsMadeUpFor(const ToolRun& run, const pq::TableDescription& table) const;

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
