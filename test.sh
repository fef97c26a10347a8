#!/usr/bin/env bash
# Builds and tests everything: native, sanitizers, Windows under Wine, fuzz corpora, the report in a
# browser, the JSON schema, formatting and lint. A step's whole output is left in build/logs.
# Ends with one line that counts over all of them.
set -uo pipefail
cd "$(dirname "$0")"

scripts/install.sh test || exit 1
mkdir -p build/logs

passed=0
failed=0
failures=()

count() {  # NAME PASSED FAILED
  passed=$((passed + $2))
  failed=$((failed + $3))
  [[ $3 -eq 0 ]] || failures+=("$1")
  printf '%-28s %6d passed %4d failed %5ds\n' "$1" "$2" "$3" "$SECONDS"
}

# A step that either holds or does not.
check() {  # NAME COMMAND...
  local name=$1
  shift
  if "$@"; then count "$name" 1 0; else count "$name" 0 1; fi
}

# A command that ends with "N passed, N failed"; counted once it has ended.
run() {  # NAME COMMAND...
  local name=$1
  shift
  "$@" >"build/logs/$name.log" 2>&1
  echo $? >"build/logs/$name.status"
}

counted() {  # NAME
  local log=build/logs/$1.log line status
  status=$(cat "build/logs/$1.status")
  line=$(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$log" | tail -n 1)
  if [[ $line =~ ^([0-9]+)\ passed,\ ([0-9]+)\ failed$ ]] &&
     { [[ $status -eq 0 ]] || [[ ${BASH_REMATCH[2]} -gt 0 ]]; }; then
    count "$1" "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}"
  else
    count "$1" 0 1
    status=1
  fi
  [[ $status -eq 0 ]] || { grep -E -B 30 '^\[  FAILED|FAILED|failed' "$log" || cat "$log"; } | tail -n 80
}

# Wine mostly waits, so it starts as soon as it can, and all else works in the time that it leaves.
for preset in native windows; do check "build $preset" scripts/build.sh "$preset"; done
run windows scripts/wine_tests.sh &
for preset in asan fuzz bench; do check "build $preset" nice scripts/build.sh "$preset"; done
nice scripts/lint.sh >build/logs/lint.log 2>&1 &
lint=$!

run native scripts/gtest.sh build/native/bin/pq_tests
run asan scripts/gtest.sh build/asan/bin/pq_tests
run browser scripts/browser_tests.sh
run fuzz scripts/fuzz.sh --replay
for name in native asan browser fuzz; do counted "$name"; done
check schema scripts/check_schema.sh build/native/bin/pqhost
check format scripts/format.sh
check lint wait "$lint"
cat build/logs/lint.log
wait
counted windows

[[ ${#failures[@]} -eq 0 ]] || echo "Failed: ${failures[*]}"
echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
