#include "host/live/tool_files.h"

namespace host {

std::vector<std::filesystem::path> ListInstallFolders() { return {}; }

std::vector<std::filesystem::path> ListPathFolders() { return {}; }

FileOrigin ReadOrigin(const std::filesystem::path& /*file*/) { return {}; }

}  // namespace host
