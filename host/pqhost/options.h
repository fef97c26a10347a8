// The command line: what the program is asked to do.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/program/destination.h"

namespace host {

enum class Command { kShowText, kModules, kCollect, kQuery, kCheck };

struct Options {
  Command command = Command::kShowText;
  std::string text;  ///< of kShowText: help or version

  std::vector<std::string> modules;  ///< in the order named; empty: all
  std::vector<std::string> tables;   ///< in the order named; empty: all
  std::optional<std::filesystem::path> replay;
  std::optional<std::filesystem::path> record;
  std::optional<std::filesystem::path> logFolder;
  std::optional<std::filesystem::path> plugin;
  std::string format;  ///< one of the formats' names
  Destination output;
  std::optional<Destination> trace;
  std::optional<unsigned> toolLimit;  ///< seconds
  bool dryRun = false;                ///< show what would run, and run nothing

  // Of kQuery.
  std::string sql;
  std::optional<std::filesystem::path> database;  ///< none: what is collected is queried
};

/// Reads the arguments (UTF-8, without the program's name). Throws UsageError.
Options ParseOptions(const std::vector<std::string>& arguments);

}  // namespace host
