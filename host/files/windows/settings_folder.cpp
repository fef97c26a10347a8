#include <cstdlib>

#include "host/files/places.h"

namespace host {

std::filesystem::path FindSettingsFolder() {
  const wchar_t* own = _wgetenv(L"LOCALAPPDATA");
  if (own == nullptr) return {};
  return std::filesystem::path(own) / "pqhost";
}

}  // namespace host
