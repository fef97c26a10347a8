#include "fleet/parsed.h"

#include <cstring>
#include <stdexcept>

namespace fleet {
namespace {

constexpr std::string_view kEnd = "END";

class Packer {
 public:
  void Add(std::uint32_t number) {
    char digits[sizeof(number)];
    std::memcpy(digits, &number, sizeof(number));
    bytes.append(digits, sizeof(number));
  }
  void Add(std::string_view text) {
    Add(static_cast<std::uint32_t>(text.size()));
    bytes += text;
  }
  std::string Take() {
    bytes += kEnd;
    return std::move(bytes);
  }

 private:
  std::string bytes;
};

class Unpacker {
 public:
  explicit Unpacker(std::string_view bytes) : bytes(bytes) {}

  std::uint32_t TakeNumber() {
    std::uint32_t number = 0;
    std::memcpy(&number, TakeBytes(sizeof(number)).data(), sizeof(number));
    return number;
  }
  std::string TakeText() { return std::string(TakeBytes(TakeNumber())); }
  /// A number of things, each of at least one byte.
  std::uint32_t TakeCount() {
    const std::uint32_t count = TakeNumber();
    if (count > bytes.size()) Refuse();
    return count;
  }
  void Finish() const {
    if (bytes != kEnd) Refuse();
  }

 private:
  [[noreturn]] static void Refuse() { throw std::runtime_error("the parser's answer is cut off"); }

  std::string_view TakeBytes(std::size_t size) {
    if (bytes.size() < size) Refuse();
    const std::string_view taken = bytes.substr(0, size);
    bytes.remove_prefix(size);
    return taken;
  }

  std::string_view bytes;
};

constexpr std::array kCounts = {&FindingCounts::critical, &FindingCounts::warning,
                                &FindingCounts::unknown, &FindingCounts::notice};

}  // namespace

std::string Pack(const Parsed& parsed) {
  Packer packer;
  packer.Add(parsed.refusal);
  packer.Add(static_cast<std::uint32_t>(parsed.tables.size()));
  for (const ParsedTable& table : parsed.tables) {
    packer.Add(table.table);
    packer.Add(table.rows);
  }
  packer.Add(parsed.problems);
  packer.Add(parsed.statuses);
  packer.Add(parsed.verdict);
  for (const auto count : kCounts) packer.Add(parsed.counts.*count);
  packer.Add(static_cast<std::uint32_t>(parsed.reasons.size()));
  for (const std::string& reason : parsed.reasons) packer.Add(reason);
  packer.Add(parsed.driveErrors);
  return packer.Take();
}

Parsed Unpack(std::string_view bytes) {
  Unpacker unpacker(bytes);
  Parsed parsed;
  parsed.refusal = unpacker.TakeText();
  parsed.tables.resize(unpacker.TakeCount());
  for (ParsedTable& table : parsed.tables) {
    table.table = unpacker.TakeNumber();
    table.rows = unpacker.TakeText();
  }
  parsed.problems = unpacker.TakeNumber();
  parsed.statuses = unpacker.TakeText();
  parsed.verdict = unpacker.TakeText();
  for (const auto count : kCounts) parsed.counts.*count = unpacker.TakeNumber();
  parsed.reasons.resize(unpacker.TakeCount());
  for (std::string& reason : parsed.reasons) reason = unpacker.TakeText();
  parsed.driveErrors = unpacker.TakeText();
  unpacker.Finish();
  return parsed;
}

}  // namespace fleet
