// Runs modules on a recording inside a test and keeps all that came of it.
#pragma once

#include <boost/shared_ptr.hpp>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/collect/collect.h"
#include "host/logger/logger.h"
#include "host/recorded/recording.h"
#include "host/repository/store.h"

namespace test {

/// All that one run left. Texts are bytes in the machine's code page.
struct Collected {
  std::string trace;                         ///< JSON lines, as pqhost --trace writes them
  std::vector<host::LogLine> log;            ///< in order
  std::vector<std::string> commandLines;     ///< of every process started or tried, in order
  std::vector<std::string> opened;           ///< paths given to fopen, in order
  std::string console;                       ///< written by modules to standard output
  std::map<std::string, std::string> files;  ///< on the machine afterwards
  int openHandles = 0;                       ///< processes, pipes and files still open afterwards
  host::Collection collection;

  /// "level text" of every log line, without the "[repo] " prefix.
  std::vector<std::string> LogTexts() const;
  /// The rows of one table: each a list of "key=value" texts, in column order.
  std::vector<std::vector<std::string>> Rows(const std::string& className) const;
  /// The whole store.
  const std::map<std::string, host::Table>& Tables() const;
};

/// Enumerates `tables` of the module `module` in this order (each preceded by its layout call), or
/// every table of its registry when there are none.
Collected Collect(const host::Recording& recording, const std::string& module,
                  const std::vector<std::string>& tables = {});

/// A new object of the module that calls itself `name`; its tables are not registered yet.
boost::shared_ptr<halyard::repository::RModule> FindModule(const std::string& name);

/// The folder of the recordings that come with the product.
std::string SamplesFolder();
/// A file of tests/data, byte for byte.
std::string TestData(const std::string& name);

}  // namespace test
