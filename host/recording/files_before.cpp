#include "host/recording/files_before.h"

#include "host/recorded/machine_files.h"
#include "host/recorded/recording.h"
#include "host/text/ascii.h"

namespace host {

FilesBefore::FilesBefore(MachineView& machine, const std::string& logFolder)
    : machine(machine), logFolder(logFolder) {
  for (const std::string& path : machine.ListFiles(logFolder)) {
    if (const auto state = machine.FindState(path)) states[MakeKey(path)] = *state;
  }
}

bool FilesBefore::IsLogFile(const std::string& path) const {
  return FolderOf(MakeKey(path)) == MakeKey(logFolder);
}

bool FilesBefore::IsUnchanged(const std::string& path) const {
  const auto before = states.find(MakeKey(path));
  return before != states.end() && machine.FindState(path) == before->second;
}

std::string FilesBefore::MakeKey(const std::string& path) const {
  Recording folders;
  folders.workingFolder = logFolder;
  return LowerCase(MachineFiles(folders).FullPath(path));
}

}  // namespace host
