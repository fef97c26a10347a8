// The host's side of the logger.

#include "host/logger/logger.h"

#include <gmock/gmock.h>

#include <iomanip>
#include <ios>
#include <string>
#include <thread>
#include <vector>

#include "frame/logkit/log.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Keeps every line as long as it lives.
class KeptLog {
 public:
  std::vector<LogLine> lines;

 private:
  LogSinkInUse sink{[this](const LogLine& line) { lines.push_back(line); }};
};

/// What GetLogDir answers, and what it leaves in a buffer full of 'x'.
struct LogDir {
  explicit LogDir(std::size_t size) : buffer(300, 'x') {
    result = LogKit::GetLogDir(buffer.data(), size);
  }
  std::string Text() const { return buffer.substr(0, buffer.find('\0')); }

  std::string buffer;
  int result;
};

/// A path of `length` characters that ends with a backslash.
std::string PathOf(std::size_t length) { return "C:" + std::string(length - 3, 'p') + "\\"; }

TEST(LogSink, ThrowsNothingOutOfALineButAsksItBackLater) {
  LogSinkInUse sink([](const LogLine& line) { throw std::runtime_error(line.text); });
  LogKit::Log(3, "file", 1).Stream() << "first";
  LogKit::Log(3, "file", 2).Stream() << "second";
  EXPECT_THAT([&] { sink.RethrowFailure(); }, testing::ThrowsMessage<std::runtime_error>("first"));
  EXPECT_NO_THROW(sink.RethrowFailure());
}

TEST(LogSink, TakesNoLineThatWasCutForWantOfMemory) {
  int taken = 0;
  LogSinkInUse sink([&](const LogLine&) { ++taken; });
  {
    LogKit::Log log(3, "file", 1);
    log.Stream() << "begun";
    log.Stream().setstate(std::ios::badbit);  // as the stream itself does then
  }
  EXPECT_EQ(taken, 0);
  EXPECT_THROW(sink.RethrowFailure(), std::bad_alloc);
}

TEST(Log, IsWrittenWhenItIsDestroyed) {
  const KeptLog log;
  {
    LogKit::Log line(3, "pqmodules/rbmcinfo", 42);
    line.Stream() << "[repo] "
                  << "count " << 7;
    EXPECT_THAT(log.lines, IsEmpty());
  }
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_EQ(log.lines[0].level, 3U);
  EXPECT_EQ(log.lines[0].file, "pqmodules/rbmcinfo");
  EXPECT_EQ(log.lines[0].line, 42);
  EXPECT_EQ(log.lines[0].text, "[repo] count 7");
}

TEST(Log, IsWrittenAlsoWhenNothingWasStreamed) {
  const KeptLog log;
  { const LogKit::Log line(1, "f", 1); }
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_EQ(log.lines[0].text, "");
}

TEST(Log, FindsItsStreamAsIfNoLineHadBeenBefore) {
  const KeptLog log;
  LogKit::Log(3, "f", 1).Stream() << std::hex << std::setfill('.') << std::setprecision(1) << 255
                                  << std::setw(9);
  LogKit::Log(3, "f", 2).Stream() << 255 << ' ' << 1.5 << std::setw(4) << 7;
  EXPECT_EQ(log.lines.at(1).text, "255 1.5   7");
}

TEST(Log, MayBeWrittenWhileAnotherOneIsPutTogetherOrTaken) {
  std::vector<std::string> texts;
  LogSinkInUse sink([&](const LogLine& line) {
    if (line.line == 1) LogKit::Log(3, "f", 3).Stream() << "while taken";
    texts.push_back(line.text);
  });
  {
    LogKit::Log outer(3, "f", 1);
    outer.Stream() << "outer";
    LogKit::Log(3, "f", 2).Stream() << "inner";
    outer.Stream() << " goes on";
  }
  EXPECT_THAT(texts, ElementsAre("inner", "while taken", "outer goes on"));
}

TEST(Log, KeepsBytesAsTheyAre) {
  const KeptLog log;
  LogKit::Log(4, "f", 1).Stream() << "a\x81\n\r\xff";
  EXPECT_EQ(log.lines.at(0).text, "a\x81\n\r\xff");
}

TEST(Log, GoesNowhereWithoutASink) {
  std::vector<std::string> seen;
  {
    const LogSinkInUse sink([&](const LogLine& line) { seen.push_back(line.text); });
    LogKit::Log(3, "f", 1).Stream() << "one";
  }
  LogKit::Log(3, "f", 1).Stream() << "two";
  EXPECT_THAT(seen, ElementsAre("one"));
}

TEST(LogFolder, IsGivenWithItsLength) {
  const LogFolderInUse folder("C:\\Halyard\\logs\\");
  const LogDir dir(256);
  EXPECT_EQ(dir.result, 16);
  EXPECT_EQ(dir.Text(), "C:\\Halyard\\logs\\");
}

TEST(LogFolder, GetsTheBackslashThatIsMissing) {
  const LogFolderInUse folder("C:\\logs");
  EXPECT_EQ(LogDir(256).Text(), "C:\\logs\\");
}

TEST(LogFolder, FitsWithItsTerminator) {
  const LogFolderInUse folder(PathOf(255));
  const LogDir dir(256);
  EXPECT_EQ(dir.result, 255);
  EXPECT_EQ(dir.Text(), PathOf(255));
}

TEST(LogFolder, LeavesAnEmptyTextWhenItDoesNotFit) {
  const LogFolderInUse folder(PathOf(256));
  const LogDir dir(256);
  EXPECT_EQ(dir.result, -1);
  EXPECT_EQ(dir.Text(), "");
  EXPECT_EQ(dir.buffer.substr(1, 10), "xxxxxxxxxx");
}

TEST(LogFolder, IsTheInnermostOneAndThenTheOneBefore) {
  const LogFolderInUse outer("C:\\outer\\");
  {
    const LogFolderInUse inner("C:\\inner\\");
    EXPECT_EQ(LogDir(256).Text(), "C:\\inner\\");
  }
  EXPECT_EQ(LogDir(256).Text(), "C:\\outer\\");
}

TEST(LogFolder, IsTheThreadsOwn) {
  const LogFolderInUse folder("C:\\logs\\");
  std::string elsewhere = "unset";
  std::thread([&] { elsewhere = LogDir(256).Text(); }).join();
  EXPECT_EQ(elsewhere, "");
}

TEST(Log, GoesToTheSinkOfItsThread) {
  const KeptLog log;
  std::thread([] { LogKit::Log(3, "f", 1).Stream() << "elsewhere"; }).join();
  EXPECT_THAT(log.lines, IsEmpty());
}

TEST(LogFolder, WritesNothingIntoABufferWithoutRoom) {
  const LogFolderInUse folder("C:\\logs\\");
  const LogDir dir(0);
  EXPECT_EQ(dir.result, -1);
  EXPECT_EQ(dir.buffer[0], 'x');
}

}  // namespace
}  // namespace host
