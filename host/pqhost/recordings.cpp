#include "host/pqhost/recordings.h"

#include <algorithm>
#include <array>

#include "host/text/path_text.h"

namespace host {

std::string SourceNames::Take(const std::filesystem::path& path) {
  std::filesystem::path whole = std::filesystem::absolute(path).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  constexpr std::array<const char*, 3> kResultEnds = {".db", ".json", ".html"};
  const bool isFile =
      std::ranges::find(kResultEnds, PathText(whole.extension())) != kResultEnds.end() ||
      IsZipFile(whole);
  return names.Take(PathText(isFile ? whole.stem() : whole.filename()));
}

}  // namespace host
