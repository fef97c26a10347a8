#!/usr/bin/env bash
# Counts which lines and branches of the program the native tests run.
#   scripts/coverage.sh             all tests: frame/, pqmodules/ and host/
#   scripts/coverage.sh ROOM...     only the tests of these rooms, and only what these rooms hold
# Prints a line for each folder and the lines that nothing ran; all of it stays in build/coverage/report.txt.
# Code for Windows alone is left out, and branches that only an exception takes.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v gcovr >/dev/null || { echo "gcovr is missing: scripts/install.sh test" >&2; exit 1; }

targets=(pq_tests)
filters=(--filter frame/ --filter pqmodules/ --filter host/)
if [[ $# -gt 0 ]]; then
  targets=("${@/#/pq_tests_}")
  filters=()
  for room in "$@"; do
    [[ -d $room ]] && filters+=(--filter "$room/") || filters+=(--filter "host/$room/")
  done
fi
scripts/build.sh coverage "${targets[@]}"
find build/coverage -name '*.gcda' -delete

# Tests of how work and memory grow count what they cost, which counting lines changes.
for target in "${targets[@]}"; do
  "build/coverage/bin/$target" --gtest_brief=1 \
    --gtest_filter='-*TakesTwice*:*TakesAboutTwice*:RepositoryMemory*' || exit 1
done
# GCC 12 counts some lines of templates below zero.
gcovr --root . "${filters[@]}" --exclude '.*/windows/' --exclude-throw-branches \
  --exclude-unreachable-branches --gcov-ignore-parse-errors --json build/coverage/report.json \
  build/coverage
python3 scripts/coverage_report.py build/coverage/report.json | tee build/coverage/report.txt
