// pqhost diff: its recordings, formats and exit codes.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/database/database.h"
#include "tests/support/program/filled_database.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using test::HostRun;
using test::RunHost;
using test::Sample;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

HostRun Diff(const std::string& before, const std::string& after,
             const std::vector<std::string>& more = {}) {
  std::vector<std::string> arguments{"diff", before, after};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return RunHost(arguments);
}

/// A copy of a sample with a newer firmware and a new entry in its log, of a sensor that nothing
/// else tells about.
class DiffCommand : public testing::Test {
 protected:
  DiffCommand() {
    fs::copy(Sample("two-socket-server"), folder / "later", fs::copy_options::recursive);
    Exchange("korvaxoem_ver.txt", "3.62.17", "3.63.02");
    Exchange("sel.txt", "ipmiutil sel, completed",
             "000d 11/18/26 09:00:00 CRT BMC  Power Supply #99  AC Lost     6f [03 ff ff]\r\n"
             "ipmiutil sel, completed");
  }

  void Exchange(const std::string& file, const std::string& from, const std::string& to) {
    const std::string name = "later/ipmiutil/" + file;
    std::string text = folder.Read(name);
    const std::size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    folder.Write(name, text.replace(at, from.size(), to));
  }

  HostRun DiffLater(const std::vector<std::string>& more = {}) const {
    return Diff(before, folder / "later", more);
  }

  const test::TemporaryFolder folder;
  const std::string before = Sample("two-socket-server");
};

TEST_F(DiffCommand, SaysThatThereIsNoDifference) {
  const HostRun run = Diff(before, before);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "no difference\n");
  EXPECT_EQ(run.error, "");
}

TEST_F(DiffCommand, TellsWhatChanged) {
  const HostRun run = DiffLater();
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, StartsWith("two-socket-server 2026-11-18 09:41 -> later 2026-11-18 09:41   "
                                  " 0 parts, 1 cell, 1 log entry, 1 finding\n"));
  EXPECT_THAT(run.out, HasSubstr("  ~ VERINFO BMC Firmware: '3.62.17' -> '3.63.02'\n"));
  EXPECT_THAT(run.out, HasSubstr("  log SEL: 1 new, 1 of them warnings or worse:\n"
                                 "      2026-11-18T09:00:00 AC Lost\n"));
  EXPECT_EQ(run.error, "");
}

// What a result does not show as its tool told it is no difference there either.
TEST_F(DiffCommand, ComparesNoCellOfAResultThatDoesNotFitItsReport) {
  const auto keep = [&](const std::string& sample, const std::string& format) {
    const std::string file = folder / (sample + "." + format);
    RunHost({"collect", "--replay", Sample(sample), "--format", format, "--output", file});
    return file;
  };
  for (const char* format : {"json", "sqlite", "html"}) {
    SCOPED_TRACE(format);
    const HostRun run = Diff(keep("two-socket-server", format), keep("hba-only", format));
    EXPECT_THAT(run.out, HasSubstr("~ RAIDINFO Product Name"));
    EXPECT_THAT(run.out, Not(HasSubstr("~ RAIDINFO FW Version")));
    EXPECT_THAT(run.out, Not(HasSubstr("~ PMCVER")));
    EXPECT_THAT(run.out, HasSubstr("1 cell of RAIDINFO, 2 cells of PMCVER: not read in the second: "
                                   "its columns do not fit its report"));
    // Rows with the interpreter's words are no facts.
    EXPECT_THAT(Diff(keep("blade", format), keep("hostile", format)).out,
                HasSubstr("LANINFO: not read in the second: the recording has no such answer"));
  }
}

TEST_F(DiffCommand, ComparesNoCellOfAnOldResultThatTellsOfMisfits) {
  const std::string file = folder / "old.json";
  RunHost({"collect", "--replay", Sample("hba-only"), "--format", "json", "--output", file});
  nlohmann::ordered_json result = nlohmann::ordered_json::parse(folder.Read("old.json"));
  for (auto& table : result["tables"]) table["status"].erase("unfitLabels");
  folder.Write("old.json", result.dump());
  EXPECT_THAT(Diff(before, file).out, Not(HasSubstr("~ PMCVER")));
}

TEST_F(DiffCommand, NamesWhatThereIsToCompare) {
  EXPECT_THAT(DiffLater({"--part", "disks"}).error,
              HasSubstr("--part disks: there is no such part to compare (parts: controllers, "));
  EXPECT_THAT(DiffLater({"--table", "DISKS"}).error, HasSubstr("there is no such table (tables: "));
}

