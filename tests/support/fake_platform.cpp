#include "tests/support/fake_platform.h"

namespace test {

class FakePlatform::FakePipe final : public pq::Pipe {
 public:
  explicit FakePipe(FakePlatform& machine) : machine(machine) {}
  ~FakePipe() override { machine.calls.push_back("close read end"); }
  void CloseWriteEnd() override { machine.calls.push_back("close write end"); }
  bool Read(char* buffer, std::size_t size, std::size_t& count) override {
    return machine.onRead && machine.onRead(buffer, size, count);
  }

 private:
  FakePlatform& machine;
};

class FakePlatform::FakeProcess final : public pq::Process {
 public:
  explicit FakeProcess(FakePlatform& machine) : machine(machine) { machine.open.insert(this); }
  ~FakeProcess() override {
    machine.open.erase(this);
    machine.calls.push_back("close process");
  }
  void Wait() override { machine.calls.push_back("wait"); }
  std::uint32_t ReadExitCode(std::uint32_t& exitCode) override {
    machine.calls.push_back("read exit code");
    if (machine.exitCodeError == 0) exitCode = machine.exitCode;
    return machine.exitCodeError;
  }

 private:
  FakePlatform& machine;
};

FakePlatform::FakePlatform() = default;

FakePlatform::~FakePlatform() {
  while (!open.empty()) delete *open.begin();
}

std::string FakePlatform::HostExecutable() { return hostExecutable; }
std::uint32_t FakePlatform::SystemLanguage() { return pq::kUsEnglish; }
bool FakePlatform::PathExists(const std::string& /*path*/) { return false; }

pq::Acquired<pq::Pipe> FakePlatform::CreatePipe(const std::string& /*commandLine*/) {
  if (pipeError != 0) return {nullptr, pipeError};
  return {std::make_unique<FakePipe>(*this), 0};
}

pq::Acquired<pq::Process> FakePlatform::StartInterpreter(const std::string& commandLine,
                                                         bool inheritHandles, pq::Pipe* output) {
  calls.push_back("start " + commandLine + (inheritHandles ? ", inheriting" : "") +
                  (output != nullptr ? ", piped" : ""));
  if (startError != 0) return {nullptr, startError};
  return {std::make_unique<FakeProcess>(*this), 0};
}

void FakePlatform::RunSystem(const std::string& command) { calls.push_back("system " + command); }

std::unique_ptr<pq::TextFile> FakePlatform::OpenText(const std::string& path) {
  calls.push_back("open " + path);
  return nullptr;
}

void FakePlatform::WriteConsole(std::string_view text) {
  calls.push_back("console " + std::string(text));
}

pq::ConsoleLine FakePlatform::ReadConsoleLine(char* buffer, std::size_t size) {
  if (size > 0) buffer[0] = '\0';
  return pq::ConsoleLine::kRead;
}

void FakePlatform::FailRangeCheck() { throw RangeCheckFailed(); }

}  // namespace test
