// ZIP files as they are written and read, and what is refused.
#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/files/zip_reader.h"
#include "host/files/zip_writer.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using testing::ThrowsMessage;

constexpr std::uint64_t kMostFiles = 10;

using ZipFiles = std::vector<std::pair<std::string, std::string>>;

std::string WriteZip(const ZipFiles& files) {
  std::ostringstream out;
  ZipWriter writer(out);
  for (const auto& [name, bytes] : files) writer.Add(name, bytes);
  writer.Complete();
  return out.str();
}

ZipFiles ReadZip(const std::string& zip) {
  const test::TemporaryFolder folder;
  folder.Write("z", zip);
  const ZipReader reader(OpenToRead(folder.Path() / "z"), kMostFiles);
  ZipFiles files;
  for (const auto& [name, entry] : reader.Entries()) files.emplace_back(name, reader.Read(entry));
  return files;
}

void ExpectZipRefused(const std::string& zip, const std::string& words) {
  EXPECT_THAT([&] { ReadZip(zip); }, ThrowsMessage<std::runtime_error>(HasSubstr(words)));
}

void Append(std::string& bytes, std::uint32_t number, int size) {
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
}

/// A ZIP file that is whole, with numbers that a test changes. It shares no code with the writer.
struct HandMadeFile {
  std::string name = "a";
  std::string bytes = "123456789";
  std::uint32_t crc = 0xCBF43926;  // known for these digits
  std::uint32_t flags = 0;
  std::uint32_t method = 0;
  std::uint32_t size = 9;
  std::uint32_t packedSize = 9;
  std::uint32_t attributes = 0;
  std::uint32_t disk = 0;
  std::string extra = {};
  std::string comment = {};
  std::string ownName = {};   // in the file's own head, if it is another
  std::string ownExtra = {};  // and its field
  std::uint32_t ownCrc = 0xCBF43926;
  std::uint32_t ownSize = 9;
  std::string late = {};  // after the bytes
  int headMoves = 0;      // what the directory says, apart from the truth
};

struct HandMadeEnd {
  std::string before = {};   // the first file
  std::string between = {};  // the last file and the directory
  std::string after = {};
  std::string comment = {};
  std::uint32_t disk = 0;
  int countMoves = 0;
  int sizeMoves = 0;
  int placeMoves = 0;
};

std::string MakeZip(const std::vector<HandMadeFile>& files, const HandMadeEnd& end = {}) {
  std::string zip = end.before;
  std::string directory;
  for (const HandMadeFile& file : files) {
    const auto at = static_cast<std::uint32_t>(zip.size());
    const std::string ownName = file.ownName.empty() ? file.name : file.ownName;
    Append(zip, 0x04034B50, 4);
    Append(zip, 20, 2);
    Append(zip, file.flags, 2);
    Append(zip, file.method, 2);
    Append(zip, 0, 4);
    Append(zip, file.ownCrc, 4);
    Append(zip, file.packedSize, 4);
    Append(zip, file.ownSize, 4);
    Append(zip, static_cast<std::uint32_t>(ownName.size()), 2);
    Append(zip, static_cast<std::uint32_t>(file.ownExtra.size()), 2);
    zip += ownName + file.ownExtra + file.bytes + file.late;

    Append(directory, 0x02014B50, 4);
    Append(directory, 20, 2);
    Append(directory, 20, 2);
    Append(directory, file.flags, 2);
    Append(directory, file.method, 2);
    Append(directory, 0, 4);
    Append(directory, file.crc, 4);
    Append(directory, file.packedSize, 4);
    Append(directory, file.size, 4);
    Append(directory, static_cast<std::uint32_t>(file.name.size()), 2);
    Append(directory, static_cast<std::uint32_t>(file.extra.size()), 2);
    Append(directory, static_cast<std::uint32_t>(file.comment.size()), 2);
    Append(directory, file.disk, 2);
    Append(directory, 0, 2);
    Append(directory, file.attributes, 4);
    Append(directory, at + static_cast<std::uint32_t>(file.headMoves), 4);
    directory += file.name + file.extra + file.comment;
  }
  zip += end.between;
  const auto at = static_cast<std::uint32_t>(zip.size());
  const auto count = static_cast<std::uint32_t>(files.size()) + end.countMoves;
  zip += directory;
  Append(zip, 0x06054B50, 4);
  Append(zip, end.disk, 2);
  Append(zip, end.disk, 2);
  Append(zip, count, 2);
  Append(zip, count, 2);
  Append(zip, static_cast<std::uint32_t>(directory.size()) + end.sizeMoves, 4);
  Append(zip, at + static_cast<std::uint32_t>(end.placeMoves), 4);
  Append(zip, static_cast<std::uint32_t>(end.comment.size()), 2);
  return zip + end.comment + end.after;
}

