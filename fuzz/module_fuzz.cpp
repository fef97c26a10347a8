// Any module as a whole. The first byte chooses it, the second says which system language the
// machine has; the rest are answers, separated by 0x1E, which tools and files give in the order in
// which the module asks: what comes through a pipe, what a file holds, what the operator types. An
// answer that begins with 0x1F is a failure instead: no start, no pipe, no file. The first byte of
// an answer is also the exit code of a tool of which nothing else is read.
//
// Whatever is printed, each run goes to its end, releases every instance that it built, and leaves
// nothing open but where the module does so on purpose.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "frame/platform.h"
#include "fuzz/checks.h"
#include "host/collect/collect.h"
#include "host/recorded/stored_text.h"
#include "host/repository/observer.h"

namespace {

using fuzz::Require;

/// The answers of an input, one after another; empty ones when there are no more.
class Answers {
 public:
  explicit Answers(std::string_view rest) : rest(rest) {}
  std::string_view Next() {
    const std::size_t end = std::min(rest.find('\x1E'), rest.size());
    const std::string_view answer = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return answer;
  }

 private:
  std::string_view rest;
};

bool IsFailure(std::string_view answer) { return answer.starts_with('\x1F'); }

/// Counts the objects of one kind that nobody has destroyed, and destroys them in the end.
template <typename Base>
class OpenObjects {
 public:
  OpenObjects() = default;
  OpenObjects(const OpenObjects&) = delete;
  OpenObjects& operator=(const OpenObjects&) = delete;
  ~OpenObjects() {
    while (!open.empty()) delete *open.begin();
  }
  void Add(Base* object) { open.insert(object); }
  void Remove(Base* object) { open.erase(object); }
  std::size_t Count() const { return open.size(); }

 private:
  std::set<Base*> open;
};

/// A machine that answers from the input.
class AnsweringMachine final : public pq::Platform {
 public:
  AnsweringMachine(std::string_view answers, std::uint32_t language)
      : answers(answers), language(language) {}

  std::size_t OpenPipes() const { return pipes.Count(); }
  std::size_t OpenProcesses() const { return processes.Count(); }
  std::size_t OpenFiles() const { return files.Count(); }

  std::string HostExecutable() override { return "C:\\Halyard\\halyard.exe"; }
  std::uint32_t SystemLanguage() override { return language; }
  bool PathExists(const std::string& path) override { return path.size() % 2 == 0; }

  pq::Acquired<pq::Pipe> CreatePipe(const std::string& /*commandLine*/) override {
    const std::string_view answer = answers.Next();
    if (IsFailure(answer)) return {nullptr, 1450};
    return {std::make_unique<AnsweringPipe>(pipes, answer), 0};
  }
  pq::Acquired<pq::Process> StartInterpreter(const std::string& commandLine,
                                             bool /*inheritHandles*/, pq::Pipe* output) override {
    Require(commandLine.starts_with("/c ") && commandLine.size() < 512);
    const std::string_view answer = output == nullptr ? answers.Next() : std::string_view();
    if (IsFailure(answer)) return {nullptr, 5};
    const std::uint32_t exitCode = answer.empty() ? 0 : static_cast<unsigned char>(answer[0]);
    return {std::make_unique<AnsweringProcess>(processes, exitCode), 0};
  }
  void RunSystem(const std::string& /*command*/) override {}
  std::unique_ptr<pq::TextFile> OpenText(const std::string& /*path*/) override {
    const std::string_view answer = answers.Next();
    if (IsFailure(answer)) return nullptr;
    return std::make_unique<AnsweringFile>(files, answer);
  }
  void WriteConsole(std::string_view /*text*/) override {}
  pq::ConsoleLine ReadConsoleLine(char* buffer, std::size_t size) override {
    const std::string_view answer = answers.Next();
    buffer[answer.copy(buffer, size - 1)] = '\0';
    return answer.size() < size ? pq::ConsoleLine::kRead : pq::ConsoleLine::kTooLong;
  }
  [[noreturn]] void FailRangeCheck() override { std::abort(); }

