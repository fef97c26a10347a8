// What storcli's reports have in common on drives: how they name them, and the rows of their lists.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/answers/parts/header_table.h"
#include "host/answers/parts/parts.h"

namespace host {

inline constexpr char kLsi[] = "LSI";
/// Of a controller's id, before its number.
inline constexpr std::string_view kLsiIdPrefix = "lsi";

/// The drives of one controller, found by their names in its reports.
class LsiDrives {
 public:
  /// Knows the drives that `parts` has of `controller`, and those added here.
  LsiDrives(Parts& parts, std::string controller);

  /// `place` as in "69:9", ":0" without an enclosure.
  Drive* FindByPlace(const std::string& place);
  Drive* FindByDeviceId(std::int64_t deviceId);
  /// Adds a drive; its place must be new. Pointers found before are no longer valid.
  Drive& Add(Drive drive);
  /// The id of the drive in a place, whether it is known or not.
  std::string MakeId(const std::string& place) const { return controller + " " + place; }

 private:
  void Remember(std::size_t index);

  Parts& parts;
  std::string controller;
  std::unordered_map<std::string, std::size_t> byPlace;
  std::unordered_map<std::int64_t, std::size_t> byDeviceId;
};

/// Whether a table lists drives, by its heads.
bool HasDriveHeads(const TableHeads& heads);

/// The drive of a row of such a table, without its id; none when the row does not fit the heads.
std::optional<Drive> ReadLsiDriveRow(const TableHeads& heads, std::string_view row,
                                     const std::string& controller);

/// The place in "/c0/e69/s9" or "/c0/s9", which `path` begins with: "69:9", ":9"; none otherwise.
std::optional<std::string> ReadLsiDrivePath(std::string_view path);

/// "-", "N/A" and "NA" say that nothing is known.
bool IsTold(std::string_view value);

/// Whether `text` consists of digits, at least one.
bool IsNumber(std::string_view text);

}  // namespace host
