#include "host/recorded/program_search.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using Paths = std::vector<std::string>;

TEST(ProgramSearch, TriesEveryExtensionInAFolderBeforeTheNextFolder) {
  EXPECT_EQ(ListProgramPaths("route", "C:\\Windows\\system32;C:\\Tools\\", ".COM;.EXE;.BAT"),
            (Paths{"C:\\Windows\\system32\\route.COM", "C:\\Windows\\system32\\route.EXE",
                   "C:\\Windows\\system32\\route.BAT", "C:\\Tools\\route.COM",
                   "C:\\Tools\\route.EXE", "C:\\Tools\\route.BAT"}));
}

TEST(ProgramSearch, TriesANameWithAnExtensionAsItIsFirst) {
  EXPECT_EQ(ListProgramPaths("arp.exe", "C:\\Tools", ".COM;.EXE"),
            (Paths{"C:\\Tools\\arp.exe", "C:\\Tools\\arp.exe.COM", "C:\\Tools\\arp.exe.EXE"}));
}

TEST(ProgramSearch, LeavesThePathAloneWhenTheProgramNamesItsFolder) {
  EXPECT_EQ(ListProgramPaths("C:\\a.b\\tool", "C:\\Tools", ".EXE"), Paths{"C:\\a.b\\tool.EXE"});
}

TEST(ProgramSearch, NeverLooksIntoTheCurrentFolder) {
  EXPECT_EQ(ListProgramPaths("route", "", ".EXE"), Paths{});
  EXPECT_EQ(ListProgramPaths("route", ";;C:\\Tools;", ".EXE;"), Paths{"C:\\Tools\\route.EXE"});
}

TEST(ProgramSearch, TakesQuotesOutOfThePath) {
  EXPECT_EQ(ListProgramPaths("route", "\"C:\\My Tools\"", ".EXE"),
            Paths{"C:\\My Tools\\route.EXE"});
}

}  // namespace
}  // namespace host
