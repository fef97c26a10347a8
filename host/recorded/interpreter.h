// How the command interpreter reads a command line, as far as the modules' lines need it: the quote
// rule of "/c", pipes, redirections, programs and their arguments. Pure: text in, pieces out.
//
//   /c ""C:\Halyard\pq_tools\amt_log.exe" 10.0.0.5 admin secret>"C:\Halyard\logs\amtlog.txt""
//
// gives one stage: program "C:\Halyard\pq_tools\amt_log.exe" (with its quotes), arguments
// `10.0.0.5 admin secret`, standard output to C:\Halyard\logs\amtlog.txt.
//
// Signs that never occur in the modules' lines have no meaning here: & ^ % are ordinary characters.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// `>`, `>>` or `<` with the handle that it concerns.
struct Redirection {
  enum class Kind { kWrite, kAppend, kRead };
  Kind kind = Kind::kWrite;
  int handle = 1;      ///< 0 to 9; 1 is standard output, 2 standard error
  std::string target;  ///< without its quotes
};

/// One command of a pipeline.
struct Stage {
  std::string program;    ///< the first word, with the quotes around it
  std::string arguments;  ///< all after it up to a redirection, without blanks at its ends
  std::vector<Redirection> redirections;
};

struct Pipeline {
  std::vector<Stage> stages;
  /// A pipe without a command or a redirection without a target: nothing is run then.
  bool isMalformed = false;
};

/// Whether the text between two quotes names a program that exists.
using ProgramTest = std::function<bool(std::string_view path)>;

/// The text after "/c " once the interpreter has dealt with a quote at its start.
/// The quotes stay when there are exactly two, none of &<>()@^| between them, a blank between them,
/// and the text between them names a program; otherwise the first and the last quote go.
std::string ApplyQuoteRule(std::string_view text, const ProgramTest& isProgram);

/// Splits a command, quote rule applied, at its pipes and redirections. Quotes protect both; a
/// quote without a partner protects all that follows. A digit is the handle of a redirection when
/// it is a word of its own right before it. Text after a redirection is no argument.
Pipeline ParseCommand(std::string_view command);

/// Both of the above for a whole command line, with its "/c ".
Pipeline ParseCommandLine(std::string_view commandLine, const ProgramTest& isProgram);

/// The file that standard output goes to; empty when there is none, or it is the null device.
std::string FindOutputFile(const Stage& stage);
/// That of the last command which has one.
std::string FindOutputFile(const Pipeline& pipeline);

/// File name of a program as written on a line: without folder, quotes and ".exe", in lower case.
std::string ToolName(std::string_view program);

/// The words of `arguments`, without quotes; blanks between quotes do not separate.
std::vector<std::string> SplitWords(std::string_view arguments);

/// The texts that findstr searches: each word of each quoted or bare argument, and each /c: text
/// as a whole.
std::vector<std::string> FindstrTexts(std::string_view arguments);

/// The lines of `input` that hold any of `texts`, in the same case; each ends with CR LF.
std::string FilterLines(std::string_view input, const std::vector<std::string>& texts);

}  // namespace host
