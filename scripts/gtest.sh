#!/usr/bin/env bash
# Runs a GoogleTest program and ends with "N passed, N failed".
#   scripts/gtest.sh COMMAND...
set -uo pipefail
cd "$(dirname "$0")/.."
log=$(mktemp)
"$@" --gtest_brief=0 --gtest_color=no 2>&1 | tee "$log"
status=${PIPESTATUS[0]}
passed=$(tr -d '\r' <"$log" | grep -c '^\[       OK \]')
failed=$(tr -d '\r' <"$log" | grep -cE '^\[  FAILED  \] .* \([0-9]+ ms\)$')
# A program that ended before its last test counts as one failure more.
[[ $status -eq 0 || $failed -gt 0 ]] && grep -q '^\[  PASSED  \]' "$log" || failed=$((failed + 1))
rm -f "$log"
echo "$passed passed, $failed failed"
[[ $failed -eq 0 && $passed -gt 0 ]]
