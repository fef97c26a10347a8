#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "host/recorded/interpreter.h"
#include "host/recorded/machine_files.h"
#include "host/recorded/own_commands.h"
#include "host/recording/recording_file.h"
#include "host/text/ascii.h"

namespace host {
namespace {

using Json = nlohmann::json;

constexpr std::uint64_t kLargestNumber = 0xFFFFFFFF;
/// How deep brackets may be nested: far more than a recording needs.
constexpr int kDepthLimit = 16;
/// How much of what the JSON reader says about a bad place is passed on.
constexpr std::size_t kDetailLimit = 160;

/// `text` with everything but printable ASCII replaced, so that it stays one harmless line.
std::string Printable(std::string_view text) {
  std::string printable(text);
  for (char& c : printable) {
    if (c < ' ' || c > '~') c = '?';
  }
  return printable;
}

/// `text` in quotes, other than ASCII escaped as in JSON.
std::string Quoted(const std::string& text) {
  return Json(text).dump(-1, ' ', /*ensure_ascii=*/true, Json::error_handler_t::replace);
}

/// A path as people read it: UTF-8 without control characters.
std::string Displayed(const std::filesystem::path& path) {
  const std::u8string utf8 = path.u8string();
  std::string text(utf8.begin(), utf8.end());
  const bool isUtf8 = Quoted(text).find("\\ufffd") == std::string::npos;
  for (char& c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || (byte >= 0x80 && !isUtf8)) c = '?';
  }
  return text;
}

/// Reads a text and keeps in `furthest` how far it was read.
class TrackedText {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  TrackedText(const char* at, const char** furthest) : at(at), furthest(furthest) {}
  reference operator*() const { return *at; }
  TrackedText& operator++() {
    *furthest = ++at;
    return *this;
  }
  bool operator==(const TrackedText& other) const { return at == other.at; }
  bool operator!=(const TrackedText& other) const { return at != other.at; }

 private:
  const char* at;
  const char** furthest;
};

class RecordingReader {
 public:
  explicit RecordingReader(const std::filesystem::path& given)
      : folder(given.empty() ? "." : given), file(folder / kRecordingFileName) {}

  Recording Read() {
    CheckFolder();
    const Json all = Parse(ReadWhole(file, [&](const std::string& why) { Fail("", why); }));
    if (!all.is_object()) Fail("", "has to be an object, { ... }");
    CheckFormat(all);
    CheckMembers(all, "",
                 {"format", "description", "languageId", "codePage", "hostExecutable", "logFolder",
                  "console", "commands", "files", "readOnly"});
    Recording recording;
    if (const Json* value = Find(all, "description")) {
      recording.description = Text(*value, "description");
    }
    ReadNumber(all, "languageId", "languageId", recording.languageId);
    ReadCodePage(all, recording.codePage);
    ReadBytes(all, "hostExecutable", recording.hostExecutable);
    ReadBytes(all, "logFolder", recording.logFolder);
    if (recording.hostExecutable.empty()) Fail("hostExecutable", "is empty; it has to be a path");
    if (!recording.logFolder.ends_with('\\')) {
      Fail("logFolder", "has to end with a backslash (\"\\\\\" in JSON)");
    }
    ReadBytes(all, "console", recording.console);
    ReadCommands(all, recording.commands);
    ReadFiles(all, recording.files);
    ReadReadOnly(all, recording.readOnly);
    return recording;
  }

 private:
  void CheckFolder() const {
    std::error_code error;
    if (std::filesystem::is_directory(folder, error)) return;
    throw RecordingError(Displayed(folder) + ": there is no such folder; a recording is a folder " +
                         "with a file " + kRecordingFileName);
  }

  [[noreturn]] void Fail(const std::string& member, const std::string& what) const {
    throw RecordingError(Displayed(file) + ": " + (member.empty() ? "" : member + ": ") + what);
  }

  [[noreturn]] void FailAt(std::string_view read, const std::string& what) const {
    const auto line = std::count(read.begin(), read.end(), '\n') + 1;
    const std::size_t column = read.size() - (read.rfind('\n') + 1);
    Fail("", "line " + std::to_string(line) + ", column " +
                 std::to_string(std::max<std::size_t>(column, 1)) + ": " + what);
  }

