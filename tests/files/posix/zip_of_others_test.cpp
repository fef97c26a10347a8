// What other programs make of our ZIP files, and we of theirs.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <random>
#include <string>

#include "host/files/zip_reader.h"
#include "host/files/zip_writer.h"
#include "tests/support/posix/shell_command.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using FilesByName = std::map<std::string, std::string>;

/// Empty, long, hard to pack, of every byte; in folders.
FilesByName MakeFiles() {
  FilesByName files{{"empty", ""}, {"a/b/c.txt", "line\r\n\x1A"}};
  std::mt19937 random(1);
  for (int i = 0; i < 300000; ++i) {
    files["long"] += std::to_string(i) + "\n";
    files["a/noise.bin"] += static_cast<char>(random() & 0xFF);
  }
  for (int i = 0; i < 256; ++i) files["a/b/bytes"] += static_cast<char>(i);
  return files;
}

class ZipOfOthers : public testing::Test {
 protected:
  std::string Quoted(const std::string& name) { return "'" + folder / name + "'"; }

  FilesByName ReadFolder(const test::TemporaryFolder& from) {
    FilesByName read;
    for (const std::string& name : from.Files()) read[name] = from.Read(name);
    return read;
  }

  void WriteZip() {
    std::ofstream out(folder.Path() / "ours.zip", std::ios::binary);
    ZipWriter writer(out);
    for (const auto& [name, bytes] : files) writer.Add(name, bytes);
    writer.Complete();
  }

  /// What the reader finds in `zip`.
  FilesByName ReadZip(const std::string& zip) {
    const ZipReader reader(OpenToRead(folder.Path() / zip), 100);
    FilesByName read;
    for (const auto& [name, entry] : reader.Entries()) read[name] = reader.Read(entry);
    return read;
  }

  FilesByName files = MakeFiles();
  test::TemporaryFolder folder;
  test::TemporaryFolder other;
};

TEST_F(ZipOfOthers, UnzipUnpacksOurs) {
  WriteZip();
  test::RunShellCommand("unzip -tq " + Quoted("ours.zip"));
  test::RunShellCommand("unzip -q -d '" + other.Path().string() + "' " + Quoted("ours.zip"));
  EXPECT_EQ(ReadFolder(other), files);
  EXPECT_EQ(std::filesystem::status(other.Path() / "long").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(ZipOfOthers, PythonUnpacksOurs) {
  WriteZip();
  test::RunShellCommand("python3 -m zipfile -e " + Quoted("ours.zip") + " '" +
                        other.Path().string() + "'");
  EXPECT_EQ(ReadFolder(other), files);
}

TEST_F(ZipOfOthers, WeUnpackPythons) {
  for (const auto& [name, bytes] : files) other.Write(name, bytes);
  folder.Write("pack.py", R"(
import pathlib, sys, zipfile

class Pipe:
    """Cannot go back to write sizes into a head."""
    def __init__(self, file): self.file = file
    def write(self, data): return self.file.write(data)
    def flush(self): self.file.flush()

source, target = map(pathlib.Path, sys.argv[1:])
for method in (zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED):
    for piped in (False, True):
        with open(target / f"{method}{piped}.zip", "wb") as file:
            with zipfile.ZipFile(Pipe(file) if piped else file, "w", method) as out:
                for path in sorted(source.rglob("*")):
                    name = str(path.relative_to(source))
                    if path.is_dir():
                        out.writestr(zipfile.ZipInfo(name + "/"), "")
                    else:
                        out.writestr(zipfile.ZipInfo(name), path.read_bytes(), method)
)");
  test::RunShellCommand("python3 " + Quoted("pack.py") + " '" + other.Path().string() + "' '" +
                        folder.Path().string() + "'");
  for (const char* zip : {"0False.zip", "0True.zip", "8False.zip", "8True.zip"}) {
    SCOPED_TRACE(zip);
    EXPECT_EQ(ReadZip(zip), files);
  }
}

}  // namespace
}  // namespace host
