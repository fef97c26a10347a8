// The place that a record of the log names: the line, in the module's own sources, on which its
// sentence is written; of words that modules share the module's call.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/collected.h"
#include "tests/support/random_recording.h"
#include "tests/support/step_scenarios.h"

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "[repo] ";
/// Shorter texts between quotes are blanks, ends of lines and the like.
constexpr std::size_t kShortestSentence = 4;

constexpr const char* kModuleNames[] = {"sampleModule1", "sampleModule2", "BMC_Info", "AMT_Info",
                                        "Windows_Related_Info"};

struct SourceLine {
  std::string text;
  std::vector<std::string> literals;
};

/// The texts between quotes, as the compiler reads them.
std::vector<std::string> FindLiterals(const std::string& line) {
  std::vector<std::string> literals;
  bool isInside = false;
  for (std::size_t at = 0; at < line.size(); ++at) {
    if (!isInside && line.compare(at, 2, "//") == 0) break;
    if (line[at] == '"') {
      isInside = !isInside;
      if (isInside) literals.emplace_back();
    } else if (isInside) {
      if (line[at] == '\\') ++at;
      literals.back() += line[at];
    }
  }
  std::erase_if(literals, [](const auto& text) { return text.size() < kShortestSentence; });
  return literals;
}

/// By their paths in the project.
using Sources = std::map<std::string, std::vector<SourceLine>>;

void AddSource(Sources& sources, const std::string& path) {
  std::ifstream in(fs::path(test::SamplesFolder()).parent_path() / path);
  std::vector<SourceLine>& lines = sources[path];
  for (std::string line; std::getline(in, line);) lines.push_back({line, FindLiterals(line)});
}

void AddFolder(Sources& sources, const std::string& path) {
  const fs::path folder = fs::path(test::SamplesFolder()).parent_path() / path;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_regular_file()) AddSource(sources, path + "/" + entry.path().filename().string());
  }
}

/// The sources of the module with that main file.
Sources ReadModule(const std::string& file) {
  Sources sources;
  AddSource(sources, file + ".cpp");
  AddFolder(sources, file);
  return sources;
}

/// Those that modules share.
Sources ReadShared() {
  Sources sources;
  AddFolder(sources, "frame");
  AddFolder(sources, "pqmodules/raid");
  return sources;
}

/// All texts between quotes, found by how they begin.
class Literals {
 public:
  explicit Literals(const Sources& sources) {
    for (const auto& [path, lines] : sources) {
      for (const SourceLine& line : lines) {
        for (const std::string& literal : line.literals) {
          byStart.emplace(literal.substr(0, kShortestSentence), literal);
        }
      }
    }
  }

  /// The longest with which a record begins.
  std::string FindLongest(std::string_view record) const {
    std::string_view longest;
    const auto [first, last] = byStart.equal_range(record.substr(0, kShortestSentence));
    for (auto entry = first; entry != last; ++entry) {
      const std::string& literal = entry->second;
      if (literal.size() > longest.size() && record.starts_with(literal)) longest = literal;
    }
    return std::string(longest);
  }

 private:
  std::multimap<std::string, std::string, std::less<>> byStart;
};

/// A module's, or what modules share.
struct SourceText {
  explicit SourceText(const Sources& sources) : lines(sources), literals(sources) {}
  Sources lines;
  Literals literals;
};

/// Whether the module's log is used there, or handed on.
bool UsesLog(const std::string& line) {
  return std::ranges::any_of(std::initializer_list<const char*>{"log(", "Log(", "log,", "Log,"},
                             [&](const char* use) { return line.find(use) != std::string::npos; });
}

/// Whether a tool of the machine has said it.
bool IsToolsWord(const host::Recording& machine, std::string_view text) {
  return std::ranges::any_of(machine.commands, [&](const host::RecordedCommand& command) {
    return command.standardOutput.Text().find(text) != std::string_view::npos ||
           command.standardError.Text().find(text) != std::string_view::npos;
  });
}

/// Holds records to their places.
class Places {
 public:
  void Check(const host::Recording& machine, const host::LogLine& record) {
    if (!known.contains(record.file)) known.emplace(record.file, ReadModule(record.file));
    const SourceText& source = known.at(record.file);
    const std::string_view text = std::string_view(record.text).substr(kPrefix.size());
    const std::string sentence = FindSentence(source.literals, machine, text);
    bool isFound = false;
    for (const auto& [path, lines] : source.lines) {
      if (record.line < 1 || static_cast<std::size_t>(record.line) > lines.size()) continue;
      const SourceLine& line = lines[static_cast<std::size_t>(record.line) - 1];
      if (sentence.empty()) {
        isFound = isFound || UsesLog(line.text);
      } else if (std::ranges::find(line.literals, sentence) != line.literals.end()) {
        isFound = true;
        sentences[{path, record.line}].insert(sentence);
      }
    }
    EXPECT_TRUE(isFound) << record.file << ":" << record.line
                         << " is not where it is written: " << text.substr(0, 80);
  }

  /// By source and line.
  std::map<std::pair<std::string, int>, std::set<std::string>> sentences;

 private:
  /// The module's own words at the begin of a record; empty where they are shared ones, or only
  /// what a tool said.
  std::string FindSentence(const Literals& literals, const host::Recording& machine,
                           std::string_view text) const {
    const std::string own = literals.FindLongest(text);
    const bool isShared = shared.literals.FindLongest(text).size() >= own.size();
    return own.empty() || isShared || IsToolsWord(machine, own) ? "" : own;
  }

  std::map<std::string, SourceText> known;
  const SourceText shared{ReadShared()};
};

/// The machine once for each of its tools and each way in which its step can fail, and once with no
/// report that can be written.
std::vector<host::Recording> ListFailing(const host::Recording& machine) {
  std::vector<host::Recording> failing = {machine, machine};
  for (const char* file :
       {"amtlog", "fruinfo", "selinfo", "ctrlcount", "c0_showall", "c0_raidevents", "c0_fwtermlog",
        "c0_pdlist", "raidevents", "fwtermlog", "pdlist", "ir", "rstcli64"}) {
    host::Recording& without = failing.emplace_back(machine);
    without.readOnly.push_back(machine.logFolder + file + ".txt");
  }
  for (std::size_t i = 0; i < machine.commands.size(); ++i) {
    for (const auto member : {&host::RecordedCommand::startError, &host::RecordedCommand::pipeError,
                              &host::RecordedCommand::exitCodeError}) {
      failing.emplace_back(machine).commands[i].*member = 5;
    }
  }
  return failing;
}

TEST(SourceLines, AreThoseOfTheSentencesAndNoTwoSentencesShareOne) {
  Places places;
  for (const test::StepScenario& scenario : test::ListStepScenarios()) {
    for (const host::Recording& machine : ListFailing(scenario.recording())) {
      const auto collected = test::Collect(machine, scenario.module, {scenario.table});
      for (const host::LogLine& record : collected.log) places.Check(machine, record);
    }
  }
  for (std::uint64_t seed = 1; seed <= 12; ++seed) {
    const host::Recording machine = test::MakeRandomRecording(seed);
    for (const char* module : kModuleNames) {
      const auto collected = test::Collect(machine, module);
      for (const host::LogLine& record : collected.log) places.Check(machine, record);
    }
  }
  for (const auto& [place, sentences] : places.sentences) {
    EXPECT_EQ(sentences.size(), 1U)
        << place.first << ":" << place.second << ": " << testing::PrintToString(sentences);
  }
  EXPECT_GT(places.sentences.size(), 100U);
}

}  // namespace
