// Rows in the binary format of PostgreSQL's COPY, which takes long texts and bytes as they are.
#pragma once

#include <climits>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fleet {

class BinaryRows {
 public:
  bool IsEmpty() const { return bytes.empty(); }

  /// Then follows each of its cells.
  BinaryRows& BeginRow(std::int16_t cells);
  /// Its width is that of the column.
  template <std::signed_integral Number>
  BinaryRows& Add(Number number) {
    AppendNumber(static_cast<std::int32_t>(sizeof(number)));
    AppendNumber(number);
    return *this;
  }
  /// UTF-8 without NUL, or of a bytea.
  BinaryRows& Add(std::string_view text);

  /// All of them; nothing is left.
  std::string Take();

 private:
  template <std::signed_integral Number>
  void AppendNumber(Number number) {
    for (std::size_t i = sizeof(number); i > 0; --i) {
      bytes += static_cast<char>(static_cast<unsigned char>(number >> (CHAR_BIT * (i - 1))));
    }
  }

  std::string bytes;
};

}  // namespace fleet
