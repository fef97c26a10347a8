#include "tests/support/random_recording.h"

#include <algorithm>
#include <map>
#include <utility>

#include "host/recording/recording_format.h"
#include "host/text/ascii.h"
#include "tests/support/samples.h"

namespace test {
namespace {

using host::RecordedCommand;
using host::Recording;

/// The answers of all samples, by tool and by its arguments.
using Answers = std::map<std::string, std::map<std::string, std::vector<RecordedCommand>>>;

struct Material {
  Answers answers;
  std::map<std::string, host::Bytes> files;
};

Material ReadSamples() {
  Material material;
  for (const auto& [name, sample] : LoadSamples()) {
    for (const RecordedCommand& command : sample.commands) {
      material.answers[host::LowerCase(command.tool)][command.arguments].push_back(command);
    }
    material.files.insert(sample.files.begin(), sample.files.end());
  }
  return material;
}

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size() - 1) + 1;
    lines.emplace_back(text.substr(begin, end - begin));
    begin = end;
  }
  return lines;
}

std::string DrawBytes(RandomNumbers& random) {
  std::string bytes(1 + random.DrawBelow(8), '\0');
  for (char& byte : bytes) byte = static_cast<char>(random.DrawBelow(256));
  return bytes;
}

void GarbleLine(std::string& line, RandomNumbers& random) {
  const std::size_t place = random.DrawBelow(line.size() + 1);
  switch (random.DrawBelow(7)) {
    case 0:
      line.resize(place);
      break;
    case 1:
      line.insert(place, 1 + random.DrawBelow(600), ' ');
      break;
    case 2:
      line.insert(place, DrawBytes(random));
      break;
    case 3:
      line.insert(place, ":");
      break;
    case 4:
      line.insert(0, "  ");
      break;
    case 5:
      std::replace(line.begin(), line.end(), '\r', ' ');
      break;
    default:
      for (char& byte : line) {
        if (byte >= '0' && byte <= '9') byte = static_cast<char>('0' + random.DrawBelow(10));
      }
  }
}

/// Controllers keep so many events that a dump fills up to five tables.
std::string LengthenDump(std::string_view dump, RandomNumbers& random) {
  constexpr std::size_t kLargest = 4'000'000;
  std::string longer;
  if (dump.empty()) return longer;
  for (std::size_t left = random.DrawBelow(kLargest / dump.size() + 1); left > 0; --left) {
    longer += dump;
  }
  return longer;
}

void DrawFault(RecordedCommand& command, RandomNumbers& random) {
  constexpr std::uint32_t kSystemErrors[] = {2, 5, 8, 206, 1450};
  const std::uint32_t error = random.DrawFrom(kSystemErrors);
  switch (random.DrawBelow(5)) {
    case 0:
      command.startError = error;
      break;
    case 1:
      command.pipeError = error;
      break;
    case 2:
      command.exitCodeError = error;
      break;
    case 3:
      command.exitCode = static_cast<std::uint32_t>(1 + random.DrawBelow(300));
      break;
    default:
      command.standardError = command.standardOutput;
  }
}

std::vector<RecordedCommand> DrawCommands(const Answers& samples, RandomNumbers& random) {
  std::vector<RecordedCommand> commands;
  for (const auto& [tool, byArguments] : samples) {
    if (random.DrawOneIn(8)) continue;  // not installed
    for (const auto& [arguments, answers] : byArguments) {
      if (random.DrawOneIn(12)) continue;
      const std::size_t turns = random.DrawOneIn(10) ? 2 : 1;
      for (std::size_t turn = 0; turn < turns; ++turn) {
        RecordedCommand command = random.DrawFrom(answers);
        if (command.arguments.ends_with("show events") && random.DrawOneIn(12)) {
          command.standardOutput = LengthenDump(command.standardOutput.Text(), random);
        }
        if (random.DrawOneIn(4)) {
          command.standardOutput = GarbleReport(command.standardOutput.Text(), random);
        }
        if (random.DrawOneIn(12)) DrawFault(command, random);
        commands.push_back(std::move(command));
      }
    }
  }
  return commands;
}

}  // namespace

std::string GarbleReport(std::string_view report, RandomNumbers& random) {
  std::vector<std::string> lines = SplitLines(report);
  for (std::size_t changes = 1 + random.DrawBelow(6); changes > 0 && !lines.empty(); --changes) {
    const auto line = lines.begin() + static_cast<std::ptrdiff_t>(random.DrawBelow(lines.size()));
    switch (random.DrawBelow(5)) {
      case 0:
        lines.erase(line);
        break;
      case 1:
        lines.insert(line, std::string(*line));
        break;
      case 2:
        std::swap(*line, lines.back());
        break;
      default:
        GarbleLine(*line, random);
    }
  }
  std::string garbled;
  for (const std::string& line : lines) garbled += line;
  if (random.DrawOneIn(10)) garbled.resize(random.DrawBelow(garbled.size() + 1));
  return garbled;
}

Recording MakeRandomRecording(std::uint64_t seed) {
  static const Material kSamples = ReadSamples();
  constexpr const char* kHosts[] = {"C:\\Halyard\\halyard.exe", "C:\\Halyard\\halyard.exe",
                                    "D:\\Program Files\\Halyard\\halyard.exe",
                                    "C:\\Halyard (x86)\\halyard.exe"};
  constexpr const char* kLogFolders[] = {"C:\\Halyard\\logs\\", "C:\\Halyard\\logs\\",
                                         "D:\\Log folder\\", "E:\\L\xF6gs\\"};
  constexpr const char* kConsoles[] = {"", "192.0.2.40 deskadmin Lantern-52\n", "192.0.2.7 admin\n",
                                       "\n\n"};
  RandomNumbers random(seed);
  Recording recording;
  recording.description = "seed " + std::to_string(seed);
  recording.hostExecutable = random.DrawFrom(kHosts);
  recording.logFolder = random.DrawFrom(kLogFolders);
  recording.console = random.DrawFrom(kConsoles);
  recording.codePage = random.DrawFrom(host::kRecordingCodePages);
  if (random.DrawOneIn(6)) recording.languageId = random.DrawOneIn(2) ? 1031 : 1041;
  recording.commands = DrawCommands(kSamples.answers, random);
  for (const auto& [path, bytes] : kSamples.files) {
    if (random.DrawOneIn(4)) recording.files[path] = bytes;
  }
  if (random.DrawOneIn(6)) recording.readOnly.push_back(recording.logFolder + "route.txt");
  return recording;
}

}  // namespace test
