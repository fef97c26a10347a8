// Burners and the like, which tools count among the drives although they hold no medium of theirs.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "host/answers/parts/parts.h"

namespace host {

inline bool IsOptical(const Drive& drive) {
  constexpr std::string_view kModels[] = {"DVD", "BD-", "CD-", "CDRW"};
  if (drive.media == "DVD" || drive.media == "CD") return true;
  return drive.size == 0 && std::ranges::any_of(kModels, [&](std::string_view begin) {
           return drive.model.starts_with(begin);
         });
}

inline std::size_t CountOpticalDrives(const Parts& parts) {
  return static_cast<std::size_t>(std::ranges::count_if(parts.drives, IsOptical));
}

}  // namespace host
