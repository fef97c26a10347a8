#!/usr/bin/env bash
# Counts which lines and branches of the program the native tests run.
#   scripts/coverage.sh             all tests: frame/, pqmodules/ and host/
#   scripts/coverage.sh ROOM...     only the tests of these rooms, and only what these rooms hold
#   scripts/coverage.sh --windows   the tests under Wine: what is for Windows alone, and host/live/
#   scripts/coverage.sh --both      runs nothing: what the last run of all tests and the last one under Wine
#                                   counted together, with what pqhost does with a live machine alone
# Prints a line for each folder and the lines that nothing ran; all of it stays in build/coverage/report.txt.
# Else code for Windows alone is left out; branches that only an exception takes always are.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v gcovr >/dev/null || { echo "gcovr is missing: scripts/install.sh test" >&2; exit 1; }

everything=(--filter frame/ --filter pqmodules/ --filter host/)

keep_counts() {  # SYSTEM GCOVR-ARGUMENT...
  local system=$1
  shift
  # GCC 12 counts some lines of templates below zero.
  gcovr --root . "$@" --exclude-throw-branches --exclude-unreachable-branches \
    --gcov-ignore-parse-errors --json "build/coverage/$system.json"
}

print_report() {  # GCOVR-ARGUMENT...
  gcovr --root . "$@" --json build/coverage/report.json
  python3 scripts/coverage_report.py build/coverage/report.json | tee build/coverage/report.txt
}

if [[ ${1:-} == --both ]]; then
  print_report --add-tracefile build/coverage/native.json --add-tracefile build/coverage/windows.json \
    "${everything[@]}"
  exit
fi

if [[ ${1:-} == --windows ]]; then
  scripts/build.sh native pqhost
  scripts/build.sh windows_coverage
  mkdir -p build/coverage
  find build/windows_coverage -name '*.gcda' -delete
  # Programs have other current drives than that of the build.
  PQ_WINDOWS=build/windows_coverage GCOV_PREFIX=Z: scripts/wine_tests.sh
  keep_counts windows "${everything[@]}" --gcov-executable x86_64-w64-mingw32-gcov build/windows_coverage
  print_report --add-tracefile build/coverage/windows.json --filter '.*/windows/' --filter host/live/
  exit
fi

targets=(pq_tests)
filters=("${everything[@]}")
counted=native
if [[ $# -gt 0 ]]; then
  targets=("${@/#/pq_tests_}")
  filters=()
  counted=rooms
  for room in "$@"; do
    [[ -d $room ]] && filters+=(--filter "$room/") || filters+=(--filter "host/$room/")
  done
fi
scripts/build.sh coverage "${targets[@]}"
find build/coverage -name '*.gcda' -delete

# Tests of how work and memory grow count what they cost, which counting lines changes. Each core runs
# a part of the tests; what several processes counted is added up where they write it.
shards=$(nproc)
run_shard() {  # PROGRAM INDEX
  local log=build/coverage/shard-$2.log
  GTEST_TOTAL_SHARDS=$shards GTEST_SHARD_INDEX=$2 "$1" --gtest_brief=1 \
    --gtest_filter='-*TakesTwice*:*TakesAboutTwice*:RepositoryMemory*:*PeakMemory*' >"$log" 2>&1 && return
  cat "$log" >&2
  return 1
}
for target in "${targets[@]}"; do
  running=()
  for ((index = 0; index < shards; ++index)); do
    run_shard "build/coverage/bin/$target" "$index" &
    running+=($!)
  done
  failed=0
  for shard in "${running[@]}"; do wait "$shard" || failed=1; done
  [[ $failed -eq 0 ]] || exit 1
done
keep_counts "$counted" "${filters[@]}" --exclude '.*/windows/' build/coverage
print_report --add-tracefile "build/coverage/$counted.json" "${filters[@]}"
