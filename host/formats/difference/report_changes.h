// A difference as the report shows it: a section of its own, and where parts have changed.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

#include "host/formats/difference/difference_formats.h"
#include "host/formats/html_text.h"

namespace host {

/// What has changed of the parts of the second collection. Refers to the difference.
class ReportChanges {
 public:
  explicit ReportChanges(const Difference& difference);

  /// The value before; null when it is the same.
  const ChangedColumn* FindColumn(std::string_view table, std::string_view id,
                                  std::string_view column) const;
  /// "new", "moved", "replaced" for a part that is so; empty for others.
  std::string_view FindMark(std::string_view table, const Part& part) const;

 private:
  using PartKey = std::pair<std::string_view, std::string_view>;  ///< table and id
  using EntryKey = std::tuple<std::string, Integer, std::string_view, std::string_view>;

  std::map<PartKey, const PartDifference*> parts;
  std::set<EntryKey> entries;  ///< log, number, time and text
};

/// The address in the page of a part of the second collection; empty when it has none.
using FindPartAddress = std::function<std::string(std::string_view table, const std::string& id)>;

/// The section "Changes since DATE": findings, parts, cells, logs, and what was not compared. Of
/// long lists the first, and how many are left out.
void WriteChangesSection(const NamedDifference& named, const FindPartAddress& findAddress,
                         HtmlWriter& html);

}  // namespace host
