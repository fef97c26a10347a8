#include "host/pqhost/kept_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "host/database/database.h"
#include "host/files/whole_file.h"
#include "host/formats/kept_collection.h"
#include "host/formats/packed_data.h"
#include "host/text/decoder.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

/// Of a JSON document, or of the report that it is in; what is read takes several times as much
/// memory.
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 30;

/// Text may begin with a mark that says it is UTF-8, and white space.
std::string_view SkipToText(std::string_view bytes) {
  bytes = SkipByteOrderMark(bytes);
  bytes.remove_prefix(std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size()));
  return bytes;
}

[[noreturn]] void Refuse(const std::filesystem::path& path, std::string_view reason) {
  throw UsageError(fmt::format("{}: {}", PathText(path), reason));
}

std::string ReadHead(const std::filesystem::path& path) {
  constexpr std::size_t kEnough = 4096;
  std::string head(kEnough, '\0');
  const FileHandle file = OpenToRead(path);
  head.resize(file.Read(head.data(), head.size()));
  return head;
}

std::string ReadText(const std::filesystem::path& path) {
  const FileHandle file = OpenToRead(path);
  if (file.Size() > kMostBytes) throw std::runtime_error("is too large: take the recording");
  return ReadWholeFile(file);
}

}  // namespace

KeptFile RecogniseFile(const std::filesystem::path& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) return KeptFile::kRecording;
  try {
    CheckIsPlainFile(path);
    const std::string head = ReadHead(path);
    if (head.starts_with("PK")) return KeptFile::kRecording;
    if (head.starts_with(std::string_view("SQLite format 3\0", 16))) return KeptFile::kDatabase;
    const std::string_view text = SkipToText(head);
    if (text.starts_with("<!DOCTYPE html>")) return KeptFile::kReport;
    if (text.starts_with('{')) return KeptFile::kJson;
  } catch (const std::runtime_error& error) {
    Refuse(path, error.what());
  }
  Refuse(path,
         "is none of the files that pqhost writes: a recording, or results as json, html or "
         "sqlite");
}

Collection ReadResult(const std::filesystem::path& path, KeptFile kind) {
  try {
    switch (kind) {
      case KeptFile::kDatabase: {
        Database database(path);
        return ReadDatabaseCollection(database);
      }
      case KeptFile::kReport:
        return ReadJsonCollection(UnpackData(ReadText(path), kMostBytes));
      case KeptFile::kJson:
        return ReadJsonCollection(SkipToText(ReadText(path)));
      case KeptFile::kRecording:
        break;
    }
  } catch (const std::runtime_error& error) {
    const std::string_view reason = error.what();
    // Who opens a database names it.
    if (reason.starts_with(PathText(path))) throw UsageError(error.what());
    Refuse(path, reason);
  }
  Refuse(path, "is a recording");
}

std::string DescribeLoss(const std::filesystem::path& path, KeptFile kind) {
  return fmt::format(
      "{}: is a result, no recording: {} and what tools said beside their tables are not in it",
      PathText(path),
      kind == KeptFile::kDatabase ? "how tables want to be shown" : "the modules' log");
}

}  // namespace host