TEST_F(DiffCommand, WritesJson) {
  const HostRun run = DiffLater({"--format", "json"});
  EXPECT_EQ(run.exitCode, 1);
  const nlohmann::json difference = nlohmann::json::parse(run.out);
  EXPECT_EQ(difference["format"], 1);
  EXPECT_EQ(difference["old"]["name"], "two-socket-server");
  EXPECT_EQ(difference["new"]["name"], "later");
  EXPECT_EQ(difference["otherMachine"], false);
  ASSERT_EQ(difference["cells"].size(), 1U);
  EXPECT_EQ(difference["cells"][0]["class"], "VERINFO");
  EXPECT_EQ(difference["cells"][0]["new"], "3.63.02");
  ASSERT_EQ(difference["logs"].size(), 1U);
  EXPECT_EQ(difference["logs"][0]["entries"][0]["number"], 13);
  ASSERT_EQ(difference["findings"].size(), 1U);
  EXPECT_EQ(difference["findings"][0]["change"], "new");
  EXPECT_EQ(difference["findings"][0]["old"], nullptr);
}

TEST_F(DiffCommand, WritesCsv) {
  const HostRun run = DiffLater({"--format", "csv"});
  EXPECT_THAT(run.out, StartsWith("kind,part,id,serial,change,column,old,new,text\r\n"));
  EXPECT_THAT(run.out, HasSubstr("\r\ncell,VERINFO,BMC Firmware,,changed,,3.62.17,3.63.02,\r\n"));
  EXPECT_THAT(run.out, HasSubstr("\r\n\r\nlog,number,time,level,text\r\n"
                                 "SEL,13,2026-11-18T09:00:00,3,AC Lost\r\n"));
}

TEST_F(DiffCommand, WritesADatabase) {
  const std::string file = folder / "changes.db";
  EXPECT_EQ(DiffLater({"--format", "sqlite", "--output", file}).exitCode, 1);
  host::Database database{fs::path(file)};
  EXPECT_THAT(test::AskRows(database,
                            "SELECT part, id, old, new FROM differences "
                            "WHERE kind = 'cell'"),
              ElementsAre("VERINFO|BMC Firmware|3.62.17|3.63.02"));
  EXPECT_THAT(test::AskRows(database, "SELECT log, number + 1, text FROM new_entries"),
              ElementsAre("SEL|14|AC Lost"));
}

TEST_F(DiffCommand, ComparesWhatIsAskedFor) {
  EXPECT_EQ(DiffLater({"--part", "drives"}).exitCode, 0);
  const HostRun logs = DiffLater({"--part", "events"});
  EXPECT_THAT(logs.out, HasSubstr("log SEL"));
  EXPECT_THAT(logs.out, Not(HasSubstr("VERINFO")));
  EXPECT_THAT(DiffLater({"--ignore", "VERINFO.BMC Firmware"}).out, Not(HasSubstr("VERINFO")));
  EXPECT_THAT(DiffLater({"--table", "SENSORINFO", "--part", "leds"}).out, "no difference\n");
}

TEST_F(DiffCommand, TellsWhenTheSecondIsOlder) {
  fs::copy(before, folder / "earlier", fs::copy_options::recursive);
  std::string text = folder.Read("earlier/submission.json");
  text.replace(text.find("2026-11-18T09:41"), 10, "2026-11-14");
  folder.Write("earlier/submission.json", text);
  EXPECT_EQ(Diff(folder / "earlier", before).error, "");
  EXPECT_THAT(Diff(before, folder / "earlier").error, HasSubstr("the older one comes first"));
}

// The other side's entries are left out of the comparison, but they are there.
TEST_F(DiffCommand, CallsNoLogEmptyThatTheOtherSideCouldNotRead) {
  Exchange("sel.txt", "Used=12", "Used=14");
  EXPECT_THAT(DiffLater().out, HasSubstr("? not compared: log SEL: not read in the second: cut "));
  EXPECT_THAT(DiffLater().out, Not(HasSubstr("it shows no entry")));
  const HostRun mirrored = Diff(folder / "later", before);
  EXPECT_THAT(mirrored.out, HasSubstr("? not compared: log SEL: not read in the first: cut "));
  EXPECT_THAT(mirrored.out, Not(HasSubstr("it shows no entry")));
}

// What is judged as of now was not collected now.
TEST_F(DiffCommand, TellsNoTimeOfWhatTellsNone) {
  const std::string undated = Sample("vroc");
  EXPECT_THAT(Diff(undated, before).out,
              StartsWith("vroc an unknown time -> two-socket-server 2026-"));
  EXPECT_THAT(Diff(before, undated).out, HasSubstr(" -> vroc an unknown time  "));
  EXPECT_THAT(Diff(undated, before, {"--format", "html"}).out,
              HasSubstr(">Changes since an unknown time</h2>"));
}

TEST_F(DiffCommand, EndsWithTwoInAnyTrouble) {
  EXPECT_EQ(Diff(before, "nowhere").exitCode, 2);
  EXPECT_EQ(Diff("nowhere", before).exitCode, 2);
  EXPECT_EQ(Diff("", before).exitCode, 2);
  EXPECT_EQ(RunHost({"diff", before}).exitCode, 2);
  EXPECT_EQ(RunHost({"diff"}).exitCode, 2);
  EXPECT_EQ(Diff(before, before, {before}).exitCode, 2);
  EXPECT_EQ(DiffLater({"--format", "xml"}).exitCode, 2);
  EXPECT_EQ(DiffLater({"--ignore", "drives"}).exitCode, 2);
  EXPECT_EQ(DiffLater({"--table", "NETSTATINFO"}).exitCode, 2);
  EXPECT_EQ(DiffLater({"--part", "drive"}).exitCode, 2);
  EXPECT_EQ(DiffLater({"--output", folder / "no/such/folder"}).exitCode, 2);
  EXPECT_EQ(DiffLater({"--output", folder / "later/result"}).exitCode, 2);
}

