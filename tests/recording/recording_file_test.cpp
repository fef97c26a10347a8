#include <gmock/gmock.h>

#include <set>

#include "host/recorded/recorded_machine.h"
#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

/// A recording folder whose recording.json is `json`.
class RecordingFile : public testing::Test {
 protected:
  Recording Load(std::string_view json) {
    folder.Write("recording.json", json);
    return LoadRecording(folder.Path());
  }

  /// What is said about `json`, behind the path of the file; empty when it is taken.
  std::string Complaint(std::string_view json) {
    try {
      Load(json);
    } catch (const RecordingError& error) {
      const std::string said = error.what();
      const std::string start = (folder.Path() / "recording.json").string() + ": ";
      EXPECT_THAT(said, StartsWith(start));
      EXPECT_EQ(said.find('\n'), std::string::npos) << said;
      return said.substr(std::min(start.size(), said.size()));
    }
    return "";
  }

  test::TemporaryFolder folder;
};

// --- what is read

TEST_F(RecordingFile, ReadsTheSmallestRecording) {
  const Recording recording = Load(R"({"format": 1})");
  EXPECT_EQ(recording.languageId, 1033u);
  EXPECT_EQ(recording.codePage, 1252u);
  EXPECT_EQ(recording.hostExecutable, "C:\\Halyard\\halyard.exe");
  EXPECT_EQ(recording.logFolder, "C:\\Halyard\\logs\\");
  EXPECT_EQ(recording.console, "");
  EXPECT_THAT(recording.commands, IsEmpty());
  EXPECT_THAT(recording.files, IsEmpty());
  EXPECT_THAT(recording.readOnly, IsEmpty());
}

TEST_F(RecordingFile, ReadsEveryMember) {
  folder.Write("arp/a.txt", "a\r\n");
  folder.Write("err", "e");
  const Recording recording = Load(R"({
    "format": 1, "description": "größer → €", "languageId": 1031, "codePage": 850,
    "hostExecutable": "D:\\H\\h.exe", "logFolder": "D:\\L\\", "console": "one\ntwo\n",
    "commands": [{"tool": "arp.exe", "arguments": "-a", "stdout": "arp/a.txt", "stderr": "err",
                  "exitCode": 4294967295, "startError": 1, "pipeError": 2, "exitCodeError": 3}],
    "files": {"C:\\f": "err"}, "readOnly": ["C:\\r"]})");
  EXPECT_EQ(recording.description, "größer → €");
  EXPECT_EQ(recording.languageId, 1031u);
  EXPECT_EQ(recording.codePage, 850u);
  EXPECT_EQ(recording.hostExecutable, "D:\\H\\h.exe");
  EXPECT_EQ(recording.logFolder, "D:\\L\\");
  EXPECT_EQ(recording.console, "one\ntwo\n");
  EXPECT_THAT(recording.files, ElementsAre(Pair("C:\\f", "e")));
  EXPECT_THAT(recording.readOnly, ElementsAre("C:\\r"));
  ASSERT_EQ(recording.commands.size(), 1u);
  const RecordedCommand& command = recording.commands.front();
  EXPECT_EQ(command.tool, "arp.exe");
  EXPECT_EQ(command.arguments, "-a");
  EXPECT_EQ(command.standardOutput, "a\r\n");
  EXPECT_EQ(command.standardError, "e");
  EXPECT_EQ(command.exitCode, 4294967295u);
  EXPECT_EQ(command.startError, 1u);
  EXPECT_EQ(command.pipeError, 2u);
  EXPECT_EQ(command.exitCodeError, 3u);
}

TEST_F(RecordingFile, ReadsACommandWithItsToolOnly) {
  const Recording recording = Load(R"({"format": 1, "commands": [{"tool": "netstat"}]})");
  ASSERT_EQ(recording.commands.size(), 1u);
  EXPECT_EQ(recording.commands.front().arguments, "");
  EXPECT_EQ(recording.commands.front().standardOutput, "");
  EXPECT_EQ(recording.commands.front().exitCode, 0u);
}

