#include "host/commands/option_set.h"

#include <gmock/gmock.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "host/text/usage_error.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Words = std::vector<std::string>;

/// Reads `words` into the options that `define` defines.
void Read(Words words, const std::function<void(OptionSet&)>& define,
          const std::function<void(const OptionSet&)>& look = {}) {
  CLI::App app;
  OptionSet set(app);
  define(set);
  std::reverse(words.begin(), words.end());
  app.parse(words);
  set.CheckValues();
  if (look) look(set);
}

std::string Complaint(const Words& words, const std::function<void(OptionSet&)>& define) {
  try {
    Read(words, define);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "no complaint";
}

TEST(OptionSet, ReadsPathsAsUtf8) {
  std::optional<std::filesystem::path> path;
  Read({"--replay", "Gerät 连接"},
       [&](OptionSet& set) { set.AddPath("--replay", OptionValue::kFolder, path, ""); });
  EXPECT_EQ(path->u8string(), u8"Gerät 连接");
}

TEST(OptionSet, LeavesValuesThatAreNotGivenAlone) {
  std::optional<std::filesystem::path> path;
  std::optional<unsigned> seconds;
  std::optional<Destination> trace;
  Destination output;
  std::string format = "table";
  Read({}, [&](OptionSet& set) {
    set.AddPath("--replay", OptionValue::kFolder, path, "");
    set.AddSeconds("--tool-limit", seconds, 9, "");
    set.AddDestination("--trace", trace, "");
    set.AddDestination("--output", output, "");
    set.AddChoice("--format", {"table"}, format, "");
  });
  EXPECT_FALSE(path || seconds || trace);
  EXPECT_TRUE(output.IsStandardOutput());
  EXPECT_EQ(format, "table");
}

TEST(OptionSet, TakesADashForStandardOutput) {
  std::optional<Destination> trace;
  Destination output{"before"};
  const auto define = [&](OptionSet& set) {
    set.AddDestination("--trace", trace, "");
    set.AddDestination("--output", output, "");
  };
  Read({"--trace", "-", "--output", "-"}, define);
  EXPECT_TRUE(trace->IsStandardOutput() && output.IsStandardOutput());
  Read({"--trace", "t.jsonl", "--output", "o.json"}, define);
  EXPECT_EQ(trace->path, "t.jsonl");
  EXPECT_EQ(output.path, "o.json");
  EXPECT_FALSE(trace->IsStandardOutput() || output.IsStandardOutput());
}

TEST(OptionSet, KeepsRepeatedNamesInOrder) {
  Words tables;
  Read({"--table", "B", "--table=A", "--table", "B"},
       [&](OptionSet& set) { set.AddNames("--table", OptionValue::kTable, tables, ""); });
  EXPECT_THAT(tables, ElementsAre("B", "A", "B"));
}

TEST(OptionSet, ReadsSeconds) {
  std::optional<unsigned> seconds;
  Read({"--tool-limit", "120"},
       [&](OptionSet& set) { set.AddSeconds("--tool-limit", seconds, 120, ""); });
  EXPECT_EQ(seconds, 120U);
}

TEST(OptionSet, KnowsWhichOptionsWereGiven) {
  bool flag = false;
  bool other = false;
  Read(
      {"--dry-run"},
      [&](OptionSet& set) {
        set.AddFlag("--dry-run", flag, "");
        set.AddFlag("--other", other, "");
      },
      [](const OptionSet& set) {
        EXPECT_TRUE(set.IsGiven("--dry-run"));
        EXPECT_FALSE(set.IsGiven("--other"));
      });
  EXPECT_TRUE(flag);
  EXPECT_FALSE(other);
}

TEST(OptionSet, RefusesAnEmptyPathWithItsRemedy) {
  std::optional<std::filesystem::path> path;
  Destination output;
  const auto define = [&](OptionSet& set) {
    set.AddPath("--replay", OptionValue::kFolder, path, "");
    set.AddDestination("--output", output, "");
  };
  EXPECT_EQ(Complaint({"--replay", ""}, define), "--replay is empty: give a path");
  EXPECT_EQ(Complaint({"--output", ""}, define),
            "--output is empty: give a file, or - for standard output");
}

TEST(OptionSet, SuggestsTheChoiceThatWasMeant) {
  std::string shell;
  EXPECT_EQ(Complaint({"--shell", "bsh"},
                      [&](OptionSet& set) {
                        set.AddChoice("--shell", {"bash", "powershell"}, shell, "");
                      }),
            "there is no shell bsh; did you mean bash? (shells: bash, powershell)");
}

TEST(OptionSet, DescribesItsOptionsInTheirOrder) {
  std::optional<std::filesystem::path> path;
  std::string format;
  bool flag = false;
  Read(
      {},
      [&](OptionSet& set) {
        set.AddFlag("--dry-run", flag, "");
        set.AddPath("--replay", OptionValue::kFolder, path, "");
        set.AddChoice("--format", {"table", "json"}, format, "");
      },
      [](const OptionSet& set) {
        const std::vector<OptionDescription> options = set.Describe();
        ASSERT_EQ(options.size(), 3U);
        EXPECT_EQ(options[0].name, "--dry-run");
        EXPECT_EQ(options[0].value, OptionValue::kNone);
        EXPECT_EQ(options[1].value, OptionValue::kFolder);
        EXPECT_THAT(options[2].choices, ElementsAre("table", "json"));
      });
}

}  // namespace
}  // namespace host
