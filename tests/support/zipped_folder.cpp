#include "tests/support/zipped_folder.h"

#include <map>
#include <sstream>

#include "host/files/whole_file.h"
#include "host/files/zip_writer.h"

namespace test {

std::string ZipFolder(const std::filesystem::path& folder) {
  std::map<std::string, std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    files[entry.path().lexically_relative(folder).generic_string()] = entry.path();
  }
  std::ostringstream out;
  host::ZipWriter writer(out);
  for (const auto& [name, path] : files) writer.Add(name, host::ReadWholeFile(path));
  writer.Complete();
  return out.str();
}

}  // namespace test
