#include "host/live/hardware_texts.h"

#include <charconv>
#include <cstdint>

namespace host {
namespace {

/// The four hexadecimal digits after `label`.
std::optional<std::uint16_t> FindNumber(std::string_view id, std::string_view label) {
  constexpr std::size_t kDigits = 4;
  const std::size_t at = id.find(label);
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view digits = id.substr(at + label.size(), kDigits);
  std::uint16_t number = 0;
  const auto read = std::from_chars(digits.begin(), digits.end(), number, 16);
  if (digits.size() < kDigits || read.ptr != digits.end()) return std::nullopt;
  return number;
}

// Each structure begins with its type and the length of its formatted part; texts follow, which two
// NULs end.
constexpr std::size_t kHeadSize = 4;
constexpr std::uint8_t kIpmiDevice = 38;
constexpr std::uint8_t kIntelAmt = 130;
constexpr std::uint8_t kEnd = 127;

/// After its head: a signature, then whether the machine supports AMT.
constexpr std::string_view kAmtSignature = "$AMT";

bool SupportsAmt(std::string_view structure) {
  const std::string_view content = structure.substr(kHeadSize);
  return content.starts_with(kAmtSignature) && content.size() > kAmtSignature.size() &&
         content[kAmtSignature.size()] != 0;
}

}  // namespace

std::optional<PciDevice> ParsePciId(std::string_view id) {
  if (!id.starts_with("PCI\\")) return std::nullopt;
  const auto vendor = FindNumber(id, "VEN_");
  const auto device = FindNumber(id, "&DEV_");
  const auto classCode = FindNumber(id, "&CC_");
  if (!vendor || !device || !classCode) return std::nullopt;
  return PciDevice{*vendor, *device, *classCode};
}

void ReadSmbios(std::string_view table, Hardware& hardware) {
  bool hasBmc = false;
  bool hasAmt = false;
  bool isRead = false;
  while (table.size() >= kHeadSize) {
    const auto type = static_cast<std::uint8_t>(table[0]);
    const std::size_t length = static_cast<std::uint8_t>(table[1]);
    if (length < kHeadSize || length > table.size()) break;
    isRead = true;
    if (type == kEnd) break;
    if (type == kIpmiDevice) hasBmc = true;
    if (type == kIntelAmt && SupportsAmt(table.substr(0, length))) hasAmt = true;
    const std::size_t end = table.find(std::string_view("\0\0", 2), length);
    if (end == std::string_view::npos) break;
    table.remove_prefix(end + 2);
  }
  if (!isRead) return;
  hardware.hasBmc = hasBmc;
  hardware.hasAmt = hasAmt;
}

}  // namespace host
