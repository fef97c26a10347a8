// How a module describes itself: its tables with their columns and tools, and the meaning of the
// sentences of its log. The documentation of the tables is made from it, and a host finds there why
// a table is empty.
//
// A module builds its description from the constants that its collectors work with and log.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/row_buffer.h"

namespace pq {

/// A tool that a collector runs for a table.
struct ToolCommand {
  /// Below the host's folder, such as "\pq_tools\ipmiutilnh.exe", or a command of Windows.
  std::string program;
  std::string arguments;
  std::string file;  ///< that it leaves in the log folder; empty when it is read through a pipe
  /// The operator gives the arguments; `arguments` only names them.
  bool argumentsFromOperator = false;
};

/// The command in a collector's text for the command line, which follows the host's folder: the
/// program up to its closing quote, then the arguments up to a pipe or a redirection.
ToolCommand ParseToolCommand(std::string_view text, std::string file = {});

struct ColumnDescription {
  std::string key;
  std::string label;  ///< empty where the tool itself gives it
  std::string text;   ///< the column's meaning, in words for a newcomer
  ValueKind kind = ValueKind::kText;

  bool operator==(const ColumnDescription&) const = default;
};

/// A program of the steps, and where it comes from.
struct ToolDescription {
  std::string program;    ///< as in ToolCommand
  std::string vendor;     ///< empty when not known
  std::string product;    ///< of which it is a part; empty when not known
  std::string area = {};  ///< as in TableDescription
};

/// A part of the machine that tables are about.
struct Area {
  const char* name;  ///< a host lists the tables under it
  /// That a machine may lack, for people, such as "a BMC"; null: every machine has it.
  const char* device = nullptr;
};

/// Tables that only show a host how tables look. Hosts list them last.
inline constexpr Area kSampleArea{"Samples"};

/// How to see that a machine has what a table leaves out.
enum class OmissionSign {
  kNone,      ///< nothing shows it
  kRows,      ///< the table has rows
  kToolRuns,  ///< the command ran, and the machine has its tool
  kFile,      ///< the command leaves the file `label`
  /// As kCount, in the property `end` of the first row of the class `className`.
  kAttachedCount,
  /// In the command's text a number above `most` follows `label`; that number is found.
  kCount,
  /// In the command's text no `end` follows the last `label`; the rest of that one's line is found.
  kOpenRecord,
  /// In the command's text a line `end` ends a row, and no line with a column's label, followed by
  /// `label`, came for it, though one came for a row before; the labels are found.
  kLackingLine,
};

/// Something that a table leaves out although its tools tell it, or takes from elsewhere.
struct Omission {
  /// A sentence that holds for every machine, for the documentation. Empty: another sign of the one
  /// before, which is told only where that one's sign is not found.
  std::string text = {};
  std::string note = {};  ///< of a machine that has it, for people; "{}" is what the sign found
  OmissionSign sign = OmissionSign::kNone;
  ToolCommand command = {};
  std::string label = {};
  std::string end = {};
  int most = 0;
  std::string className = {};
};

struct TableDescription {
  std::string className;
  std::string title;
  std::string area = {};  ///< the name of its area
  /// In the order in which they run; none for fixed rows.
  std::vector<ToolCommand> commands = {};
  /// Properties of a row in their order.
  std::vector<ColumnDescription> columns = {};
  /// Why the table never has rows; empty for tables that something fills.
  std::string whyAlwaysEmpty = {};
  /// What it means that an output holds no row of the table; may be empty.
  std::string whyNoRow = {};
  /// One command that ends well suffices; otherwise all of them are needed.
  bool commandsAreAlternatives = false;
  /// Commands of the interpreter that have to start too before the table is made, such as "md".
  std::vector<std::string> neededCommands = {};
  /// The table is made on US English systems only.
  bool needsUsEnglish = false;
  /// A row is an entry or a line of a log, the newest last.
  bool isLog = false;
  std::vector<Omission> leavesOut = {};
  /// A row comes of the files alone, even if their tools are missing and all of them are empty.
  bool hasHollowRows = false;

