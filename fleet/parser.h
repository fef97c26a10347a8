// From the bytes of a recording to rows for the database: collection, parts, verdict.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fleet/parsed.h"
#include "fleet/row_tables.h"
#include "host/answers/health/health.h"
#include "host/recorded/recording.h"
#include "host/text/decoder.h"
#include "host/text/time_text.h"

namespace fleet {

/// Which readers this program has: its version, and a digest of their sources.
std::string DescribeParser();
/// A digest of the sources of each of them, as a JSON object.
std::string DescribeReaders();

class Parser {
 public:
  /// Makes all that parsing needs and that is the same for every recording; what the system loads
  /// when it is first used is loaded as well, so that Parse() opens no file. `tables` has to
  /// outlive this.
  explicit Parser(const RowTables& tables);

  /// `zip` are the bytes of a recording with this content key; `taken` is when it was made. It
  /// never throws, but for std::bad_alloc.
  Parsed Parse(std::string zip, const std::string& key,
               const std::optional<host::LocalTime>& taken);

 private:
  Parsed Read(host::Recording recording, const std::optional<host::LocalTime>& taken);

  const RowTables& tables;
  host::HealthJudge judge;
  std::vector<std::unique_ptr<host::TextDecoder>> decoders;  ///< keep code pages loaded
};

}  // namespace fleet
