#include "fleet/copy_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using fleet::SplitCopyRows;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

std::string Cell(std::string_view text) {
  std::string cell;
  fleet::AppendCopyCell(cell, text);
  return cell;
}

TEST(CopyText, EscapesWhatSeparatesCellsAndRows) {
  EXPECT_EQ(Cell("a\tb\nc\rd\\e"), "a\\tb\\nc\\rd\\\\e");
}

TEST(CopyText, EscapesThemWhereverTheyStand) {
  const std::string plain = "0123456789\x01[]\u00e4\x7f^zz{|}~";
  for (std::size_t at = 0; at <= plain.size(); ++at) {
    for (const auto& [special, escaped] :
         {std::pair("\t", "\\t"), {"\n", "\\n"}, {"\r", "\\r"}, {"\\", "\\\\"}}) {
      std::string text = plain;
      std::string expected = plain;
      EXPECT_EQ(Cell(text.insert(at, special)), expected.insert(at, escaped));
    }
  }
}

TEST(CopyText, HasNoNul) { EXPECT_EQ(Cell("a\0b"s), "a\uFFFDb"); }

TEST(CopyText, TellsATextFromNothing) {
  EXPECT_EQ(Cell("\\N"), "\\\\N");
  EXPECT_THAT(SplitCopyRows("\\N\t\\\\N\n", 2), ElementsAre("\\N\t\\\\N"));
}

TEST(CopyText, SplitsRows) {
  EXPECT_THAT(SplitCopyRows("", 2), IsEmpty());
  EXPECT_THAT(SplitCopyRows("a\tb\n\t\n", 2), ElementsAre("a\tb", "\t"));
}

TEST(CopyText, RefusesWhatNobodyWrites) {
  for (const std::string& text : {
           "a\tb"s,            // no end
           "a\n"s,             // too few cells
           "a\tb\tc\n"s,       // too many
           "a\tb\\\n1\tc\n"s,  // an escaped end: the next server's row would be in this one's cell
           "a\tb\\\n"s,        //
           "a\t\\.\n"s,        // the end of all data
           "a\t\\x41\n"s,      //
           "a\tb\\N\n"s,       // nothing after something
           "a\t\\Nb\n"s,       //
           "a\tb\r\n"s,        //
           "a\tb\0\n"s,        //
           "a\t\xff\n"s,       // no UTF-8
       }) {
    EXPECT_THROW(SplitCopyRows(text, 2), std::runtime_error) << text;
  }
}

TEST(CopyText, IsReadAsItWasWritten) {
  for (const std::string& text : {""s, "\\N"s, "a\tb\nc\rd\\e"s, "\\"s, "\\n"s}) {
    EXPECT_EQ(fleet::ReadCopyCell(Cell(text)), text);
  }
  EXPECT_THAT(fleet::ReadCopyCells("a\t\\N\t\t\\\\N"), ElementsAre("a", std::nullopt, "", "\\N"));
}

TEST(CopyText, HashesTellRowsApart) {
  EXPECT_EQ(fleet::HashRow("a\tb"), fleet::HashRow("a\tb"));
  EXPECT_NE(fleet::HashRow("a\tb"), fleet::HashRow("b\ta"));
  EXPECT_NE(fleet::HashRow(""), fleet::HashRow("\t"));
}

}  // namespace
