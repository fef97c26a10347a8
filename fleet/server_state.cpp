#include "fleet/server_state.h"

#include <algorithm>
#include <stdexcept>

#include "fleet/copy_text.h"

namespace fleet {
namespace {

template <typename Number>
void Append(std::string& bytes, Number number) {
  for (std::size_t i = 0; i < sizeof(number); ++i) {
    bytes += static_cast<char>(static_cast<unsigned char>(number >> (8 * i)));
  }
}

template <typename Number>
Number Take(std::string_view& bytes) {
  if (bytes.size() < sizeof(Number)) throw std::runtime_error("the server's state is cut off");
  Number number = 0;
  for (std::size_t i = sizeof(number); i > 0; --i) {
    number = static_cast<Number>(static_cast<Number>(std::uint64_t{number} << 8) |
                                 static_cast<unsigned char>(bytes[i - 1]));
  }
  bytes.remove_prefix(sizeof(Number));
  return number;
}

std::uint64_t HashAll(const std::vector<std::uint64_t>& hashes, std::size_t count) {
  return HashRow({reinterpret_cast<const char*>(hashes.data()), count * sizeof(hashes[0])});
}

}  // namespace

std::string DecodeHex(std::string_view digits) {
  const auto value = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes += static_cast<char>(value(digits[i]) * 16 + value(digits[i + 1]));
  }
  return bytes;
}

TableState DescribeRows(const std::vector<std::uint64_t>& rowHashes, bool isLog) {
  const auto rows = static_cast<std::uint32_t>(rowHashes.size());
  if (!isLog) return {rows, isLog, rowHashes};
  return {rows, isLog, {HashAll(rowHashes, rowHashes.size())}};
}

std::string PackState(const ServerState& state) {
  std::string bytes;
  for (const auto& [table, rows] : state) {
    Append(bytes, table);
    Append(bytes, static_cast<std::uint8_t>(rows.isLog ? 1 : 0));
    Append(bytes, rows.rows);
    for (const std::uint64_t hash : rows.hashes) Append(bytes, hash);
  }
  return bytes;
}

ServerState UnpackState(std::string_view bytes) {
  ServerState state;
  while (!bytes.empty()) {
    const auto table = Take<std::uint16_t>(bytes);
    TableState& rows = state[table];
    rows.isLog = Take<std::uint8_t>(bytes) != 0;
    rows.rows = Take<std::uint32_t>(bytes);
    const std::size_t hashes = rows.isLog ? 1 : rows.rows;
    if (bytes.size() / sizeof(std::uint64_t) < hashes) {
      throw std::runtime_error("the server's state is cut off");
    }
    for (std::size_t i = 0; i < hashes; ++i) rows.hashes.push_back(Take<std::uint64_t>(bytes));
  }
  return state;
}

TableChange FindChange(const TableState& before, const std::vector<std::uint64_t>& rowHashes,
                       bool isLog) {
  TableChange change;
  const auto now = static_cast<std::uint32_t>(rowHashes.size());
  // A table that has become a log, or is none any more, is written anew.
  const bool isComparable = before.isLog == isLog;
  const bool hasGrown = isComparable && isLog && before.rows <= now && !before.hashes.empty() &&
                        HashAll(rowHashes, before.rows) == before.hashes.front();
  for (std::uint32_t row = 1; row <= std::max(before.rows, now); ++row) {
    const bool was = row <= before.rows;
    const bool is = row <= now;
    const bool isSame =
        was && is &&
        (isLog ? hasGrown : isComparable && before.hashes[row - 1] == rowHashes[row - 1]);
    if (isSame) continue;
    if (was) change.removed.push_back(row);
    if (is) change.added.push_back(row);
  }
  return change;
}

}  // namespace fleet
