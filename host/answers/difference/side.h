// One of the two collections that are compared: what it could read, and how the other one calls its
// controllers.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/answers/difference/difference.h"
#include "host/answers/parts/part_tables.h"

namespace host {

/// A controller may have another number from one collection to the next. Its serial number tells,
/// and all that is called after it is renamed.
class Renaming {
 public:
  /// Nothing is renamed.
  Renaming() = default;
  /// From names in `before` to names in `after`.
  Renaming(const Parts& before, const Parts& after);

  /// An id, or the name of a controller or group, as the later collection has it. A controller that
  /// is not there any more is "former lsi1" where another has its name now.
  std::string Rename(std::string_view id) const;

 private:
  std::unordered_map<std::string, std::string> names;
};

/// Refers to the collection.
class Side {
 public:
  Side(const AssessedCollection& assessed, DifferenceSide side);

  DifferenceSide Which() const { return side; }
  const Collection& GetCollection() const { return assessed.collection; }
  const Parts& GetParts() const { return assessed.assessment.parts; }
  const Health& GetHealth() const { return assessed.assessment.health; }

  /// Why a thing of a table of parts, which the other side has read at `place`, may be there though
  /// this side does not tell of it; empty when it would. `id` is what this side would call it.
  std::string FindWhyUntold(std::string_view table, std::string_view id, const Place& place) const;
  /// Why the log entries that `teller` has read at `place` cannot be compared with this side's.
  std::string FindWhyNoEntries(const Side& teller, const Place& place) const;
  /// Why a log that the other side has entries of, such as `entry`, has none here.
  std::string FindWhyLogEmpty(const Event& entry) const;
  /// The tool that a class is made of said that there is nothing for it here.
  bool SaysNone(std::string_view className) const;
  /// Labels of a class's cells that show something else than its report; as in TableStatus.
  std::vector<std::string> ListUnfitLabels(std::string_view className) const;
  /// Why a class could not be read; empty when it was.
  std::string FindWhyUnread(std::string_view className) const;
  /// Whether all of the source of such a part was read.
  bool IsSourceRead(std::string_view table, std::string_view id) const;
  /// The source of such a part, as in PartSource; for people when there is none.
  std::string NameSource(std::string_view table, std::string_view id) const;

 private:
  const PartSource* FindSource(std::string_view id) const;
  std::string FindWhySourceUnread(const PartSource& source) const;
  std::string FindWhyWithoutRows(std::string_view className) const;
  std::string FindWhyOriginUnread(std::string_view id, const Place& place) const;
  bool HasController(std::string_view id) const;
  bool HasRead(const PartSource& source, std::string_view id) const;
  bool TellsAllLsiControllers() const;

  AssessedCollection assessed;
  DifferenceSide side;
  std::unordered_map<std::string_view, const CollectedTable*> tables;
  std::unordered_set<std::string> origins;  ///< what some part was read from
};

struct Sides {
  const Side& before;
  const Side& after;
  const Renaming& renaming;   ///< from names of `before`
  const Renaming& restoring;  ///< from names of `after`

  const Side& Other(const Side& side) const { return &side == &before ? after : before; }
  /// What the other side calls something of `side`.
  std::string Translate(const Side& side, std::string_view id) const {
    return (&side == &before ? renaming : restoring).Rename(id);
  }
};

}  // namespace host
