#include "fleet/copy_text.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "host/text/ascii.h"
#include "host/text/decoder.h"

namespace fleet {
namespace {

[[noreturn]] void Refuse() { throw std::runtime_error("the rows are not as rows are written"); }

/// Whether COPY would take it for something else than itself, or not at all. No function, which
/// would be called for each character.
constexpr auto kIsSpecial = [](char c) {
  return c == '\\' || (c <= '\r' && (c == '\t' || c == '\n' || c == '\r' || c == '\0'));
};

/// How many characters `text` begins with that stand for themselves.
std::size_t CountPlain(std::string_view text) {
  // Eight at a time, as long as none of them is less than 14 or a backslash: then the highest bit
  // of its byte is set below.
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kHighBits = kOnes << 7;
  std::size_t plain = 0;
  for (std::uint64_t bytes = 0; plain + sizeof bytes <= text.size(); plain += sizeof bytes) {
    std::memcpy(&bytes, text.data() + plain, sizeof bytes);
    const std::uint64_t low = (bytes - kOnes * ('\r' + 1)) & ~bytes;
    const std::uint64_t others = bytes ^ kOnes * '\\';
    const std::uint64_t slash = (others - kOnes) & ~others;
    if (((low | slash) & kHighBits) != 0) break;
  }
  return static_cast<std::size_t>(std::find_if(text.begin() + plain, text.end(), kIsSpecial) -
                                  text.begin());
}

/// Checks a row's cells, each an escaped text or kCopyNull.
void CheckRow(std::string_view row, std::size_t columns) {
  std::size_t cells = 1;
  std::size_t begin = 0;  // of the cell
  for (std::size_t at = 0; at < row.size(); ++at) {
    const char c = row[at];
    if (c == '\t') {
      ++cells;
      begin = at + 1;
    } else if (c == '\0' || c == '\r') {
      Refuse();
    } else if (c == '\\') {
      const char next = at + 1 < row.size() ? row[at + 1] : '\0';
      const bool isNull =
          next == 'N' && at == begin && (at + 2 == row.size() || row[at + 2] == '\t');
      if (!isNull && next != '\\' && next != 't' && next != 'n' && next != 'r') Refuse();
      ++at;
    }
  }
  if (cells != columns) Refuse();
}

}  // namespace

void AppendCopyCell(std::string& rows, std::string_view text) {
  while (true) {
    const std::size_t plain = CountPlain(text);
    rows += text.substr(0, plain);
    if (plain == text.size()) return;
    switch (text[plain]) {
      case '\\':
        rows += "\\\\";
        break;
      case '\t':
        rows += "\\t";
        break;
      case '\n':
        rows += "\\n";
        break;
      case '\r':
        rows += "\\r";
        break;
      default:
        host::AppendUtf8(rows, host::kReplacementCharacter);
    }
    text.remove_prefix(plain + 1);
  }
}

std::vector<std::string_view> SplitCopyRows(std::string_view text, std::size_t columns) {
  if (!text.empty() && text.back() != '\n') Refuse();
  if (!host::IsAscii(text) && host::CleanUtf8(text) != text) Refuse();
  std::vector<std::string_view> rows;
  while (!text.empty()) {
    const std::string_view row = text.substr(0, text.find('\n'));
    CheckRow(row, columns);
    rows.push_back(row);
    text.remove_prefix(row.size() + 1);
  }
  return rows;
}

std::vector<std::string_view> SplitCheckedRows(std::string_view text) {
  std::vector<std::string_view> rows;
  while (!text.empty()) {
    rows.push_back(text.substr(0, text.find('\n')));
    text.remove_prefix(rows.back().size() + 1);
  }
  return rows;
}

std::string ReadCopyCell(std::string_view cell) {
  std::string text;
  for (std::size_t at = 0; at < cell.size(); ++at) {
    if (cell[at] != '\\' || at + 1 == cell.size()) {
      text += cell[at];
      continue;
    }
    const char next = cell[++at];
    text += next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : next;
  }
  return text;
}

std::vector<std::optional<std::string>> ReadCopyCells(std::string_view row) {
  std::vector<std::optional<std::string>> cells;
  while (true) {
    const std::string_view cell = row.substr(0, row.find('\t'));
    if (cell == kCopyNull) {
      cells.emplace_back();
    } else {
      cells.emplace_back(ReadCopyCell(cell));
    }
    if (cell.size() == row.size()) return cells;
    row.remove_prefix(cell.size() + 1);
  }
}

std::uint64_t HashRow(std::string_view row) {
  // FNV-1a, then a mix, since its last bytes change few bits alone.
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : row) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  hash ^= hash >> 33;
  hash *= 0xff51afd7ed558ccdU;
  return hash ^ hash >> 33;
}

}  // namespace fleet