  /// The bytes of a file; `fail` gets words that say why there are none.
  template <typename FailWithWords>
  std::string ReadWhole(const std::filesystem::path& path, const FailWithWords& fail) const {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) fail("there is no such file");
    if (!std::filesystem::is_regular_file(path, error)) fail("is no plain file");
    std::ifstream in(path, std::ios::binary);
    std::string bytes;
    try {
      bytes.resize(static_cast<std::size_t>(std::filesystem::file_size(path)));
    } catch (const std::exception&) {
      fail("is too large to be read");
    }
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (in.gcount() != static_cast<std::streamsize>(bytes.size())) fail("cannot be read");
    return bytes;
  }

  Json Parse(const std::string& text) const {
    const char* furthest = text.data();
    const auto readSoFar = [&] {
      return std::string_view(text.data(), static_cast<std::size_t>(furthest - text.data()));
    };
    std::vector<std::set<std::string>> openObjects;
    const auto check = [&](int depth, Json::parse_event_t event, Json& parsed) {
      using Event = Json::parse_event_t;
      if (depth > kDepthLimit) FailAt(readSoFar(), "brackets are nested too deep");
      if (event == Event::object_start) openObjects.emplace_back();
      if (event == Event::object_end) openObjects.pop_back();
      if (event == Event::key && !openObjects.back().insert(parsed.get<std::string>()).second) {
        FailAt(readSoFar(), "member " + Quoted(parsed.get<std::string>()) +
                                " stands there for the second time in one object");
      }
      return true;
    };
    try {
      return Json::parse(TrackedText(text.data(), &furthest),
                         TrackedText(text.data() + text.size(), &furthest), check);
    } catch (const Json::exception& problem) {
      FailAt(readSoFar(), "is no JSON: " + Detail(problem));
    }
  }

  /// What the JSON reader says, without its own number and place.
  static std::string Detail(const Json::exception& problem) {
    std::string_view words = problem.what();
    if (const std::size_t bracket = words.find("] "); bracket != std::string_view::npos) {
      words.remove_prefix(bracket + 2);
    }
    if (words.starts_with("parse error at ")) words.remove_prefix(words.find(": ") + 2);
    const bool isLong = words.size() > kDetailLimit;
    return Printable(words.substr(0, kDetailLimit)) + (isLong ? "..." : "");
  }

  static const Json* Find(const Json& object, const char* name) {
    const auto member = object.find(name);
    return member == object.end() ? nullptr : &*member;
  }

  void CheckFormat(const Json& all) const {
    const Json* format = Find(all, "format");
    if (format == nullptr) Fail("format", "is missing; it has to be 1");
    if (!format->is_number_integer() || *format != kRecordingFormat) {
      Fail("format", "has to be 1, the only format there is, not " + Shown(*format));
    }
  }

  /// A value as it stands in the file, when it is short.
  static std::string Shown(const Json& value) {
    if (value.is_object()) return "an object";
    if (value.is_array()) return "a list";
    std::string text = value.dump(-1, ' ', /*ensure_ascii=*/true, Json::error_handler_t::replace);
    return text.size() > kDetailLimit ? text.substr(0, kDetailLimit) + "..." : text;
  }

  void CheckMembers(const Json& object, const std::string& where,
                    std::initializer_list<std::string_view> known) const {
    for (const auto& [name, value] : object.items()) {
      if (std::find(known.begin(), known.end(), name) != known.end()) continue;
      std::string all;
      for (const std::string_view member : known) {
        all.append(all.empty() ? "" : ", ").append(member);
      }
      Fail(where, "there is no member " + Quoted(name) + "; there are " + all);
    }
  }

  std::string Text(const Json& value, const std::string& where) const {
    if (!value.is_string()) Fail(where, "has to be a text, not " + Shown(value));
    return value.get<std::string>();
  }

  /// A text of the machine: each character is the byte with its number.
  std::string ByteText(const Json& value, const std::string& where) const {
    return BytesOf(Text(value, where), where);
  }

