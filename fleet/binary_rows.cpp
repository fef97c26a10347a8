#include "fleet/binary_rows.h"

#include <utility>

namespace fleet {

BinaryRows& BinaryRows::BeginRow(std::int16_t cells) {
  if (bytes.empty()) {
    using namespace std::string_view_literals;
    bytes += "PGCOPY\n\xff\r\n\0"sv;
    AppendNumber(std::int32_t{0});  // flags
    AppendNumber(std::int32_t{0});  // what else the header has
  }
  AppendNumber(cells);
  return *this;
}

BinaryRows& BinaryRows::Add(std::string_view text) {
  AppendNumber(static_cast<std::int32_t>(text.size()));
  bytes += text;
  return *this;
}

std::string BinaryRows::Take() {
  AppendNumber(std::int16_t{-1});
  return std::exchange(bytes, {});
}

}  // namespace fleet
