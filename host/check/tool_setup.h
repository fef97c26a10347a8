// Where the vendors' tools that a collection runs may be found on a machine, and which place below
// the host's folder each belongs to.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/check/machine_check.h"

namespace host {

/// A tool that has a place below the host's folder.
struct ToolPlace {
  CheckedTool tool;
  std::filesystem::path place;
  bool isThere = false;
  /// Files that could be put there, in the order in which they were found.
  std::vector<std::filesystem::path> found = {};
};

/// The tools of `check` below `hostFolder`, each once, in its order.
std::vector<ToolPlace> ListToolPlaces(const MachineCheck& check,
                                      const std::filesystem::path& hostFolder);

/// Whether a vendor delivers the tool `program` in a file of this name. Both are without folders.
bool IsFileOf(std::string_view program, std::string_view fileName);

struct SearchLimits {
  int depth = 5;                  ///< folders within folders
  std::size_t entries = 200'000;  ///< files and folders of each folder that is searched
};

/// Looks in the folders, and in those within them, for files that could be put into empty places.
/// Each file is found once. Links are not followed; what cannot be read or is beyond `limits` is
/// passed over.
void FindTools(const std::vector<std::filesystem::path>& folders, const SearchLimits& limits,
               std::vector<ToolPlace>& places);

}  // namespace host
