// The interpreter on a command line: the input's first line, behind "/c ". The rest of the input is
// what a tool prints.
//
// Quotes are all that the quote rule takes; a command without redirections keeps every character; a
// command written out again from its pieces gives the same pieces; a filter lets through what it
// let through before; a recorded machine that knows the tool answers with its output, and whatever
// else the line does, nothing stays open.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/checks.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/own_commands.h"
#include "host/recorded/recorded_machine.h"

namespace {

using fuzz::Require;

using host::Pipeline;
using host::Redirection;
using host::Stage;

std::string Without(std::string_view text, std::string_view characters) {
  std::string left(text);
  std::erase_if(left, [&](char c) { return characters.find(c) != std::string_view::npos; });
  return left;
}

bool KnowsNone(std::string_view) { return false; }

void CheckQuoteRule(std::string_view line) {
  for (const bool exists : {false, true}) {
    const std::string left = host::ApplyQuoteRule(line, [&](std::string_view) { return exists; });
    Require(Without(left, "\"") == Without(line, "\""));
    Require(line.size() - left.size() <= 2);
    if (!line.starts_with('"')) Require(left == line);
  }
}

bool HasRedirections(const Pipeline& pipeline) {
  return std::any_of(pipeline.stages.begin(), pipeline.stages.end(),
                     [](const Stage& stage) { return !stage.redirections.empty(); });
}

void CheckCharacters(std::string_view command, const Pipeline& pipeline) {
  std::string joined;
  for (const Stage& stage : pipeline.stages) {
    if (!joined.empty()) joined += '|';
    joined += stage.program + stage.arguments;
    for (const Redirection& redirection : stage.redirections) joined += redirection.target;
  }
  Require(joined.size() <= command.size());
  if (!HasRedirections(pipeline) && !pipeline.isMalformed) {
    Require(Without(joined, " \t") == Without(command, " \t"));
  }
}

bool HasPairedQuotes(const Stage& stage) {
  const std::string text = stage.program + stage.arguments;
  return std::count(text.begin(), text.end(), '"') % 2 == 0;
}

std::string Write(const Stage& stage) {
  std::string text = stage.program + ' ' + stage.arguments;
  for (const Redirection& redirection : stage.redirections) {
    const bool appends = redirection.kind == Redirection::Kind::kAppend;
    const bool reads = redirection.kind == Redirection::Kind::kRead;
    text += ' ' + std::to_string(redirection.handle) +
            (reads     ? "<"
             : appends ? ">>"
                       : ">") +
            '"' + redirection.target + '"';
  }
  return text;
}

bool AreSame(const Stage& one, const Stage& other) {
  return one.program == other.program && one.arguments == other.arguments &&
         std::equal(one.redirections.begin(), one.redirections.end(), other.redirections.begin(),
                    other.redirections.end(), [](const Redirection& a, const Redirection& b) {
                      return a.kind == b.kind && a.handle == b.handle && a.target == b.target;
                    });
}

void CheckWritingAgain(const Pipeline& pipeline) {
  const auto& stages = pipeline.stages;
  if (pipeline.isMalformed || !std::all_of(stages.begin(), stages.end(), HasPairedQuotes)) return;
  std::string command;
  for (const Stage& stage : stages) command += (command.empty() ? "" : " | ") + Write(stage);
  const Pipeline again = host::ParseCommand(command);
  Require(!again.isMalformed);
  Require(
      std::equal(stages.begin(), stages.end(), again.stages.begin(), again.stages.end(), AreSame));
}

void CheckFilter(const Pipeline& pipeline, std::string_view output) {
  for (const Stage& stage : pipeline.stages) {
    const std::vector<std::string> texts = host::FindstrTexts(stage.arguments);
    const std::string passed = host::FilterLines(output, texts);
    Require(host::FilterLines(passed, texts) == passed);
    Require(std::count(passed.begin(), passed.end(), '\n') <=
            std::count(output.begin(), output.end(), '\n') + 1);
  }
}

std::string ReadPiped(host::RecordedMachine& machine, const std::string& commandLine) {
  std::string all;
  const auto pipe = machine.CreatePipe(commandLine);
  const auto process = machine.StartInterpreter(commandLine, true, pipe.object.get());
  pipe.object->CloseWriteEnd();
  std::array<char, 64> chunk{};
  std::size_t count = 0;
  while (pipe.object->Read(chunk.data(), chunk.size(), count)) all.append(chunk.data(), count);
  return all;
}

void CheckMachine(const std::string& commandLine, const Pipeline& pipeline,
                  const std::string& output) {
  host::Recording recording;
  recording.files = {{"C:\\in\\a.txt", output}, {"C:\\in\\b.txt", ""}};
  for (const Stage& stage : pipeline.stages) {
    host::RecordedCommand command;
    // A recorded tool loses one ".exe" when it is compared, as the program on the line does.
    command.tool = host::ToolName(stage.program) + ".exe";
    command.arguments = stage.arguments;
    command.standardOutput = output;
    recording.commands.push_back(command);
  }
  const Stage* only = pipeline.stages.size() == 1 ? &pipeline.stages.front() : nullptr;
  // What is recorded is how the line reads where nothing is known; knowing it can change that.
  const Pipeline known = host::ParseCommandLine(commandLine, [&](std::string_view path) {
    return only != nullptr && host::ToolName(path) == host::ToolName(only->program);
  });
  const bool answers = only != nullptr && !pipeline.isMalformed && only->redirections.empty() &&
                       !host::IsOwnCommand(only->program) && known.stages.size() == 1 &&
                       AreSame(known.stages.front(), *only);
  host::RecordedMachine machine(recording);
  const std::string piped = ReadPiped(machine, commandLine);
  if (answers) Require(piped == output);
  machine.RunSystem(commandLine.substr(3));
  for (const auto& [path, bytes] : machine.Files()) Require(machine.OpenText(path) != nullptr);
  Require(machine.OpenHandles() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string_view line = input.substr(0, input.find_first_of(std::string_view("\n\0", 2)));
  const std::string output(input.substr(std::min(line.size() + 1, input.size())));
  CheckQuoteRule(line);
  const std::string commandLine = "/c " + std::string(line);
  const Pipeline pipeline = host::ParseCommandLine(commandLine, KnowsNone);
  for (const std::string& command : {std::string(line), host::ApplyQuoteRule(line, KnowsNone)}) {
    CheckCharacters(command, host::ParseCommand(command));
    CheckWritingAgain(host::ParseCommand(command));
  }
  CheckFilter(pipeline, output);
  CheckMachine(commandLine, pipeline, output);
  return 0;
}
