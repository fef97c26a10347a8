#include "host/collect/recorded_source.h"

#include "frame/add_modules.h"
#include "host/text/decoder.h"

namespace host {

MachineFacts DescribeRecording(const Recording& recording) {
  MachineFacts facts;
  facts.recorded = true;
  facts.description = TextDecoder(kUtf8CodePage)(recording.description);
  facts.languageId = recording.languageId;
  facts.codePage = recording.codePage;
  facts.hostExecutable = recording.hostExecutable;
  facts.logFolder = recording.logFolder;
  facts.contentKey = recording.contentKey;
  if (const auto& submission = recording.submission) {
    facts.name = submission->name;
    facts.recordedAt = submission->recordedAt;
    facts.system = submission->system;
    facts.serials = submission->serials;
  }
  return facts;
}

void RecordedSource::Begin(CollectionListener& listener) {
  machine.emplace(recording, &listener);
  machine->EndWhen([&listener] { return listener.WantsEnd(); });
}

void RecordedSource::AddModules(ModuleList& modules) { ::AddModules(modules); }

bool RecordedSource::HasPrograms(const std::string& commandLine) {
  return machine->HasPrograms(commandLine);
}

std::optional<std::uint64_t> RecordedSource::LogFileSize(const std::string& fileName) {
  return machine->FileSize(recording.logFolder + fileName);
}

std::optional<OldFile> RecordedSource::FindOldFile(const std::string& path) {
  if (!machine->HasFileFromBefore(path)) return std::nullopt;
  return OldFile{};
}

void PlatformSource::AddModules(ModuleList& modules) { ::AddModules(modules); }

}  // namespace host
