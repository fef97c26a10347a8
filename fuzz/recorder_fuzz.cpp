// A collection that is recorded, written, read and collected again. The first byte chooses a
// sample, the second one of its commands; the rest are answers, separated by 0x1E, that this
// command and the ones after it give in place of their own.
//
// Whatever the tools print, both collections do the same, and reading it back loses no byte.
#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/checks.h"
#include "host/collect/collect.h"
#include "host/collect/recorded_source.h"
#include "host/collect/trace.h"
#include "host/files/whole_file.h"
#include "host/recorded/handed_out.h"
#include "host/recorded/machine_files.h"
#include "host/recorded/own_commands.h"
#include "host/recording/recorder.h"
#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "host/secrets/amt_login.h"
#include "host/text/ascii.h"
#include "tests/support/samples.h"
#include "tests/support/temporary_folder.h"

namespace {

using fuzz::Require;

/// A recorded machine that tells a recorder what is asked of it, as the live one does.
class WatchedMachine final : public pq::Platform, public host::MachineView {
 public:
  explicit WatchedMachine(const host::Recording& recording)
      : machine(recording), files(recording), recorder(KeepFacts(recording), *this) {
    for (const host::RecordedCommand& command : recording.commands) {
      programs.insert(host::ToolName(command.tool));
    }
  }

  host::Recording TakeRecording() { return recorder.Take(); }

  std::string HostExecutable() override { return machine.HostExecutable(); }
  std::uint32_t SystemLanguage() override { return machine.SystemLanguage(); }
  bool PathExists(const std::string& path) override {
    const bool exists = machine.PathExists(path);
    if (exists) recorder.KeepTested(path);
    return exists;
  }
  pq::Acquired<pq::Pipe> CreatePipe(const std::string& commandLine) override {
    auto pipe = machine.CreatePipe(commandLine);
    Require(pipe.object != nullptr);
    return {std::make_unique<WatchedPipe>(std::move(pipe.object), recorder), 0};
  }
  pq::Acquired<pq::Process> StartInterpreter(const std::string& commandLine, bool inheritHandles,
                                             pq::Pipe* output) override {
    recorder.BeginRun(commandLine, output != nullptr);
    pq::Pipe* own = output == nullptr ? nullptr : static_cast<WatchedPipe*>(output)->pipe.get();
    auto process = machine.StartInterpreter(commandLine, inheritHandles, own);
    if (process.object != nullptr) {
      return {std::make_unique<WatchedProcess>(std::move(process.object), recorder, handedOut), 0};
    }
    recorder.FailRun(process.error);
    return {nullptr, process.error};
  }
  void RunSystem(const std::string& command) override {
    recorder.BeginRun("/c " + command, /*isPiped=*/false);
    machine.RunSystem(command);
    recorder.EndRun(0);
  }
  std::unique_ptr<pq::TextFile> OpenText(const std::string& path) override {
    recorder.KeepOpened(path);
    return machine.OpenText(path);
  }
  void WriteConsole(std::string_view text) override { machine.WriteConsole(text); }
  pq::ConsoleLine ReadConsoleLine(char* buffer, std::size_t size) override {
    const pq::ConsoleLine line = machine.ReadConsoleLine(buffer, size);
    recorder.AddTyped(std::string(buffer) + "\n");
    return line;
  }
  [[noreturn]] void FailRangeCheck() override { machine.FailRangeCheck(); }

  std::optional<std::string> ReadFile(const std::string& path) override {
    const std::string wanted = host::LowerCase(files.FullPath(path));
    for (const auto& [name, bytes] : machine.Files()) {
      if (host::LowerCase(name) == wanted) return std::string(bytes.Text());
    }
    return std::nullopt;
  }
  std::optional<host::FileState> FindState(const std::string& path) override {
    const std::optional<std::string> bytes = ReadFile(path);
    if (!bytes) return std::nullopt;
    const std::chrono::seconds written(machine.HasFileFromBefore(path) ? 0 : 1);
    return host::FileState{std::chrono::system_clock::time_point(written), bytes->size()};
  }
  std::vector<std::string> ListFiles(const std::string& folder) override {
    const std::string wanted = host::LowerCase(files.FullPath(folder));
    std::vector<std::string> names;
    for (const auto& [name, bytes] : machine.Files()) {
      if (host::LowerCase(host::FolderOf(name)) == wanted) names.push_back(name);
    }
    return names;
  }
  bool HasProgram(const std::string& program) override {
    return programs.contains(host::ToolName(program));
  }

