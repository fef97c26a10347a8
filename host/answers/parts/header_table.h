// Tables of a report whose columns are told by their heads, not by their number:
//
//   VD LIST :
//   =======
//
//   -----------------------------------------------------------
//   DG/VD TYPE  State Access Consist Cache sCC     Size Name
//   -----------------------------------------------------------
//   0/0   RAID5 Optl  RW     No      RWBD  ON  1.089 TB Backup vault
//   -----------------------------------------------------------
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The cells of one row; views of it.
class RowCells {
 public:
  struct Cell {
    std::string_view head;
    std::string_view text;  ///< without blanks around it; may be empty
  };

  explicit RowCells(std::vector<Cell> cells) : cells(std::move(cells)) {}
  /// The cell below `head`; empty without such a column.
  std::string_view operator[](std::string_view head) const;

 private:
  std::vector<Cell> cells;
};

/// The heads of a table; views of the line that names them.
class TableHeads {
 public:
  TableHeads() = default;
  explicit TableHeads(std::string_view line);

  bool Has(std::string_view head) const;
  bool empty() const { return heads.empty(); }

  /// Deals the words of `row` in their order, one to each head; two where they are a number with
  /// its unit of size. The words that are left over, maybe none, are those of the column
  /// `wideHead`; an empty `wideHead` means that there is no such column. None when the row has
  /// too few words, or too many. For tables that leave no other cell empty: it holds, too, where a
  /// long value shifts the rest of its row.
  std::optional<RowCells> DealWords(std::string_view row, std::string_view wideHead) const;

  /// Gives each word to the head that is above it. A word between two heads belongs to the left
  /// one, which it makes longer. For tables with empty cells.
  RowCells CutBelowHeads(std::string_view row) const;

 private:
  struct Head {
    std::string_view text;
    std::size_t begin;
    std::size_t end;
  };
  std::size_t FindPlace(std::string_view head) const;

  std::vector<Head> heads;
};

/// Finds the rows of such tables in the lines of a report.
class TableScan {
 public:
  enum class LineKind { kOther, kTitle, kHeads, kRow };

  /// Of the report's next line. Title and heads stay views of the lines that they came from.
  LineKind Take(std::string_view line);

  /// Of the table that is being read, or was read last: "VD LIST".
  std::string_view Title() const { return title; }
  const TableHeads& Heads() const { return heads; }
  /// After the last line: which table lacks its last rule, the first of several, as in "breaks off
  /// in the table VD LIST"; empty when all are whole.
  std::string DescribeBreak() const;

 private:
  bool IsInTable() const { return rules == 1 || rules == 2; }

  std::optional<std::string_view> broken;
  std::string_view title;
  TableHeads heads;
  int rules = 0;  ///< of the table so far
};

}  // namespace host
