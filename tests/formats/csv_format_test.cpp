#include <gtest/gtest.h>

#include <string>

#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using test::MadeCollection;

TEST(CsvFormat, WritesASingleNamedTablePlainly) {
  MadeCollection made;
  made.Table("ARPINFO").Row({{"Address", "10.0.0.1"}, {"Type", "static"}});
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