 private:
  struct WatchedPipe final : pq::Pipe {
    WatchedPipe(std::unique_ptr<pq::Pipe> pipe, host::Recorder& recorder)
        : pipe(std::move(pipe)), recorder(recorder) {}
    void CloseWriteEnd() override { pipe->CloseWriteEnd(); }
    bool Read(char* buffer, std::size_t size, std::size_t& count) override {
      const bool hasRead = pipe->Read(buffer, size, count);
      if (hasRead) recorder.AddOutput({buffer, count});
      return hasRead;
    }
    std::unique_ptr<pq::Pipe> pipe;
    host::Recorder& recorder;
  };
  struct WatchedProcess final : pq::Process, private host::HandedOut {
    WatchedProcess(std::unique_ptr<pq::Process> process, host::Recorder& recorder,
                   host::HandedOutList& open)
        : HandedOut(open), process(std::move(process)), recorder(recorder) {}
    void Wait() override {
      process->Wait();
      std::uint32_t exitCode = 0;
      process->ReadExitCode(exitCode);
      recorder.EndRun(exitCode);
    }
    std::uint32_t ReadExitCode(std::uint32_t& code) override { return process->ReadExitCode(code); }
    std::unique_ptr<pq::Process> process;
    host::Recorder& recorder;
  };

  static host::Recording KeepFacts(host::Recording recording) {
    recording.commands.clear();
    recording.files.clear();
    recording.readOnly.clear();
    recording.console.clear();
    return recording;
  }

  host::RecordedMachine machine;
  host::MachineFiles files;  ///< only spells paths in full
  host::Recorder recorder;
  std::set<std::string> programs;
  host::HandedOutList handedOut;
};

/// A trace as of a live machine, which shows nobody the password.
struct LiveTrace final : host::TraceWriter {
  using TraceWriter::TraceWriter;
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override {
    TraceWriter::OnProcess(application, host::HidePassword(commandLine), inheritHandles, pipe);
  }
};

/// A trace without what tools write to the console, which no recording tells from the rest.
std::string CollectFrom(pq::Platform& machine, const host::Recording& recording) {
  std::ostringstream text;
  LiveTrace trace(text);
  host::PlatformSource source(machine, host::DescribeRecording(recording));
  host::Collect(source, {}, trace);
  return std::move(text).str();
}

/// A sample that answers from the input.
host::Recording MakeRecordedMachine(std::string_view input) {
  static const std::map<std::string, host::Recording> kSamples = test::LoadSamples();
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(input[i]); };
  host::Recording recording =
      std::next(kSamples.begin(), static_cast<long>(byteAt(0) % kSamples.size()))->second;
  std::size_t at = recording.commands.empty() ? 0 : byteAt(1) % recording.commands.size();
  for (const std::string_view answer : fuzz::Split(input.substr(2), '\x1E')) {
    if (at >= recording.commands.size()) break;
    recording.commands[at++].standardOutput = std::string(answer);
  }
  // What the operating system refuses to give is not told to a recorder.
  for (host::RecordedCommand& command : recording.commands) {
    command.pipeError = command.exitCodeError = 0;
  }
  return recording;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const test::TemporaryFolder kFolder;
  if (size < 2) return 0;
  const host::Recording machine = MakeRecordedMachine(fuzz::InputText(data, size));
  WatchedMachine watched(machine);
  const std::string first = CollectFrom(watched, machine);
  const host::Recording recorded = watched.TakeRecording();

  const std::filesystem::path folder = kFolder.Path() / "recording";
  std::filesystem::remove_all(folder);
  host::CreateEmptyFolder(folder, "--record");
  host::WriteRecording(recorded, folder);
  const host::Recording read = host::LoadRecording(folder);
  Require(read.commands == recorded.commands && read.files == recorded.files &&
          read.readOnly == recorded.readOnly && read.console == recorded.console);
  host::RecordedMachine again(read);
  Require(CollectFrom(again, read) == first);
  return 0;
}
