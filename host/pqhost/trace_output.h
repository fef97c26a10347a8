// The trace of a collection, written while the modules run.
#pragma once

#include <filesystem>
#include <fstream>
#include <ostream>

#include "host/collect/trace.h"
#include "host/program/console.h"
#include "host/program/destination.h"
#include "host/text/json_text.h"

namespace host {

/// Observes the repository as long as it lives. Unlike a result, the file is written in place: it
/// has to show how far the modules came even when they end the process.
class TraceOutput {
 public:
  /// `console` has to outlive this. Throws UsageError when the file cannot be created.
  TraceOutput(const Destination& destination, const Console& console, Passwords passwords);
  TraceOutput(const TraceOutput&) = delete;
  TraceOutput& operator=(const TraceOutput&) = delete;
  ~TraceOutput();

  /// To be told of the collection.
  TraceWriter& Writer() { return writer; }

  /// Throws std::runtime_error when the file could not be written.
  void Close();

 private:
  std::ostream& Open(const std::filesystem::path& target);
  std::ostream& UseStandardOutput(const Console& console);

  std::ofstream file;
  std::filesystem::path path;
  JsonForTerminal forTerminal;
  TraceWriter writer;
};

}  // namespace host
