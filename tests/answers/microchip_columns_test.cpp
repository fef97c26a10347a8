#include "host/answers/microchip_columns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/collect/collect.h"

namespace {

/// `column`: where values begin, counted from their labels.
std::string MakeConfig(std::size_t column, const std::string& more = {}) {
  const auto line = [&](std::string label, const std::string& value) {
    label.resize(column - 2, ' ');
    return "   " + label + ": " + value + "\n";
  };
  return "-----------------------------------\nController "
         "information\n-----------------------------------\n" +
         line("Controller Status", "Optimal") + line("Channel description", "SAS") +
         line("Controller Model", "Orvane 3254") + line("Controller Serial Number", "OV41") +
         line("Physical Slot", "4") + line("Temperature", "41 C/ 105 F (Normal)") + more +
         line("Firmware", "3.21") + line("Driver", "1010.84");
}

std::vector<std::string> ListMicrochipNotes(const std::string& config,
                                            const std::string& className) {
  host::Recording machine;
  machine.commands.push_back({"arcconf.exe", "savesupportarchive c:\\", "", ""});
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = config;
  host::Collection collection = host::Collect(machine, host::Selection{{"sampleModule1"}, {}});
  for (host::CollectedTable& table : collection.tables) table.status.notes.clear();
  host::NoteUnfitColumns(collection);
  for (const host::CollectedTable& table : collection.tables) {
    if (table.className == className) return table.status.notes;
  }
  return {"no such table"};
}

using Notes = std::vector<std::string>;

Notes MicrochipNote(const std::string& reason) {
  return {"columns do not fit this report: " + reason +
          "; the report itself: PMCLINK, row 1, Controller_Config"};
}

TEST(MicrochipColumns, FitAReportOfTheirWidth) {
  EXPECT_EQ(ListMicrochipNotes(MakeConfig(45), "PMCINFO"), Notes());
  EXPECT_EQ(ListMicrochipNotes(MakeConfig(45), "PMCVER"), Notes());
  // A blank before a value is none of it.
  EXPECT_EQ(ListMicrochipNotes(MakeConfig(46), "PMCINFO"), Notes());
}

TEST(MicrochipColumns, LoseWhatBeginsFurtherLeft) {
  EXPECT_EQ(
      ListMicrochipNotes(MakeConfig(43), "PMCINFO"),
      MicrochipNote(
          "values begin further left than they are taken from and lose their first 2 "
          "characters: 6 of them (Controller Status is \"timal\", the report has \"Optimal\")"));
  EXPECT_EQ(
      ListMicrochipNotes(MakeConfig(42), "PMCVER"),
      MicrochipNote("values begin further left than they are taken from and lose their first 3 "
                    "characters: 2 of them (Firmware is \"1\", the report has \"3.21\")"));
}

TEST(MicrochipColumns, ShowWhatIsBeforeAValueFurtherRight) {
  EXPECT_EQ(ListMicrochipNotes(MakeConfig(47), "PMCVER"),
            MicrochipNote(
                "values begin further right than they are taken from: 2 of them (Firmware is \": "
                "3.21\", the report has \"3.21\")"));
}

TEST(MicrochipColumns, TakeNoOtherLine) {
  EXPECT_EQ(
      ListMicrochipNotes(
          MakeConfig(45, "   Current Temperature                        : 19 deg C\n"), "PMCINFO"),
      MicrochipNote("Temperature is \"\", the report has \"41 C/ 105 F (Normal)\""));
  std::string config = MakeConfig(45);
  config.replace(config.find("Firmware "), 9, "FirmwareX");
  EXPECT_EQ(ListMicrochipNotes(config, "PMCVER"),
            MicrochipNote("Firmware is \"3.21\", the report has no such line"));
}

}  // namespace
