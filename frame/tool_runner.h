// Running the machine's tools and reading their output: the mechanics that all modules share.
// Every tool runs through the command interpreter, one at a time, and is awaited without time-out.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "frame/platform.h"

namespace pq {

/// Room of a command line, its terminator included: of a tool that writes to a file or only
/// returns a code, and of one that is read through a pipe.
inline constexpr std::size_t kCommandRoom = 512;
inline constexpr std::size_t kPipeCommandRoom = 256;
/// Room of the path of the host's log folder, terminator included.
inline constexpr std::size_t kLogFolderRoom = 256;
/// Room of one line of a tool's output file, terminator included; a longer line arrives in pieces.
inline constexpr std::size_t kLineRoom = 512;
/// Room of the path of a tool's output file.
inline constexpr std::size_t kPathRoom = 512;
/// The most that is kept of a tool's output in a pipe; the rest is read and dropped.
inline constexpr std::size_t kPipeOutputLimit = std::size_t{64} << 20;

/// The folder of the host's executable, without trailing backslash; the whole path when it holds no
/// backslash.
std::string GetExeFolder();

/// The host's log folder; ends with a backslash.
std::string GetLogFolder();

/// Ends the process when `prefixLength` characters and `folder` do not fit a command buffer.
void CheckFolderFits(const std::string& folder, std::size_t prefixLength);

/// Starts the interpreter with `commandLine`. A command line that does not fit `room` is not
/// started, and the error is kErrorFilenameTooLong.
Acquired<Process> StartTool(const std::string& commandLine, bool inheritHandles,
                            std::size_t room = kCommandRoom);

/// How a tool ended that was started and awaited.
struct ToolRun {
  bool started = false;
  std::uint32_t startError = 0;
};

/// Starts the interpreter with `commandLine` and waits for its end.
ToolRun RunAndWait(const std::string& commandLine, bool inheritHandles);

/// How a tool ended whose exit code matters.
struct ToolExit : ToolRun {
  std::uint32_t exitCode = 0;       ///< 0 when it could not be read
  std::uint32_t exitCodeError = 0;  ///< not 0: the exit code could not be read
};

/// As RunAndWait, without handle inheritance; reads the exit code.
ToolExit RunForExitCode(const std::string& commandLine);

/// Appends `more` to what has `size` bytes by now, in pieces as large as all before: once they are
/// joined, large ones are given back, where small ones leave a gap in the heap.
void AppendPiece(std::deque<std::string>& pieces, std::size_t size, std::string_view more);

/// The pieces as one text of `size` bytes. A text that grew with every piece would be copied again
/// and again, and hold up to twice as much.
std::string JoinPieces(std::deque<std::string> pieces, std::size_t size);

/// A tool whose standard output and standard error are read through one pipe.
///
///   PipedTool tool(command);
///   if (!tool.OpenPipe()) ...
///   if (!tool.Start()) ...
///   std::string output = tool.Collect(room, [&](const char* chunk, std::size_t count) { ... });
///   tool.Finish();
class PipedTool {
 public:
  explicit PipedTool(std::string commandLine);

  /// False when the pipe cannot be created.
  bool OpenPipe();
  /// Starts the tool with handle inheritance and closes the write end. Returns 0; or the system
  /// error, and then both ends stay open as long as this object lives.
  std::uint32_t Start();
  /// Reads until the first failed read, in chunks of at most `chunkRoom - 1` bytes.
  /// `onChunk(text, count)` sees each chunk as zero-terminated text with its byte count. Returns
  /// all bytes, at most kPipeOutputLimit; callers that treat them as text stop at the first NUL.
  template <typename OnChunk>
  std::string Collect(std::size_t chunkRoom, const OnChunk& onChunk) {
    std::deque<std::string> pieces;
    const auto chunk = std::make_unique<char[]>(chunkRoom);
    std::size_t left = kPipeOutputLimit;
    std::size_t count = 0;
    while (pipe->Read(chunk.get(), chunkRoom - 1, count)) {
      chunk[count] = '\0';
      onChunk(static_cast<const char*>(chunk.get()), count);
      const std::size_t kept = std::min(count, left);
      if (kept > 0) AppendPiece(pieces, kPipeOutputLimit - left, {chunk.get(), kept});
      left -= kept;
    }
    return JoinPieces(std::move(pieces), kPipeOutputLimit - left);
  }
  /// Closes the read end, waits for the tool and closes its handles.
  void Finish();
  /// Closes the read end and lets the tool go: it is not awaited and its handles stay open.
  void Abandon();

 private:
  std::string commandLine;
  std::unique_ptr<Pipe> pipe;
  std::unique_ptr<Process> process;
};

/// Replaces every occurrence of `search` (not empty) in the zero-terminated text of `buffer`, which
/// has `room` bytes. Inserted text is not searched again. Stops where the next replacement would
/// not fit; the rest then stays as it was.
void ReplaceAll(char* buffer, std::size_t room, std::string_view search,
                std::string_view replacement);

/// `path` with every backslash doubled, as far as kPathRoom allows; it names the same file.
std::string DoubleBackslashes(const std::string& path);

/// Reads a text file line by line through one line buffer.
class LineReader {
 public:
  /// `file` may be null: then there are no lines.
  explicit LineReader(TextFile* file) : file(file) {}
  /// The next line, its line feed included, at most kLineRoom - 1 characters; null at the end. The
  /// text stays until the next call.
  const char* Next() {
    return file && file->ReadLine(line.data(), line.size()) ? line.data() : nullptr;
  }
  /// The same, up to the first NUL. False at the end.
  bool Next(std::string_view& text);

 private:
  TextFile* file;
  std::array<char, kLineRoom> line{};
};

}  // namespace pq
