#include "host/redact/kept_names.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "host/recorded/machine_files.h"
#include "host/redact/recording_texts.h"
#include "host/text/ascii.h"

namespace host {

void KeepNames(const Recording& recording, ValueList& values) {
  const auto keepPath = [&](std::string_view path) {
    while (!path.empty()) {
      const std::size_t end = std::min(path.find('\\'), path.size());
      values.Keep(path.substr(0, end));
      path.remove_prefix(std::min(end + 1, path.size()));
    }
  };
  const auto keepMachinePath = [&](std::string_view path) {
    if (IsInLogFolder(path, recording.logFolder)) path.remove_prefix(recording.logFolder.size());
    keepPath(path);
  };
  for (const auto& [path, bytes] : recording.files) keepMachinePath(path);
  for (const std::string& path : recording.readOnly) keepMachinePath(path);
  values.Keep(FileNameOf(recording.hostExecutable));
  for (const RecordedCommand& command : recording.commands) {
    const std::string arguments = LowerCase(command.arguments);
    const std::string folder = LowerCase(recording.logFolder);
    for (std::size_t at = arguments.find(folder); at != std::string::npos;
         at = arguments.find(folder, at + 1)) {
      const std::size_t begin = at + folder.size();
      const std::size_t end = std::min(arguments.find_first_of("\" ", begin), arguments.size());
      keepPath(std::string_view(arguments).substr(begin, end - begin));
    }
  }
}

}  // namespace host
