#!/usr/bin/env bash
# Measures and prints one table: processor time of one run and of one line, throughput, how many times
# as long as a bare fgets pass over the same text it takes, how many times the logger does for its lines, the
# collector without logger and without what the repository takes for the rows, the highest mark of memory in sizes of the text, and in bytes what a row keeps and how
# much of that is the row's text.
#   scripts/bench.sh [FILTER]     FILTER: a regular expression of benchmark names
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh native pq_bench
mkdir -p build/bench
result=build/bench/result.json
build/native/bin/pq_bench --benchmark_filter="${1:-.}" --benchmark_out="$result" \
  --benchmark_out_format=json >build/bench/output.txt 2>&1 || { cat build/bench/output.txt; exit 1; }

python3 - "$result" <<'PYTHON'
import json
import sys

SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def short_time(seconds):
    for unit, size in (("s", 1.0), ("ms", 1e-3), ("us", 1e-6)):
        if seconds >= size:
            return f"{seconds / size:.1f} {unit}"
    return f"{seconds / 1e-9:.0f} ns"


def number(bench, counter, digits=0, scale=1.0):
    return f"{bench[counter] * scale:.{digits}f}" if counter in bench else "-"


def row(bench):
    return (
        bench["name"].removeprefix("BM_"),
        short_time(bench["cpu_time"] * SECONDS[bench["time_unit"]]),
        number(bench, "ns/line"),
        number(bench, "bytes_per_second", 1, 1e-6),
        number(bench, "xfgets", 1),
        number(bench, "log/fgets", 1),
        number(bench, "own/fgets", 1),
        number(bench, "heap/text", 1),
        number(bench, "kept/row"),
        number(bench, "text/row"),
    )


benches = json.load(open(sys.argv[1]))["benchmarks"]
failures = [b for b in benches if b.get("error_occurred")]
table = [("benchmark", "time", "ns/line", "MB/s", "x fgets", "log x fgets", "own x fgets", "heap/text", "kept/row",
          "text/row")]
table += [row(b) for b in benches if not b.get("error_occurred")]
widths = [max(len(line[i]) for line in table) for i in range(len(table[0]))]
for line in table:
    print("  ".join([line[0].ljust(widths[0])] + [c.rjust(w) for c, w in zip(line[1:], widths[1:])]))
for bench in failures:
    print(f"{bench['name']} failed: {bench['error_message']}", file=sys.stderr)
sys.exit(1 if failures else 0)
PYTHON