/// The numbers of the hand-made file, as they come after its bytes.
std::string MakeLateNumbers(std::uint32_t crc = 0xCBF43926) {
  std::string late;
  for (const std::uint32_t number : {0x08074B50U, crc, 9U, 9U}) Append(late, number, 4);
  return late;
}

std::string MakeField(std::uint32_t kind, std::uint32_t size) {
  std::string field;
  Append(field, kind, 2);
  Append(field, size, 2);
  return field + std::string(size, 'x');
}

const std::string kLong(100000, 'x');

TEST(Zip, GivesWhatWasWritten) {
  const ZipFiles files = {{"a/b.txt", kLong}, {"c", std::string("\0\r\n\x1A\xFF", 5)}, {"d", ""}};
  const std::string zip = WriteZip(files);
  EXPECT_LT(zip.size(), 1000U);
  EXPECT_EQ(ReadZip(zip), files);
  EXPECT_EQ(ReadZip(WriteZip({})), ZipFiles{});
}

TEST(Zip, IsTheSameForTheSameFiles) {
  const ZipFiles files = {{"b", kLong}, {"a", "short"}};
  EXPECT_EQ(WriteZip(files), WriteZip(files));
  EXPECT_LT(WriteZip(files).find('b'), WriteZip(files).find('a')) << "the order is the caller's";
}

TEST(Zip, StoresWhatDoesNotGetSmaller) {
  EXPECT_THAT(WriteZip({{"a", "short"}}), HasSubstr("short"));
}

TEST(Zip, HasTheNumbersThatEverybodyKnows) {
  EXPECT_EQ(ReadZip(MakeZip({{}})), (ZipFiles{{"a", "123456789"}}));
  // What Python's zlib makes of the same digits.
  const HandMadeFile packed{.bytes = "\x33\x34\x32\x36\x31\x35\x33\xb7\xb0\x04" + std::string(1, 0),
                            .method = 8,
                            .packedSize = 11};
  EXPECT_EQ(ReadZip(MakeZip({packed})), (ZipFiles{{"a", "123456789"}}));
}

TEST(Zip, MayHaveNumbersAfterTheBytes) {
  const HandMadeFile late{.flags = 8, .ownCrc = 0, .ownSize = 0, .late = MakeLateNumbers()};
  HandMadeFile bare = late;
  bare.late.erase(0, 4);
  for (const HandMadeFile& file : {late, bare}) {
    HandMadeFile second = file;
    second.name = "b";
    EXPECT_EQ(ReadZip(MakeZip({file, second})), (ZipFiles{{"a", "123456789"}, {"b", "123456789"}}));
  }
  HandMadeFile other = late;
  other.late = MakeLateNumbers(1);
  ExpectZipRefused(MakeZip({other}), "\"a\" has a head of its own that differs");
}

