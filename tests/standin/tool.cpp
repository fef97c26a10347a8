// Stands in for any of the machine's tools: answers from a recording under the name that its own
// file has. Where the recording lies and where it counts its answers come from the environment of
// the test that runs it.

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/recorded/interpreter.h"
#include "host/recording/recording_reader.h"
#include "tests/standin/console_bytes.h"

namespace test {
namespace {

constexpr UINT kBrokenStandIn = 250;

[[noreturn]] void Fail(const std::string& why) {
  WriteBytes(GetStdHandle(STD_ERROR_HANDLE), "stand-in tool: " + why + "\r\n");
  ExitProcess(kBrokenStandIn);
}

std::filesystem::path ReadFolder(const wchar_t* variable) {
  const wchar_t* value = _wgetenv(variable);
  if (value == nullptr) Fail("its environment does not say where the recording is");
  return value;
}

std::string ReadOwnToolName() {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, MAX_PATH);
  return host::ToolName(path);
}

/// How many times the command was run before; counts this time. `command` is its place among the
/// recorded ones.
std::size_t CountRun(const std::filesystem::path& stateFolder, std::size_t command) {
  const std::filesystem::path file = stateFolder / ("command" + std::to_string(command));
  std::error_code isNew;
  const auto before = std::filesystem::file_size(file, isNew);
  std::ofstream(file, std::ios::binary | std::ios::app) << '.';
  return isNew ? 0 : static_cast<std::size_t>(before);
}

UINT AnswerFromRecording() {
  const host::Recording recording = host::LoadRecording(ReadFolder(L"PQ_STANDIN_RECORDING"));
  const OwnCommandLine own = ReadOwnCommandLine();
  const std::string tool = ReadOwnToolName();
  std::vector<std::size_t> answers;
  for (std::size_t i = 0; i < recording.commands.size(); ++i) {
    const host::RecordedCommand& command = recording.commands[i];
    if (host::ToolName(command.tool) == tool && command.arguments == own.arguments) {
      answers.push_back(i);
    }
  }
  if (answers.empty()) {
    WriteBytes(GetStdHandle(STD_ERROR_HANDLE), NotRecognized(own.program));
    return 1;
  }
  const std::size_t run = CountRun(ReadFolder(L"PQ_STANDIN_STATE"), answers.front());
  const host::RecordedCommand& answer =
      recording.commands[answers[std::min(run, answers.size() - 1)]];
  WriteBytes(GetStdHandle(STD_OUTPUT_HANDLE), answer.standardOutput);
  WriteBytes(GetStdHandle(STD_ERROR_HANDLE), answer.standardError);
  return answer.exitCode;
}

}  // namespace
}  // namespace test

int main() {
  UINT exitCode = 0;
  try {
    exitCode = test::AnswerFromRecording();
  } catch (const std::exception& error) {
    test::Fail(error.what());
  }
  ExitProcess(exitCode);  // an exit code has 32 bits, whatever main may return
}
