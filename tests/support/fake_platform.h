// A machine whose every answer a test sets, and which lists every call in order.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "frame/platform.h"

namespace test {

/// Thrown where the real machine would end the process.
struct RangeCheckFailed {};

class FakePlatform : public pq::Platform {
 public:
  std::string hostExecutable = "C:\\Halyard\\halyard.exe";
  std::uint32_t pipeError = 0;
  std::uint32_t startError = 0;
  std::uint32_t exitCode = 0;
  std::uint32_t exitCodeError = 0;
  /// Answers a read of a pipe; none: every read fails.
  std::function<bool(char* buffer, std::size_t size, std::size_t& count)> onRead;
  /// A machine that gives all answers instead; null: those above.
  pq::Platform* answering = nullptr;
  /// Every call on the machine, its pipes, its processes and its files, such as "wait".
  std::vector<std::string> calls;

  FakePlatform();
  ~FakePlatform() override;
  /// Processes whose handles nobody closed.
  std::size_t OpenProcesses() const { return open.size(); }

  std::string HostExecutable() override;
  std::uint32_t SystemLanguage() override;
  bool PathExists(const std::string& path) override;
  pq::Acquired<pq::Pipe> CreatePipe(const std::string& commandLine) override;
  pq::Acquired<pq::Process> StartInterpreter(const std::string& commandLine, bool inheritHandles,
                                             pq::Pipe* output) override;
  void RunSystem(const std::string& command) override;
  std::unique_ptr<pq::TextFile> OpenText(const std::string& path) override;
  void WriteConsole(std::string_view text) override;
  pq::ConsoleLine ReadConsoleLine(char* buffer, std::size_t size) override;
  [[noreturn]] void FailRangeCheck() override;

 private:
  class FakePipe;
  class FakeProcess;
  class FakeFile;
  std::set<FakeProcess*> open;
  std::set<FakeFile*> openFiles;
};

}  // namespace test
