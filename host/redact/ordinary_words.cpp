#include "host/redact/ordinary_words.h"

#include <string_view>

#include "host/catalogue/table_sources.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// What tools print beside their labels, and accounts.
constexpr std::string_view kWords[] = {
    "admin",       "administrator", "root",     "guest",  "operator", "service", "test",
    "default",     "server",        "client",   "host",   "node",     "machine", "computer",
    "storage",     "disk",          "disks",    "raid",   "array",    "online",  "offline",
    "normal",      "failed",        "optimal",  "ready",  "status",   "state",   "success",
    "completed",   "degraded",      "present",  "active", "unknown",  "healthy", "device",
    "connector",   "logical",       "physical", "slot",   "channel",  "user",    "users",
    "information", "warning",       "critical", "error",  "errors",   "data",    "backup",
    "monitor",     "gateway",       "router",   "public", "private",  "printer", "boot",
};

void AddWords(std::set<std::string>& words, std::string_view text) {
  std::string word;
  for (const char c : text) {
    if (IsAsciiLetterOrDigit(c)) {
      word += LowerCase(c);
      continue;
    }
    words.insert(word);
    word.clear();
  }
  words.insert(word);
}

void AddFile(std::set<std::string>& files, std::string_view name) {
  const std::string file = LowerCase(name.substr(name.find_last_of('\\') + 1));
  files.insert(file);
  files.insert(file.substr(0, file.rfind('.')));
}

}  // namespace

std::set<std::string> ListOrdinaryWords() {
  std::set<std::string> words(std::begin(kWords), std::end(kWords));
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) {
      AddWords(words, table.className);
      AddWords(words, table.title);
      AddWords(words, table.area);
      for (const pq::ColumnDescription& column : table.columns) {
        AddWords(words, column.key);
        AddWords(words, column.label);
        AddWords(words, column.text);
      }
      for (const pq::ToolCommand& command : table.commands) {
        AddWords(words, command.program);
        AddWords(words, command.arguments);
      }
    }
  }
  return words;
}

std::set<std::string> ListToolFiles() {
  std::set<std::string> files;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) {
      for (const pq::ToolCommand& command : table.commands) {
        AddFile(files, command.file);
        AddFile(files, command.program);
      }
    }
  }
  return files;
}

}  // namespace host
