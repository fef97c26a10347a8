// The metrics of --format prometheus as data.
#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "host/answers/assessment.h"
#include "host/text/screen.h"

namespace host {

/// A label of a sample; one without a name is none.
struct MetricLabel {
  std::string_view name;
  std::string_view column;  ///< of the row that the sample is made of
};

/// Nothing, a number, or UTF-8.
using MetricValue = std::variant<std::monostate, std::int64_t, double, std::string>;

/// Samples of one name: one for each row of a table that has a value for it.
struct MetricFamily {
  std::string_view name;
  std::string_view type;  ///< "gauge" or "counter"
  std::string_view help;
  std::string_view table;  ///< of parts, or one that is made of them: machine, findings, logs, ...
  std::array<MetricLabel, 6> labels;
  std::string_view column;                       ///< that the value is made of
  MetricValue (*read)(const MetricValue& told);  ///< a number, or nothing
  /// Rows with another text in this column have no sample.
  std::string_view onlyColumn = {};
  std::string_view onlyText = {};
};

/// All families, in the order in which they are written.
std::span<const MetricFamily> GetMetricFamilies();

/// What parts and verdict do not tell.
struct MetricsHead {
  MetricValue collected;     ///< Unix time
  std::string machine = {};  ///< label of each sample; empty: none
};

/// Writes the metrics of a machine as --format prometheus does.
void WriteMetrics(const Assessment& assessment, const MetricsHead& head, const Screen& screen,
                  std::ostream& out);

/// docs/metrics.md: every family, and how to have them collected.
std::string WriteMetricsDocument();

}  // namespace host
