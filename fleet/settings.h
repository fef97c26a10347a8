// Where the database and the store are: from the command line, the environment, and one file, the
// nearest first.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "fleet/database.h"
#include "host/commands/option_set.h"

namespace fleet {

/// As the command line has it.
struct GivenSettings {
  std::optional<std::filesystem::path> file;
  std::vector<std::string> database;
  std::optional<std::filesystem::path> store;
};

struct Settings {
  ConnectionWords database;
  std::optional<std::filesystem::path> store;
};

/// --config, --database
void AddDatabaseOptions(host::OptionSet& set, GivenSettings& given);
/// The same, and --store
void AddSettingsOptions(host::OptionSet& set, GivenSettings& given);

/// Throws UsageError.
Settings ReadSettings(const GivenSettings& given);

/// Takes the lines "NAME = VALUE" of the file `name`: database, store. Throws UsageError with its
/// name and line.
Settings ReadSettingsText(const std::string& text, const std::string& name);

/// The folder of the store. Throws UsageError when nobody named one.
std::filesystem::path RequireStore(const Settings& settings);

}  // namespace fleet
