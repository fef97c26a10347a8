#include "host/pqhost/tool_chatter.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/text/decoder.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr std::size_t kMostLines = 40;
constexpr std::size_t kLongestLine = 400;

}  // namespace

void ToolChatter::OnToolConsole(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    Add(TrimForDisplay(text.substr(0, std::min(end, kLongestLine))));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

void ToolChatter::Add(std::string_view line) {
  if (line.empty()) return;
  const auto known = std::ranges::find(lines, line, &Line::text);
  if (known != lines.end()) {
    ++known->count;
  } else if (lines.size() < kMostLines) {
    lines.push_back({std::string(line), 1});
  } else {
    ++others;
  }
}

void ToolChatter::Tell(std::uint32_t codePage, std::ostream& out) const {
  const TextDecoder decode(codePage);
  for (const Line& line : lines) {
    out << "Tools said: " << EscapeControls(decode(line.text));
    if (line.count > 1) out << fmt::format(" ({} times)", line.count);
    out << '\n';
  }
  if (others > 0) out << fmt::format("Tools said: {} more lines\n", others);
}

}  // namespace host
