// What a collection costs per line of what a tool prints: processor time, heap, and how that
// compares with a bare fgets pass over the same text.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "host/recorded/recording.h"

namespace bench {

/// A module on a machine on which one tool prints `text` of `lineCount` lines.
struct CollectionCase {
  host::Recording machine;
  std::string module;
  std::string table;
  std::string text;
  std::int64_t lineCount = 0;
};

/// Processor seconds of one bare fgets pass with a 512-byte buffer over `text`, stored in a file.
double FgetsSeconds(const std::string& text);

/// Runs the collection with an empty repository and without a log in each iteration. Counters:
/// ns/line (processor time), heap/line (bytes, the highest mark of one run; the recording does not
/// count), heap/text (the same, in sizes of the text), xfgets (times the fgets pass), log/line
/// (lines of the log for one of the text), log/fgets (what the logger takes for them, in fgets
/// passes), own/fgets (all without logger, and without what the repository takes for the same
/// calls, each measured in turn), kept/row and text/row (bytes that the repository holds in the end
/// for a row of `table`, and how many of them are its texts; only when there are rows).
void MeasureCollection(benchmark::State& state, const CollectionCase& measured);

}  // namespace bench
