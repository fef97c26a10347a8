#include "host/recording/named_files.h"

#include <stdexcept>

#include "host/files/whole_file.h"
#include "host/recording/strict_json.h"

namespace host {

std::shared_ptr<const std::string> NamedFiles::Read(const std::string& name) {
  std::shared_ptr<const std::string>& bytes = files[name];
  if (bytes == nullptr) {
    const std::filesystem::path path = rules.ResolveName(name);
    try {
      bytes = std::make_shared<const std::string>(ReadWholeFile(path));
    } catch (const std::runtime_error& reason) {
      throw std::runtime_error(QuoteText(name) + ": " + reason.what());
    }
  }
  return bytes;
}

}  // namespace host
