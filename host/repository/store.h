// The contents of a repository: one table per class, one row per AddToRepository. A row costs what
// its own texts cost; all that rows have in common is kept once.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "frame/halyard/repository.h"
#include "host/text/byte_chunks.h"

namespace host {

/// What a value is. Properties are texts or integers; answers of a database can be anything.
enum class CellKind : unsigned char { kText, kInteger, kReal, kNothing };

/// One column of a row: a property without its value.
struct Column {
  std::string key;
  std::string label;
  CellKind kind = CellKind::kText;
  bool flag = false;
  auto operator<=>(const Column&) const = default;
};

/// An attribute record of a row.
struct Attribute {
  std::string propertyKey;
  std::string name;
  std::string value;
  auto operator<=>(const Attribute&) const = default;
};

/// The part that many rows share.
struct RowShape {
  std::string className;
  std::string instanceKey;
  int number = -1;
  std::vector<Column> columns;  ///< in the order in which the keys were first set
  std::vector<Attribute> attributes;
  auto operator<=>(const RowShape&) const = default;
};

/// One instance as it was when it was added. Texts are bytes in the machine's code page.
struct Row {
  /// `values` has one text per column of `shape`, which, like `texts`, has to outlive the row.
  Row(const RowShape& shape, const std::vector<std::string>& values, ByteChunks& texts)
      : shape(&shape) {
    std::size_t textSize = 0;
    for (const std::string& value : values) textSize += value.size();
    std::size_t width = 1;
    while (width < sizeof(textSize) && textSize >> (8 * width) != 0) width *= 2;
    const std::size_t beforeTexts = 1 + values.size() * width;
    char* const packed = texts.Take(beforeTexts + textSize);
    packed[0] = static_cast<char>(width);
    std::size_t end = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i].copy(packed + beforeTexts + end, values[i].size());
      end += values[i].size();
      for (std::size_t byte = 0; byte < width; ++byte) {
        packed[1 + i * width + byte] = static_cast<char>(end >> (8 * byte));
      }
    }
    memory = reinterpret_cast<const unsigned char*>(packed);
  }

  std::size_t ValueCount() const { return shape->columns.size(); }
  /// Of a column of the shape; numbers as decimal ones, nothing as an empty text.
  std::string_view Value(std::size_t place) const {
    const std::size_t begin = place == 0 ? 0 : EndOf(place - 1);
    const auto* texts = reinterpret_cast<const char*>(memory) + 1 + ValueCount() * memory[0];
    return {texts + begin, EndOf(place) - begin};
  }
  std::vector<std::string_view> Values() const {
    std::vector<std::string_view> values;
    for (std::size_t i = 0; i < ValueCount(); ++i) values.push_back(Value(i));
    return values;
  }

  const RowShape* shape;

 private:
  std::size_t EndOf(std::size_t place) const {
    const std::size_t width = memory[0];
    std::size_t end = 0;
    for (std::size_t byte = 0; byte < width; ++byte) {
      end |= std::size_t{memory[1 + place * width + byte]} << (8 * byte);
    }
    return end;
  }

  /// How many bytes a place takes; of each value where it ends, counted from the first; then all of
  /// them: a string for each would take more memory than most values.
  const unsigned char* memory;
};

struct Table {
  std::vector<Column> columns;  ///< every key of any row, in the order in which they first came
  std::deque<Row> rows;
  ByteChunks texts;  ///< of the rows
};

/// The tables by class name; only classes that have rows. Valid as long as the repository lives; an
/// AddToRepository leaves references to tables and rows valid.
REPOSITORY_API const std::map<std::string, Table>& TablesOf(
    const halyard::repository::RRepository& repository);

/// Adds a row as an instance would, with one text in `values` for each column of `shape`.
REPOSITORY_API void AddRow(halyard::repository::RRepository& repository, const RowShape& shape,
                           const std::vector<std::string>& values);

}  // namespace host