TEST_F(RecordingFile, ReadsFilesByteForByte) {
  const std::string bytes("a\r\n\0\x1A\xFF\n", 7);
  folder.Write("out", bytes);
  const Recording recording =
      Load(R"({"format": 1, "commands": [{"tool": "t", "stdout": "out"}]})");
  EXPECT_EQ(recording.commands.front().standardOutput, bytes);
}

TEST_F(RecordingFile, ReadsOneBytePerCharacter) {
  EXPECT_EQ(Load(R"({"format": 1, "console": "a\u0000\u00e4ÿ"})").console,
            std::string("a\0\xE4\xFF", 4));
}

TEST_F(RecordingFile, ReadsFilePathsAsBytes) {
  folder.Write("f", "x");
  EXPECT_THAT(Load(R"({"format": 1, "files": {"C:\\grün": "f"}})").files,
              ElementsAre(Pair("C:\\gr\xFCn", "x")));
}

TEST_F(RecordingFile, PassesOverAByteOrderMark) {
  EXPECT_EQ(Complaint("\xEF\xBB\xBF{\"format\": 1}"), "");
}

TEST_F(RecordingFile, ReadsTheSamplesOfTheProduct) {
  std::set<std::string> read;
  for (const auto& entry : std::filesystem::directory_iterator(test::SamplesFolder())) {
    if (!entry.is_directory()) continue;
    EXPECT_THAT(LoadRecording(entry.path()).commands, Not(IsEmpty())) << entry.path();
    read.insert(entry.path().filename().string());
  }
  EXPECT_THAT(read, testing::IsSupersetOf({"two-socket-server", "bare-machine"}));
}

// --- no recording at all

TEST_F(RecordingFile, SaysThatAFolderIsMissing) {
  EXPECT_THAT([&] { LoadRecording(folder.Path() / "none"); },
              testing::ThrowsMessage<RecordingError>(AllOf(
                  HasSubstr("none: there is no such folder or ZIP file; a recording is a folder"),
                  HasSubstr("recording.json"))));
}

TEST_F(RecordingFile, SaysThatAFileIsNoRecording) {
  folder.Write("recording.json", R"({"format": 1})");
  EXPECT_THAT([&] { LoadRecording(folder.Path() / "recording.json"); },
              testing::ThrowsMessage<RecordingError>(
                  EndsWith("is one file of a recording; give the folder that it is in")));
  folder.Write("server.db", "SQLite");
  EXPECT_THAT([&] { LoadRecording(folder.Path() / "server.db"); },
              testing::ThrowsMessage<RecordingError>(HasSubstr("server.db: it is no ZIP file")));
}

TEST_F(RecordingFile, SaysThatTheFileIsMissing) {
  EXPECT_THAT([&] { LoadRecording(folder.Path()); },
              testing::ThrowsMessage<RecordingError>(
                  EndsWith("recording.json: there is no such file; a folder without it is "
                           "no recording")));
}

TEST_F(RecordingFile, SaysThatTheFileIsAFolder) {
  std::filesystem::create_directory(folder.Path() / "recording.json");
  EXPECT_THAT([&] { LoadRecording(folder.Path()); },
              testing::ThrowsMessage<RecordingError>(EndsWith("is no plain file")));
}

// --- JSON

TEST_F(RecordingFile, NamesLineAndColumnOfWhatIsNoJson) {
  EXPECT_THAT(Complaint("{\n  \"format\": 1,\n  \"files\": nothing\n}"),
              StartsWith("line 3, column 13: is no JSON: syntax error"));
}

TEST_F(RecordingFile, NamesTheEndOfACutFile) {
  EXPECT_THAT(Complaint("{\"format\": 1"), StartsWith("line 1, column 12: is no JSON: "));
}

TEST_F(RecordingFile, RefusesAnEmptyFile) {
  EXPECT_THAT(Complaint(""), StartsWith("line 1, column 1: is no JSON: "));
}

TEST_F(RecordingFile, RefusesTextBehindTheEnd) {
  EXPECT_THAT(Complaint("{\"format\": 1}\n}"), StartsWith("line 2, column 1: is no JSON: "));
}

