#include "host/redact/redaction.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/answers/assessment.h"
#include "host/answers/difference/difference.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/collect.h"
#include "host/recording/recording_writer.h"
#include "host/redact/value_finder.h"
#include "host/text/ascii.h"
#include "tests/support/samples.h"

namespace host {
namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const Pseudonyms kPseudonyms("a key of the tests");

RedactedRecording Redact(const Recording& recording, std::string_view profile = kPublicProfile) {
  return RedactRecording(recording, MakeRules(profile), kPseudonyms);
}

/// A value of each kind, and the line that tells of which kind it is.
struct Canary {
  ValueKind kind;
  const char* line;
  const char* value;
};
constexpr Canary kCanaries[] = {
    {ValueKind::kPassword, "Password: Canary+pass4", "Canary+pass4"},
    {ValueKind::kLogin, "Login: canarylogin5", "canarylogin5"},
    {ValueKind::kMail, "to canary.mail6@rack.example", "canary.mail6@rack.example"},
    {ValueKind::kPerson, "User Name: canaryperson7", "canaryperson7"},
    {ValueKind::kIpv4, "address 10.77.211.93", "10.77.211.93"},
    {ValueKind::kIpv6, "address 2001:db8:ca:a21::77", "2001:db8:ca:a21::77"},
    {ValueKind::kMac, "MAC: ca-fe-21-7a-9b-0c", "ca-fe-21-7a-9b-0c"},
    {ValueKind::kWwn, "WWN = 5CAFE217A9B0C311", "5CAFE217A9B0C311"},
    {ValueKind::kGuid, "GUID: cafe217a-9b0c-4a2f-8311-77e0bb1c9d55",
     "cafe217a-9b0c-4a2f-8311-77e0bb1c9d55"},
    {ValueKind::kSerial, "Serial Number: CNRY8X77Q", "CNRY8X77Q"},
    {ValueKind::kAsset, "Asset Tag: CNRY-A-91", "CNRY-A-91"},
    {ValueKind::kHost, "Host Name: canaryhost9", "canaryhost9"},
    {ValueKind::kPath, "saved in D:\\canarystore3\\x", "canarystore3"},
};

std::string ToUtf16(std::string_view text, bool isBig) {
  std::string wide;
  for (const char c : text) wide += isBig ? "\0"s + c : c + "\0"s;
  return wide;
}

std::string ToPercent(std::string_view text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string escaped;
  for (const char c : text) escaped += {'%', kDigits[c >> 4], kDigits[c & 15]};
  return escaped;
}

std::string ToHex(std::string_view text, const char* separator) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (const char c : text) {
    if (!hex.empty()) hex += separator;
    hex += {kDigits[c >> 4 & 15], kDigits[c & 15]};
  }
  return hex;
}

std::string ToBase64(std::string_view text) {
  constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string encoded;
  for (std::size_t at = 0; at < text.size(); at += 3) {
    unsigned bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      bits = bits << 8 | (at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      encoded += at + i > text.size() ? '=' : kAlphabet[bits >> (18 - 6 * i) & 63];
    }
  }
  return encoded;
}

