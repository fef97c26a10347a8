#include "tests/support/fake_platform.h"

#include <utility>

namespace test {

class FakePlatform::FakePipe final : public pq::Pipe {
 public:
  FakePipe(FakePlatform& machine, std::unique_ptr<pq::Pipe> answering)
      : machine(machine), answering(std::move(answering)) {}
  ~FakePipe() override {
    if (isWriteEndOpen) FakePipe::CloseWriteEnd();
    machine.calls.push_back("close read end");
  }
  void CloseWriteEnd() override {
    machine.calls.push_back("close write end");
    isWriteEndOpen = false;
    if (answering) answering->CloseWriteEnd();
  }
  bool Read(char* buffer, std::size_t size, std::size_t& count) override {
    if (answering) return answering->Read(buffer, size, count);
    return machine.onRead && machine.onRead(buffer, size, count);
  }
  pq::Pipe* Answering() const { return answering.get(); }

 private:
  FakePlatform& machine;
  std::unique_ptr<pq::Pipe> answering;
  bool isWriteEndOpen = true;
};

class FakePlatform::FakeProcess final : public pq::Process {
 public:
  FakeProcess(FakePlatform& machine, std::unique_ptr<pq::Process> answering)
      : machine(machine), answering(std::move(answering)) {
    machine.open.insert(this);
  }
  ~FakeProcess() override {
    machine.open.erase(this);
    machine.calls.push_back("close process");
  }
  void Wait() override {
    machine.calls.push_back("wait");
    if (answering) answering->Wait();
  }
  std::uint32_t ReadExitCode(std::uint32_t& exitCode) override {
    machine.calls.push_back("read exit code");
    if (answering) return answering->ReadExitCode(exitCode);
    if (machine.exitCodeError == 0) exitCode = machine.exitCode;
    return machine.exitCodeError;
  }

 private:
  FakePlatform& machine;
  std::unique_ptr<pq::Process> answering;
};

/// A file of the machine that gives the answers.
class FakePlatform::FakeFile final : public pq::TextFile {
 public:
  FakeFile(FakePlatform& machine, std::unique_ptr<pq::TextFile> answering)
      : machine(machine), answering(std::move(answering)) {
    machine.openFiles.insert(this);
  }
  ~FakeFile() override {
    machine.openFiles.erase(this);
    machine.calls.push_back("close file");
  }
  bool ReadLine(char* buffer, std::size_t size) override {
    return answering->ReadLine(buffer, size);
  }
  void Rewind() override { answering->Rewind(); }
  std::uint64_t SizeAndRewind() override { return answering->SizeAndRewind(); }

 private:
  FakePlatform& machine;
  std::unique_ptr<pq::TextFile> answering;
};

FakePlatform::FakePlatform() = default;

FakePlatform::~FakePlatform() {
  while (!open.empty()) delete *open.begin();
  while (!openFiles.empty()) delete *openFiles.begin();
}

std::string FakePlatform::HostExecutable() {
  return answering != nullptr ? answering->HostExecutable() : hostExecutable;
}
std::uint32_t FakePlatform::SystemLanguage() {
  return answering != nullptr ? answering->SystemLanguage() : pq::kUsEnglish;
}
bool FakePlatform::PathExists(const std::string& path) {
  return answering != nullptr && answering->PathExists(path);
}

pq::Acquired<pq::Pipe> FakePlatform::CreatePipe(const std::string& commandLine) {
  pq::Acquired<pq::Pipe> pipe{nullptr, pipeError};
  if (answering != nullptr) pipe = answering->CreatePipe(commandLine);
  if (pipe.error != 0) return pipe;
  return {std::make_unique<FakePipe>(*this, std::move(pipe.object)), 0};
}

pq::Acquired<pq::Process> FakePlatform::StartInterpreter(const std::string& commandLine,
                                                         bool inheritHandles, pq::Pipe* output) {
  calls.push_back("start " + commandLine + (inheritHandles ? ", inheriting" : "") +
                  (output != nullptr ? ", piped" : ""));
  pq::Acquired<pq::Process> process{nullptr, startError};
  if (answering != nullptr) {
    pq::Pipe* pipe = output != nullptr ? static_cast<FakePipe*>(output)->Answering() : nullptr;
    process = answering->StartInterpreter(commandLine, inheritHandles, pipe);
  }
  if (process.error != 0) return process;
  return {std::make_unique<FakeProcess>(*this, std::move(process.object)), 0};
}

void FakePlatform::RunSystem(const std::string& command) {
  calls.push_back("system " + command);
  if (answering != nullptr) answering->RunSystem(command);
}

std::unique_ptr<pq::TextFile> FakePlatform::OpenText(const std::string& path) {
  calls.push_back("open " + path);
  auto file = answering != nullptr ? answering->OpenText(path) : nullptr;
  if (!file) return nullptr;
  return std::make_unique<FakeFile>(*this, std::move(file));
}

void FakePlatform::WriteConsole(std::string_view text) {
  calls.push_back("console " + std::string(text));
}

pq::ConsoleLine FakePlatform::ReadConsoleLine(char* buffer, std::size_t size) {
  if (answering != nullptr) return answering->ReadConsoleLine(buffer, size);
  if (size > 0) buffer[0] = '\0';
  return pq::ConsoleLine::kRead;
}

void FakePlatform::FailRangeCheck() { throw RangeCheckFailed(); }

}  // namespace test