TEST_F(RecordingFile, RefusesWhatIsNoUtf8) {
  EXPECT_THAT(Complaint("{\"format\": 1, \"console\": \"\xE4\"}"),
              AllOf(StartsWith("line 1, column "), HasSubstr("is no JSON: ")));
}

TEST_F(RecordingFile, RefusesANumberBeyondAllBounds) {
  EXPECT_THAT(Complaint("{\"format\": 1e999}"), StartsWith("line 1, column "));
}

TEST_F(RecordingFile, RefusesBracketsThatAreNestedTooDeep) {
  const std::string deep = std::string(100000, '[') + std::string(100000, ']');
  EXPECT_THAT(Complaint("{\"format\": " + deep + "}"), EndsWith("brackets are nested too deep"));
}

TEST_F(RecordingFile, RefusesAMemberThatStandsThereTwice) {
  EXPECT_EQ(Complaint("{\"format\": 1,\n \"format\": 1}"),
            "line 2, column 9: member \"format\" stands there for the second time in one object");
}

TEST_F(RecordingFile, LetsObjectsHaveMembersOfOneName) {
  EXPECT_EQ(Complaint(R"({"format": 1, "commands": [{"tool": "a"}, {"tool": "b"}]})"), "");
}

TEST_F(RecordingFile, RefusesWhatIsNoObject) {
  EXPECT_EQ(Complaint("[1]"), "has to be an object, { ... }");
}

// --- members

TEST_F(RecordingFile, RefusesARecordingWithoutAFormat) {
  EXPECT_EQ(Complaint("{}"), "format: is missing; it has to be 1");
}

TEST_F(RecordingFile, RefusesAnUnknownFormat) {
  EXPECT_EQ(Complaint(R"({"format": 2})"), "format: has to be 1, the only format there is, not 2");
  EXPECT_THAT(Complaint(R"({"format": 1.0})"), EndsWith("not 1.0"));
  EXPECT_THAT(Complaint(R"({"format": "1"})"), EndsWith("not \"1\""));
  EXPECT_THAT(Complaint(R"({"format": true})"), EndsWith("not true"));
}

TEST_F(RecordingFile, ComplainsAboutTheFormatBeforeAnythingElse) {
  EXPECT_THAT(Complaint(R"({"format": 2, "new": 1})"), StartsWith("format: "));
}

TEST_F(RecordingFile, RefusesAMemberThatItDoesNotKnow) {
  EXPECT_EQ(Complaint(R"({"format": 1, "languageID": 1031})"),
            "there is no member \"languageID\"; there are format, description, languageId, "
            "codePage, hostExecutable, logFolder, console, commands, files, readOnly");
  EXPECT_EQ(Complaint(R"({"format": 1, "commands": [{"tool": "a"}, {"tool": "a", "Stdout": 1}]})"),
            "commands[1]: there is no member \"Stdout\"; there are tool, arguments, stdout, "
            "stderr, exitCode, startError, pipeError, exitCodeError");
}

TEST_F(RecordingFile, ShowsAStrangeMemberNameOnOneLine) {
  EXPECT_THAT(Complaint("{\"format\": 1, \"a\\nä\\u001b\": 1}"),
              StartsWith("there is no member \"a\\n\\u00e4\\u001b\"; "));
}

TEST_F(RecordingFile, RefusesMembersOfAWrongType) {
  const std::pair<const char*, const char*> cases[] = {
      {R"("description": 1)", "description: has to be a text, not 1"},
      {R"("languageId": "x")",
       "languageId: has to be a whole number from 0 to 4294967295, not \"x\""},
      {R"("hostExecutable": null)", "hostExecutable: has to be a text, not null"},
      {R"("logFolder": {})", "logFolder: has to be a text, not an object"},
      {R"("console": [])", "console: has to be a text, not a list"},
      {R"("commands": {})", "commands: has to be a list, [ ... ], not an object"},
      {R"("commands": ["arp"])", "commands[0]: has to be an object, { ... }, not \"arp\""},
      {R"("commands": [{"tool": 1}])", "commands[0].tool: has to be a text, not 1"},
      {R"("commands": [{"tool": "a", "arguments": ["-a"]}])",
       "commands[0].arguments: has to be a text, not a list"},
      {R"("commands": [{"tool": "a", "stdout": true}])",
       "commands[0].stdout: has to be a text, not true"},
      {R"("commands": [{"tool": "a", "stderr": 0}])",
       "commands[0].stderr: has to be a text, not 0"},
      {R"("files": [])", "files: has to be an object, { ... }, not a list"},
      {R"("files": {"C:\\a": 1})", "files[\"C:\\\\a\"]: has to be a text, not 1"},
      {R"("readOnly": "C:\\a")", "readOnly: has to be a list, [ ... ], not \"C:\\\\a\""},
      {R"("readOnly": [1])", "readOnly[0]: has to be a text, not 1"},
  };
  for (const auto& [member, complaint] : cases) {
    EXPECT_EQ(Complaint(std::string("{\"format\": 1, ") + member + "}"), complaint);
  }
}

