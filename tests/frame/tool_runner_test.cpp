#include "frame/tool_runner.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "host/logger/logger.h"
#include "host/recorded/recorded_machine.h"
#include "tests/support/fake_platform.h"

namespace pq {
namespace {

using test::FakePlatform;
using testing::ElementsAre;
using testing::IsEmpty;

/// `text` after ReplaceAll in a buffer of `room` bytes, with a guard behind it that must stay.
std::string Replaced(const std::string& text, std::size_t room, std::string_view search,
                     std::string_view replacement) {
  std::vector<char> buffer(room + 16, '#');
  std::copy_n(text.c_str(), text.size() + 1, buffer.begin());
  ReplaceAll(buffer.data(), room, search, replacement);
  EXPECT_EQ(std::string(buffer.data() + room, 16), std::string(16, '#'));
  return buffer.data();
}

TEST(ReplaceAll, ReplacesEveryOccurrence) {
  EXPECT_EQ(Replaced("C:\\a\\\\b\\", 64, "\\", "\\\\"), "C:\\\\a\\\\\\\\b\\\\");
}

TEST(ReplaceAll, DoesNotSearchWhatItInserted) {
  EXPECT_EQ(Replaced("aba", 64, "a", "aab"), "aabbaab");
}

TEST(ReplaceAll, ReplacesLongerTexts) {
  EXPECT_EQ(Replaced("one two one", 64, "one", "1"), "1 two 1");
  EXPECT_EQ(Replaced("onone", 64, "one", "1"), "on1");
}

TEST(ReplaceAll, LeavesTextWithoutAnOccurrence) {
  EXPECT_EQ(Replaced("", 8, "\\", "\\\\"), "");
  EXPECT_EQ(Replaced("abc", 8, "abcd", "x"), "abc");
}

TEST(ReplaceAll, UsesTheRoomToItsLastByte) {
  EXPECT_EQ(Replaced("\\ab", 5, "\\", "\\\\"), "\\\\ab");
}

TEST(ReplaceAll, StopsWhereTheNextReplacementWouldNotFit) {
  EXPECT_EQ(Replaced("\\ab", 4, "\\", "\\\\"), "\\ab");
  EXPECT_EQ(Replaced("\\a\\b", 6, "\\", "\\\\"), "\\\\a\\b");
}

TEST(DoubleBackslashes, DoublesEveryBackslashOfAPath) {
  EXPECT_EQ(DoubleBackslashes("C:\\Halyard\\logs\\route.txt"),
            "C:\\\\Halyard\\\\logs\\\\route.txt");
}

TEST(DoubleBackslashes, LeavesTheRestOfAPathThatDoesNotFitDoubled) {
  const std::string path = "C:\\a\\" + std::string(505, 'x');
  ASSERT_EQ(path.size(), 510u);
  EXPECT_EQ(DoubleBackslashes(path), "C:\\\\a\\" + std::string(505, 'x'));
}

TEST(DoubleBackslashes, EndsAPathThatFillsItsBuffer) {
  EXPECT_EQ(DoubleBackslashes(std::string(600, 'x')), std::string(511, 'x'));
}

TEST(GetExeFolder, IsWhatStandsBeforeTheLastBackslash) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  machine.hostExecutable = "C:\\Program Files (x86)\\Halyard\\halyard.exe";
  EXPECT_EQ(GetExeFolder(), "C:\\Program Files (x86)\\Halyard");
}

TEST(GetExeFolder, IsTheWholePathWithoutAnyBackslash) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  machine.hostExecutable = "halyard.exe";
  EXPECT_EQ(GetExeFolder(), "halyard.exe");
}

TEST(GetLogFolder, EndsWithABackslash) {
  const host::LogFolderInUse folder("D:\\collected");
  EXPECT_EQ(GetLogFolder(), "D:\\collected\\");
}

