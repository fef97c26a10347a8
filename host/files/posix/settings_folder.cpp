#include <cstdlib>

#include "host/files/places.h"

namespace host {

std::filesystem::path FindSettingsFolder() {
  const char* settings = std::getenv("XDG_CONFIG_HOME");
  if (settings != nullptr && *settings == '/') return std::filesystem::path(settings) / "pqhost";
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home != '/') return {};
  return std::filesystem::path(home) / ".config" / "pqhost";
}

}  // namespace host
