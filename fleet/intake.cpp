#include "fleet/intake.h"

#include <fmt/format.h>

#include <sstream>
#include <system_error>

#include "host/files/whole_file.h"
#include "host/recording/recording_format.h"
#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "host/recording/stored_files.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"
#include "host/text/trim.h"

namespace fleet {
namespace {

/// What nginx lets in, too; real ones have a tenth of it.
constexpr std::uintmax_t kMostZipBytes = std::uintmax_t{64} << 20;
constexpr std::size_t kLongestName = 255;

[[noreturn]] void Refuse(const std::filesystem::path& path, std::string_view reason) {
  throw host::RecordingError(fmt::format("{}: {}", host::PathText(path), reason));
}

std::string ReadZip(const std::filesystem::path& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (!error && size > kMostZipBytes) {
    Refuse(path, fmt::format("it has more than {} MiB", kMostZipBytes >> 20));
  }
  try {
    return host::ReadWholeFile(path);
  } catch (const std::runtime_error& failure) {
    Refuse(path, failure.what());
  }
}

/// The ZIP file that the recording is kept as: its own, as far as its manifest makes its key.
std::string Pack(const host::Recording& recording) {
  std::ostringstream zip;
  zip.exceptions(std::ios::badbit);  // Else a file for which memory is short is cut.
  host::WriteZippedRecording(recording, zip);
  return std::move(zip).str();
}

bool HasManifest(const std::string& zip) {
  return host::OpenZippedFiles(zip, "recording", {})->Has(host::kManifestFileName);
}

/// Names come from senders, into messages and views.
bool IsPlain(std::string_view name) {
  for (const char c : name) {
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7f') return false;
  }
  return name.size() <= kLongestName && host::Trim(name) == name;
}

std::string ChooseServer(const host::Recording& recording, const std::filesystem::path& path,
                         const IntakeRules& rules) {
  std::string server =
      rules.server.value_or(recording.submission ? recording.submission->name : "");
  if (server.empty() && rules.namesByFile) {
    std::filesystem::path whole = std::filesystem::absolute(path).lexically_normal();
    if (!whole.has_filename()) whole = whole.parent_path();
    server = host::PathText(host::IsZipName(whole) ? whole.stem() : whole.filename());
  }
  if (server.empty()) {
    Refuse(path,
           "it does not say which server it is of: name it with --server, or let its file "
           "name it with --server-by-file");
  }
  if (!IsPlain(server))
    Refuse(path, "its server's name is none: it is too long, or not plain text");
  return server;
}

}  // namespace

bool IsBatch(const std::vector<IncomingRecording>& recordings) {
  constexpr std::size_t kMostRecordings = 64;
  constexpr std::size_t kMostMemory = std::size_t{64} << 20;
  std::size_t bytes = 0;
  for (const IncomingRecording& recording : recordings) bytes += recording.zip.size();
  return recordings.size() >= kMostRecordings || bytes >= kMostMemory;
}

std::string DescribeIncoming(const IncomingRecording& recording, std::string_view outcome) {
  constexpr std::size_t kShownDigits = 12;
  return fmt::format("{:7}  {}  {}  {}  {}", outcome, host::EscapeControls(recording.server),
                     recording.taken ? host::FormatIsoTime(*recording.taken) : "-",
                     recording.key.substr(0, kShownDigits),
                     host::EscapeControls(host::PathText(recording.path)));
}

IncomingRecording ReadIncoming(const std::filesystem::path& path, const IntakeRules& rules) {
  IncomingRecording incoming{.path = path, .server = {}, .taken = {}, .key = {}, .zip = {}};
  std::error_code ignored;
  const bool isFile = std::filesystem::is_regular_file(path, ignored);
  if (isFile) incoming.zip = ReadZip(path);
  const host::Recording recording =
      isFile ? host::LoadZippedRecording(incoming.zip, path) : host::LoadRecording(path);
  if (!recording.doubts.empty()) Refuse(path, recording.doubts.front());
  if (!isFile || !HasManifest(incoming.zip)) incoming.zip = Pack(recording);
  incoming.key = recording.contentKey;
  incoming.server = ChooseServer(recording, path, rules);
  if (recording.submission) incoming.taken = recording.submission->recordedAt;
  return incoming;
}

std::vector<std::string> TakeIn(const std::vector<IncomingRecording>& recordings,
                                const IntakeRules& rules, const Store& store,
                                Connection& connection) {
  for (const IncomingRecording& recording : recordings) {
    // What is there may have rotten: only what is the same is left alone.
    if (store.Read(recording.key) != recording.zip) store.Write(recording.key, recording.zip);
  }
  // A job must not be there before its recording is.
  store.Settle();
  return RunTransaction(connection, [&] {
    std::vector<std::string> outcomes;
    for (const IncomingRecording& recording : recordings) {
      const Value taken =
          recording.taken ? Value(host::FormatIsoTime(recording.taken->time)) : std::nullopt;
      const auto offset = recording.taken ? recording.taken->offset.count() : 0;
      const Answer answer =
          connection.Ask("select register($1, $2, decode($3, 'hex'), $4, $5, $6)",
                         {rules.site, recording.server, recording.key,
                          std::to_string(recording.zip.size()), taken, std::to_string(offset)});
      outcomes.emplace_back(answer.At(0, 0));
    }
    return outcomes;
  });
}

}  // namespace fleet
