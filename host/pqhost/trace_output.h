// The trace of a collection, written while the modules run.
#pragma once

#include <filesystem>
#include <ostream>

#include "host/collect/trace.h"
#include "host/files/file_stream.h"
#include "host/program/console.h"
#include "host/program/destination.h"
#include "host/text/json_text.h"

namespace host {

/// Unlike a result, the file is written in place, not via a temporary file, so that a crash leaves
/// what happened.
class TraceOutput {
 public:
  /// `console` has to outlive this. Throws UsageError when the file cannot be created.
  TraceOutput(const Destination& destination, const Console& console);
  TraceOutput(const TraceOutput&) = delete;
  TraceOutput& operator=(const TraceOutput&) = delete;

  /// To be told of the collection.
  TraceWriter& Writer() { return writer; }

  /// Throws std::runtime_error when the file could not be written.
  void Close();

 private:
  std::ostream& Open(const std::filesystem::path& target);
  std::ostream& UseStandardOutput(const Console& console);

  FileStream file;
  std::filesystem::path path;
  JsonForTerminal forTerminal;
  TraceWriter writer;
};

}  // namespace host
