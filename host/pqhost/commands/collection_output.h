// A collection on its way to where its user wants it, in the format that he asked for.
#pragma once

#include <optional>

#include "host/collect/collection.h"
#include "host/formats/formats.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/compared_file.h"
#include "host/program/console.h"
#include "host/program/result_output.h"

namespace host {

/// How much of it is shown.
struct ShownMuch {
  bool leavesAttachmentsOut = false;
  bool showsAll = false;  ///< also old lines of logs on a screen
};

/// --no-attachments and --all
void AddShownMuch(OptionSet& set, ShownMuch& much);

/// Throws UsageError for --identify with a format whose rows cannot tell their machine.
void RefuseIdentityOfOthers(const ResultOptions& result);

class CollectionOutput {
 public:
  /// Throws UsageError when the format is nothing for a terminal and would go to one. What is
  /// given has to outlive this.
  CollectionOutput(const ResultOptions& result, const ShownMuch& much, const Console& console);

  const Format& GetFormat() const { return format; }

  /// Has the report tell what has changed since `earlier`, which must outlive this.
  void CompareWith(const ComparedFile& earlier) { this->earlier = &earlier; }

  /// Makes the place, so that nothing is done for one that cannot be written. Throws UsageError.
  void Open();
  /// Adds what the format leaves out to the problems, and writes all. Throws std::runtime_error.
  void Write(Collection& collection);
  /// On standard error a line for each problem and each table, unless they are on the screen.
  void TellStatus(const Collection& collection) const;
  /// Where the results are.
  void TellPlace() const;

 private:
  std::optional<NamedDifference> FindChanges(const Collection& collection) const;

  const ResultOptions& result;
  const ShownMuch& much;
  const Console& console;
  const Format& format;
  const bool isFolder;  ///< a file for each table
  const ComparedFile* earlier = nullptr;
  std::optional<ResultOutput> output;
};

}  // namespace host
