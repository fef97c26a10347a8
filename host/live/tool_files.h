// Where programs are installed on this machine, and what their files tell of themselves. Elsewhere
// than on Windows nothing is known of either.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host {

/// The folders that programs are usually installed in: those that the system's list of programs
/// names, then the system's own for programs. Folders that are not there may be among them.
std::vector<std::filesystem::path> ListInstallFolders();

/// Those of PATH, in its order; relative ones are left out.
std::vector<std::filesystem::path> ListPathFolders();

struct FileOrigin {
  std::string version;  ///< "7.2.0.1"; empty: it has none
  /// UTF-8: the name in the certificate that the file carries, which says nothing of whether the
  /// signature holds; empty: it is not signed.
  std::string signer;
};

FileOrigin ReadOrigin(const std::filesystem::path& file);

}  // namespace host
