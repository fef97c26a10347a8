#include "host/pqhost/options.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "host/formats/formats.h"
#include "host/text/usage_error.h"
#include "host/text/version.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Words = std::vector<std::string>;

/// What is said about a wrong command line; always one line.
std::string Complaint(const Words& arguments) {
  try {
    ParseOptions(arguments);
  } catch (const UsageError& error) {
    std::string text = error.what();
    EXPECT_EQ(text.find('\n'), std::string::npos) << text;
    return text;
  }
  return "no complaint";
}

std::string Help(const Words& arguments) { return ParseOptions(arguments).text; }

TEST(Options, DefaultsToTablesOnStandardOutput) {
  const Options options = ParseOptions({"collect"});
  EXPECT_EQ(options.command, Command::kCollect);
  EXPECT_EQ(options.format, "table");
  EXPECT_TRUE(options.output.IsStandardOutput());
  EXPECT_THAT(options.modules, IsEmpty());
  EXPECT_THAT(options.tables, IsEmpty());
  EXPECT_FALSE(options.replay || options.logFolder || options.plugin || options.trace);
}

TEST(Options, ReadsAllOfCollect) {
  const Options options = ParseOptions(
      {"collect", "--module", "A", "--module=B", "--table", "T", "--table", "T", "--replay", "rec",
       "--log-folder", "logs", "--format", "json", "--output", "o.json", "--trace", "t.jsonl"});
  EXPECT_THAT(options.modules, ElementsAre("A", "B"));
  EXPECT_THAT(options.tables, ElementsAre("T", "T"));
  EXPECT_EQ(options.replay, std::filesystem::path("rec"));
  EXPECT_EQ(options.logFolder, std::filesystem::path("logs"));
  EXPECT_EQ(options.format, "json");
  EXPECT_EQ(options.output.path, std::filesystem::path("o.json"));
  EXPECT_EQ(options.trace->path, std::filesystem::path("t.jsonl"));
}

TEST(Options, ReadsPathsAsUtf8) {
  const Options options = ParseOptions({"collect", "--replay", "Gerät 连接"});
  EXPECT_EQ(options.replay->u8string(), u8"Gerät 连接");
}

TEST(Options, TakesADashForStandardOutput) {
  EXPECT_TRUE(ParseOptions({"collect", "--output", "-"}).output.IsStandardOutput());
  EXPECT_TRUE(ParseOptions({"collect", "--trace", "-"}).trace->IsStandardOutput());
}

TEST(Options, LeavesStandardOutputToTheTrace) {
  EXPECT_EQ(ParseOptions({"collect", "--trace", "-"}).format, "none");
  EXPECT_EQ(ParseOptions({"collect", "--trace", "-", "--output", "x"}).format, "table");
  EXPECT_EQ(ParseOptions({"collect", "--trace", "x"}).format, "table");
  EXPECT_EQ(ParseOptions({"collect", "--trace", "-", "--format", "none"}).format, "none");
}

TEST(Options, RefusesTraceAndResultsInOnePlace) {
  EXPECT_THAT(Complaint({"collect", "--trace", "-", "--format", "json"}),
              HasSubstr("both want standard output"));
  EXPECT_THAT(Complaint({"collect", "--trace", "x", "--output", "x"}), HasSubstr("the same file"));
}

TEST(Options, ReadsModules) {
  EXPECT_EQ(ParseOptions({"modules"}).command, Command::kModules);
  EXPECT_EQ(ParseOptions({"modules", "--format", "json"}).format, "json");
  EXPECT_EQ(ParseOptions({"modules", "--plugin", "x.dll"}).plugin, std::filesystem::path("x.dll"));
}

TEST(Options, WantsACommand) {
  EXPECT_EQ(Complaint({}),
            "nothing to do: give a command (collect, modules, query, check; see pqhost --help)");
}

TEST(Options, SuggestsTheCommandThatWasMeant) {
  EXPECT_EQ(Complaint({"colect"}),
            "there is no command colect; did you mean collect? (commands: collect, modules, query, "
            "check; see "
            "pqhost --help)");
  EXPECT_EQ(
      Complaint({"zzz"}),
      "there is no command zzz (commands: collect, modules, query, check; see pqhost --help)");
}

TEST(Options, SuggestsTheOptionThatWasMeant) {
  EXPECT_EQ(Complaint({"collect", "--modul", "A"}),
            "there is no option --modul; did you mean --module? (see pqhost collect --help)");
  EXPECT_EQ(Complaint({"collect", "--replya=x"}),
            "there is no option --replya; did you mean --replay? (see pqhost collect --help)");
  EXPECT_EQ(Complaint({"--verzion"}),
            "there is no option --verzion; did you mean --version? (see pqhost --help)");
}

TEST(Options, SuggestsTheFormatThatWasMeant) {
  EXPECT_EQ(Complaint({"collect", "--format", "jsn"}),
            "there is no format jsn; did you mean json? (formats: table, json, ndjson, csv, html, "
            "sqlite, none)");
  EXPECT_EQ(Complaint({"modules", "--format", "csv"}),
            "there is no format csv (formats: table, json, markdown)");
}

