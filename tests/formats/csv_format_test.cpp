#include <gmock/gmock.h>

#include <string>

#include "host/collect/collect.h"
#include "host/formats/csv_folder.h"
#include "host/recording/recording_reader.h"
#include "tests/support/program/host_run.h"
#include "tests/support/program/made_collection.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using test::MadeCollection;

TEST(CsvFormat, WritesASingleNamedTablePlainly) {
  MadeCollection made;
  made.Table("T").Row({{"Address", "10.0.0.1"}, {"Type", "static"}});
  made.Get().tablesNamed = true;
  EXPECT_EQ(made.As("csv"), "Address,Type\r\n10.0.0.1,static\r\n");
}

TEST(CsvFormat, WritesSeveralTablesAsSectionsWithTheirClass) {
  MadeCollection made;
  made.Table("B").Row({{"X", "1"}}).Table("EMPTY").Table("A").Row({{"Y", "2"}}).Row({{"Y", "3"}});
  EXPECT_EQ(made.As("csv"),
            "class,X\r\nB,1\r\n"
            "\r\n"
            "class,Y\r\nA,2\r\nA,3\r\n");
}

TEST(CsvFormat, WritesTheClassAlsoWhenOnlyOneTableWasThereToTake) {
  MadeCollection made;
  made.Table("B").Row({{"X", "1"}});
  EXPECT_EQ(made.As("csv"), "class,X\r\nB,1\r\n");
}

TEST(CsvFormat, QuotesWhatNeedsIt) {
  MadeCollection made;
  made.Table("T").Row({{"A,B", "say \"hi\""}, {"C", "two\r\nlines"}, {"D", " blank "}});
  made.Get().tablesNamed = true;
  EXPECT_EQ(made.As("csv"),
            "\"A,B\",C,D\r\n"
            "\"say \"\"hi\"\"\",\"two\r\nlines\", blank \r\n");
}

TEST(CsvFormat, LeavesAFieldEmptyWhereARowHasNoSuchProperty) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}, {"B", "2"}}).Row({{"A", "3"}});
  made.Get().tablesNamed = true;
  EXPECT_EQ(made.As("csv"), "A,B\r\n1,2\r\n3,\r\n");
}

TEST(CsvFormat, TellsColumnsOfOneLabelApartByTheirKeys) {
  MadeCollection made;
  made.Table("T").Row({{"Size", "1"}, {"Size", "2"}, {"", "3"}});
  made.Get().tablesNamed = true;
  EXPECT_EQ(made.As("csv"), "Size (k1),Size (k2),k3\r\n1,2,3\r\n");
}

TEST(CsvFormat, WritesNothingForANamedTableWithoutRows) {
  MadeCollection made;
  made.Table("T");
  made.Get().tablesNamed = true;
  EXPECT_EQ(made.As("csv"), "");
}

TEST(CsvFormat, WritesTheHeadOfATableWithoutRowsWhoseColumnsAreKnown) {
  MadeCollection made;
  made.Table("ARPINFO");
  EXPECT_EQ(made.As("csv"), "class,Internet Address,Physical Address,Type\r\n");
  made.Get().tablesNamed = true;
  EXPECT_EQ(made.As("csv"), "Internet Address,Physical Address,Type\r\n");
}

TEST(CsvFormat, HasTheSameHeadForAClassWhateverItsRowsHave) {
  MadeCollection made;
  made.Table("ARPINFO");
  halyard::repository::RInstance row("ARPINFO", "made", -1);
  row.AddProperty("more", "More", std::string("m"), false);
  row.AddProperty("item3", "Type", std::string("static"), false);
  row.AddToRepository(made.Repository());
  made.Get().tablesNamed = true;
  EXPECT_EQ(made.As("csv"), "Internet Address,Physical Address,Type,More\r\n,,static,m\r\n");
}

TEST(CsvFormat, WritesRowsWithoutAnyProperty) {
  MadeCollection made;
  made.Table("T").Row({});
  EXPECT_EQ(made.As("csv"), "class\r\nT\r\n");
}

TEST(CsvFormat, BeginsRowsWithTheirMachineIfAsked) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}});
  MachineFacts& machine = made.Get().machine;
  machine.recorded = true;
  machine.name = "NODE31";
  machine.serials = {"S1"};
  machine.contentKey = "c0";
  EXPECT_EQ(made.As("csv", {.identifiesRows = true}),
            "machine,serial,recordedAt,collection,class,A\r\nNODE31,S1,,c0,T,1\r\n");
}

TEST(CsvFolder, HasAFileForEachTableWhoseNameIsOneOnEverySystem) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}}).Table("t").Row({{"B", "2"}}).Table("../x?").Row({{"C", "3"}});
  const test::TemporaryFolder folder;
  WriteCsvFolder(made.Get(), {}, folder.Path());
  EXPECT_THAT(folder.Files(), testing::IsSupersetOf({"T.csv", "t_2.csv", "___x_.csv"}));
  EXPECT_EQ(folder.Read("t_2.csv"), "B\r\n2\r\n");
}

TEST(CsvFolder, HasAFileForEachKindOfPart) {
  const host::Collection collection = Collect(LoadRecording(test::Sample("hba-only")), Selection{});
  const test::TemporaryFolder folder;
  WriteCsvFolder(collection, {.identifiesRows = true}, folder.Path());
  EXPECT_THAT(folder.Files(), testing::IsSupersetOf({"drives.csv", "sensors.csv", "findings.csv",
                                                     "evidence.csv", "PINFO.csv"}));
  const std::string drives = folder.Read("drives.csv");
  EXPECT_THAT(drives, testing::StartsWith("machine,serial,recordedAt,collection,id,vendor,"));
  EXPECT_THAT(drives, testing::HasSubstr(",lsi0 3:4,LSI,lsi0,"));
}

TEST(CsvFormat, IsUtf8) {
  MadeCollection made;
  made.Get().machine.codePage = 852;
  made.Table("T").Row({{"P\xfd\xa1kaz", "\x9f"}});
  EXPECT_EQ(made.As("csv"), "class,Příkaz\r\nT,č\r\n");
}

TEST(CsvFormat, KeepsControlCharactersInAFileAndEscapesThemOnATerminal) {
  MadeCollection made;
  made.Table("T").Row({{"A", "\x1b[31m\n"}});
  EXPECT_EQ(made.As("csv"), "class,A\r\nT,\"\x1b[31m\n\"\r\n");
  EXPECT_EQ(made.As("csv", {true, true, 80}), "class,A\r\nT,\\x1b[31m\\n\r\n");
}

TEST(CsvFormat, KeepsWhatTurnsTextInAFileAndEscapesItOnATerminal) {
  MadeCollection made;
  made.Get().machine.codePage = 65001;
  made.Table("T").Row({{"A", "a\u202Eb\u2028"}});
  EXPECT_EQ(made.As("csv"), "class,A\r\nT,a\u202Eb\u2028\r\n");
  EXPECT_EQ(made.As("csv", {true, true, 80}), "class,A\r\nT,a\\u202eb\\u2028\r\n");
}

}  // namespace
}  // namespace host
