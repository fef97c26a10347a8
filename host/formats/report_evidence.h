// Where a finding was read: in words, as an address in the report, and what is written there.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "host/answers/parts/parts.h"
#include "host/collect/table_view.h"
#include "host/formats/report_size.h"

namespace host {

struct Evidence {
  std::string where;  ///< "storcli /c0 show, line 90"; empty when nobody knows
  /// "#at/LSILINK/1/lsishowall/90", or of the table alone; empty when the report shows neither.
  std::string address;
  std::string quote;  ///< the cell or the line; empty with an empty address
};

class EvidenceIndex {
 public:
  /// Reads each text that `places` point into once. `view` and `shown`, one for each table of its
  /// collection, must outlive the index.
  EvidenceIndex(const CollectionView& view, const std::vector<ShownPart>& shown,
                const std::vector<Place>& places);

  Evidence Find(const Place& place) const;

 private:
  using CellKey = std::tuple<std::string, std::int64_t, std::string>;  ///< class, row, property
  struct Cell {
    std::string where;
    std::int64_t firstLine = 1;  ///< that the report shows
    /// By number; 0: the whole text. None where the text has no such line.
    std::map<std::int64_t, std::optional<std::string>> lines;
  };

  void ReadTable(const TableView& table, const ShownPart& part);
  void ReadUnkeptOutputs(const Collection& collection, const std::vector<Place>& places);

  std::map<CellKey, Cell> cells;
  std::map<std::string, std::string, std::less<>> tables;  ///< title by class
  /// Of outputs that no table keeps: their lines by tool and number.
  std::map<std::string, std::map<std::int64_t, std::string>, std::less<>> unkeptLines;
};

/// The number, from 1, of the line that the end of a text begins in.
std::int64_t FindFirstLine(std::string_view text, std::string_view end);

/// The address of a place that the report shows.
std::string MakeAddress(const Place& place);

}  // namespace host