TEST(Zip, MayTellTimesOwnersAndFolders) {
  HandMadeFile times;
  times.extra = MakeField(0x5455, 5) + MakeField(0x7875, 11);
  times.ownExtra = MakeField(0x000A, 32);
  times.name = "f/a";
  const HandMadeFile folder{.name = "f/",
                            .bytes = "",
                            .crc = 0,
                            .size = 0,
                            .packedSize = 0,
                            .attributes = 0040755U << 16 | 0x10,
                            .ownCrc = 0,
                            .ownSize = 0};
  EXPECT_EQ(ReadZip(MakeZip({folder, times})), (ZipFiles{{"f/a", "123456789"}}));
  EXPECT_EQ(ReadZip(MakeZip({times, folder})), (ZipFiles{{"f/a", "123456789"}}));
  ExpectZipRefused(MakeZip({folder, folder}), "\"f/\" twice");
  // Nobody would ever see what a folder is packed with.
  HandMadeFile filled = folder;
  filled.bytes = "hidden";
  filled.method = 8;
  filled.packedSize = 6;
  ExpectZipRefused(MakeZip({filled}), "\"f/\" is a file and a folder");
}

TEST(Zip, IsNotJustAnyFile) {
  ExpectZipRefused("", "it is no ZIP file, or its end is missing");
  ExpectZipRefused("{\"format\": 1}", "it is no ZIP file");
  const std::string zip = MakeZip({{}});
  ExpectZipRefused(zip.substr(0, zip.size() - 1), "it is no ZIP file");
  ExpectZipRefused(zip.substr(1), "its directory is not where its end says");
}

struct RefusedZip {
  const char* words;
  std::string zip;
};

TEST(Zip, IsRefusedForWhatMayHideSomething) {
  const RefusedZip kRefused[] = {
      {"\"a\" is encrypted", MakeZip({{.flags = 1}})},
      {"\"a\" is encrypted", MakeZip({{.flags = 1 << 6}})},
      {"\"a\" is packed in a way that is not known", MakeZip({{.flags = 1 << 5}})},
      {"\"a\" is packed by method 12", MakeZip({{.method = 12}})},
      {"\"a\" is ZIP64", MakeZip({{.extra = MakeField(1, 8)}})},
      {"\"a\" is ZIP64", MakeZip({{.ownExtra = MakeField(1, 8)}})},
      {"\"a\" is ZIP64", MakeZip({{.size = 0xFFFFFFFF}})},
      {"\"a\" has a field 0x7075", MakeZip({{.extra = MakeField(0x7075, 8)}})},
      {"\"a\" has a field 0x5455", MakeZip({{.extra = MakeField(0x5455, 65)}})},
      {"\"a\" has a field 0x5455", MakeZip({{.extra = MakeField(0x5455, 9).substr(0, 8)}})},
      {"\"a\" has a damaged head", MakeZip({{.extra = "abc"}})},
      {"\"a\" has a comment", MakeZip({{.comment = "c"}})},
      {"\"a\" is in another part", MakeZip({{.disk = 1}})},
      {"\"a\" is a link", MakeZip({{.attributes = 0120777U << 16}})},
      {"\"a\" is a link", MakeZip({{.attributes = 0x400}})},
      {"\"a\" is a link, or no file at all", MakeZip({{.attributes = 0010600U << 16}})},
      {"\"a\" is a file and a folder", MakeZip({{.attributes = 0x10}})},
      {"\"a\" is a file and a folder", MakeZip({{.attributes = 0040755U << 16}})},
      {"\"a/\" is a file and a folder", MakeZip({{.name = "a/"}})},
      {"it has a comment, or something after its end", MakeZip({{}}, {.after = "x"})},
      {"it has a comment, or something after its end", MakeZip({{}}, {.comment = "x"})},
      {"or it has bytes that belong to none", MakeZip({{.headMoves = 1}}, {.before = "x"})},
      {"its directory is not where", MakeZip({{}}, {.before = "x", .placeMoves = -1})},
      {"or it has bytes that belong to none", MakeZip({{}}, {.before = "x"})},
      {"or it has bytes that belong to none", MakeZip({{}}, {.between = "x"})},
      {"its directory is not where", MakeZip({{}}, {.between = "x", .placeMoves = -1})},
      {"it is one part of several", MakeZip({{}}, {.disk = 1})},
      {"its directory is damaged", MakeZip({{}}, {.countMoves = 1})},
      {"its files overlap", MakeZip({{}}, {.countMoves = -1})},
      {"its directory is not where", MakeZip({{}}, {.sizeMoves = -1})},
      {"it is ZIP64", MakeZip({{}}, {.countMoves = 0xFFFE})},
      {"it has 11 files, more than 10; --limit files", MakeZip(std::vector<HandMadeFile>(11))},
  };
  for (const RefusedZip& refused : kRefused) {
    SCOPED_TRACE(refused.words);
    ExpectZipRefused(refused.zip, refused.words);
  }
}

