#include "host/files/left_files.h"

#include <gmock/gmock.h>

#include "host/text/path_text.h"
#include "host/text/usage_error.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using Files = std::map<std::string, Bytes>;

class LeftFilesTest : public testing::Test {
 protected:
  LeftFiles Write(const Files& files, const std::string& logFolder = "C:\\Logs\\") {
    return WriteLeftFiles(files, logFolder, TextDecoder(1252), folder.Path());
  }

  test::TemporaryFolder folder;
};

TEST_F(LeftFilesTest, AreWrittenWithTheirFoldersByteForByte) {
  const std::string bytes("a\r\n\0\xFF", 5);
  const LeftFiles left = Write({{"C:\\Logs\\a.txt", bytes}, {"C:\\Logs\\lsi\\b.log", ""}});
  EXPECT_EQ(left.written, 2u);
  EXPECT_THAT(left.problems, IsEmpty());
  EXPECT_THAT(folder.Files(), ElementsAre("a.txt", "lsi/b.log"));
  EXPECT_EQ(folder.Read("a.txt"), bytes);
}

TEST_F(LeftFilesTest, AreOnlyThoseOfTheLogFolder) {
  const LeftFiles left = Write({{"C:\\Logs", "x"},
                                {"C:\\Logs2\\a", "x"},
                                {"C:\\Windows\\Logs\\a", "x"},
                                {"D:\\Logs\\a", "x"}});
  EXPECT_EQ(left.written, 0u);
  EXPECT_THAT(left.problems, IsEmpty());
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(LeftFilesTest, AreFoundWhateverTheCaseAndKeepTheirOwn) {
  Write({{"c:\\LOGS\\Route.TXT", "x"}});
  EXPECT_THAT(folder.Files(), ElementsAre("Route.TXT"));
}

TEST_F(LeftFilesTest, AreFoundWithDoubledBackslashesAndNoneAtTheEnd) {
  Write({{"C:\\\\Logs\\\\lsi\\\\a", "x"}, {"C:\\Logs\\b", "x"}}, "C:\\Logs");
  EXPECT_THAT(folder.Files(), ElementsAre("b", "lsi/a"));
}

TEST_F(LeftFilesTest, HaveTheirNamesInTheMachinesCodePage) {
  Write({{"C:\\Logs\\gr\xFCn.txt", "x"}});
  EXPECT_THAT(folder.Files(), ElementsAre("grün.txt"));
}

TEST_F(LeftFilesTest, AreNamedWhenTheirNameCannotBeUsed) {
  for (const char* name : {"..", "..\\a", "a\\..\\..\\b", ".", "a:b", "a/b", "a\\", "a*", "a?",
                           "\"a\"", "<a", "a>", "a|b", "a\nb"}) {
    const LeftFiles left = Write({{std::string("C:\\Logs\\") + name, "x"}});
    EXPECT_EQ(left.written, 0u) << name;
    EXPECT_THAT(left.problems,
                ElementsAre(std::string("not written: ") + name + ": no name for a file here"));
  }
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(LeftFilesTest, AreNamedWhenTheyCannotBeWrittenAndTheOthersAreWritten) {
  folder.Write("taken", "a file");
  folder.Write("folder/inside", "");
  const LeftFiles left = Write({{"C:\\Logs\\a", "x"},
                                {"C:\\Logs\\folder", "x"},
                                {"C:\\Logs\\taken\\b", "x"},
                                {"C:\\Logs\\z", "x"}});
  EXPECT_EQ(left.written, 2u);
  EXPECT_THAT(
      left.problems,
      ElementsAre("cannot write " + PathText(folder.Path() / "folder") + ": it is a folder",
                  StartsWith("cannot write " + PathText(folder.Path() / "taken" / "b") + ": ")));
  EXPECT_EQ(folder.Read("taken"), "a file");
}

TEST(LeftFiles, HasNoNamesThatWindowsTakesForSomethingElse) {
  for (const char* name : {"con", "NUL.txt", "Com1", "lpt9.log", "aux", "dots..", "blank "}) {
    const test::TemporaryFolder folder;
    const LeftFiles left = WriteLeftFiles({{std::string("C:\\L\\") + name, "x"}}, "C:\\L\\",
                                          TextDecoder(1252), folder.Path());
    EXPECT_EQ(left.written, 0U) << name;
    EXPECT_THAT(left.problems, testing::ElementsAre(testing::HasSubstr(name))) << name;
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path())) << name;
  }
}

}  // namespace
}  // namespace host
