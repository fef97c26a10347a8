// The result of a collection.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frame/description.h"
#include "frame/halyard/repository.h"
#include "host/collect/kept_log.h"
#include "host/collect/machine_facts.h"
#include "host/collect/omissions.h"
#include "host/collect/selection.h"
#include "host/collect/table_status.h"
#include "host/recorded/machine_observer.h"
#include "host/repository/store.h"
#include "host/text/bytes.h"

namespace host {

struct Parts;

struct CollectedModule {
  std::string name;
  std::string description;
};

struct CollectedTable {
  std::string className;
  std::string module;
  TableLayout layout;
  const Table* rows = nullptr;  ///< null when none came
  TableStatus status;           ///< how many rows, or why there are none
  /// Known before there are rows, of a table that no module describes.
  std::vector<pq::ColumnDescription> columns = {};
  std::size_t RowCount() const { return rows == nullptr ? 0 : rows->rows.size(); }
};

/// A finished collection. It owns all that it shows and may outlive whatever it came from. Texts
/// are bytes in the machine's code page, unless said otherwise.
struct Collection {
  MachineFacts machine;
  bool machineIsKnown = true;  ///< not that of an answer, which may be about many
  std::chrono::system_clock::time_point collected;
  std::vector<CollectedModule> modules;  ///< each once, in the order of use
  std::vector<CollectedTable> tables;    ///< each once, in the order of use
  /// The user named the tables that he wants.
  bool tablesNamed = false;
  bool isSelection = false;  ///< he named modules or tables, and nobody looked at the others
  /// What makes all of it doubtful, such as a recording that was changed: a sentence each. UTF-8.
  std::vector<std::string> doubts;
  /// The doubts, and a line for each thing that could not be collected. UTF-8.
  std::vector<std::string> problems;
  KeptLog log;  ///< the modules'; only when asked for
  /// The tools' answers, in the order of the command lines. Texts are shared with the recording.
  std::vector<CollectedAnswer> answers;
  /// The files of a recorded machine after the collection, by their Windows path; those of a live
  /// one are where they are.
  std::map<std::string, Bytes> files;
  std::unique_ptr<halyard::repository::RRepository> repository;  ///< of the tables' rows
  /// Of a collection that was read back from a result, as this does not hold all that they were
  /// read from; null: nobody has read them yet.
  std::shared_ptr<const Parts> parts;
};

}  // namespace host