TEST(CheckFolderFits, EndsTheProcessWhenTheFolderDoesNotFitBehindItsPrefix) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  EXPECT_NO_THROW(CheckFolderFits(std::string(506, 'x'), 5));
  EXPECT_THROW(CheckFolderFits(std::string(507, 'x'), 5), test::RangeCheckFailed);
}

TEST(RunAndWait, WaitsForTheToolAndClosesIt) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  EXPECT_TRUE(RunAndWait("/c route print", /*inheritHandles=*/true).started);
  EXPECT_THAT(machine.calls,
              ElementsAre("start /c route print, inheriting", "wait", "close process"));
}

TEST(RunAndWait, DoesNotInheritUnlessAsked) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  RunAndWait("/c route print", /*inheritHandles=*/false);
  EXPECT_EQ(machine.calls.front(), "start /c route print");
}

TEST(RunAndWait, TellsTheSystemErrorOfAFailedStart) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  machine.startError = 5;
  const ToolRun run = RunAndWait("/c route print", false);
  EXPECT_FALSE(run.started);
  EXPECT_EQ(run.startError, 5u);
}

TEST(RunAndWait, StartsACommandLineOf511Characters) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  const std::string commandLine = "/c " + std::string(508, 'x');
  EXPECT_TRUE(RunAndWait(commandLine, false).started);
  EXPECT_EQ(machine.calls.front(), "start " + commandLine);
}

TEST(RunAndWait, NeverStartsACommandLineThatDoesNotFit) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  const ToolRun run = RunAndWait("/c " + std::string(509, 'x'), false);
  EXPECT_FALSE(run.started);
  EXPECT_EQ(run.startError, 206u);
  EXPECT_THAT(machine.calls, IsEmpty());
}

TEST(RunForExitCode, ReadsTheCodeOfAToolThatInheritsNothing) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  machine.exitCode = 4294967295;
  const ToolExit exit = RunForExitCode("/c check");
  EXPECT_TRUE(exit.started);
  EXPECT_EQ(exit.exitCode, 4294967295u);
  EXPECT_EQ(exit.exitCodeError, 0u);
  EXPECT_EQ(machine.calls.front(), "start /c check");
}

TEST(RunForExitCode, ReadsTheCodeOnceTheToolHasEnded) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  RunForExitCode("/c check");
  EXPECT_THAT(machine.calls,
              ElementsAre("start /c check", "wait", "read exit code", "close process"));
}

TEST(RunForExitCode, LeavesACodeThatCannotBeReadAt0) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  machine.exitCode = 7;
  machine.exitCodeError = 6;
  const ToolExit exit = RunForExitCode("/c check");
  EXPECT_EQ(exit.exitCode, 0u);
  EXPECT_EQ(exit.exitCodeError, 6u);
}

TEST(RunForExitCode, TellsTheSystemErrorOfAFailedStart) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  machine.startError = 2;
  const ToolExit exit = RunForExitCode("/c check");
  EXPECT_FALSE(exit.started);
  EXPECT_EQ(exit.startError, 2u);
}

/// What Collect returns and what it shows, chunk by chunk.
struct PipedText {
  std::string output;
  std::vector<std::string> chunks;
};

/// Reads `text` through a pipe that gives as much as it is asked for.
PipedText ReadThroughPipe(const std::string& text, std::size_t chunkRoom) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  std::size_t at = 0;
  machine.onRead = [&](char* buffer, std::size_t size, std::size_t& count) {
    count = text.copy(buffer, size, at);
    at += count;
    return count > 0;
  };
  PipedTool tool("/c tool");
  EXPECT_TRUE(tool.OpenPipe());
  EXPECT_EQ(tool.Start(), 0u);
  PipedText read;
  read.output = tool.Collect(chunkRoom, [&](const char* chunk, std::size_t count) {
    EXPECT_EQ(chunk[count], '\0');
    read.chunks.emplace_back(chunk, count);
  });
  tool.Finish();
  return read;
}

