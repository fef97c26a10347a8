#include "host/collect/command_text.h"

#include <algorithm>

namespace host {
namespace {

constexpr std::string_view kExtension = ".exe";

void SkipAll(std::string_view& text, char c) {
  text.remove_prefix(std::min(text.find_first_not_of(c), text.size()));
}

/// A command line's program, and all that follows it.
struct Split {
  std::string_view program;
  std::string_view rest;
};

Split SplitProgram(std::string_view commandLine) {
  if (commandLine.starts_with("/c")) commandLine.remove_prefix(2);
  SkipAll(commandLine, ' ');
  const bool quoted = commandLine.starts_with('"');
  SkipAll(commandLine, '"');
  // A folder with blanks is quoted, so the program ends at the next quote, unless the quotes
  // enclose its arguments too.
  std::string_view program = commandLine.substr(0, commandLine.find(quoted ? '"' : ' '));
  const std::size_t extension = program.rfind(kExtension);
  const bool isFile = extension != std::string_view::npos;
  program = program.substr(0, isFile ? extension + kExtension.size() : program.find(' '));
  return {program, commandLine.substr(program.size())};
}

}  // namespace

std::string FindProgram(std::string_view commandLine) {
  return std::string(SplitProgram(commandLine).program);
}

std::string FindArguments(std::string_view commandLine) {
  std::string_view rest = SplitProgram(commandLine).rest;
  const bool ownQuotes = rest.starts_with('"');
  if (ownQuotes) rest.remove_prefix(1);
  rest = rest.substr(0, rest.find_first_of("|>"));
  SkipAll(rest, ' ');
  rest = rest.substr(0, rest.find_last_not_of(' ') + 1);
  // Quotes around program and arguments together end here.
  if (!ownQuotes && rest.ends_with('"')) rest.remove_suffix(1);
  return std::string(rest);
}

std::string FindTarget(std::string_view commandLine) {
  const std::size_t sign = commandLine.rfind('>');
  if (sign == std::string_view::npos) return {};
  std::string target(commandLine.substr(sign + 1));
  std::erase(target, '"');
  std::string_view trimmed = target;
  SkipAll(trimmed, ' ');
  return std::string(trimmed.substr(0, trimmed.find_last_not_of(' ') + 1));
}

std::string FindTool(std::string_view commandLine) {
  const std::string program = FindProgram(commandLine);
  return program.substr(program.find_last_of('\\') + 1);
}

}  // namespace host