TEST_F(RecordingFile, RefusesNumbersOutsideTheirRange) {
  for (const char* member : {"exitCode", "startError", "pipeError", "exitCodeError"}) {
    for (const char* number : {"-1", "4294967296", "1.5", "18446744073709551616"}) {
      EXPECT_THAT(Complaint(std::string(R"({"format": 1, "commands": [{"tool": "a", ")") + member +
                            "\": " + number + "}]}"),
                  StartsWith(std::string("commands[0].") + member +
                             ": has to be a whole number from 0 to 4294967295, not "));
    }
  }
}

TEST_F(RecordingFile, RefusesACodePageThatItDoesNotKnow) {
  EXPECT_EQ(Complaint(R"({"format": 1, "codePage": 1253})"),
            "codePage: 1253 is not known; it has to be one of 437, 850, 852, 932, 936, 1250, 1251, "
            "1252, 65001");
}

TEST_F(RecordingFile, TakesEveryCodePageThatItKnows) {
  for (const char* page : {"437", "850", "852", "932", "936", "1250", "1251", "1252", "65001"}) {
    EXPECT_EQ(Complaint(std::string(R"({"format": 1, "codePage": )") + page + "}"), "");
  }
}

TEST_F(RecordingFile, RefusesALogFolderWithoutABackslashAtItsEnd) {
  EXPECT_THAT(Complaint(R"({"format": 1, "logFolder": "C:\\logs"})"),
              StartsWith("logFolder: has to end with a backslash"));
  EXPECT_THAT(Complaint(R"({"format": 1, "logFolder": ""})"),
              StartsWith("logFolder: has to end with a backslash"));
}

TEST_F(RecordingFile, RefusesALogFolderThatNoLiveMachineCanHave) {
  const auto complaintAbout = [&](std::size_t length) {
    const std::string folder = "C:\\\\" + std::string(length - 4, 'l') + "\\\\";
    return Complaint(R"({"format": 1, "logFolder": ")" + folder + R"("})");
  };
  EXPECT_EQ(complaintAbout(255), "");
  EXPECT_EQ(complaintAbout(256),
            "logFolder: is longer than 255 characters, its last backslash included");
}

TEST_F(RecordingFile, RefusesAnEmptyHostExecutable) {
  EXPECT_EQ(Complaint(R"({"format": 1, "hostExecutable": ""})"),
            "hostExecutable: is empty; it has to be a path");
}

TEST_F(RecordingFile, RefusesACharacterThatIsNoByte) {
  EXPECT_EQ(Complaint(R"({"format": 1, "console": "aä€"})"),
            "console: character 3 is above U+00FF; each character stands for one byte, U+0000 to "
            "U+00FF");
  EXPECT_THAT(Complaint(R"({"format": 1, "commands": [{"tool": "a", "arguments": "\u0100"}]})"),
              StartsWith("commands[0].arguments: character 1 is above U+00FF"));
  EXPECT_THAT(Complaint(R"({"format": 1, "commands": [{"tool": "😀"}]})"),
              StartsWith("commands[0].tool: character 1 is above U+00FF"));
  EXPECT_THAT(Complaint(R"({"format": 1, "files": {"C:\\Ā": "f"}})"),
              StartsWith("files[\"C:\\\\\\u0100\"]: character 4 is above U+00FF"));
  EXPECT_THAT(Complaint(R"({"format": 1, "readOnly": ["Ā"]})"), StartsWith("readOnly[0]: "));
}

