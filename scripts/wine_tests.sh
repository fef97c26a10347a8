#!/usr/bin/env bash
# Runs the Windows build's tests under Wine, in a prefix that is theirs alone: the test program, then
# every sample recording through the real library. Ends with "N passed, N failed".
#   scripts/wine_tests.sh [SAMPLE]...     with samples: only these, and not the test program
# PQ_WINDOWS names another build than build/windows.
set -uo pipefail
cd "$(dirname "$0")/.."
export WINEPREFIX=$PWD/build/wine-tests
. scripts/wine_env.sh
windows=${PQ_WINDOWS:-build/windows}
mkdir -p build/logs

passed=0
failed=0
run() {  # NAME COMMAND...
  local log=build/logs/wine-$1.log status=0 line
  shift
  "${at_fixed_addresses[@]}" "$@" 2>&1 | tee "$log" || status=$?
  line=$(tail -n 1 "$log")
  if [[ $line =~ ^([0-9]+)\ passed,\ ([0-9]+)\ failed$ ]]; then
    passed=$((passed + BASH_REMATCH[1]))
    failed=$((failed + BASH_REMATCH[2]))
    [[ $status -eq 0 || ${BASH_REMATCH[2]} -gt 0 ]] || failed=$((failed + 1))
  else
    failed=$((failed + 1))
  fi
}

[[ $# -gt 0 ]] || run program scripts/gtest.sh wine "$windows/bin/pq_tests.exe" </dev/null
run samples python3 tests/windows/wine_samples.py "$windows/bin" "$windows/standin" \
  build/native/bin/pqhost "$@"
wineserver -k
echo "$passed passed, $failed failed"
[[ $failed -eq 0 && $passed -gt 0 ]]