/// A result of collecting `recording` in each format that can be read back.
std::vector<std::string> WriteResults(const std::string& recording,
                                      const test::TemporaryFolder& folder) {
  std::vector<std::string> files;
  for (const char* format : {"json", "sqlite", "html"}) {
    files.push_back(folder / (std::string("result.") + format));
    RunHost({"collect", "--replay", recording, "--format", format, "--output", files.back()});
  }
  return files;
}

TEST_F(DiffCommand, TakesResultsForRecordings) {
  const std::string changes = DiffLater({"--format", "csv"}).out;
  for (const std::string& file : WriteResults(before, folder)) {
    EXPECT_EQ(Diff(file, before).out, "no difference\n") << file;
    EXPECT_EQ(Diff(before, file).out, "no difference\n") << file;
    const HostRun run = Diff(file, folder / "later", {"--format", "csv"});
    EXPECT_EQ(run.out, changes) << file;
    EXPECT_THAT(run.error, HasSubstr("is a result, no recording"));
  }
}

TEST_F(DiffCommand, RefusesWhatIsNoCollection) {
  const auto refuse = [&](const std::string& file) {
    const HostRun run = Diff(file, before);
    EXPECT_EQ(run.exitCode, 2) << file;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.error, HasSubstr(file.substr(file.rfind('/') + 1)));
    return run.error;
  };
  folder.Write("rows.csv", "number,text\r\n1,one\r\n");
  EXPECT_THAT(refuse(folder / "rows.csv"), HasSubstr("is none of the files that pqhost writes"));
  const std::string answer = folder / "answer.json";
  RunHost({"query", "--replay", before, "--format", "json", "--output", answer, "SELECT 1"});
  EXPECT_THAT(refuse(answer), HasSubstr("is the answer to a query"));
}

TEST_F(DiffCommand, WritesAPage) {
  const HostRun run = DiffLater({"--format", "html"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, StartsWith("<!DOCTYPE html>"));
  EXPECT_THAT(run.out, HasSubstr("<del>3.62.17</del></td><td>3.63.02</td>"));
  EXPECT_THAT(run.out, Not(HasSubstr("<script")));
  EXPECT_THAT(Diff(before, before, {"--format", "html"}).out, HasSubstr("No difference to "));
}

TEST_F(DiffCommand, IsToldInTheReportOfTheLater) {
  Exchange("sel.txt", "11/18/26 09:00:00", "11/18/26 10:00:00");  // The newest of all logs.
  const HostRun run =
      RunHost({"collect", "--replay", folder / "later", "--compare", before, "--format", "html"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, HasSubstr(">Changes since 2026-11-18 09:41</h2>"));
  EXPECT_THAT(run.out, HasSubstr("<del>3.62.17</del></td><td>3.63.02</td>"));
  EXPECT_THAT(run.out, HasSubstr("</a> <ins>new</ins></th><td>2026-11-18T10:00:00</td>"));
  EXPECT_THAT(RunHost({"collect", "--replay", before, "--format", "html"}).out,
              Not(HasSubstr("id=\"changes\"")));
}

TEST_F(DiffCommand, IsOfTheReportAloneWhenCollecting) {
  const auto refuse = [&](const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"collect", "--replay", before, "--compare", before};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const HostRun run = RunHost(arguments);
    EXPECT_EQ(run.exitCode, 2) << more.front();
    EXPECT_THAT(run.error, HasSubstr("--compare"));
  };
  refuse({"--format", "json"});
  refuse({"--format", "html", "--redact"});
  refuse({"--dry-run"});
  EXPECT_EQ(RunHost({"collect", "--replay", before, "--compare", folder / "nowhere", "--format",
                     "html", "--output", folder / "report.html"})
                .exitCode,
            2);
  EXPECT_THAT(folder.Files(), Not(testing::Contains("report.html")));
}

TEST_F(DiffCommand, ObeysNothingThatAToolPrinted) {
  Exchange("korvaxoem_ver.txt", "3.63.02", "3\x1b[2J");
  EXPECT_THAT(DiffLater().out, HasSubstr("'3\\x1b[2J'"));
  for (const char* format : {"table", "json", "csv", "html"}) {
    EXPECT_THAT(RunHost({"diff", before, folder / "later", "--format", format}, {.out = true}).out,
                Not(HasSubstr("\x1b")))
        << format;
  }
}

TEST_F(DiffCommand, WritesNoDatabaseToATerminal) {
  EXPECT_EQ(
      RunHost({"diff", before, folder / "later", "--format", "sqlite"}, {.out = true}).exitCode, 2);
}

}  // namespace
