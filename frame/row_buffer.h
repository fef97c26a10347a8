// One instance as the buffer of a table's rows: columns are set in turn, and each commit hands the
// row to the repository in its present state.
#pragma once

#include <string>
#include <string_view>

#include "frame/module.h"

namespace pq {

enum class ValueKind {
  kText,
  kNumber,  ///< a decimal number, or a word where there is none
};

/// A property without its value.
struct Column {
  std::string_view key;
  std::string_view label;      ///< as it is displayed
  std::string_view text = {};  ///< its meaning, for the documentation
  ValueKind kind = ValueKind::kText;
};

/// Values that were set stay set from one row to the next.
class RowBuffer {
 public:
  RowBuffer(RRepository& repo, const std::string& className, const std::string& title)
      : repo(repo), instance(className, title, kInstanceNumber) {}

  void Set(const Column& column, std::string_view text) {
    key = column.key;
    label = column.label;
    value = text;
    instance.AddProperty(key, label, value, kPropertyFlag);
  }
  void Commit() { instance.AddToRepository(repo); }

 private:
  RRepository& repo;
  RInstance instance;
  // One set for all rows, so that a row costs no allocation here.
  std::string key;
  std::string label;
  std::string value;
};

}  // namespace pq
