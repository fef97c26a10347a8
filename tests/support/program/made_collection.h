// A finished collection made by hand, for the output formats.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/collect/collection.h"
#include "host/formats/formats.h"

namespace test {

/// Builds a collection of one module "Example" on the 18th of November 2026, 09:41:07 UTC.
class MadeCollection {
 public:
  /// One instance for each row; the pairs are label and value, and the keys are "k1", "k2" and on.
  using Pairs = std::vector<std::pair<std::string, std::string>>;

  MadeCollection();

  /// Adds a table, by row or by property, that was enumerated.
  MadeCollection& Table(const std::string& className, bool byRow = true);
  /// Adds a row to the table added last.
  MadeCollection& Row(const Pairs& properties);
  /// Adds a row with a property "file" that holds `content` raw under the name `fileName`.
  MadeCollection& FileRow(const std::string& content, const std::string& fileName);
  /// For rows that the above cannot make.
  halyard::repository::RRepository& Repository() { return *collection.repository; }

  /// The finished collection; refers to this object.
  host::Collection& Get();

  /// The collection as `format` writes it.
  std::string As(const std::string& format, const host::Screen& screen = {});

 private:
  host::Collection collection;
};

}  // namespace test