TEST_F(RecordingFile, RefusesACommandWithoutATool) {
  EXPECT_EQ(Complaint(R"({"format": 1, "commands": [{"arguments": "-a"}]})"),
            "commands[0].tool: is missing; it has to be a program's file name");
}

TEST_F(RecordingFile, RefusesAToolThatIsNoFileName) {
  for (const char* tool : {"", ".exe", "C:\\\\t\\\\arp.exe", "t/arp.exe", "\\\"arp\\\""}) {
    EXPECT_THAT(Complaint(std::string(R"({"format": 1, "commands": [{"tool": ")") + tool + "\"}]}"),
                StartsWith("commands[0].tool: has to be a program's file name, without folder"));
  }
}

TEST_F(RecordingFile, RefusesAnAnswerOfWhatTheInterpreterDoes) {
  EXPECT_EQ(Complaint(R"({"format": 1, "commands": [{"tool": "Copy", "exitCode": 1}]})"),
            "commands[0].exitCode: the interpreter does copy by itself; its entry can only carry "
            "an error");
  EXPECT_THAT(Complaint(R"({"format": 1, "commands": [{"tool": "md", "stdout": "x"}]})"),
              StartsWith("commands[0].stdout: the interpreter does md by itself"));
  EXPECT_EQ(Complaint(R"({"format": 1, "commands": [{"tool": "md", "startError": 5}]})"), "");
}

TEST_F(RecordingFile, RefusesAFileThatIsAFolder) {
  EXPECT_THAT(Complaint(R"({"format": 1, "files": {"C:\\a\\": "f"}})"),
              EndsWith("has to be the Windows path of a file"));
  EXPECT_THAT(Complaint(R"({"format": 1, "files": {"": "f"}})"),
              EndsWith("has to be the Windows path of a file"));
}

TEST_F(RecordingFile, RefusesTwoMembersForOneFile) {
  folder.Write("f", "x");
  EXPECT_THAT(Complaint(R"({"format": 1, "files": {"C:\\a": "f", "c:\\\\A": "f"}})"),
              HasSubstr("names a file that another member names too"));
}

TEST_F(RecordingFile, RefusesAnEmptyReadOnlyPath) {
  EXPECT_EQ(Complaint(R"({"format": 1, "readOnly": ["C:\\a", ""]})"),
            "readOnly[1]: is empty; it has to be a Windows path");
}

// --- the files that a recording names

TEST_F(RecordingFile, SaysThatANamedFileIsMissing) {
  EXPECT_EQ(Complaint(R"({"format": 1, "commands": [{"tool": "t", "stdout": "a/b.txt"}]})"),
            "commands[0].stdout: \"a/b.txt\": there is no such file");
}

TEST_F(RecordingFile, SaysThatANamedFileIsAFolder) {
  folder.Write("a/b", "");
  EXPECT_EQ(Complaint(R"({"format": 1, "files": {"C:\\a": "a"}})"),
            "files[\"C:\\\\a\"]: \"a\": is no plain file");
}

TEST_F(RecordingFile, RefusesPathsThatLeaveTheFolder) {
  for (const char* path : {"../f", "a/../../f", "a/..", "/etc/hosts", "C:f", "C:/f", "a\\\\f",
                           "..\\\\f", "", "\\u0000"}) {
    EXPECT_THAT(Complaint(std::string(R"({"format": 1, "files": {"C:\\a": ")") + path + "\"}}"),
                EndsWith("has to name a file in the recording's folder, by a path with / that does "
                         "not leave it"))
        << path;
  }
}

TEST_F(RecordingFile, TakesDotsInsideAFileName) {
  folder.Write("a..b/..c", "x");
  EXPECT_THAT(Load(R"({"format": 1, "files": {"C:\\a": "a..b/..c"}})").files,
              ElementsAre(Pair("C:\\a", "x")));
}

}  // namespace
}  // namespace host
