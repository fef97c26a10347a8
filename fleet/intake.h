// Recordings on their way in: read as what a stranger sends, kept in the store, registered.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fleet/database.h"
#include "fleet/store.h"
#include "host/text/time_text.h"

namespace fleet {

/// What a sender does not say of itself.
struct IntakeRules {
  std::string site = "default";
  std::optional<std::string> server;  ///< of every recording
  bool namesByFile = false;           ///< of a recording that does not say its server's
};

/// A recording that was read, and is as its manifest says.
struct IncomingRecording {
  std::filesystem::path path;
  std::string server;
  std::optional<host::LocalTime> taken;
  std::string key;  ///< of its content
  std::string zip;  ///< its bytes as one ZIP file
};

/// As many as are registered as one transaction, and held in memory.
bool IsBatch(const std::vector<IncomingRecording>& recordings);

/// The line that tells what became of it: "stored", "known".
std::string DescribeIncoming(const IncomingRecording& recording, std::string_view outcome);

/// Throws RecordingError with a line of UTF-8 when it is refused.
IncomingRecording ReadIncoming(const std::filesystem::path& path, const IntakeRules& rules);

/// Keeps them in the store, then registers them, all or none. Returns "stored" or "known" for each.
/// Throws StoreFailure and DatabaseFailure; to submit them again does no harm.
std::vector<std::string> TakeIn(const std::vector<IncomingRecording>& recordings,
                                const IntakeRules& rules, const Store& store,
                                Connection& connection);

}  // namespace fleet
