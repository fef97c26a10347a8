// ipmiutil fru:
//
//   [Baseboard,20,00] Board Serial Number : NGB22-00982
//   [Baseboard,20,00] Product Manufacturer: Northgate
//   [Baseboard,20,00] Product Name        : NG-2U-R208
//   [PowerSply,20,01] Product Name        : NG-PS-1100T
//
// getsmbios:
//
//   System Information
//       Manufacturer: Northgate
//       Product Name: NG-2U-R208
//       Serial Number: NGR208-0031

#include "host/answers/machine_identity.h"

#include <algorithm>
#include <initializer_list>
#include <map>
#include <string_view>
#include <utility>

#include "host/answers/parts/report_lines.h"
#include "host/collect/command_text.h"
#include "host/text/ascii.h"
#include "host/text/decoder.h"
#include "host/text/trim.h"

namespace host {
namespace {

constexpr char kInventory[] = "FRUINFO";
/// Begins the lines about the machine itself; its parts have lines of the same labels.
constexpr std::string_view kOfMachine = "[Baseboard,";

constexpr char kProductSerial[] = "Product Serial Num";
constexpr char kChassisSerial[] = "Chassis Serial Num";
constexpr char kBoardSerial[] = "Board Serial Number";

constexpr std::string_view kBiosTool = "getsmbios.exe";
constexpr std::string_view kSystem = "System Information";
struct BiosLabel {
  std::string_view label;
  const char* inInventory;
};
constexpr BiosLabel kBiosLabels[] = {{"Manufacturer", "Product Manufacturer"},
                                     {"Product Name", "Product Name"},
                                     {"Serial Number", kProductSerial}};

/// What makers leave where a value was to be filled in, in lower case.
constexpr std::string_view kPlaceholders[] = {"to be filled by o.e.m.",
                                              "default string",
                                              "not specified",
                                              "not available",
                                              "none",
                                              "n/a",
                                              "na",
                                              "unknown",
                                              "serial number",
                                              "asset tag",
                                              "empty"};

bool IsPlaceholder(std::string_view value) {
  const std::string lower = LowerCase(value);
  return lower.find_first_not_of("0x.-*") == std::string::npos ||
         std::ranges::find(kPlaceholders, lower) != std::end(kPlaceholders);
}

/// What the inventory says of the machine: the first value of each label, UTF-8.
class Inventory {
 public:
  explicit Inventory(const Collection& collection) {
    const TextDecoder decode(collection.machine.codePage);
    const auto table = std::ranges::find(collection.tables, kInventory, &CollectedTable::className);
    if (table != collection.tables.end() && table->rows != nullptr) {
      for (const Row& row : table->rows->rows) {
        for (const std::string_view line : row.Values()) Take(line, decode);
      }
    }
    if (!values.empty()) return;
    for (const CollectedAnswer& answer : collection.answers) {
      if (LowerCase(FindTool(answer.commandLine)) != kBiosTool) continue;
      TakeBiosText(decode(answer.file.empty() ? answer.output.Text() : answer.fileText.Text()));
    }
  }

  /// The value of the first of `labels` that has one; empty without.
  std::string Find(std::initializer_list<const char*> labels) const {
    for (const char* label : labels) {
      if (const auto found = values.find(label); found != values.end()) return found->second;
    }
    return {};
  }

 private:
  void Take(std::string_view line, const TextDecoder& decode) {
    if (!line.starts_with(kOfMachine)) return;
    line.remove_prefix(std::min(line.find(']'), line.size() - 1) + 1);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return;
    Keep(Trim(line.substr(0, colon)), decode(Trim(line.substr(colon + 1))));
  }

  /// Of a section's heading, its facts are further in.
  void TakeBiosText(std::string_view text) {
    bool isOfSystem = false;
    ReportLines lines(text);
    for (ReportLine line; lines.Next(line);) {
      const bool isHeading =
          !line.text.empty() && line.text.front() != ' ' && line.text.front() != '\t';
      if (isHeading) isOfSystem = Trim(line.text) == kSystem;
      const auto fact = SplitLabel(line.text, ':');
      if (!isOfSystem || isHeading || !fact) continue;
      for (const BiosLabel& known : kBiosLabels) {
        if (known.label == fact->label) Keep(known.inInventory, std::string(fact->value));
      }
    }
  }

  void Keep(std::string_view label, const std::string& value) {
    if (!IsPlaceholder(value)) values.try_emplace(std::string(label), value);
  }

  std::map<std::string, std::string, std::less<>> values;
};

}  // namespace

MachineIdentity FindMachineIdentity(const Collection& collection) {
  const Inventory inventory(collection);
  MachineIdentity identity{
      inventory.Find({"Product Manufacturer", "Board Manufacturer"}),
      inventory.Find({"Product Name", "Board Product Name"}),
      inventory.Find({kProductSerial, kChassisSerial, kBoardSerial}),
      inventory.Find({"Product Asset Tag"}),
  };
  if (identity.serial.empty()) {
    const std::vector<std::string>& given = collection.machine.serials;
    if (!given.empty()) identity.serial = given.front();
  } else if (inventory.Find({kProductSerial}).empty()) {
    identity.serialOf = inventory.Find({kChassisSerial}).empty() ? "board" : "chassis";
  }
  if (identity.maker.empty()) identity.maker = collection.machine.maker;
  if (identity.product.empty()) identity.product = collection.machine.product;
  return identity;
}

std::vector<std::string> ListMachineSerials(const Collection& collection) {
  const Inventory inventory(collection);
  std::vector<std::string> serials;
  for (const char* label : {kProductSerial, kChassisSerial, kBoardSerial}) {
    std::string serial = inventory.Find({label});
    const bool isNew = std::ranges::find(serials, serial) == serials.end();
    if (!serial.empty() && isNew) serials.push_back(std::move(serial));
  }
  return serials.empty() ? collection.machine.serials : serials;
}

}  // namespace host