  void AddColumn(const Column& column);
  void AddColumns(std::span<const Column> more);
  /// A row ends at a line with `label`; without such a line there is none.
  void EndRowsAt(std::string_view label);
};

/// How a step went wrong, as a sentence of the log tells.
enum class StepFailure {
  kBeforeTool,       ///< the step ended before it started its tool
  kToolNotRun,       ///< the tool started last did not start, or how it ended is not known
  kOutputNotOpened,  ///< the output of the tool started last cannot be opened
  kOutputNotRead,    ///< the output of the tool started last cannot be read
  /// As kOutputNotOpened, of a tool that leaves its output only where there is something to report
  /// on: nothing failed.
  kNothingToReport,
};

struct FailureSentence {
  std::string sentence;  ///< up to the value that follows it, if any
  StepFailure failure;
  /// The program concerned, as in ToolCommand, where it need not be the one started last.
  std::string program = {};
};

/// A sentence of the log that explains why tables have no rows.
struct Explanation {
  std::string sentence;  ///< up to the value that follows it, if any
  std::string outcome;   ///< "no such device" and the like, as a host lists outcomes
  std::string text;      ///< for people
  /// Classes of the tables concerned; none: all of the module.
  std::vector<std::string> tables = {};
  /// The value after the sentence with which it explains nothing; without one, no value follows.
  std::string usualValue = {};
};

/// A text of a tool's output that explains why tables have no rows. The tool has not failed then,
/// whatever its exit code.
struct AnswerExplanation {
  ToolCommand command;
  std::string words;                ///< anywhere in the output
  std::string outcome;              ///< as in Explanation
  std::string text;                 ///< for people
  std::vector<std::string> tables;  ///< classes of the tables concerned
};

/// A line of a tool's output by which it says that it could not do its work, whatever its exit
/// code.
struct ErrorLine {
  std::string beginning;
  std::string part = {};  ///< anywhere in the line
};

/// How a tool gives the reason in its output when it ends with a code other than 0.
struct ReasonLine {
  std::string program;  ///< as in ToolCommand
  std::string label;    ///< the reason is the rest of its line
  std::string nothing;  ///< in the place of a reason that it does not give
};

/// A program whose exit code says whether a device is present. When the program is missing, the
/// interpreter's own exit code looks like an answer.
struct PresenceTest {
  std::string commandEnd;  ///< how its command line ends
  std::string device;      ///< for people, such as "a BMC"
};

/// How a tool introduces its version in the texts of a table.
struct VersionLine {
  std::string tool;
  std::string className;
  std::string label;
};

struct ModuleDescription {
  std::string name;  ///< as the module calls itself
  std::vector<TableDescription> tables = {};
  std::vector<FailureSentence> failures = {};
  std::vector<Explanation> explanations = {};
  std::vector<AnswerExplanation> answers = {};
  std::vector<PresenceTest> presenceTests = {};
  std::vector<VersionLine> versionLines = {};
  std::vector<ToolDescription> tools = {};
  std::vector<Area> areas = {};  ///< of its tables and tools
  /// Begins the error texts of tools that are read through a pipe; may be empty.
  std::string toolErrorText = {};
  /// Of the tools' outputs, also of those that rows are made of.
  std::vector<ErrorLine> errorLines = {};
  std::vector<ReasonLine> reasonLines = {};
  /// The program, as in ToolCommand, of the steps whose command line can be too long to be started
  /// and is not logged before.
  std::string unloggedProgram = {};

  /// `program`: as in FailureSentence.
  void AddFailures(StepFailure failure, std::initializer_list<const char*> sentences,
                   const std::string& program = {});
  /// The tables and tools described so far are about `area`, unless they are about another.
  void AssignArea(const Area& area);
  /// The pipe for the tool of table `className` could not be created, which is `sentence`.
  void AddPipeFailure(const char* sentence, const char* className);
};

/// All modules of the library, in the order in which the host gets them. The modules define it.
std::vector<ModuleDescription> DescribeModules();

}  // namespace pq
