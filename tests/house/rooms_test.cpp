// The rooms of the project and what each may include. A change of the table needs its reason here.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/collected.h"

namespace {

namespace fs = std::filesystem;

struct Room {
  const char* folder;
  const char* mayInclude;  ///< blank-separated rooms, besides itself
};

// From the ground up. "interfaces" are the host's two libraries as the plug-in sees them.
constexpr Room kRooms[] = {
    {"interfaces", ""},
    {"frame", "interfaces"},
    {"pqmodules", "frame interfaces"},
    {"text", ""},
    {"files", "text"},
    // Of text only how small texts share a block of memory.
    {"repository", "interfaces text"},
    {"logger", "interfaces"},
    {"catalogue", "frame pqmodules text"},
    // Of text only ASCII letters and shared bytes.
    {"recorded", "frame text"},
    {"secrets", "recorded text"},
    {"recording", "recorded secrets files text frame"},
    // Of files only how a long log is packed.
    {"collect",
     "recorded catalogue secrets files text repository logger frame interfaces pqmodules"},
    // Rules are asked in SQL, and their answers, like a collection, are a database.
    {"database", "collect catalogue files text repository logger"},
    {"answers", "collect database catalogue secrets text"},
    {"formats", "collect database answers catalogue files text repository logger"},
    // It needs to know what a recording will be as files, and what a replay tells of its parts.
    {"redact", "recorded recording collect answers catalogue secrets files text repository frame"},
    {"check", "collect catalogue recorded logger frame pqmodules text"},
    {"live", "collect recorded recording secrets files logger frame interfaces text"},
    {"program", "files text"},
    // What commands of both programs share: how they are listed, asked for and answered.
    {"commands", "formats program files text"},
    {"pqhost",
     "frame interfaces text files repository logger catalogue recorded secrets recording collect "
     "database answers formats redact check live program commands"},
    // A program of its own, which never collects from the machine that it runs on.
    {"fleet",
     "frame interfaces text files repository logger catalogue recorded recording collect database "
     "answers formats program commands"},
};

/// Headers that only some rooms may know, wherever they include them.
struct Library {
  const char* header;  ///< how its include begins
  const char* rooms;   ///< blank-separated rooms, or folders of theirs
};
constexpr Library kLibraries[] = {
    {"<windows.h>",
     "frame/windows text/windows files/windows secrets/windows live/windows "
     "program/windows"},
    {"<sqlite3", "database"},
    {"<CLI/", "commands"},
    {"<nlohmann/", "text recording formats"},
    {"<nettle/", "files/posix"},
    {"<zlib", "files"},
    {"<libpq", "fleet"},
    // Results and messages go to the streams that a program hands in.
    {"<iostream>", "pqhost/main fleet/main"},
};

std::vector<std::string> SplitWords(std::string_view text) {
  std::istringstream stream{std::string(text)};
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

/// `path` below the project's folder as room and place in it: "host/live/windows/x.cpp" is in
/// "live/windows".
std::string FindFolder(const std::string& path) {
  std::string folder = fs::path(path).parent_path().generic_string();
  if (folder.starts_with("host/")) folder = folder.substr(5);
  if (folder == "frame/halyard" || folder == "frame/logkit") return "interfaces";
  return folder;
}

std::string FindRoom(const std::string& path) {
  const std::string folder = FindFolder(path);
  return folder.substr(0, folder.find('/'));
}

bool IsIn(const std::string& folder, const char* places) {
  const std::vector<std::string> allowed = SplitWords(places);
  return std::any_of(allowed.begin(), allowed.end(), [&](const std::string& place) {
    return folder == place || folder.starts_with(place + "/");
  });
}

const Room* FindRoomRow(const std::string& name) {
  const auto* found = std::find_if(std::begin(kRooms), std::end(kRooms),
                                   [&](const Room& room) { return name == room.folder; });
  return found == std::end(kRooms) ? nullptr : found;
}

/// Why the include `target`, with its brackets or quotes, must not be in the file `path`; empty
/// when it may.
std::string FindObjection(const std::string& path, const std::string& target) {
  for (const Library& library : kLibraries) {
    if (target.starts_with(library.header) && !IsIn(FindFolder(path), library.rooms)) {
      return target + " belongs to " + (*library.rooms == '\0' ? "no room" : library.rooms);
    }
  }
  if (target.front() == '<') return {};
  const std::string from = FindRoom(path);
  const std::string to = FindRoom(target.substr(1, target.size() - 2));
  const Room* room = FindRoomRow(from);
  if (room == nullptr) return "there is no room " + from + " in the table";
  if (from == to || IsIn(to, room->mayInclude)) return {};
  return "room " + from + " may not include " + target.substr(1, target.size() - 2);
}

/// The objections to one file, each with its place.
std::vector<std::string> CheckFile(const fs::path& root, const fs::path& file) {
  const std::string path = file.lexically_relative(root).generic_string();
  std::vector<std::string> objections;
  std::ifstream stream(file);
  std::size_t number = 0;
  for (std::string line; std::getline(stream, line);) {
    ++number;
    constexpr std::string_view kInclude = "#include ";
    if (!line.starts_with(kInclude)) continue;
    const std::string objection = FindObjection(path, line.substr(kInclude.size()));
    if (!objection.empty()) {
      objections.push_back(path + ":" + std::to_string(number) + ": " + objection);
    }
  }
  return objections;
}

std::vector<fs::path> ListSources(const fs::path& root) {
  std::vector<fs::path> sources;
  for (const char* folder : {"frame", "pqmodules", "host", "fleet"}) {
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
      const fs::path extension = entry.path().extension();
      if (extension == ".cpp" || extension == ".h") sources.push_back(entry.path());
    }
  }
  return sources;
}

const fs::path kRoot = fs::path(test::SamplesFolder()).parent_path();

TEST(Rooms, IncludeOnlyTheRoomsOfTheirLine) {
  const std::vector<fs::path> sources = ListSources(kRoot);
  EXPECT_GT(sources.size(), 150U);
  for (const fs::path& source : sources) {
    for (const std::string& objection : CheckFile(kRoot, source)) ADD_FAILURE() << objection;
  }
}

TEST(Rooms, AllHaveSources) {
  std::set<std::string> rooms;
  for (const fs::path& source : ListSources(kRoot)) {
    rooms.insert(FindRoom(source.lexically_relative(kRoot).generic_string()));
  }
  for (const Room& room : kRooms) EXPECT_TRUE(rooms.contains(room.folder)) << room.folder;
}

// A room that could reach itself through others would make all of them one room.
TEST(Rooms, NeverLeadBackToThemselves) {
  std::set<std::string> below;
  for (const Room& room : kRooms) {
    for (const std::string& name : SplitWords(room.mayInclude)) {
      EXPECT_TRUE(below.contains(name)) << room.folder << " includes " << name << ", not below it";
    }
    below.insert(room.folder);
  }
}

TEST(Rooms, ObjectToWhatTheTableForbids) {
  EXPECT_EQ(FindObjection("host/collect/x.cpp", "\"host/formats/formats.h\""),
            "room collect may not include host/formats/formats.h");
  EXPECT_EQ(FindObjection("frame/x.cpp", "\"pqmodules/rwininfo.h\""),
            "room frame may not include pqmodules/rwininfo.h");
  EXPECT_EQ(FindObjection("host/answers/x.cpp", "<sqlite3.h>"), "<sqlite3.h> belongs to database");
  EXPECT_EQ(FindObjection("host/collect/x.cpp", "<iostream>"),
            "<iostream> belongs to pqhost/main fleet/main");
  EXPECT_EQ(FindObjection("fleet/x.cpp", "\"host/pqhost/source.h\""),
            "room fleet may not include host/pqhost/source.h");
  EXPECT_EQ(FindObjection("host/pqhost/x.cpp", "<libpq-fe.h>"), "<libpq-fe.h> belongs to fleet");
  EXPECT_EQ(FindObjection("host/new/x.cpp", "\"host/text/ascii.h\""),
            "there is no room new in the table");
  EXPECT_EQ(FindObjection("host/formats/x.cpp", "\"host/collect/trace.h\""), "");
  EXPECT_EQ(FindObjection("host/live/windows/x.cpp", "<windows.h>"), "");
}

TEST(Rooms, NameThePlaceOfWhatTheyObjectTo) {
  const fs::path root = fs::path(testing::TempDir()) / "rooms";
  fs::create_directories(root / "host/text");
  std::ofstream(root / "host/text/x.cpp") << "#include <string>\n\n#include \"frame/tokens.h\"\n";
  EXPECT_EQ(
      CheckFile(root, root / "host/text/x.cpp"),
      std::vector<std::string>{"host/text/x.cpp:3: room text may not include frame/tokens.h"});
  fs::remove_all(root);
}

}  // namespace
