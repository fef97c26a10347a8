#include "host/formats/shown_cell.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/text/count_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr std::size_t kMostLines = 12;
constexpr std::size_t kMostBytes = 1600;

std::string FormatSize(std::size_t bytes) {
  constexpr std::size_t kKibibyte = 1024;
  if (bytes < kKibibyte) return FormatCount(bytes, "byte");
  const double kibibytes = static_cast<double>(bytes) / kKibibyte;
  if (bytes < kKibibyte * kKibibyte) return fmt::format("{:.1f} KiB", kibibytes);
  return fmt::format("{:.1f} MiB", kibibytes / kKibibyte);
}

/// Keeps whole characters.
std::string_view CutBytes(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;
  return text.substr(0, most);
}

/// CR LF as LF.
std::string JoinLineEnds(std::string_view text) {
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    lines += text[i];
  }
  return lines;
}

std::string DescribeFile(const CellView& cell) {
  const std::string size =
      cell.Kind() == CellKind::kNothing ? "left out" : FormatSize(cell.ByteSize());
  const std::optional<DecodedText> name = cell.FileName();
  if (!name) return fmt::format("[file, {}]", size);
  return fmt::format("[file {}, {}]", EscapeControls(*name), size);
}

}  // namespace

std::string ShowLabel(std::string_view label, std::string_view key) {
  return EscapeControls(TrimForDisplay(label.empty() ? key : label));
}

std::string ShowCell(const CellView& cell) {
  if (cell.IsFile()) return DescribeFile(cell);
  const DecodedText text = cell.Text();
  const std::string_view trimmed = TrimForDisplay(text);
  const std::string_view cut = CutBytes(trimmed, kMostBytes);
  std::string shown = EscapeControlsButLineFeeds(JoinLineEnds(cut));
  if (cut.size() < trimmed.size()) {
    shown += fmt::format("… [{} in all]", FormatSize(cell.ByteSize()));
  }
  return shown;
}

std::vector<std::string> WrapCell(std::string_view shown, std::size_t width) {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  while (begin <= shown.size()) {
    const std::size_t end = std::min(shown.find('\n', begin), shown.size());
    for (std::string& line : WrapText(shown.substr(begin, end - begin), width)) {
      lines.push_back(std::move(line));
    }
    begin = end + 1;
  }
  if (lines.size() > kMostLines) {
    const std::size_t hidden = lines.size() - kMostLines + 1;
    lines.resize(kMostLines - 1);
    lines.push_back(CutText(fmt::format("… [{} more]", FormatCount(hidden, "line")), width));
  }
  return lines;
}

}  // namespace host