TEST(PipedTool, ReadsInChunksOneByteSmallerThanTheirRoom) {
  const PipedText read = ReadThroughPipe("0123456789", 5);
  EXPECT_EQ(read.output, "0123456789");
  EXPECT_THAT(read.chunks, ElementsAre("0123", "4567", "89"));
}

TEST(PipedTool, ReadsMoreThanOneChunkHolds) {
  const std::string text(100000, 'x');
  EXPECT_EQ(ReadThroughPipe(text, 30720).output, text);
  EXPECT_EQ(ReadThroughPipe(text, 30720).chunks[0].size(), 30719u);
}

TEST(PipedTool, KeepsManyChunksInFewPieces) {
  std::deque<std::string> pieces;
  std::string all;
  for (int i = 0; i < 5000; ++i) {
    const std::string chunk(500, static_cast<char>('a' + i % 26));
    AppendPiece(pieces, all.size(), chunk);
    all += chunk;
  }
  EXPECT_LT(pieces.size(), 20u);
  EXPECT_EQ(JoinPieces(std::move(pieces), all.size()), all);
}

TEST(PipedTool, KeepsNulsAndBytesAbove127) {
  const std::string text("a\0\xFF\r\n", 5);
  EXPECT_EQ(ReadThroughPipe(text, 30720).output, text);
}

TEST(PipedTool, GivesNothingForAToolThatPrintsNothing) {
  EXPECT_EQ(ReadThroughPipe("", 30720).output, "");
  EXPECT_THAT(ReadThroughPipe("", 30720).chunks, IsEmpty());
}

TEST(PipedTool, GoesOnAfterAReadThatBroughtNothing) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  int reads = 0;
  machine.onRead = [&](char* buffer, std::size_t /*size*/, std::size_t& count) {
    ++reads;
    count = reads == 2 ? 1 : 0;
    buffer[0] = 'x';
    return reads < 4;
  };
  PipedTool tool("/c tool");
  ASSERT_TRUE(tool.OpenPipe());
  ASSERT_EQ(tool.Start(), 0u);
  EXPECT_EQ(tool.Collect(30720, [](const char*, std::size_t) {}), "x");
  EXPECT_EQ(reads, 4);
  tool.Finish();
}

TEST(PipedTool, DropsWhatARunawayToolPrintsBehind64MiB) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  constexpr std::size_t kPrinted = (std::size_t{64} << 20) + 100000;
  std::size_t left = kPrinted;
  machine.onRead = [&](char* buffer, std::size_t size, std::size_t& count) {
    count = std::min(size, left);
    std::memset(buffer, 'x', count);
    left -= count;
    return count > 0;
  };
  PipedTool tool("/c tool");
  ASSERT_TRUE(tool.OpenPipe());
  ASSERT_EQ(tool.Start(), 0u);
  std::size_t shown = 0;
  const std::string output =
      tool.Collect(1 << 20, [&](const char* /*chunk*/, std::size_t count) { shown += count; });
  tool.Finish();
  EXPECT_EQ(output.size(), std::size_t{64} << 20);
  EXPECT_EQ(shown, kPrinted);
}

TEST(PipedTool, ClosesTheWriteEndRightAfterTheStart) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  PipedTool tool("/c arp.exe -a");
  ASSERT_TRUE(tool.OpenPipe());
  ASSERT_EQ(tool.Start(), 0u);
  EXPECT_THAT(machine.calls,
              ElementsAre("start /c arp.exe -a, inheriting, piped", "close write end"));
}

TEST(PipedTool, FinishesByClosingTheReadEndBeforeItWaits) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  PipedTool tool("/c arp.exe -a");
  ASSERT_TRUE(tool.OpenPipe());
  ASSERT_EQ(tool.Start(), 0u);
  machine.calls.clear();
  tool.Finish();
  EXPECT_THAT(machine.calls, ElementsAre("close read end", "wait", "close process"));
}

