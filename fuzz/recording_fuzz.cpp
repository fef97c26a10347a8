// A recording's folder. The input is recording.json; behind lines "%%" follow the contents of the
// files a, b/c and d.txt. Beside them lie a link that leads out of the folder, and a folder.
//
// Either one line says what is wrong, or there is a recording from which a machine is built that
// answers. Nothing outside the folder is ever read.
#include <unistd.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "fuzz/checks.h"
#include "host/recorded/recorded_machine.h"
#include "host/recording/recording_reader.h"

namespace {

using fuzz::Require;

constexpr std::string_view kSeparator = "\n%%\n";
constexpr std::string_view kSecret = "nobody may read this";
constexpr std::array<const char*, 4> kNames = {"recording.json", "a", "b/c", "d.txt"};

void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<long>(bytes.size()));
}

/// The folder that every input is laid out in; gone at the end.
class RecordedFolder {
 public:
  RecordedFolder() {
    const std::filesystem::path memory = "/dev/shm";
    const bool hasMemory = std::filesystem::is_directory(memory);
    top = (hasMemory ? memory : std::filesystem::temp_directory_path()) /
          ("recording_fuzz_" + std::to_string(getpid()));
    std::filesystem::create_directories(Path() / "b");
    WriteFile(top / "secret", kSecret);
    std::filesystem::create_symlink("../secret", Path() / "out");
  }
  RecordedFolder(const RecordedFolder&) = delete;
  RecordedFolder& operator=(const RecordedFolder&) = delete;
  ~RecordedFolder() {
    std::error_code error;
    std::filesystem::remove_all(top, error);
  }

  std::filesystem::path Path() const { return top / "recording"; }

  void LayOut(std::string_view input) const {
    for (const char* name : kNames) {
      const std::size_t end = std::min(input.find(kSeparator), input.size());
      WriteFile(Path() / name, input.substr(0, end));
      input.remove_prefix(std::min(end + kSeparator.size(), input.size()));
    }
  }

 private:
  std::filesystem::path top;
};

void CheckComplaint(const std::string& complaint) {
  Require(complaint.size() > 10);
  for (const char c : complaint) Require(c >= ' ' && c <= '~');
}

/// Runs every recorded command once through a pipe and once to a file.
void CheckMachine(const host::Recording& recording) {
  for (const auto& [path, bytes] : recording.files)
    Require(bytes.Text().find(kSecret) == std::string::npos);
  host::RecordedMachine machine(recording);
  Require(machine.HostExecutable().size() <= 259);
  for (const auto& [path, bytes] : recording.files) {
    const auto file = machine.OpenText(path);
    if (file != nullptr) Require(file->SizeAndRewind() == bytes.size());
  }
  char buffer[32];
  for (int line = 0; line < 3; ++line) machine.ReadConsoleLine(buffer, sizeof(buffer));
  for (const host::RecordedCommand& command : recording.commands) {
    const std::string line = "/c " + command.tool + " " + command.arguments;
    if (const auto pipe = machine.CreatePipe(line)) {
      const auto process = machine.StartInterpreter(line, true, pipe.object.get());
      pipe.object->CloseWriteEnd();
      std::size_t count = 0;
      while (pipe.object->Read(buffer, sizeof(buffer), count)) Require(count <= sizeof(buffer));
    }
    if (const auto process = machine.StartInterpreter(line + " > out.txt", false, nullptr)) {
      std::uint32_t exitCode = 0;
      process.object->ReadExitCode(exitCode);
    }
  }
  Require(machine.OpenHandles() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const RecordedFolder folder;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  if (input.find(kSecret) != std::string_view::npos) return 0;
  folder.LayOut(input);
  try {
    CheckMachine(host::LoadRecording(folder.Path()));
  } catch (const host::RecordingError& error) {
    CheckComplaint(error.what());
  }
  return 0;
}
