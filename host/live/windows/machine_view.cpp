// A recorder's look-ups on this machine, with the narrow functions that the modules use too.

#include <windows.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <ratio>

#include "host/live/live.h"
#include "host/text/version.h"

namespace host {
namespace {

/// The system counts from 1601.
std::chrono::system_clock::time_point ToTime(const FILETIME& time) {
  using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
  constexpr Ticks kUntil1970(116'444'736'000'000'000);
  const Ticks since1601(
      static_cast<std::int64_t>((std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime));
  return std::chrono::system_clock::time_point(
      std::chrono::duration_cast<std::chrono::system_clock::duration>(since1601 - kUntil1970));
}

class LiveMachineView final : public MachineView {
 public:
  std::optional<std::string> ReadFile(const std::string& path) override {
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
  }

  std::optional<FileState> FindState(const std::string& path) override {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    const bool isFile = GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) != 0 &&
                        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    if (!isFile) return std::nullopt;
    return FileState{ToTime(data.ftLastWriteTime),
                     (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow};
  }

  std::vector<std::string> ListFiles(const std::string& folder) override {
    std::vector<std::string> files;
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((folder + "\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return files;
    do {
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
      files.push_back(folder + "\\" + found.cFileName);
    } while (FindNextFileA(search, &found));
    FindClose(search);
    return files;
  }

  bool HasProgram(const std::string& program) override {
    return LocateProgram(program).has_value();
  }
};

}  // namespace

std::unique_ptr<MachineView> ViewLiveMachine() { return std::make_unique<LiveMachineView>(); }

Recording DescribeLiveMachine(const LiveMachine& machine) {
  // Paths as the modules get them, maybe in another code page than the tools' output.
  std::array<char, MAX_PATH> executable{};
  const DWORD length =
      GetModuleFileNameA(nullptr, executable.data(), static_cast<DWORD>(executable.size()));

  Recording recording;
  recording.description = machine.facts.description + ", recorded by pqhost " + kVersion;
  recording.languageId = machine.facts.languageId;
  recording.codePage = machine.facts.codePage;
  recording.hostExecutable.assign(executable.data(), length);
  recording.logFolder = machine.logFolder;
  return recording;
}

}  // namespace host
