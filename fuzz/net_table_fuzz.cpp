// The scans of the ARP and connection outputs, the split into words and the dealing into columns.
// The first byte is the column count (with 128 added, the output is made longer than the scans go),
// the rest the output. A plain walk over the same characters, and strtok, foretell every piece.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/tokens.h"
#include "fuzz/checks.h"
#include "pqmodules/rwininfo/net_table.h"

namespace {

using fuzz::Require;

void CheckArp(const std::string& text) {
  std::vector<std::string> lines;
  std::string rows;
  std::string line;
  for (std::size_t i = 0; i < text.size() && i < 30720; ++i) {
    line += text[i];
    if (text[i] != '\n') continue;
    if (line.size() > 128) line.resize(128);
    if (line.size() > 52) rows += line;
    lines.push_back(line);
    line.clear();
  }
  const pq::ArpScan scan = pq::ScanArpLines(text);
  Require(std::vector<std::string>(scan.lines.begin(), scan.lines.end()) == lines);
  Require(scan.rows == rows);
  Require(scan.end == std::min<std::size_t>(text.size(), 30720));
}

void CheckConnections(const std::string& text) {
  std::optional<std::size_t> start;
  int lineEnds = 0;
  for (std::size_t i = 0; i < text.size() && i < 30720 && lineEnds < 5; ++i) {
    if (text[i] == '\n' && ++lineEnds == 4) start = i;
  }
  if (lineEnds < 5) start.reset();
  Require(pq::FindConnectionRows(text) == start);
}

void CheckColumns(const std::string& text, std::size_t columnCount) {
  std::vector<std::vector<std::string>> columns(columnCount);
  std::string copy = text;
  std::size_t count = 0;
  for (const char* word = std::strtok(copy.data(), " \r\n"); word != nullptr;
       word = std::strtok(nullptr, " \r\n")) {
    columns[count++ % columnCount].push_back(word);
  }
  pq::TokenScan tokens(text, " \r\n");
  std::vector<std::string_view> dealt(columnCount);
  std::size_t row = 0;
  for (; pq::DealRow(tokens, dealt); ++row) {
    for (std::size_t column = 0; column < columnCount; ++column) {
      const std::vector<std::string>& words = columns[column];
      Require(dealt[column] == (row < words.size() ? words[row] : ""));
    }
  }
  Require(row == columns[0].size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  CheckColumns(text, 1 + data[0] % 8);
  text.resize(std::min(text.find('\0'), text.size()));
  CheckArp(text);
  CheckConnections(text);
  if (data[0] < 128) return 0;
  std::string longText = text;
  while (!text.empty() && longText.size() < 31000) longText += text;
  CheckArp(longText);
  CheckConnections(std::string(30700, 'x') + text);
  return 0;
}
