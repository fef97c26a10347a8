// The linked-in modules on a recorded machine.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/collect/source.h"
#include "host/recorded/recorded_machine.h"
#include "host/recorded/recording.h"

namespace host {

/// The facts that a recording gives about its machine.
MachineFacts DescribeRecording(const Recording& recording);

class RecordedSource final : public Source {
 public:
  /// Shares the texts of `recording`.
  explicit RecordedSource(Recording recording) : recording(std::move(recording)) {}

  void Begin(CollectionListener& listener) override;
  void AddModules(ModuleList& modules) override;
  pq::Platform* Machine() override { return &*machine; }
  MachineFacts Facts() override { return DescribeRecording(recording); }
  std::string LogFolder() override { return recording.logFolder; }
  bool HasPrograms(const std::string& commandLine) override;
  std::optional<std::uint64_t> LogFileSize(const std::string& fileName) override;
  std::optional<OldFile> FindOldFile(const std::string& path) override;
  std::vector<std::string> Doubts() override { return recording.doubts; }
  std::map<std::string, Bytes> Files() override { return machine->Files(); }

  /// Processes, pipes and files of the machine that are open now.
  int CountOpenHandles() const { return machine->OpenHandles(); }

 private:
  Recording recording;
  std::optional<RecordedMachine> machine;  ///< from Begin() on
};

}  // namespace host
