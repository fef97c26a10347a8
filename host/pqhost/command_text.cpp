#include "host/pqhost/command_text.h"

#include <algorithm>

namespace host {
namespace {

constexpr std::string_view kExtension = ".exe";

void SkipAll(std::string_view& text, char c) {
  text.remove_prefix(std::min(text.find_first_not_of(c), text.size()));
}

}  // namespace

std::string FindTool(std::string_view commandLine) {
  if (commandLine.starts_with("/c")) commandLine.remove_prefix(2);
  SkipAll(commandLine, ' ');
  const bool quoted = commandLine.starts_with('"');
  SkipAll(commandLine, '"');
  // A folder with blanks stands in quotes, so the program ends at the next one, unless its
  // arguments stand in the same quotes.
  std::string_view program = commandLine.substr(0, commandLine.find(quoted ? '"' : ' '));
  const std::size_t extension = program.rfind(kExtension);
  const bool isFile = extension != std::string_view::npos;
  program = program.substr(0, isFile ? extension + kExtension.size() : program.find(' '));
  program.remove_prefix(program.find_last_of('\\') + 1);
  return std::string(program);
}

}  // namespace host
