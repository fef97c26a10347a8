// A recording as the machine: tools answer from it, the interpreter's own commands work on
// its files.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "frame/platform.h"
#include "host/recorded/machine_observer.h"
#include "host/recorded/recording.h"

namespace host {

class RecordedMachine final : public pq::Platform {
 public:
  /// Shares the texts of `recording` and refers to `observer` (may be null) as long as it lives.
  explicit RecordedMachine(const Recording& recording, MachineObserver* observer = nullptr);
  ~RecordedMachine() override;

  /// Once `isEnding` answers true, no command runs any more: a start and a pipe fail with
  /// kErrorCancelled.
  void EndWhen(std::function<bool()> isEnding);

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

  /// Whether the machine has every program of a command line: one of the interpreter's own, or one
  /// that is recorded with these arguments.
  bool HasPrograms(const std::string& commandLine) const;
  /// The files that are on the machine now, by their path as it was first written.
  std::map<std::string, Bytes> Files() const;
  /// Size in bytes of the file `path`, if it is there.
  std::optional<std::uint64_t> FileSize(const std::string& path) const;
  /// Whether the file `path` was recorded, and no command has written it since.
  bool HasFileFromBefore(const std::string& path) const;
  /// Processes, pipes and files that are open at this moment.
  int OpenHandles() const;

 private:
  struct State;
  std::unique_ptr<State> state;
};

}  // namespace host