  std::string BytesOf(const std::string& utf8, const std::string& where) const {
    std::string bytes;
    bytes.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
      const auto lead = static_cast<unsigned char>(utf8[i]);
      if (lead < 0x80) {
        bytes += utf8[i];
      } else if (lead < 0xC4) {
        const auto trail = static_cast<unsigned char>(utf8[++i]);
        bytes += static_cast<char>(((lead & 0x03) << 6) | (trail & 0x3F));
      } else {
        Fail(where, "character " + std::to_string(CountCharacters(utf8, i) + 1) +
                        " is above U+00FF; each character stands for one byte, U+0000 to U+00FF");
      }
    }
    return bytes;
  }

  static std::ptrdiff_t CountCharacters(const std::string& utf8, std::size_t end) {
    return std::count_if(utf8.begin(), utf8.begin() + static_cast<std::ptrdiff_t>(end),
                         [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
  }

  void ReadBytes(const Json& all, const char* name, std::string& bytes) const {
    if (const Json* value = Find(all, name)) bytes = ByteText(*value, name);
  }

  void ReadNumber(const Json& object, const char* name, const std::string& where,
                  std::uint32_t& number) const {
    const Json* value = Find(object, name);
    if (value == nullptr) return;
    if (!value->is_number_unsigned() || value->get<std::uint64_t>() > kLargestNumber) {
      Fail(where, "has to be a whole number from 0 to 4294967295, not " + Shown(*value));
    }
    number = value->get<std::uint32_t>();
  }

  void ReadCodePage(const Json& all, std::uint32_t& codePage) const {
    std::uint32_t given = codePage;
    ReadNumber(all, "codePage", "codePage", given);
    if (std::find(kRecordingCodePages.begin(), kRecordingCodePages.end(), given) ==
        kRecordingCodePages.end()) {
      std::string known;
      for (const std::uint32_t page : kRecordingCodePages) {
        known.append(known.empty() ? "" : ", ").append(std::to_string(page));
      }
      Fail("codePage", std::to_string(given) + " is not known; it has to be one of " + known);
    }
    codePage = given;
  }

  const Json* FindList(const Json& all, const char* name) const {
    const Json* list = Find(all, name);
    if (list != nullptr && !list->is_array()) {
      Fail(name, "has to be a list, [ ... ], not " + Shown(*list));
    }
    return list;
  }

  void ReadCommands(const Json& all, std::vector<RecordedCommand>& commands) const {
    const Json* list = FindList(all, "commands");
    if (list == nullptr) return;
    for (const Json& entry : *list) {
      commands.push_back(ReadCommand(entry, "commands[" + std::to_string(commands.size()) + "]"));
    }
  }

  RecordedCommand ReadCommand(const Json& entry, const std::string& where) const {
    if (!entry.is_object()) Fail(where, "has to be an object, { ... }, not " + Shown(entry));
    CheckMembers(entry, where,
                 {"tool", "arguments", "stdout", "stderr", "exitCode", "startError", "pipeError",
                  "exitCodeError"});
    RecordedCommand command;
    const Json* tool = Find(entry, "tool");
    if (tool == nullptr) Fail(where + ".tool", "is missing; it has to be a program's file name");
    command.tool = ByteText(*tool, where + ".tool");
    if (ToolName(command.tool).empty() ||
        command.tool.find_first_of("\\/\"") != std::string::npos) {
      Fail(where + ".tool", "has to be a program's file name, without folder, such as \"arp.exe\"");
    }
    if (const Json* arguments = Find(entry, "arguments")) {
      command.arguments = ByteText(*arguments, where + ".arguments");
    }
    RefuseAnswerOfOwnCommand(entry, command.tool, where);
    if (const Json* path = Find(entry, "stdout")) {
      command.standardOutput = ReadNamedFile(*path, where + ".stdout");
    }
    if (const Json* path = Find(entry, "stderr")) {
      command.standardError = ReadNamedFile(*path, where + ".stderr");
    }
    ReadNumber(entry, "exitCode", where + ".exitCode", command.exitCode);
    ReadNumber(entry, "startError", where + ".startError", command.startError);
    ReadNumber(entry, "pipeError", where + ".pipeError", command.pipeError);
    ReadNumber(entry, "exitCodeError", where + ".exitCodeError", command.exitCodeError);
    return command;
  }

  /// What the interpreter does by itself is done on the machine's files, so what such an entry says
  /// about output would never be heard.
  void RefuseAnswerOfOwnCommand(const Json& entry, const std::string& tool,
                                const std::string& where) const {
    if (!IsOwnCommand(tool)) return;
    for (const char* member : {"stdout", "stderr", "exitCode"}) {
      if (!entry.contains(member)) continue;
      Fail(where + "." + member, "the interpreter does " + Printable(ToolName(tool)) +
                                     " by itself; its entry can only carry an error");
    }
  }

  void ReadFiles(const Json& all, std::map<std::string, Bytes>& files) const {
    const Json* members = Find(all, "files");
    if (members == nullptr) return;
    if (!members->is_object())
      Fail("files", "has to be an object, { ... }, not " + Shown(*members));
    Recording nothing;
    const MachineFiles paths(nothing);
    std::set<std::string> known;
    for (const auto& [name, path] : members->items()) {
      const std::string where = "files[" + Quoted(name) + "]";
      const std::string windowsPath = BytesOf(name, where);
      if (windowsPath.empty() || windowsPath.ends_with('\\')) {
        Fail(where, "has to be the Windows path of a file");
      }
      if (!known.insert(LowerCase(paths.FullPath(windowsPath))).second) {
        Fail(where, "names a file that another member names too; paths compare without case");
      }
      files[windowsPath] = ReadNamedFile(path, where);
    }
  }

  void ReadReadOnly(const Json& all, std::vector<std::string>& readOnly) const {
    const Json* list = FindList(all, "readOnly");
    if (list == nullptr) return;
    for (const Json& entry : *list) {
      const std::string where = "readOnly[" + std::to_string(readOnly.size()) + "]";
      readOnly.push_back(ByteText(entry, where));
      if (readOnly.back().empty()) Fail(where, "is empty; it has to be a Windows path");
    }
  }

  /// The bytes of a file of the recording that a member names.
  std::string ReadNamedFile(const Json& value, const std::string& where) const {
    const std::string name = Text(value, where);
    CheckName(name, where);
    const std::filesystem::path path = folder / std::u8string(name.begin(), name.end());
    CheckInside(path, name, where);
    return ReadWhole(path, [&](const std::string& why) { Fail(where, Quoted(name) + ": " + why); });
  }

  void CheckName(const std::string& name, const std::string& where) const {
    const bool hasForbidden = std::any_of(name.begin(), name.end(), [](char c) {
      return c == '\\' || c == ':' || static_cast<unsigned char>(c) < ' ';
    });
    bool goesUp = false;
    for (std::string_view rest = name; !rest.empty();) {
      const std::string_view part = rest.substr(0, rest.find('/'));
      goesUp = goesUp || part == "..";
      rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    }
    if (name.empty() || name.front() == '/' || hasForbidden || goesUp) {
      Fail(where, Quoted(name) +
                      " has to name a file in the recording's folder, by a path with / "
                      "that does not leave it");
    }
  }

  /// A link must not lead out of the folder either.
  void CheckInside(const std::filesystem::path& path, const std::string& name,
                   const std::string& where) const {
    std::error_code error;
    const std::filesystem::path root = std::filesystem::canonical(folder, error);
    const std::filesystem::path real = std::filesystem::weakly_canonical(path, error);
    const auto [rootAt, realAt] = std::mismatch(root.begin(), root.end(), real.begin(), real.end());
    if (error || rootAt != root.end()) {
      Fail(where, Quoted(name) + " leads out of the recording's folder");
    }
  }

  std::filesystem::path folder;
  std::filesystem::path file;
};

}  // namespace

Recording LoadRecording(const std::filesystem::path& folder) {
  try {
    return RecordingReader(folder).Read();
  } catch (const std::filesystem::filesystem_error& problem) {
    throw RecordingError(Displayed(folder / kRecordingFileName) +
                         ": cannot be read: " + Printable(problem.code().message()));
  } catch (const std::bad_alloc&) {
    throw RecordingError(Displayed(folder / kRecordingFileName) +
                         ": the recording is too large for this machine's memory");
  }
}

}  // namespace host