TEST(Options, RefusesWordsThatBelongToNothing) {
  EXPECT_EQ(Complaint({"collect", "ARPINFO"}),
            "collect takes no argument ARPINFO (see pqhost collect --help)");
  EXPECT_EQ(Complaint({"collect", "--module", "A", "B"}),
            "collect takes no argument B (see pqhost collect --help)");
}

TEST(Options, RefusesASecondCommand) {
  EXPECT_EQ(Complaint({"modules", "collect"}),
            "modules takes no argument collect (see pqhost modules --help)");
  EXPECT_EQ(Complaint({"collect", "collect"}),
            "collect takes no argument collect (see pqhost collect --help)");
}

TEST(Options, RefusesAnOptionWithoutItsValue) {
  for (const char* option : {"--module", "--table", "--replay", "--log-folder", "--plugin",
                             "--format", "--output", "--trace", "--record", "--tool-limit"}) {
    EXPECT_THAT(Complaint({"collect", option}), HasSubstr(option)) << option;
  }
}

TEST(Options, RefusesAnEmptyPath) {
  EXPECT_THAT(Complaint({"collect", "--replay", ""}), HasSubstr("--replay is empty"));
  EXPECT_THAT(Complaint({"collect", "--output", ""}), HasSubstr("--output is empty"));
}

TEST(Options, RefusesASingleOptionGivenTwice) {
  EXPECT_THAT(Complaint({"collect", "--replay", "a", "--replay", "b"}), HasSubstr("--replay"));
}

TEST(Options, RefusesAPluginForAReplay) {
  EXPECT_THAT(Complaint({"collect", "--replay", "r", "--plugin", "p"}),
              HasSubstr("--plugin has no use with --replay"));
}

TEST(Options, DoesNotTakeASlashForAnOption) {
  EXPECT_EQ(Complaint({"collect", "/module"}),
            "collect takes no argument /module (see pqhost collect --help)");
}

TEST(Options, ReadsRecordingFolderAndToolLimit) {
  const Options options = ParseOptions({"collect", "--record", "r", "--tool-limit", "120"});
  EXPECT_EQ(options.record, "r");
  EXPECT_EQ(options.toolLimit, 120u);
}

TEST(Options, HaveNoToolLimitUnlessGiven) {
  EXPECT_EQ(ParseOptions({"collect"}).toolLimit, std::nullopt);
}

TEST(Options, RefuseAToolLimitOfNoTime) {
  EXPECT_THAT(Complaint({"collect", "--tool-limit", "0"}), HasSubstr("--tool-limit"));
}

TEST(Options, RefuseToRecordAReplay) {
  EXPECT_EQ(Complaint({"collect", "--replay", "a", "--record", "b"}),
            "--record has no use with --replay, which is a recording already: leave one of them "
            "away");
}

TEST(Options, RefuseAToolLimitInAReplay) {
  EXPECT_EQ(Complaint({"collect", "--replay", "a", "--tool-limit", "5"}),
            "--tool-limit has no use with --replay, which runs no tools: leave one of them away");
}

TEST(Options, HelpNamesEveryOptionAndHasExamples) {
  EXPECT_THAT(Help({"--help"}), HasSubstr("Examples:"));
  EXPECT_THAT(Help({"--help"}), HasSubstr("collect"));
  const std::string collect = Help({"collect", "--help"});
  EXPECT_THAT(collect, HasSubstr("Usage: pqhost collect [OPTIONS]"));
  EXPECT_THAT(collect, HasSubstr("Examples:"));
  EXPECT_THAT(collect, HasSubstr("Exit codes:"));
  for (const char* option : {"--module", "--table", "--replay", "--log-folder", "--plugin",
                             "--format", "--output", "--trace"}) {
    EXPECT_THAT(collect, HasSubstr(option)) << option;
  }
  for (const Format& format : Formats()) EXPECT_THAT(collect, HasSubstr(format.name));
  EXPECT_THAT(Help({"modules", "--help"}), Not(HasSubstr("--replay")));
}

TEST(Options, SaysItsVersion) {
  EXPECT_EQ(Help({"--version"}), std::string("pqhost ") + kVersion + "\n");
}

TEST(Options, TakesAQueryWithOrWithoutADatabase) {
  const Options live = ParseOptions({"query", "SELECT 1"});
  EXPECT_EQ(live.sql, "SELECT 1");
  EXPECT_FALSE(live.database);
  const Options file = ParseOptions({"query", "server.db", "SELECT 2"});
  EXPECT_EQ(file.sql, "SELECT 2");
  EXPECT_EQ(file.database, std::filesystem::path("server.db"));
}

TEST(Options, RefusesADatabaseBesideARecording) {
  EXPECT_EQ(Complaint({"query", "server.db", "SELECT 1", "--replay", "x"}),
            "a database and --replay are both there to be asked: give one of them");
}

TEST(Options, RefusesAQueryWithoutSql) {
  EXPECT_THAT(Complaint({"query"}), testing::StartsWith("there is no query"));
}

}  // namespace
}  // namespace host
