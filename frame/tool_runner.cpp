#include "frame/tool_runner.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "frame/logkit/log.h"

namespace pq {

std::string GetExeFolder() {
  const std::string path = Machine().HostExecutable();
  return path.substr(0, path.rfind('\\'));
}

std::string GetLogFolder() {
  std::array<char, kLogFolderRoom> folder{};
  LogKit::GetLogDir(folder.data(), folder.size());
  return folder.data();
}

void CheckFolderFits(const std::string& folder, std::size_t prefixLength) {
  if (folder.size() + prefixLength >= kCommandRoom) Machine().FailRangeCheck();
}

Acquired<Process> StartTool(const std::string& commandLine, bool inheritHandles, std::size_t room) {
  if (commandLine.size() >= room) return {nullptr, kErrorFilenameTooLong};
  return Machine().StartInterpreter(commandLine, inheritHandles, nullptr);
}

ToolRun RunAndWait(const std::string& commandLine, bool inheritHandles) {
  const Acquired<Process> tool = StartTool(commandLine, inheritHandles);
  if (!tool) return {false, tool.error};
  tool.object->Wait();
  return {true, 0};
}

ToolExit RunForExitCode(const std::string& commandLine) {
  ToolExit result;
  const Acquired<Process> tool = StartTool(commandLine, /*inheritHandles=*/false);
  result.startError = tool.error;
  if (!tool) return result;
  result.started = true;
  tool.object->Wait();
  result.exitCodeError = tool.object->ReadExitCode(result.exitCode);
  return result;
}

void AppendPiece(std::deque<std::string>& pieces, std::size_t size, std::string_view more) {
  constexpr std::size_t kMostPiece = std::size_t{1} << 20;
  if (pieces.empty() || pieces.back().capacity() - pieces.back().size() < more.size()) {
    pieces.emplace_back().reserve(std::max(more.size(), std::min(size, kMostPiece)));
  }
  pieces.back() += more;
}

std::string JoinPieces(std::deque<std::string> pieces, std::size_t size) {
  std::string text;
  text.reserve(size);
  for (; !pieces.empty(); pieces.pop_front()) text += pieces.front();
  return text;
}

PipedTool::PipedTool(std::string commandLine) : commandLine(std::move(commandLine)) {}

bool PipedTool::OpenPipe() {
  pipe = Machine().CreatePipe(commandLine).object;
  return pipe != nullptr;
}

std::uint32_t PipedTool::Start() {
  if (commandLine.size() >= kPipeCommandRoom) return kErrorFilenameTooLong;
  Acquired<Process> tool =
      Machine().StartInterpreter(commandLine, /*inheritHandles=*/true, pipe.get());
  if (!tool) return tool.error;
  process = std::move(tool.object);
  pipe->CloseWriteEnd();
  return 0;
}

void PipedTool::Finish() {
  pipe.reset();
  process->Wait();
  process.reset();
}

void PipedTool::Abandon() {
  pipe.reset();
  (void)process.release();  // Left open on purpose: an abandoned tool runs on by itself.
}

void ReplaceAll(char* buffer, std::size_t room, std::string_view search,
                std::string_view replacement) {
  std::size_t length = std::strlen(buffer);
  for (std::size_t at = 0; at + search.size() <= length;) {
    if (std::string_view(buffer + at, search.size()) != search) {
      ++at;
      continue;
    }
    const std::size_t grown = length - search.size() + replacement.size();
    if (grown >= room) return;
    const std::size_t rest = at + search.size();
    std::memmove(buffer + at + replacement.size(), buffer + rest, length - rest + 1);
    std::copy(replacement.begin(), replacement.end(), buffer + at);
    at += replacement.size();
    length = grown;
  }
}

std::string DoubleBackslashes(const std::string& path) {
  std::array<char, kPathRoom> buffer{};
  path.copy(buffer.data(), buffer.size() - 1);
  ReplaceAll(buffer.data(), buffer.size(), "\\", "\\\\");
  return buffer.data();
}

bool LineReader::Next(std::string_view& text) {
  const char* next = Next();
  if (next == nullptr) return false;
  text = next;
  return true;
}

}  // namespace pq