std::string ToUpper(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

/// The value in all the ways in which tools may write it, with what tells that it ends.
std::vector<std::string> Encode(const Canary& canary) {
  const std::string value = canary.value;
  std::vector<std::string> all = {value,
                                  ToUpper(value),
                                  LowerCase(value),
                                  ToUtf16(value, false),
                                  ToUtf16(value, true),
                                  ToPercent(value),
                                  ToHex(value, ""),
                                  ToHex(value, " ")};
  for (const char* before : {"", ":", "::"}) all.push_back(ToBase64(before + value + ":"));
  all.push_back(ToBase64(ToUtf16(value, false)));
  if (canary.kind == ValueKind::kMac || canary.kind == ValueKind::kWwn) {
    std::string digits = value;
    std::erase(digits, '-');
    for (const char* separator : {"", ":", "-", " "}) {
      std::string spelled;
      for (std::size_t i = 0; i < digits.size(); i += 2) {
        if (i > 0) spelled += separator;
        spelled += digits.substr(i, 2);
      }
      all.push_back(spelled);
    }
  }
  return all;
}

/// A text that has all canaries in all encodings.
std::string MakeCanaries() {
  std::string text;
  for (const Canary& canary : kCanaries) {
    text.append(canary.line).append("\r\n");
    for (const std::string& encoded : Encode(canary)) text += "x " + encoded + " \r\n";
  }
  return text;
}

/// The rules that found something, and how serious that is.
std::vector<std::string> ListHits(const Recording& recording) {
  std::vector<std::string> hits;
  for (const HealthFinding& finding : Assess(Collect(recording)).health.findings) {
    for (const HealthHit& hit : finding.hits) {
      hits.push_back(hit.rule + ' ' + GetWord(hit.severity) + ' ' + hit.part);
    }
  }
  std::sort(hits.begin(), hits.end());
  return hits;
}

/// What differs between two machines, but for the names of things.
std::vector<std::string> ListDifferences(const Recording& before, const Recording& after) {
  const Collection old = Collect(before);
  const Collection changed = Collect(after);
  const Assessment ofOld = Assess(old);
  const Assessment ofChanged = Assess(changed);
  const Difference difference = FindDifference({old, ofOld}, {changed, ofChanged});
  std::vector<std::string> lines;
  for (const PartDifference& part : difference.parts) {
    lines.push_back(part.table + ' ' + std::to_string(static_cast<int>(part.change)));
    for (const ChangedColumn& column : part.columns) lines.push_back(column.column);
  }
  for (const CellDifference& cell : difference.cells) lines.push_back(cell.className);
  for (const FindingDifference& finding : difference.findings) lines.push_back(finding.rule);
  for (const LogDifference& log : difference.logs) {
    lines.push_back(log.log + ' ' + std::to_string(log.entries.size()));
  }
  return lines;
}

/// All files that `recording` is written as.
std::string WriteAll(const Recording& recording) {
  std::string all;
  VisitRecordingFiles(recording, [&](const std::string& name, std::string_view bytes) {
    all.append(name).append("\n").append(bytes);
  });
  return all;
}

TEST(Redaction, LeavesNoCanaryOfAnyKindInAnyEncoding) {
  Recording recording;
  recording.commands.push_back({"ipmiutilnh.exe",
                                "sel -N canaryhost9 -U canarylogin5 -P Canary+pass4",
                                MakeCanaries(), MakeCanaries()});
  recording.files["C:\\Support\\x.txt"] = MakeCanaries();
  recording.description = "of canaryhost9";
  recording.logFolder = "C:\\Users\\canaryperson7\\logs\\";
  recording.console = "canaryhost9 canarylogin5 Canary+pass4\n";
  recording.submission = Submission{.name = "CANARYHOST9", .serials = {"CNRY8X77Q"}};
  const RedactedRecording redacted = Redact(recording);
  EXPECT_THAT(redacted.leaks, IsEmpty());
  EXPECT_THAT(redacted.leftOut, IsEmpty());
  const std::string all = WriteAll(redacted.recording);
  const std::string lower = LowerCase(all);
  for (const Canary& canary : kCanaries) {
    for (const std::string& encoded : Encode(canary)) {
      EXPECT_EQ(all.find(encoded), std::string::npos) << canary.line << ": " << encoded;
    }
    EXPECT_EQ(lower.find(LowerCase(canary.value)), std::string::npos) << canary.line;
    const bool isListed = std::ranges::any_of(redacted.values, [&](const ListedValue& value) {
      return value.kind == canary.kind && LowerCase(value.text) == LowerCase(canary.value);
    });
    EXPECT_TRUE(isListed) << canary.line;
  }
  EXPECT_THAT(all, HasSubstr("***"));
  EXPECT_EQ(LowerCase(redacted.recording.submission->name).find("canary"), std::string::npos);
  EXPECT_EQ(redacted.recording.console.substr(redacted.recording.console.rfind(' ')), " ***\n");
}

TEST(Redaction, ReplacesWhatTheProfileSaysAndNoMore) {
  Recording recording;
  recording.commands.push_back({"arp.exe", "-a", MakeCanaries(), {}});
  const std::string all = WriteAll(Redact(recording, kSupportProfile).recording);
  for (const Canary& canary : kCanaries) {
    const bool stays = DescribeKind(canary.kind).profile == Profile::kPublic;
    EXPECT_EQ(all.find(canary.value) != std::string::npos, stays) << canary.line;
  }
}

/// What must be the same before and after: tables, rows, statuses, and how many parts.
std::string DescribeTables(const Recording& recording) {
  const Collection collection = Collect(recording);
  std::string text;
  for (const CollectedTable& table : collection.tables) {
    text += table.className + " " + std::to_string(table.RowCount());
    text += " " + table.status.outcome + "\n";
    if (table.rows == nullptr) continue;
    for (const Row& row : table.rows->rows) text += std::to_string(row.ValueCount()) + " ";
  }
  const Parts parts = ReadParts(collection);
  for (const PartTable& table : GetPartTables()) {
    text += std::string(table.name) + " " + std::to_string(table.count(parts)) + "\n";
  }
  return text;
}

TEST(Redaction, LeavesTablesAndPartsAsTheyAre) {
  for (const auto& [name, recording] : test::LoadSamples()) {
    const RedactedRecording redacted = Redact(recording);
    EXPECT_THAT(redacted.leaks, IsEmpty()) << name;
    if (name == "hostile") {
      EXPECT_THAT(redacted.leftOut, testing::SizeIs(1));
      continue;
    }
    EXPECT_THAT(redacted.leftOut, IsEmpty()) << name;
    EXPECT_EQ(DescribeTables(redacted.recording), DescribeTables(recording)) << name;
  }
}

TEST(Redaction, LeavesVerdictsAsTheyAre) {
  for (const auto& [name, recording] : test::LoadSamples()) {
    if (name == "hostile") continue;  // What cannot be searched is left out, and is not known then.
    EXPECT_EQ(ListHits(Redact(recording).recording), ListHits(recording)) << name;
  }
}

TEST(Redaction, LeavesDifferencesAsTheyAre) {
  const Recording before = test::LoadSamples().at("two-socket-server");
  Recording after = before;
  for (RecordedCommand& command : after.commands) {
    std::string text(command.standardOutput.Text());
    // A drive was replaced, and the BMC has other firmware.
    for (const auto& [from, to] :
         {std::pair("S4K002CBB81", "NEW00000001"), std::pair("3.62.17", "3.63.02")}) {
      const std::size_t at = text.find(from);
      if (at != std::string::npos) text.replace(at, std::string(from).size(), to);
    }
    command.standardOutput = text;
  }
  const std::vector<std::string> differences = ListDifferences(before, after);
  EXPECT_THAT(differences, Not(IsEmpty()));
  EXPECT_EQ(ListDifferences(Redact(before).recording, Redact(after).recording), differences);
}

TEST(Redaction, LeavesTablesAsTheyAreAmongCanariesInEveryOutput) {
  for (auto [name, recording] : test::LoadSamples()) {
    if (name == "hostile") continue;
    for (RecordedCommand& command : recording.commands) {
      if (!command.standardOutput.empty()) command.standardOutput += "\r\n" + MakeCanaries();
    }
    for (auto& [path, bytes] : recording.files) bytes += "\r\n" + MakeCanaries();
    const RedactedRecording redacted = Redact(recording);
    EXPECT_THAT(redacted.leaks, IsEmpty()) << name;
    const std::string all = WriteAll(redacted.recording);
    for (const Canary& canary : kCanaries) {
      for (const std::string& encoded : Encode(canary)) {
        EXPECT_EQ(all.find(encoded), std::string::npos) << name << ": " << encoded;
      }
    }
  }
}

TEST(Redaction, IsTheSameForTheSameKey) {
  const Recording sample = test::LoadSamples().at("two-socket-server");
  EXPECT_EQ(ComputeContentKey(Redact(sample).recording),
            ComputeContentKey(Redact(sample).recording));
  const Pseudonyms others("another key of the tests");
  EXPECT_NE(
      ComputeContentKey(Redact(sample).recording),
      ComputeContentKey(RedactRecording(sample, MakeRules(kPublicProfile), others).recording));
}

TEST(Redaction, KeepsEqualValuesEqualAndOthersApart) {
  const RedactedRecording redacted = Redact(test::LoadSamples().at("two-socket-server"));
  std::set<std::string> pseudonyms;
  for (const ListedValue& value : redacted.values) {
    if (value.kind == ValueKind::kPassword) continue;
    EXPECT_TRUE(pseudonyms.insert(value.pseudonym).second) << value.text;
    EXPECT_EQ(value.pseudonym.size(), value.kind == ValueKind::kMac    ? 12U
                                      : value.kind == ValueKind::kGuid ? 32U
                                                                       : value.text.size());
  }
  EXPECT_GT(pseudonyms.size(), 100U);
}

TEST(Redaction, TellsKindsAndCounts) {
  Recording recording;
  recording.commands.push_back({"net.exe", "", "SN = AB12CD34\nAB12CD34\n", {}});
  const Redaction told = *Redact(recording).recording.submission->redacted;
  EXPECT_EQ(told.profile, "public");
  EXPECT_EQ(told.counts.at("serial"), 2U);
  EXPECT_EQ(told.counts.at("ipv4"), 0U);
  EXPECT_EQ(told.leftOut, 0U);
}

// So no table is made of a list of connections before it is redacted.
TEST(Redaction, KnowsNoValuesByTheColumnsOfConnections) {
  const pq::TableDescription* connections = FindTableDescription("NETSTATINFO");
  ASSERT_NE(connections, nullptr);
  ASSERT_FALSE(connections->columns.empty());
  for (const pq::ColumnDescription& column : connections->columns) {
    EXPECT_EQ(FindLabelKind(column.label), nullptr) << column.label;
    EXPECT_EQ(FindLabelKind(column.key), nullptr) << column.key;
  }
}

TEST(Redaction, LeavesOutWhatCannotBeSearchedAndTellsIt) {
  Recording recording;
  recording.commands.push_back({"arp.exe", "-a", "PK\x03\x04 something", {}});
  recording.files["C:\\Support\\a.zip"] = "PK\x03\x04 more";
  const RedactedRecording redacted = Redact(recording);
  EXPECT_THAT(redacted.leftOut, testing::ElementsAre("output of arp -a", "C:\\Support\\a.zip"));
  EXPECT_TRUE(redacted.recording.commands[0].standardOutput.empty());
  EXPECT_THAT(redacted.recording.files, IsEmpty());
  EXPECT_EQ(redacted.recording.submission->redacted->leftOut, 2U);
}

// "Drive" is a word of every report; a server may be called so all the same.
TEST(Redaction, ReplacesOrdinaryWordsOnlyWhereTheyAreNames) {
  Recording recording;
  recording.commands.push_back(
      {"storcli.exe", "", "Host Name = drive\nDrive /c0 Drive:\nSN = 1234\n1234 MB\n", {}});
  const std::string text(Redact(recording).recording.commands[0].standardOutput.Text());
  EXPECT_THAT(text, Not(HasSubstr("= drive\n")));
  EXPECT_THAT(text, HasSubstr("\nDrive /c0 Drive:\n"));
  EXPECT_THAT(text, Not(HasSubstr("= 1234\n")));
  EXPECT_THAT(text, HasSubstr("\n1234 MB\n"));
}

TEST(Redaction, FindsNamesBeyondAsciiInTheirSpellings) {
  Recording recording;
  recording.commands.push_back(
      {"net.exe", "", "Host Name: b\xfcro-pc7\n" + ToUtf16("b\xfcro-pc7", false) + "\n", {}});
  recording.submission = Submission{.name = "b\xc3\xbcro-pc7"};
  const RedactedRecording redacted = Redact(recording);
  EXPECT_THAT(WriteAll(redacted.recording), Not(HasSubstr("ro-pc7")));
  EXPECT_THAT(WriteAll(redacted.recording), Not(HasSubstr(ToUtf16("ro-pc7", false))));
  EXPECT_THAT(redacted.recording.submission->name, Not(HasSubstr("ro-pc7")));
}

TEST(Redaction, FindsNamesOfOtherScriptsInUtf16) {
  const std::string narrow = "\xf3\xe7\xe5\xeb-77";
  const std::string little = "\x43\x04\x37\x04\x35\x04\x3b\x04-\0007\0007\0"s;
  const std::string big = "\x04\x43\x04\x37\x04\x35\x04\x3b\0-\0007\0007"s;
  Recording recording;
  recording.codePage = 1251;
  recording.commands.push_back({"net.exe", "", "Host Name: " + narrow + "\n", {}});
  recording.commands.push_back({"net.exe", "view", "\n" + little + "\n", {}});
  recording.commands.push_back({"net.exe", "user", "\n" + big + "\n", {}});
  const RedactedRecording redacted = Redact(recording);
  EXPECT_THAT(redacted.leftOut, IsEmpty());
  const std::string all = WriteAll(redacted.recording);
  for (const std::string& spelling : {narrow, little, big}) {
    EXPECT_THAT(all, Not(HasSubstr(spelling)));
  }
  EXPECT_EQ(redacted.recording.commands[1].standardOutput.size(), little.size() + 2);
}

TEST(Redaction, WritesPasswordsOfAnyLengthOut) {
  Recording recording;
  recording.commands.push_back({"net.exe",
                                "",
                                "Password: ab\nPassword: longerone7\nseen longerone7 twice\n"
                                "Passwort: q\nStatus: ok\n",
                                {}});
  EXPECT_EQ(Redact(recording).recording.commands[0].standardOutput,
            "Password: ***\nPassword: ***\nseen *** twice\nPasswort: ***\nStatus: ok\n");
}

TEST(Redaction, KeepsFilesThatModulesLookFor) {
  Recording recording;
  recording.logFolder = "D:\\Acme\\logs\\";
  recording.files["D:\\Acme\\logs\\raidevents.txt"] = "x";
  recording.files["C:\\Support\\Firmware\\Controller_1_Config.txt"] = "y";
  recording.commands.push_back(
      {"eventslog_convert.exe", "\"D:\\Acme\\logs\\raidevents.txt\"", {}, {}});
  const Recording redacted = Redact(recording).recording;
  EXPECT_THAT(redacted.logFolder, Not(HasSubstr("Acme")));
  EXPECT_TRUE(redacted.files.contains(redacted.logFolder + "raidevents.txt"));
  EXPECT_TRUE(redacted.files.contains("C:\\Support\\Firmware\\Controller_1_Config.txt"));
  EXPECT_EQ(redacted.commands[0].arguments, "\"" + redacted.logFolder + "raidevents.txt\"");
}

}  // namespace
}  // namespace host
