#include "host/collect/omissions.h"

#include <gmock/gmock.h>

#include "host/catalogue/table_sources.h"

namespace host {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kOfDrives[] = "/c0/eall/sall show all";
constexpr char kOfEvents[] = "/c0 show events";
constexpr char kCount[] = "show ctrlcount";

/// A machine on which storcli answered.
class Omissions : public testing::Test {
 protected:
  void Answer(const std::string& arguments, const std::string& text,
              const std::string& module = "sampleModule2") {
    CollectedAnswer answer;
    answer.module = module;
    answer.commandLine = R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" )" + arguments +
                         R"( > "C:\Halyard\logs\x.txt"")";
    answer.file = "C:\\Halyard\\logs\\x.txt";
    answer.fileText = text;
    answers.push_back(answer);
  }

  std::vector<std::string> Find(const std::string& className, std::size_t rowCount,
                                const std::string& module = "sampleModule2") {
    return FindOmissions(*FindTableDescription(className), module, rowCount,
                         {answers, [this](const std::string&) { return programsAreThere; },
                          [this](const std::string& name) { return name == logFile; },
                          [this](const std::string& table, const std::string& key) {
                            return table + '.' + key == "PMCLINK.Controller_Config"
                                       ? std::string_view(config)
                                       : std::string_view();
                          }});
  }

  std::vector<CollectedAnswer> answers;
  bool programsAreThere = true;
  std::string logFile;
  std::string config;  ///< of the Microchip controller
};

TEST_F(Omissions, AreNoneWhereNothingWasCollected) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) {
      EXPECT_THAT(Find(table.className, 0, module.name), IsEmpty()) << table.className;
    }
  }
}

TEST_F(Omissions, AreTheControllersAfterTheFirst) {
  Answer(kCount, "Controller Count = 2\r\n");
  for (const char* table : {"EVENTLOG1", "FWTERMLOG", "PDLIST", "TINFO", "VINFO", "PINFO"}) {
    EXPECT_THAT(Find(table, 1), Contains("of controller 0 alone: storcli counts 2 controllers "
                                         "(see LSILINK)"))
        << table;
  }
  Answer(kCount, "Controller Count = 3\r\n", "sampleModule1");
  EXPECT_THAT(Find("RAIDINFO", 1, "sampleModule1"),
              ElementsAre("of controller 0 alone: storcli counts 3 controllers (see LSILINK)"));
}

TEST_F(Omissions, AreNotTheOnlyController) {
  Answer(kCount, "Controller Count = 1\r\n");
  EXPECT_THAT(Find("PINFO", 1), IsEmpty());
}

TEST_F(Omissions, AreMostControllersWhereTheirNumberHasTwoDigits) {
  Answer(kCount, "Controller Count = 9\r\n");
  EXPECT_THAT(Find("LSILINK", 9), IsEmpty());
  Answer(kCount, "Controller Count = 10\r\n");
  EXPECT_THAT(Find("LSILINK", 1),
              ElementsAre("storcli counts 10 controllers, of which only the first digit is read: "
                          "reports are missing"));
}

TEST_F(Omissions, AreTheLastEventOfADump) {
  Answer(kOfEvents, "seqNum: 0x00000001\r\nTime: x\r\nseqNum: 0x00000002\r\nTime: y\r\n");
  const std::string note = "the last event of the dump, with the number 0x00000002, is on no page";
  EXPECT_THAT(Find("EVENTLOG1", 1), ElementsAre(note));
  EXPECT_THAT(Find("EVENTLOG1", 0), ElementsAre(note));
  EXPECT_THAT(Find("EVENTLOG2", 0), IsEmpty());
}

TEST_F(Omissions, AreNotALastEventThatTheDumpCloses) {
  Answer(kOfEvents, "seqNum: 0x00000001\r\nTime: x\r\nController = 0\r\n");
  EXPECT_THAT(Find("EVENTLOG1", 1), IsEmpty());
  Answer(kOfEvents, "no events\r\n");
  EXPECT_THAT(Find("EVENTLOG1", 0), IsEmpty());
}

TEST_F(Omissions, AreTheSlotsOfDrives) {
  EXPECT_THAT(Find("PDLIST", 1), ElementsAre(HasSubstr("without enclosure and slot")));
  EXPECT_THAT(Find("PDLIST", 0), IsEmpty());
}

TEST_F(Omissions, AreValuesThatTheDriveBeforeHad) {
  const std::string whole = "Drive Temperature = 30C\r\nSN = 1\r\nNeeds EKM Attention = No\r\n";
  const std::string cold = "SN = 2\r\nNeeds EKM Attention = No\r\n";
  Answer(kOfDrives, cold + whole + whole);
  EXPECT_THAT(Find("PDLIST", 3), ElementsAre(HasSubstr("without enclosure and slot")));
  Answer(kOfDrives, whole + cold + whole + cold);
  EXPECT_THAT(Find("PDLIST", 4),
              Contains("what the report does not say of a drive is left as the drive before had "
                       "it: Drive Temperature (2 rows)"));
}

TEST_F(Omissions, AreTheFilesOfAnotherMicrochipController) {
  CollectedAnswer archive;
  archive.module = "sampleModule1";
  archive.commandLine = R"(/c "C:\Halyard\utilities\arcconf\arcconf.exe savesupportarchive c:\")";
  answers = {archive};
  const std::string stays = "the archive stays in c:\\Support\\Firmware";
  config = "Controllers found: 1\r\n";
  EXPECT_THAT(Find("PMCINFO", 1, "sampleModule1"), ElementsAre(stays));
  config = "Controllers found: 2\r\n";
  EXPECT_THAT(Find("PMCINFO", 1, "sampleModule1"),
              ElementsAre("of controller 1 alone: arcconf counts 2 controllers", stays));
  logFile = "Firmware\\Controller_2_Config.txt";
  EXPECT_THAT(
      Find("PMCINFO", 1, "sampleModule1"),
      ElementsAre("of controller 1 alone: the archive has files of controller 2, too",
                  "the archive, with more than is shown here, stays in c:\\Support\\Firmware"));
}

TEST_F(Omissions, AreTheLogAsTheControllerGaveIt) {
  CollectedAnswer upload;
  upload.module = "sampleModule2";
  upload.commandLine = R"("C:\Halyard\utilities\lsi\sas2ircu.exe" 0 logir upload > logir.log)";
  answers = {upload};
  EXPECT_THAT(Find("SAS2IRLOG", 1), ElementsAre(HasSubstr("logir.log, the log as")));
  programsAreThere = false;
  EXPECT_THAT(Find("SAS2IRLOG", 1), IsEmpty());
}

}  // namespace
}  // namespace host