 private:
  class AnsweringPipe final : public pq::Pipe {
   public:
    AnsweringPipe(OpenObjects<pq::Pipe>& open, std::string_view text) : open(open), text(text) {
      open.Add(this);
    }
    ~AnsweringPipe() override { open.Remove(this); }
    void CloseWriteEnd() override { isWriteEndClosed = true; }
    bool Read(char* buffer, std::size_t size, std::size_t& count) override {
      Require(isWriteEndClosed);
      count = text.copy(buffer, size);
      text.remove_prefix(count);
      return count > 0;
    }

   private:
    OpenObjects<pq::Pipe>& open;
    std::string_view text;
    bool isWriteEndClosed = false;
  };

  class AnsweringProcess final : public pq::Process {
   public:
    AnsweringProcess(OpenObjects<pq::Process>& open, std::uint32_t exitCode)
        : open(open), exitCode(exitCode) {
      open.Add(this);
    }
    ~AnsweringProcess() override { open.Remove(this); }
    void Wait() override {}
    std::uint32_t ReadExitCode(std::uint32_t& code) override {
      code = exitCode;
      return 0;
    }

   private:
    OpenObjects<pq::Process>& open;
    std::uint32_t exitCode;
  };

  class AnsweringFile final : public pq::TextFile {
   public:
    AnsweringFile(OpenObjects<pq::TextFile>& open, std::string_view text)
        : open(open), stored(std::string(text)) {
      open.Add(this);
    }
    ~AnsweringFile() override { open.Remove(this); }
    bool ReadLine(char* buffer, std::size_t size) override { return stored.ReadLine(buffer, size); }
    void Rewind() override { stored.Rewind(); }
    std::uint64_t SizeAndRewind() override { return stored.SizeAndRewind(); }

   private:
    OpenObjects<pq::TextFile>& open;
    host::StoredText stored;
  };

  Answers answers;
  std::uint32_t language;
  OpenObjects<pq::Pipe> pipes;
  OpenObjects<pq::Process> processes;
  OpenObjects<pq::TextFile> files;
};

/// Holds what one run says and builds against the rules that all modules keep.
class RunWatcher final : public host::CollectionListener, public host::RepositoryObserver {
 public:
  host::RepositoryObserver* Calls() override { return this; }
  bool WantsLog() const override { return true; }
  void Enumerate(const std::string& /*module*/, const std::string& /*table*/) override {
    CheckLines();
    first.clear();
  }
  void Log(const host::LogLine& line) override {
    Require(line.level == 1 || line.level == 3 || line.level == 4);
    Require(line.text.starts_with("[repo] "));
    if (first.empty()) first = line.text;
    last = line.text;
  }
  void OnInstance(std::uint64_t /*id*/, const std::string& /*className*/,
                  const std::string& /*key*/, int number) override {
    Require(number == -1);
    ++alive;
  }
  void OnProperty(std::uint64_t /*id*/, const std::string& key, const std::string& /*label*/,
                  const std::string& value, bool flag) override {
    Require(!key.empty() && !flag && value.find('\0') == std::string::npos);
  }
  void OnRelease(std::uint64_t /*id*/) override { --alive; }

  /// An enumeration begins and ends with its module's own lines.
  void CheckLines() const {
    if (last.empty()) return;
    Require(first.starts_with("[repo] Enter Enum"));
    Require(last == "[repo] Exit" + first.substr(12));
  }
  long CountAlive() const { return alive; }

 private:
  std::string first;
  std::string last;
  long alive = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::vector<host::LoadedModule> modules = host::LoadLinkedModules();
  const std::string& name = modules[data[0] % modules.size()].name;
  AnsweringMachine machine({reinterpret_cast<const char*>(data) + 2, size - 2},
                           data[1] % 2 == 1 ? pq::kUsEnglish : 1031);
  host::MachineFacts facts;
  facts.logFolder = "C:\\Halyard\\logs\\";
  host::PlatformSource source(machine, facts);
  RunWatcher watcher;
  host::Collect(source, {{name}, {}}, watcher);
  watcher.CheckLines();
  Require(watcher.CountAlive() == 0);
  Require(machine.OpenPipes() == 0);
  // A BMC utility that cannot reach its controller is left alone, and so is the file in which the
  // RAID inventory looked for a controller count.
  if (name != "BMC_Info") Require(machine.OpenProcesses() == 0);
  Require(machine.OpenFiles() <= (name == "sampleModule1" ? 1 : 0));
  return 0;
}
