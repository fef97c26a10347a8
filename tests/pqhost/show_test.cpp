// pqhost show: every file that the program writes is read back as what it was made of.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/collected.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zipped_folder.h"

namespace host {
namespace {

using test::HostRun;
using test::RunHost;
using test::Sample;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> ListSamples() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(test::SamplesFolder())) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  return names;
}

/// What docs/json.md says that no result keeps.
void LevelLosses(nlohmann::json& document) {
  for (nlohmann::json& table : document["tables"]) {
    for (nlohmann::json& attachment : table["attachments"]) attachment.erase("bytes");
  }
  for (nlohmann::json& finding : document["health"]["findings"]) {
    for (nlohmann::json& evidence : finding["evidence"]) {
      const bool isOfAnswer =
          evidence["part"] == "sensors" || evidence["id"].get<std::string>().starts_with("intel");
      if (isOfAnswer) evidence.erase("place");
    }
  }
}

/// What docs/sql.md says that a database does not keep, besides.
void LevelLossesOfDatabase(nlohmann::json& document) {
  for (nlohmann::json& table : document["tables"]) {
    table.erase("layout");
    table.erase("instances");
    table.erase("attachments");
    std::sort(table["columns"].begin(), table["columns"].end());
    // Of a class that has no rows a database knows all columns.
    if (table["rows"].empty()) table.erase("columns");
  }
}

class Show : public testing::Test {
 protected:
  /// The file that `collect --format` writes of a sample.
  std::string Write(const std::string& sample, const std::string& format) {
    const std::string name = sample + "." + format;
    RunHost({"collect", "--replay", Sample(sample), "--format", format, "--output", folder / name});
    return folder / name;
  }
  /// A file as JSON, without the time at which it was written.
  nlohmann::json ShowAsJson(const std::string& file) {
    const HostRun run = RunHost({"show", file, "--format", "json"});
    EXPECT_LE(run.exitCode, 1) << file << ": " << run.error;
    return nlohmann::json::parse(run.out, nullptr, /*allow_exceptions=*/false);
  }
  nlohmann::json ReadWritten(const std::string& sample) {
    return nlohmann::json::parse(
        folder.Read(std::filesystem::path(Write(sample, "json")).filename().string()));
  }
  /// The line of a refusal.
  std::string Refusal(const std::string& bytes) {
    folder.Write("refused", bytes);
    const HostRun run = RunHost({"show", folder / "refused", "--format", "json"});
    EXPECT_EQ(run.exitCode, 2) << run.error;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 1) << run.error;
    return run.error;
  }

  test::TemporaryFolder folder;
};

TEST_F(Show, GivesBackADocument) {
  for (const std::string& sample : ListSamples()) {
    nlohmann::json made = ReadWritten(sample);
    nlohmann::json shown = ShowAsJson(folder / (sample + ".json"));
    LevelLosses(made);
    LevelLosses(shown);
    EXPECT_EQ(nlohmann::json::diff(made, shown), nlohmann::json::array()) << sample;
  }
}

TEST_F(Show, GivesBackAReport) {
  for (const std::string& sample : ListSamples()) {
    nlohmann::json made = ReadWritten(sample);
    nlohmann::json shown = ShowAsJson(Write(sample, "html"));
    made["collected"] = shown["collected"];
    if (made["health"]["asOfFrom"] == shown["health"]["asOfFrom"]) {
      made["health"]["asOf"] = shown["health"]["asOf"];
    }
    LevelLosses(made);
    LevelLosses(shown);
    EXPECT_EQ(nlohmann::json::diff(made, shown), nlohmann::json::array()) << sample;
  }
}

