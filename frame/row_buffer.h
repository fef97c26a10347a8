// One instance as the buffer of a table's rows: columns are set in turn, and each commit hands the
// row to the repository as it stands.
#pragma once

#include <string>
#include <string_view>

#include "frame/module.h"

namespace pq {

/// A property without its value: its key and its display label.
struct Column {
  std::string key;
  std::string label;
};

/// Keeps what was set from one row to the next.
class RowBuffer {
 public:
  RowBuffer(RRepository& repo, const std::string& className, const std::string& key)
      : repo(repo), instance(className, key, kInstanceNumber) {}

  void Set(const Column& column, std::string_view text) {
    value = text;
    instance.AddProperty(column.key, column.label, value, kPropertyFlag);
  }
  void Commit() { instance.AddToRepository(repo); }

 private:
  RRepository& repo;
  RInstance instance;
  std::string value;  // One for all rows, so that a row costs no allocation here.
};

}  // namespace pq
