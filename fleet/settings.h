// Where the database and the store are: from the command line, the environment, and one file, the
// nearest first.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "fleet/database.h"
#include "fleet/store.h"
#include "host/commands/option_set.h"

namespace fleet {

/// As the command line has it.
struct GivenSettings {
  std::optional<std::filesystem::path> file;
  std::vector<std::string> database;
  std::vector<std::string> store;
  std::optional<std::filesystem::path> certificate;
};

struct Settings {
  ConnectionWords database;
  StorePlace store;  ///< without an address when nobody named one
};

/// --config, --database
void AddDatabaseOptions(host::OptionSet& set, GivenSettings& given);
/// The same, and --store, --store-certificate
void AddSettingsOptions(host::OptionSet& set, GivenSettings& given);

/// Throws UsageError.
Settings ReadSettings(const GivenSettings& given);

/// Takes the lines "NAME = VALUE" of the file `name`: database, store, store-certificate. Throws
/// UsageError with its name and line.
Settings ReadSettingsText(const std::string& text, const std::string& name);

/// Throws UsageError when nobody named a store.
StorePlace RequireStore(const Settings& settings);

}  // namespace fleet
