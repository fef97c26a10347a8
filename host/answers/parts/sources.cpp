#include "host/answers/parts/sources.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace host {
namespace {

/// Outcomes of tables whose tool has nothing to tell here.
constexpr std::string_view kNotHere[] = {
    "tool missing", "no such device",    "not this platform family",
    "declined",     "not this language", "always empty",
};

/// A BMC that says nothing of itself may be there all the same.
bool IsOfControllers(std::string_view id) {
  return id == "lsi" || id == "microchip" || id == "intel";
}

std::string_view GetWord(SourceState state) {
  switch (state) {
    case SourceState::kRead:
      return "read";
    case SourceState::kFailed:
      return "failed";
    case SourceState::kNone:
      return "none";
  }
  return {};
}

}  // namespace

void AddSource(Parts& parts, std::string id, std::string className, SourceState state,
               std::string observed) {
  PartSource source;
  source.id = std::move(id);
  source.readAt.className = std::move(className);
  source.state = GetWord(state);
  source.observed = std::move(observed);
  parts.sources.push_back(std::move(source));
}

void AddSourceWithoutParts(Parts& parts, std::string id, std::string className,
                           const CollectedTable* table) {
  if (table == nullptr) {
    AddSource(parts, std::move(id), std::move(className), SourceState::kNone, "not collected");
    return;
  }
  if (!table->status.missing.empty()) {
    AddSource(parts, std::move(id), std::move(className), SourceState::kNone,
              table->status.missing);
    return;
  }
  const bool isHere = std::find(std::begin(kNotHere), std::end(kNotHere), table->status.outcome) ==
                      std::end(kNotHere);
  AddSource(parts, std::move(id), std::move(className),
            isHere ? SourceState::kFailed : SourceState::kNone, table->status.text);
  parts.sources.back().saysNone =
      table->status.outcome == "no such device" && IsOfControllers(parts.sources.back().id);
}

std::string JoinGaps(const std::vector<std::string>& gaps) {
  constexpr std::size_t kMost = 3;
  std::string text;
  for (std::size_t i = 0; i < std::min(gaps.size(), kMost); ++i) {
    if (i > 0) text += "; ";
    text += gaps[i];
  }
  if (gaps.size() > kMost) text += fmt::format("; and {} more", gaps.size() - kMost);
  return text;
}

}  // namespace host
