#include "host/recording/named_files.h"

#include <stdexcept>

#include "host/files/whole_file.h"
#include "host/recording/strict_json.h"

namespace host {

Bytes NamedFiles::Read(const std::string& name) {
  if (const auto known = files.find(name); known != files.end()) return known->second;
  const std::filesystem::path path = rules.ResolveName(name);
  try {
    return files[name] = ReadWholeFile(path);
  } catch (const std::runtime_error& reason) {
    throw std::runtime_error(QuoteText(name) + ": " + reason.what());
  }
}

}  // namespace host