TEST(PipedTool, LeavesAnAbandonedToolOpen) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  PipedTool tool("/c arp.exe -a");
  ASSERT_TRUE(tool.OpenPipe());
  ASSERT_EQ(tool.Start(), 0u);
  machine.calls.clear();
  tool.Abandon();
  EXPECT_THAT(machine.calls, ElementsAre("close read end"));
  EXPECT_EQ(machine.OpenProcesses(), 1u);
}

TEST(PipedTool, ClosesBothEndsAfterAFailedStart) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  machine.startError = 5;
  {
    PipedTool tool("/c arp.exe -a");
    ASSERT_TRUE(tool.OpenPipe());
    machine.calls.clear();
    EXPECT_EQ(tool.Start(), 5u);
  }
  EXPECT_THAT(machine.calls, ElementsAre("start /c arp.exe -a, inheriting, piped",
                                         "close write end", "close read end"));
}

TEST(PipedTool, StartsNothingWithoutAPipe) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  machine.pipeError = 1450;
  PipedTool tool("/c arp.exe -a");
  EXPECT_FALSE(tool.OpenPipe());
  EXPECT_THAT(machine.calls, IsEmpty());
}

TEST(PipedTool, StartsACommandLineOf255Characters) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  PipedTool tool("/c " + std::string(252, 'x'));
  ASSERT_TRUE(tool.OpenPipe());
  EXPECT_EQ(tool.Start(), 0u);
  tool.Finish();
}

TEST(PipedTool, NeverStartsACommandLineThatDoesNotFit) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  {
    PipedTool tool("/c " + std::string(253, 'x'));
    ASSERT_TRUE(tool.OpenPipe());
    EXPECT_EQ(tool.Start(), 206u);
    EXPECT_THAT(machine.calls, IsEmpty());
  }
  EXPECT_THAT(machine.calls, ElementsAre("close write end", "close read end"));
}

/// A text file that holds `text`.
class StoredText final : public TextFile {
 public:
  explicit StoredText(std::string text) : text(std::move(text)) {}
  bool ReadLine(char* buffer, std::size_t size) override {
    if (at == text.size()) return false;
    const std::size_t lineEnd = std::min(text.find('\n', at), text.size() - 1) + 1;
    const std::size_t count = text.copy(buffer, std::min(lineEnd - at, size - 1), at);
    buffer[count] = '\0';
    at += count;
    return true;
  }
  void Rewind() override { at = 0; }
  std::uint64_t SizeAndRewind() override {
    at = 0;
    return text.size();
  }

 private:
  std::string text;
  std::size_t at = 0;
};

/// The lines of `text` as a LineReader gives them.
std::vector<std::string> LinesOf(const std::string& text) {
  StoredText file(text);
  LineReader reader(&file);
  std::vector<std::string> lines;
  std::string_view line;
  while (reader.Next(line)) lines.emplace_back(line);
  return lines;
}

TEST(LineReader, GivesLinesWithTheirLineFeeds) {
  EXPECT_THAT(LinesOf("one\n\ntwo\n"), ElementsAre("one\n", "\n", "two\n"));
}

TEST(LineReader, GivesALastLineWithoutLineFeed) {
  EXPECT_THAT(LinesOf("one\ntwo"), ElementsAre("one\n", "two"));
}

TEST(LineReader, GivesLongLinesInPiecesOf511Characters) {
  EXPECT_THAT(LinesOf(std::string(511, 'x') + "\nb\n"),
              ElementsAre(std::string(511, 'x'), "\n", "b\n"));
  EXPECT_THAT(LinesOf(std::string(510, 'x') + "\nb\n"),
              ElementsAre(std::string(510, 'x') + "\n", "b\n"));
}

TEST(LineReader, EndsALineAtItsFirstNul) {
  EXPECT_THAT(LinesOf(std::string("ab\0cd\nef\n", 9)), ElementsAre("ab", "ef\n"));
}

TEST(LineReader, HasNoLinesWithoutAFile) {
  LineReader reader(nullptr);
  EXPECT_EQ(reader.Next(), nullptr);
}

}  // namespace
}  // namespace pq