TEST_F(Show, GivesBackADatabase) {
  for (const std::string& sample : ListSamples()) {
    nlohmann::json made = ReadWritten(sample);
    nlohmann::json shown = ShowAsJson(Write(sample, "sqlite"));
    made["collected"] = shown["collected"];
    if (made["health"]["asOfFrom"] == shown["health"]["asOfFrom"]) {
      made["health"]["asOf"] = shown["health"]["asOf"];
    }
    for (nlohmann::json* document : {&made, &shown}) {
      LevelLosses(*document);
      LevelLossesOfDatabase(*document);
    }
    EXPECT_EQ(nlohmann::json::diff(made, shown), nlohmann::json::array()) << sample;
  }
}

TEST_F(Show, TellsARecordingAsCollectDoes) {
  folder.Write("no.extension", test::ZipFolder(Sample("two-socket-server")));
  const HostRun zipped = RunHost({"show", folder / "no.extension", "--format", "csv"});
  const HostRun collected =
      RunHost({"collect", "--replay", Sample("two-socket-server"), "--format", "csv"});
  EXPECT_EQ(zipped.out, collected.out);
  EXPECT_EQ(zipped.error, collected.error);
  EXPECT_EQ(zipped.exitCode, collected.exitCode);
  EXPECT_EQ(RunHost({"show", Sample("two-socket-server"), "--format", "csv"}).out, collected.out);
}

TEST_F(Show, WritesEveryFormatOfEveryFile) {
  for (const char* from : {"json", "html", "sqlite"}) {
    const std::string file = Write("two-socket-server", from);
    for (const char* to : {"table", "ndjson", "csv", "html", "sqlite", "prometheus"}) {
      const HostRun run = RunHost({"show", file, "--format", to});
      EXPECT_EQ(run.exitCode, 0) << from << " to " << to << ": " << run.error;
      EXPECT_GT(run.out.size(), 1000U) << from << " to " << to;
    }
  }
}

TEST_F(Show, TellsWhatAResultDoesNotKeep) {
  EXPECT_THAT(RunHost({"show", Write("vroc", "json")}).error,
              HasSubstr("is a result, no recording: the modules' log and what tools said"));
  EXPECT_THAT(RunHost({"show", Write("vroc", "sqlite")}).error,
              HasSubstr("is a result, no recording: how tables want to be shown and what tools"));
}

TEST_F(Show, KeepsTheLogOfADatabase) {
  const auto count = [](const std::string& file) {
    return RunHost({"query", file, "SELECT count(*) FROM log", "--format", "csv"}).out;
  };
  const std::string made = Write("vroc", "sqlite");
  RunHost({"show", made, "--format", "sqlite", "--output", folder / "again"});
  EXPECT_EQ(count(folder / "again"), count(made));
}

TEST_F(Show, RefusesFilesOfOthers) {
  EXPECT_THAT(Refusal(""), HasSubstr("is none of the files that pqhost writes"));
  EXPECT_THAT(Refusal("some text"), HasSubstr("is none of the files that pqhost writes"));
  EXPECT_THAT(Refusal("{}"), HasSubstr("is JSON, but no collection"));
  EXPECT_THAT(Refusal(RunHost({"health", "--replay", Sample("vroc"), "--format", "json"}).out),
              HasSubstr("is JSON, but no collection"));
  EXPECT_THAT(Refusal("<!DOCTYPE html><html></html>"), HasSubstr("has no data of a collection"));
  EXPECT_THAT(Refusal("PK\3\4"), StartsWith("pqhost: "));
  EXPECT_THAT(RunHost({"show", folder / "none"}).error, HasSubstr("there is no such file"));
  EXPECT_EQ(RunHost({"show"}).exitCode, 2);
}

TEST_F(Show, RefusesADatabaseOfSeveralMachines) {
  RunHost({"health", "--replay", Sample("vroc"), "--replay", Sample("blade"), "--format", "sqlite",
           "--output", folder / "several"});
  EXPECT_THAT(Refusal(folder.Read("several")), StartsWith("pqhost: "));
}

