#include "fleet/parser.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>

#include "fleet/batch.h"
#include "fleet/isolation.h"
#include "host/recording/recording_writer.h"
#include "tests/support/random_recording.h"
#include "tests/support/samples.h"

namespace {

using fleet::Parsed;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string Zip(const host::Recording& recording) {
  std::ostringstream out;
  host::WriteZippedRecording(recording, out);
  return std::move(out).str();
}

host::LocalTime MakeTime() {
  return {std::chrono::sys_days{std::chrono::year{2026} / 11 / 18}, std::chrono::hours(1)};
}

class Parser : public testing::Test {
 protected:
  Parsed Parse(const host::Recording& recording) {
    return parser.Parse(Zip(recording), host::ComputeContentKey(recording), MakeTime());
  }

  const std::string* FindRows(const Parsed& parsed, const char* table) const {
    const auto found = std::find_if(
        parsed.tables.begin(), parsed.tables.end(),
        [&](const fleet::ParsedTable& one) { return tables.At(one.table).name == table; });
    return found == parsed.tables.end() ? nullptr : &found->rows;
  }

  fleet::RowTables tables;
  fleet::Parser parser{tables};
};

TEST_F(Parser, GivesRowsThatFitTheTables) {
  for (const auto& [name, sample] : test::LoadSamples()) {
    SCOPED_TRACE(name);
    const Parsed parsed = Parse(sample);
    EXPECT_EQ(parsed.refusal, "");
    EXPECT_EQ(fleet::FindMisfit(parsed, tables), "");
    EXPECT_THAT(parsed.verdict, Not(IsEmpty()));
  }
}

TEST_F(Parser, KnowsNothingOfTheRecordingBefore) {
  const host::Recording one = test::MakeRandomRecording(1);
  const std::string alone =
      fleet::Pack(fleet::Parser(tables).Parse(Zip(one), host::ComputeContentKey(one), MakeTime()));
  for (std::uint64_t seed = 2; seed < 12; ++seed) Parse(test::MakeRandomRecording(seed));
  EXPECT_EQ(fleet::Pack(Parse(one)), alone);
}

TEST_F(Parser, OpensNothingOnceItIsWarm) {
  for (const auto& [name, sample] : test::LoadSamples()) {
    SCOPED_TRACE(name);
    const std::string zip = Zip(sample);
    const std::string key = host::ComputeContentKey(sample);
    const fleet::IsolatedAnswer isolated =
        fleet::RunIsolated([&] { return fleet::Pack(parser.Parse(zip, key, MakeTime())); }, {},
                           fleet::Sandbox::kStrict);
    EXPECT_EQ(isolated.failure, "");
    EXPECT_EQ(isolated.answer, fleet::Pack(Parse(sample)));
  }
}

// What a rule finds in so many entries would fill more memory than SQLite uses before it makes a
// file.
TEST_F(Parser, OpensNothingForManyFindings) {
  constexpr int kEntries = 60000;
  std::string log = "ipmiutil sel version 3.18\r\n";
  for (int i = 0; i < kEntries; ++i) {
    log += fmt::format(
        "{:04x} 11/{:02}/26 08:{:02}:{:02} CRT BMC  Memory #{:02x}  Uncorrectable ECC, DIMM(C{}) "
        "6f [a1 ff 08]\r\n",
        i % 0x10000, i % 17 + 1, i / 60 % 60, i % 60, i % 250, i % 8);
  }
  log += "ipmiutil sel, completed successfully\r\n";
  host::Recording recording = test::LoadSamples().at("two-socket-server");
  for (host::RecordedCommand& command : recording.commands) {
    if (command.arguments == "sel") command.standardOutput = host::Bytes(log);
  }
  const std::string zip = Zip(recording);
  const fleet::IsolatedAnswer isolated = fleet::RunIsolated(
      [&] {
        return fleet::Pack(parser.Parse(zip, host::ComputeContentKey(recording), MakeTime()));
      },
      {}, fleet::Sandbox::kStrict);
  EXPECT_EQ(isolated.failure, "");
}

TEST_F(Parser, OpensNothingForAnyCodePage) {
  for (const std::uint32_t codePage : {437U, 850U, 852U, 932U, 936U, 1250U, 1251U, 1252U, 65001U}) {
    host::Recording recording = test::LoadSamples().at("two-socket-server");
    recording.codePage = codePage;
    recording.description = "other words";
    for (host::RecordedCommand& command : recording.commands) {
      std::string bytes(command.standardOutput);
      std::replace(bytes.begin(), bytes.end(), 'e', '\x88');
      command.standardOutput = host::Bytes(bytes);
    }
    const fleet::IsolatedAnswer isolated = fleet::RunIsolated(
        [&] {
          return fleet::Pack(
              parser.Parse(Zip(recording), host::ComputeContentKey(recording), MakeTime()));
        },
        {}, fleet::Sandbox::kStrict);
    EXPECT_EQ(isolated.failure, "") << codePage;
  }
}

TEST_F(Parser, KeepsNoWholeFiles) {
  const Parsed parsed = Parse(test::LoadSamples().at("two-socket-server"));
  const std::string* rows = FindRows(parsed, "class_lsilink");
  ASSERT_NE(rows, nullptr);
  EXPECT_THAT(*rows, HasSubstr(R"({"file":")"));
  EXPECT_THAT(*rows, HasSubstr(R"("sha256":")"));
  EXPECT_THAT(*rows, Not(HasSubstr("Product Name")));
}

TEST_F(Parser, KeepsTheDrivesThatAreNotWell) {
  const Parsed parsed = Parse(test::LoadSamples().at("two-socket-server"));
  EXPECT_THAT(parsed.driveErrors, HasSubstr("Z4K002C9144"));
  EXPECT_EQ(Parse(test::LoadSamples().at("bare-machine")).driveErrors, "");
}

TEST_F(Parser, RefusesOtherContentThanItsKeys) {
  const std::string zip = Zip(test::LoadSamples().at("vroc"));
  EXPECT_THAT(parser.Parse(zip, std::string(64, '0'), MakeTime()).refusal,
              HasSubstr("another content key"));
  EXPECT_THAT(parser.Parse(zip.substr(0, zip.size() / 2), "", MakeTime()).refusal,
              HasSubstr("no ZIP file"));
}

TEST(Parsed, SurvivesPacking) {
  Parsed parsed;
  parsed.refusal = "no";
  parsed.tables = {{3, "a\tb\n"}, {4, ""}};
  parsed.problems = 2;
  parsed.statuses = "{}";
  parsed.verdict = "ok";
  parsed.counts = {1, 2, 3, 4};
  parsed.reasons = {"x", ""};
  parsed.driveErrors = "d\n";
  const std::string packed = fleet::Pack(parsed);
  EXPECT_EQ(fleet::Pack(fleet::Unpack(packed)), packed);
  EXPECT_EQ(fleet::Unpack(packed).counts.notice, 4U);
  for (std::size_t size = 0; size < packed.size(); ++size) {
    EXPECT_THROW(fleet::Unpack(packed.substr(0, size)), std::runtime_error) << size;
  }
}

TEST(Parsed, IsRefusedWhenItNamesOtherTablesOrCells) {
  const fleet::RowTables tables;
  Parsed parsed;
  parsed.tables = {{100'000, ""}};
  EXPECT_THAT(fleet::FindMisfit(parsed, tables), HasSubstr("names tables that there are not"));
  parsed.tables = {{0, ""}, {0, ""}};
  EXPECT_THAT(fleet::FindMisfit(parsed, tables), HasSubstr("names tables that there are not"));
  parsed.tables = {{0, "one cell alone of another server's\n"}};
  EXPECT_THAT(fleet::FindMisfit(parsed, tables), HasSubstr("the parser's answer is not used"));
  parsed.tables.clear();
  parsed.driveErrors = "x\n";
  EXPECT_THAT(fleet::FindMisfit(parsed, tables), HasSubstr("the parser's answer is not used"));
}

}  // namespace