TEST(Zip, IsRefusedWhenItContradictsItself) {
  HandMadeFile second{.name = "b"};
  second.headMoves = -static_cast<int>(MakeZip({{}}).find("PK\1\2"));
  const RefusedZip kRefused[] = {
      {"\"a\" has a head of its own", MakeZip({{.ownName = "b"}})},
      {"\"a\" has a head of its own", MakeZip({{.ownName = "ab"}})},
      {"\"a\" has a head of its own", MakeZip({{.ownCrc = 0}})},
      {"\"a\" has a head of its own", MakeZip({{.ownSize = 8}})},
      {"its files overlap", MakeZip({{}, second})},
      {"its files overlap", MakeZip({{.headMoves = 1}})},
      {"it is damaged", MakeZip({{.bytes = "123456780"}})},
      {"it is damaged", MakeZip({{.bytes = "x", .method = 8, .packedSize = 1}})},
      {"its file \"a\" has sizes that cannot be true", MakeZip({{.size = 8, .ownSize = 8}})},
      {"\"a\" has sizes that", MakeZip({{.method = 8, .size = 20000, .ownSize = 20000}})},
      {"\"a\" has sizes that", MakeZip({{.bytes = "", .method = 8, .packedSize = 0}})},
  };
  for (const RefusedZip& refused : kRefused) {
    SCOPED_TRACE(refused.words);
    ExpectZipRefused(refused.zip, refused.words);
  }
}

TEST(Zip, UnpacksExactlyAsMuchAsItSays) {
  const std::string zip = WriteZip({{"a", kLong}});
  for (const std::uint32_t size : {99999U, 100001U, 1U}) {
    std::string lying = zip;
    std::string number;
    Append(number, size, 4);
    lying.replace(22, 4, number);
    lying.replace(zip.find("PK\1\2") + 24, 4, number);
    ExpectZipRefused(lying, "it is damaged");
  }
}

TEST(Zip, HasNoFileTwice) {
  for (const auto& [one, other] :
       {std::pair{"a", "a"}, {"a/b", "A/B"}, {"a", "A/b"}, {"a/b", "A"}}) {
    SCOPED_TRACE(other);
    ExpectZipRefused(MakeZip({{.name = one}, {.name = other}}), "twice");
  }
  EXPECT_EQ(ReadZip(MakeZip({{.name = "a/b"}, {.name = "A/c"}})).size(), 2U);
}

TEST(Zip, HasNamesThatAreTheSameEverywhere) {
  const std::string longest(255, 'a');
  EXPECT_EQ(ReadZip(MakeZip({{.name = longest}})).front().first, longest);
  ExpectZipRefused(MakeZip({{.name = longest + "a"}}), "has too long a name");
  for (const std::string name :
       {"", "/", "/a", "..", "../a", "a/../b", "a//b", "./a", "C:a", "C:/a", "a\\b", "\\\\h\\s\\a",
        "nul", "a/CON.txt", "a.", "a ", "a?", "a:b", "a\"b"}) {
    SCOPED_TRACE(name);
    ExpectZipRefused(MakeZip({{.name = name}}), "has a name that leads out of its folder");
  }
  for (const std::string& name :
       {std::string("a\0b", 3), std::string("a\nb"), std::string("\xC3\xA4")}) {
    ExpectZipRefused(MakeZip({{.name = name}}), "other characters than those of ASCII");
  }
}

}  // namespace
}  // namespace host
