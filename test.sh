#!/usr/bin/env bash
# Builds and tests everything: native, sanitizers, Windows under Wine, the plug-in by the production
# host's compiler family, how binaries are guarded, packages, fuzz corpora, the report in a browser,
# metrics in promtool, pqfleet on a PostgreSQL of its own, the JSON schema, formatting and lint. A
# step's whole output is left in build/logs.
# Ends with one line that counts over all of them.
#   ./test.sh                  everything
#   ./test.sh ROOM [FILTER]    only what the native tests of one folder of tests/ need and do, in
#                              seconds; FILTER as in --gtest_filter, such as 'JsonFormat*'
set -uo pipefail
cd "$(dirname "$0")"

if [[ $# -gt 0 ]]; then
  rooms=$(find tests -mindepth 2 -name '*_test.cpp' -not -path '*/windows/*' | cut -d/ -f2 | sort -u)
  if ! grep -qxF -e "$1" <<<"$rooms" || [[ $# -gt 2 ]]; then
    printf 'usage: ./test.sh [ROOM [FILTER]]\nrooms:\n%s\n' "$rooms" >&2
    exit 2
  fi
  scripts/install.sh build && scripts/build.sh native "pq_tests_$1" &&
    exec scripts/gtest.sh "build/native/bin/pq_tests_$1" --gtest_filter="${2:-*}"
  exit 1
fi

scripts/install.sh test || exit 1
mkdir -p build/logs

passed=0
failed=0
failures=()

TIMEFORMAT='%R %U %S'

count() {  # NAME PASSED FAILED
  local elapsed user system
  passed=$((passed + $2))
  failed=$((failed + $3))
  [[ $3 -eq 0 ]] || failures+=("$1")
  read -r elapsed user system <"build/logs/$1.time"
  printf '%-28s %6d passed %4d failed %5.0f s, %5.0f s of processor\n' \
    "$1" "$2" "$3" "$elapsed" "$((${user%.*} + ${system%.*}))"
}

# A step that either holds or does not.
check() {  # NAME COMMAND...
  local name=$1 status=0
  shift
  { time "$@" 2>&3; } 3>&2 2>"build/logs/$name.time" || status=$?
  if [[ $status -eq 0 ]]; then count "$name" 1 0; else count "$name" 0 1; fi
}

# A command that ends with "N passed, N failed"; counted once it has ended.
run() {  # NAME COMMAND...
  local name=$1
  shift
  { time "$@" >"build/logs/$name.log" 2>&1; } 2>"build/logs/$name.time"
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

# One that runs beside others, once it has ended.
held() {  # NAME
  if [[ $(cat "build/logs/$1.status") -eq 0 ]]; then count "$1" 1 0; else count "$1" 0 1; fi
  cat "build/logs/$1.log"
}

# Wine mostly waits, so it starts as soon as it can, and all else works in the time that it leaves.
check "build native" scripts/build.sh native all pq_tests_by_room
check "build windows" scripts/build.sh windows
run windows scripts/wine_tests.sh &
run packages nice scripts/package_tests.sh &
check "build asan" nice scripts/build.sh asan
check "build tsan" nice scripts/build.sh tsan pq_tests_threads
run lint nice scripts/lint.sh &

PQ_REPETITIONS=1000 run native scripts/gtest.sh build/native/bin/pq_tests
run state scripts/check_state.sh
run binaries scripts/check_binaries.sh
run msvc python3 scripts/check_msvc.py
run asan scripts/gtest.sh build/asan/bin/pq_tests
TSAN_OPTIONS=suppressions=tests/thread_sanitizer.supp \
  run tsan scripts/gtest.sh build/tsan/bin/pq_tests_threads
run browser scripts/browser_tests.sh
run metrics scripts/metrics_tests.sh
run fleet scripts/fleet_tests.sh
run fuzz scripts/fuzz.sh --replay
run verdicts scripts/judge_folder.sh samples/*
for name in native state binaries msvc asan tsan browser metrics fleet fuzz verdicts; do counted "$name"; done
check schema scripts/check_schema.sh build/native/bin/pqhost
check format scripts/format.sh
wait
held lint
for name in windows packages; do counted "$name"; done

[[ ${#failures[@]} -eq 0 ]] || echo "Failed: ${failures[*]}"
echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