// Cut anywhere, a file is refused in one line, or all that is read of it is there.
TEST_F(Show, RefusesWhatIsNotWhole) {
  constexpr std::size_t kSteps = 50;
  for (const char* format : {"json", "html", "sqlite"}) {
    const std::string file = Write("vroc", format);
    const std::string whole = folder.Read(std::string("vroc.") + format);
    const std::string shown = RunHost({"show", file, "--format", "json"}).out;
    std::size_t refused = 0;
    for (std::size_t step = 0; step < kSteps; ++step) {
      folder.Write("cut", whole.substr(0, whole.size() * step / kSteps));
      const HostRun run = RunHost({"show", folder / "cut", "--format", "json"});
      if (run.exitCode == 0) {
        EXPECT_EQ(run.out, shown) << format << " " << step;
        continue;
      }
      ++refused;
      EXPECT_EQ(run.exitCode, 2) << format << " " << step;
      EXPECT_THAT(run.error, AllOf(StartsWith("pqhost: "), EndsWith("\n")));
      EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 1) << run.error;
    }
    EXPECT_GE(refused, kSteps / 2) << format;
  }
}

TEST_F(Show, RefusesMembersOfAnotherKind) {
  const nlohmann::json whole = ReadWritten("vroc");
  const std::vector<std::string> places = {"/format",
                                           "/collected",
                                           "/machine/recorded",
                                           "/machine/codePage",
                                           "/machine/name",
                                           "/machine/serials",
                                           "/modules",
                                           "/modules/0/name",
                                           "/tables",
                                           "/tables/0/class",
                                           "/tables/0/status",
                                           "/tables/0/layout/by",
                                           "/tables/0/columns",
                                           "/tables/0/columns/0/key",
                                           "/tables/0/instances",
                                           "/tables/0/rows",
                                           "/tables/0/rows/0",
                                           "/tables/0/attachments",
                                           "/parts",
                                           "/parts/drives",
                                           "/parts/drives/0",
                                           "/parts/drives/0/id",
                                           "/problems"};
  for (const std::string& place : places) {
    nlohmann::json changed = whole;
    ASSERT_TRUE(changed.contains(nlohmann::json::json_pointer(place))) << place;
    changed[nlohmann::json::json_pointer(place)] = true;
    if (place == "/machine/recorded") changed[nlohmann::json::json_pointer(place)] = "yes";
    EXPECT_THAT(Refusal(changed.dump()), StartsWith("pqhost: ")) << place;
  }
  nlohmann::json twice = whole;
  twice["tables"].push_back(twice["tables"][0]);
  EXPECT_THAT(Refusal(twice.dump()), HasSubstr("twice"));
  nlohmann::json newer = whole;
  newer["format"] = 7;
  EXPECT_THAT(Refusal(newer.dump()), HasSubstr("has the format 7"));
}

TEST_F(Show, WritesNotOverWhatItShows) {
  const std::string file = Write("vroc", "json");
  const HostRun run = RunHost({"show", file, "--format", "html", "--output", file});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(folder.Read("vroc.json"), StartsWith("{"));
}

TEST_F(Show, IsWhatAQueryTakesToo) {
  const std::string sql = "SELECT id, state FROM drives";
  const std::string asked =
      RunHost({"query", "--replay", Sample("vroc"), sql, "--format", "csv"}).out;
  EXPECT_THAT(asked, HasSubstr("intel"));
  folder.Write("zipped", test::ZipFolder(Sample("vroc")));
  for (const std::string& file : {Write("vroc", "json"), Write("vroc", "html"),
                                  Write("vroc", "sqlite"), folder / "zipped", Sample("vroc")}) {
    EXPECT_EQ(RunHost({"query", file, sql, "--format", "csv"}).out, asked) << file;
  }
  const HostRun several =
      RunHost({"query", folder / "vroc.json", folder / "vroc.html",
               "SELECT machine FROM machine WHERE name = 'name'", "--format", "csv"});
  EXPECT_THAT(several.out, AllOf(HasSubstr("vroc\r\n"), HasSubstr("vroc_2\r\n")));
}

}  // namespace
}  // namespace host
