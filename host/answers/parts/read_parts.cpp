#include "host/answers/parts/read_parts.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/answers/parts/amt.h"
#include "host/answers/parts/bmc.h"
#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/condition_words.h"
#include "host/answers/parts/intel.h"
#include "host/answers/parts/lsi.h"
#include "host/answers/parts/microchip.h"
#include "host/answers/parts/part_names.h"
#include "host/answers/parts/part_tables.h"

namespace host {
namespace {

/// Reads the parts of one vendor or one device; may refer to what those before it read.
using Reader = void (*)(const CollectedRows& rows, Parts& parts);

constexpr Reader kReaders[] = {
    ReadLsi, ReadMicrochip, ReadIntel, ReadBmc, ReadAmt, ReadSas2,
};

void FindConditions(Parts& parts) {
  for (Drive& drive : parts.drives) drive.condition = FindDriveCondition(drive.state);
  for (Volume& volume : parts.volumes) volume.condition = FindVolumeCondition(volume.state);
  for (Group& group : parts.groups) group.condition = FindVolumeCondition(group.state);
  for (CacheBackup& backup : parts.cacheBackups) {
    backup.condition = FindCacheBackupCondition(backup.state);
  }
}

/// The second of two parts with one id becomes "ID #2". References mean the first.
template <typename Table>
void MakeIdsUnique(Table& table) {
  std::unordered_set<std::string_view> known;  // of ids that change no more
  known.reserve(table.size());
  std::unordered_map<std::string, int> count;
  for (auto& part : table) {
    if (known.insert(part.id).second) continue;
    const std::string id = part.id;
    int& number = count.try_emplace(id, 1).first->second;
    do part.id = id + " #" + std::to_string(++number);
    while (!known.insert(part.id).second);
  }
}

void MakeIdsUnique(Parts& parts) {
  MakeIdsUnique(parts.controllers);
  MakeIdsUnique(parts.drives);
  MakeIdsUnique(parts.volumes);
  MakeIdsUnique(parts.groups);
  MakeIdsUnique(parts.missingDrives);
  MakeIdsUnique(parts.cacheBackups);
  MakeIdsUnique(parts.enclosures);
  MakeIdsUnique(parts.sensors);
  parts.events.MakeIdsUnique();
  MakeIdsUnique(parts.powerSupplies);
  MakeIdsUnique(parts.leds);
  MakeIdsUnique(parts.selfTests);
  MakeIdsUnique(parts.sources);
}

/// What was true when a file was written need not be true now.
void DoubtOldFiles(const CollectedRows& rows, Parts& parts) {
  for (PartSource& source : parts.sources) {
    const CollectedTable* table = rows.FindTable(source.readAt.className);
    if (source.state != "read" || table == nullptr || table->status.oldFiles.empty()) continue;
    source.state = "failed";
    source.observed = "what there is comes " + table->status.oldFiles;
  }
}

/// Parts that were left out have not been looked at, which is told before all that is unread.
void TellWhatIsLeft(Parts& parts) {
  std::vector<Unread> told;
  for (const PartTable& table : GetPartTables()) {
    const std::size_t left = table.countLeft(parts);
    if (left == 0) continue;
    const std::string name = table.name == "unread" ? "unread lines" : NameParts(table.name, 2);
    Unread& unread = told.emplace_back();
    unread.text =
        fmt::format("{} more {} were left out: a table has {} at most", left, name, kMostParts);
  }
  parts.unread.insert(parts.unread.begin(), told.begin(), told.end());
}

void NumberUnread(Parts& parts) {
  for (std::size_t i = 0; i < parts.unread.size(); ++i) {
    parts.unread[i].id = std::to_string(i + 1);
  }
}

Parts ReadFromReports(const Collection& collection) {
  const CollectedRows rows(collection);
  Parts parts;
  for (const Reader read : kReaders) read(rows, parts);
  DoubtOldFiles(rows, parts);
  FindConditions(parts);
  MakeIdsUnique(parts);
  TellWhatIsLeft(parts);
  NumberUnread(parts);
  return parts;
}

/// A result does not say of each column where it was read; its rows do, of the parts that are in
/// them.
void FindColumnPlaces(const Parts& read, Parts& parts) {
  for (const PartTable& table : GetPartTables()) {
    if (table.change == nullptr) continue;
    std::unordered_map<std::string_view, std::shared_ptr<const Part>> known;
    for (std::size_t row = 0; row < table.count(read); ++row) {
      const std::shared_ptr<const Part> part = table.at(read, row);
      known.emplace(part->id, part);
    }
    for (std::size_t row = 0; row < table.count(parts); ++row) {
      Part& part = *table.change(parts, row);
      const auto found = known.find(part.id);
      if (found == known.end() || found->second->readAt != part.readAt) continue;
      part.columnPlaces = found->second->columnPlaces;
    }
  }
}

}  // namespace

Parts ReadParts(const Collection& collection) {
  Parts read = ReadFromReports(collection);
  if (!collection.parts) return read;
  Parts parts = *collection.parts;
  FindColumnPlaces(read, parts);
  return parts;
}

}  // namespace host
