// Rows in the text format of PostgreSQL's COPY: cells with a tab between them, a line feed after
// each row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleet {

inline constexpr std::string_view kCopyNull = "\\N";

/// Appends `text` (UTF-8) as a cell. PostgreSQL's texts hold no NUL: U+FFFD takes its place.
void AppendCopyCell(std::string& rows, std::string_view text);

/// The rows of `text`, each without its line feed. Throws std::runtime_error unless all of them
/// have `columns` cells, written as AppendCopyCell and kCopyNull write them, in valid UTF-8: a text
/// of a process that is not trusted could hold rows of other servers otherwise.
std::vector<std::string_view> SplitCopyRows(std::string_view text, std::size_t columns);

/// The same of a text that SplitCopyRows has looked at before.
std::vector<std::string_view> SplitCheckedRows(std::string_view text);

/// The cells of a row that SplitCopyRows gave; none for nothing.
std::vector<std::optional<std::string>> ReadCopyCells(std::string_view row);

/// The text that a cell, which is not kCopyNull, was made of.
std::string ReadCopyCell(std::string_view cell);

/// 64 bits that tell a row from another.
std::uint64_t HashRow(std::string_view row);

}  // namespace fleet
