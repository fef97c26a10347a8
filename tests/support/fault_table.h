// The fault table: every step of every module meets every fault.
//
// How to add a module: write tests/pqmodules/<module>/faults.cpp with one FaultScenario for each
// kind of machine on which the module does something else, and register it there with a
// namespace-scope `const test::FaultScenarioEntry kEntry{...}`. Its rows are the steps (command
// lines, and calls of `system`) of a full run in their order; a missing or surplus row fails. For
// each fault that a row states an outcome for, that is: the log lines that come in addition ("level
// text", in order; all of them, for start, pipe, exit code and report faults), the steps that still
// follow when they are not those of a full run, and how many handles more stay open. Without an
// outcome a fault adds no line, leaves all later steps and leaves nothing open. `decides` marks a
// step whose output decides which steps follow: then only those before it are compared where no
// `after` is stated. A failed start has the system error 5, a failed pipe 1450, an unreadable exit
// code 6.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/recorded/recording.h"

namespace test {

enum class Fault {
  kStartFails,
  kPipeFails,
  kExitCodeUnreadable,
  kToolMissing,
  kNothingPrinted,
  kBinaryPrinted,
  kHugePrinted,
  kReportNotCreated,
};

enum class StepKind {
  kReport,         ///< its output goes into a file
  kPipe,           ///< its output is read through a pipe
  kExitCode,       ///< only its exit code is read
  kCheckedReport,  ///< its output goes into a file, and its exit code is read
  kCopy,           ///< the interpreter's own copy
  kOther,          ///< the interpreter's own md, and tools whose output nobody reads
  kSystem,         ///< run through the standard library's `system`
};

struct FaultOutcome {
  std::vector<std::string> lines = {};
  std::optional<std::vector<std::string>> after = std::nullopt;
  int leftOpen = 0;
};

struct FaultRow {
  std::string commandLine;
  StepKind kind = StepKind::kReport;
  std::map<Fault, FaultOutcome> outcomes = {};
  bool decides = false;
  bool sharesReport = false;  ///< an earlier step writes the same file; it is not missing alone
};

struct FaultScenario {
  std::string name;    ///< letters and digits
  std::string module;  ///< as the module calls itself
  std::function<host::Recording()> recording;
  std::vector<FaultRow> rows;
  /// Tables to enumerate; none: all.
  std::vector<std::string> tables = {};
  /// Handles that a full run leaves open.
  int leftOpen = 0;
};

/// All scenarios that test files registered.
const std::vector<FaultScenario>& GetFaultScenarios();

/// Registers a scenario when the program starts.
struct FaultScenarioEntry {
  explicit FaultScenarioEntry(FaultScenario scenario);
};

/// Whether a step of that kind can meet `fault`.
bool CanMeet(StepKind kind, Fault fault);

/// The events of one run of a scenario.
struct FaultRun {
  std::vector<std::string> steps;  ///< command lines in order
  std::vector<std::string> lines;  ///< log lines, as "level text"
  int openHandles = 0;
  std::size_t instancesBuilt = 0;
  std::size_t instancesReleased = 0;
};

/// A run of the scenario without any fault.
FaultRun RunWhole(const FaultScenario& scenario);
/// A run in which the step `row` meets `fault` (not kHugePrinted).
FaultRun RunWithFault(const FaultScenario& scenario, const FaultRun& whole, std::size_t row,
                      Fault fault);
/// A run in which nothing can be written into the log folder.
FaultRun RunWithoutLogFolder(const FaultScenario& scenario);
/// A run in which each of the steps `flooded` prints 100 MB, or 10 under the address sanitizer. Its
/// log lines are cut at 80 characters.
FaultRun RunFlooded(const FaultScenario& scenario, const std::vector<std::string>& flooded);

/// The lines of `run` that `whole` does not have, in order; a line that comes n times more is
/// here n times.
std::vector<std::string> FindAddedLines(const FaultRun& whole, const FaultRun& run);

}  // namespace test
