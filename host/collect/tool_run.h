// One run of a tool as it was seen, and what that alone tells of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/description.h"
#include "host/collect/old_file.h"

namespace host {

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

/// Whether it ran `program`, which descriptions name by the end of its path.
bool IsOfProgram(const ToolRun& run, std::string_view program);

/// Whether the command was run, for what it is for: the same program with the same arguments can
/// serve others with another file.
bool IsRunOf(const ToolRun& run, const pq::ToolCommand& command);

/// The tables that the run was for.
std::vector<const pq::TableDescription*> FindTablesOf(const ToolRun& run);

/// Other than a program that ended well and said so.
bool HasFailed(const ToolRun& run);

/// Whether nothing that the program leaves can be had.
bool HasEndedStep(const ToolRun& run);

/// Why the program's answer is not to be trusted, as words after its name; empty when there is no
/// reason.
std::string DescribeError(const ToolRun& run);

/// Why the program did not write the file that was read in its place, as words after its name.
std::string DescribeOldFile(const ToolRun& run);

/// When the file was written.
std::string FormatAge(const OldFile& file);

}  // namespace host
