#include "host/recorded/interpreter.h"

#include <algorithm>
#include <cstddef>

#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kSpecialCharacters = "&<>()@^|";

bool IsBlank(char c) { return kBlanks.find(c) != std::string_view::npos; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Length of the word at the start of `text`: up to a character of `ends` outside quotes.
std::size_t MeasureWord(std::string_view text, std::string_view ends) {
  bool isQuoted = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '"') isQuoted = !isQuoted;
    if (!isQuoted && ends.find(text[at]) != std::string_view::npos) return at;
  }
  return text.size();
}

std::string RemoveQuotes(std::string_view text) {
  std::string bare(text);
  std::erase(bare, '"');
  return bare;
}

/// Reads one command of a pipeline.
class StageReader {
 public:
  explicit StageReader(std::string_view text) : rest(text) {}

  /// False when a redirection has no target.
  bool Read(Stage& stage) {
    bool isWhole = true;
    while (!rest.empty() && isWhole) {
      TakeText(MeasureWord(rest, "<>"));
      if (!rest.empty()) isWhole = TakeRedirection(stage);
    }
    const std::string_view all = TrimBlanks(command);
    const std::size_t programLength = MeasureWord(all, kBlanks);
    stage.program = all.substr(0, programLength);
    stage.arguments = TrimBlanks(all.substr(programLength));
    return isWhole;
  }

 private:
  void TakeText(std::size_t length) {
    text = rest.substr(0, length);
    rest.remove_prefix(length);
    handleDigit = '\0';
    const bool hasDigit = !rest.empty() && !text.empty() && IsDigit(text.back()) &&
                          (text.size() == 1 || IsBlank(text[text.size() - 2]));
    if (hasDigit) {
      handleDigit = text.back();
      text.remove_suffix(1);
    }
    if (TrimBlanks(command).empty()) command = text;
  }

  bool TakeRedirection(Stage& stage) {
    Redirection redirection;
    redirection.kind = rest.front() == '<' ? Redirection::Kind::kRead : Redirection::Kind::kWrite;
    redirection.handle = redirection.kind == Redirection::Kind::kRead ? 0 : 1;
    if (handleDigit != '\0') redirection.handle = handleDigit - '0';
    if (rest.starts_with(">>")) {
      redirection.kind = Redirection::Kind::kAppend;
      rest.remove_prefix(1);
    }
    rest.remove_prefix(1);
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
    const std::size_t length = MeasureWord(rest, " \t<>");
    redirection.target = RemoveQuotes(rest.substr(0, length));
    rest.remove_prefix(length);
    const bool hasTarget = !redirection.target.empty();
    stage.redirections.push_back(std::move(redirection));
    return hasTarget;
  }

  std::string_view rest;
  std::string_view text;
  std::string_view command;
  char handleDigit = '\0';
};

}  // namespace

std::string ApplyQuoteRule(std::string_view text, const ProgramTest& isProgram) {
  if (!text.starts_with('"')) return std::string(text);
  const std::size_t last = text.rfind('"');
  const std::string_view between = last > 0 ? text.substr(1, last - 1) : std::string_view();
  const bool quotesStay = last > 0 && between.find('"') == std::string_view::npos &&
                          between.find_first_of(kSpecialCharacters) == std::string_view::npos &&
                          between.find_first_of(kBlanks) != std::string_view::npos &&
                          isProgram(between);
  if (quotesStay) return std::string(text);
  std::string left(text.substr(1));
  if (last > 0) left.erase(last - 1, 1);
  return left;
}

Pipeline ParseCommand(std::string_view command) {
  Pipeline pipeline;
  if (TrimBlanks(command).empty()) return pipeline;
  for (bool isMore = true; isMore;) {
    const std::size_t length = MeasureWord(command, "|");
    StageReader reader(command.substr(0, length));
    Stage& stage = pipeline.stages.emplace_back();
    if (!reader.Read(stage)) pipeline.isMalformed = true;
    if (stage.program.empty() && stage.redirections.empty()) pipeline.isMalformed = true;
    isMore = length < command.size();
    command.remove_prefix(length + (isMore ? 1 : 0));
  }
  return pipeline;
}

Pipeline ParseCommandLine(std::string_view commandLine, const ProgramTest& isProgram) {
  std::string_view text = commandLine.substr(0, commandLine.find('\0'));
  if (text.starts_with("/c")) text.remove_prefix(2);
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return ParseCommand(ApplyQuoteRule(text, isProgram));
}

std::string FindOutputFile(const Stage& stage) {
  std::string file;
  for (const Redirection& redirection : stage.redirections) {
    const bool isOutput = redirection.kind != Redirection::Kind::kRead && redirection.handle == 1;
    if (isOutput) file = redirection.target;
  }
  return LowerCase(file.substr(file.rfind('\\') + 1)) == "nul" ? "" : file;
}

std::string FindOutputFile(const Pipeline& pipeline) {
  std::string file;
  for (const Stage& stage : pipeline.stages) {
    std::string own = FindOutputFile(stage);
    if (!own.empty()) file = std::move(own);
  }
  return file;
}

std::string ToolName(std::string_view program) {
  std::string name = LowerCase(RemoveQuotes(program));
  name.erase(0, name.rfind('\\') + 1);
  constexpr std::string_view kExtension = ".exe";
  if (name.ends_with(kExtension)) name.resize(name.size() - kExtension.size());
  return name;
}

std::vector<std::string> SplitWords(std::string_view arguments) {
  std::vector<std::string> words;
  for (;;) {
    arguments = TrimBlanks(arguments);
    if (arguments.empty()) return words;
    const std::size_t length = MeasureWord(arguments, kBlanks);
    words.push_back(RemoveQuotes(arguments.substr(0, length)));
    arguments.remove_prefix(length);
  }
}

std::vector<std::string> FindstrTexts(std::string_view arguments) {
  std::vector<std::string> texts;
  for (const std::string& word : SplitWords(arguments)) {
    if (word.starts_with("/c:") || word.starts_with("/C:")) {
      if (word.size() > 3) texts.push_back(word.substr(3));
      continue;
    }
    for (std::string& alternative : SplitWords(word)) texts.push_back(std::move(alternative));
  }
  return texts;
}

std::string FilterLines(std::string_view input, const std::vector<std::string>& texts) {
  std::string output;
  while (!input.empty()) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    std::string_view line = input.substr(0, end);
    input.remove_prefix(std::min(end + 1, input.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const bool passes = std::any_of(texts.begin(), texts.end(), [&](const std::string& text) {
      return line.find(text) != std::string_view::npos;
    });
    if (passes) output.append(line).append("\r\n");
  }
  return output;
}

}  // namespace host
