#include "fleet/settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/files/whole_file.h"
#include "host/text/path_text.h"
#include "host/text/trim.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kFileVariable[] = "PQFLEET_CONFIG";
constexpr char kStoreVariable[] = "PQFLEET_STORE";
constexpr char kCertificateVariable[] = "PQFLEET_STORE_CERTIFICATE";
constexpr char kUsualFile[] = "/etc/pqfleet.conf";

const char* GetVariable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr || *value == '\0' ? nullptr : value;
}

/// Whether the words that libpq takes from the environment give way to these.
enum class Beside { kEnvironment, kNothing };

/// The keywords of "host=… dbname=…" or of a postgresql:// address, after those in `words`.
void TakeConnection(const std::string& text, Beside beside, const std::string& from,
                    ConnectionWords& words) {
  char* error = nullptr;
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(
      PQconninfoParse(text.c_str(), &error), &PQconninfoFree);
  if (!options) {
    const std::string reason(host::Trim(error == nullptr ? "it is no connection" : error));
    PQfreemem(error);
    throw host::UsageError(
        fmt::format("{}: {}; write it as in host=db dbname=fleet", from, reason));
  }
  for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
    if (option->val == nullptr) continue;
    const bool isInEnvironment =
        option->envvar != nullptr && GetVariable(option->envvar) != nullptr;
    if (beside == Beside::kEnvironment && isInEnvironment) continue;
    const bool isThere = std::any_of(words.begin(), words.end(), [&](const auto& word) {
      return word.first == option->keyword;
    });
    if (!isThere) words.emplace_back(option->keyword, option->val);
  }
}

std::optional<std::filesystem::path> FindFile(const GivenSettings& given) {
  if (given.file) return given.file;
  if (const char* file = GetVariable(kFileVariable)) return host::PathFromText(file);
  std::error_code ignored;
  if (std::filesystem::exists(kUsualFile, ignored)) return kUsualFile;
  return std::nullopt;
}

Settings ReadFile(const std::filesystem::path& path) {
  const std::string name = host::PathText(path);
  std::string text;
  try {
    text = host::ReadWholeFile(path);
  } catch (const std::runtime_error& error) {
    throw host::UsageError(fmt::format("{}: {}", name, error.what()));
  }
  return ReadSettingsText(text, name);
}

}  // namespace

void AddDatabaseOptions(host::OptionSet& set, GivenSettings& given) {
  set.AddPath("--config", host::OptionValue::kFile, given.file,
              "Take database and store from this file; $PQFLEET_CONFIG, otherwise "
              "/etc/pqfleet.conf unless given");
  set.AddTexts("--database", "WORDS", given.database,
               "Where the database is, as in \"host=db dbname=fleet\" or postgresql://db/fleet; "
               "PGHOST, PGDATABASE and the like unless given");
}

void AddSettingsOptions(host::OptionSet& set, GivenSettings& given) {
  AddDatabaseOptions(set, given);
  set.AddTexts("--store", "PLACE", given.store,
               "Where the recordings are, a folder or https://HOST/PATH; $PQFLEET_STORE unless "
               "given");
  set.AddPath("--store-certificate", host::OptionValue::kFile, given.certificate,
              "A PEM file with the certificate, and its key, that a store at https:// asks for; "
              "$PQFLEET_STORE_CERTIFICATE unless given");
}

Settings ReadSettingsText(const std::string& text, const std::string& name) {
  Settings settings;
  std::string_view rest = text;
  for (int number = 1; !rest.empty(); ++number) {
    const std::string_view whole = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(whole.size() + 1, rest.size()));
    const std::string_view line = host::Trim(whole);
    if (line.empty() || line.front() == '#') continue;
    const std::string place = fmt::format("{}:{}", name, number);
    const std::size_t sign = line.find('=');
    const std::string_view word = host::Trim(line.substr(0, sign));
    const std::string value(sign == std::string_view::npos ? std::string_view()
                                                           : host::Trim(line.substr(sign + 1)));
    if (word == "database") {
      TakeConnection(value, Beside::kEnvironment, place, settings.database);
    } else if (word == "store" && !value.empty()) {
      settings.store.address = value;
    } else if (word == "store-certificate" && !value.empty()) {
      settings.store.certificate = value;
    } else {
      throw host::UsageError(fmt::format(
          "{}: it takes lines such as store = /srv/fleet and database = host=db dbname=fleet",
          place));
    }
  }
  return settings;
}

Settings ReadSettings(const GivenSettings& given) {
  Settings settings;
  for (const std::string& words : given.database) {
    TakeConnection(words, Beside::kNothing, "--database", settings.database);
  }
  if (const auto file = FindFile(given)) {
    Settings ofFile = ReadFile(*file);
    for (auto& word : ofFile.database) settings.database.push_back(std::move(word));
    // Of two words of a name libpq takes the last.
    std::reverse(settings.database.begin(), settings.database.end());
    settings.store = std::move(ofFile.store);
  }
  if (const char* store = GetVariable(kStoreVariable)) settings.store.address = store;
  if (!given.store.empty()) settings.store.address = given.store.back();
  if (const char* file = GetVariable(kCertificateVariable)) settings.store.certificate = file;
  if (given.certificate) settings.store.certificate = host::PathText(*given.certificate);
  return settings;
}

StorePlace RequireStore(const Settings& settings) {
  if (!settings.store.address.empty()) return settings.store;
  throw host::UsageError(
      "nothing says where the recordings are: give --store PLACE, set PQFLEET_STORE, or write "
      "store = PLACE into /etc/pqfleet.conf");
}

}  // namespace fleet
