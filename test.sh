#!/usr/bin/env bash
# Builds and tests everything: native, sanitizers, Windows under Wine, the plug-in by the production
# host's compiler family, how binaries are guarded, packages, fuzz corpora, the report in a browser,
# metrics in promtool, pqfleet on a PostgreSQL of its own, the JSON schema, formatting and lint. A
# step's whole output is left in build/logs.
# Ends with one line that counts over all of them.
#   ./test.sh                  everything; a step that passed on these very files is not done again
#   ./test.sh --again          everything, whatever passed
#   ./test.sh ROOM [FILTER]    only what the native tests of one folder of tests/ need and do, in
#                              seconds; FILTER as in --gtest_filter, such as 'JsonFormat*'
set -uo pipefail
cd "$(dirname "$0")"

if [[ $# -gt 0 && $* != --again ]]; then
  rooms=$(find tests -mindepth 2 -name '*_test.cpp' -not -path '*/windows/*' | cut -d/ -f2 | sort -u)
  if ! grep -qxF -e "$1" <<<"$rooms" || [[ $# -gt 2 ]]; then
    printf 'usage: ./test.sh [--again | ROOM [FILTER]]\nrooms:\n%s\n' "$rooms" >&2
    exit 2
  fi
  scripts/install.sh build && scripts/build.sh native "pq_tests_$1" &&
    exec scripts/gtest.sh "build/native/bin/pq_tests_$1" --gtest_filter="${2:-*}"
  exit 1
fi

scripts/install.sh test || exit 1
logs=build/logs
mkdir -p $logs

# What the project consists of now. Of former results those stay that are of the same, and good.
tree=$(set -o pipefail; git ls-files -z -co --exclude-standard | sort -z | xargs -0 sha256sum | sha256sum) ||
  tree=$RANDOM$RANDOM
for result in $logs/*.count; do
  [[ $* != --again && $(cat "$result" 2>/dev/null) == *" 0 ${tree%% *}" ]] || rm -f "$result"
done

has_passed() {  # NAME
  [[ -e $logs/$1.count ]] || return 1
  printf '%-28s passed on the same files\n' "$1"
}

# Runs a step; what it prints is left in its log.
measure() {  # NAME COMMAND...
  local name=$1
  shift
  local TIMEFORMAT='%R %U %S'
  { time "$@" >"$logs/$name.log" 2>&1; } 2>"$logs/$name.time"
}

# Says how a step ended, at once, and keeps it for the sum.
count() {  # NAME PASSED FAILED
  local elapsed user system
  read -r elapsed user system <"$logs/$1.time"
  printf '%-28s %6d passed %4d failed %5.0f s, %5.0f s of processor\n' \
    "$1" "$2" "$3" "$elapsed" "$((${user%.*} + ${system%.*}))"
  echo "$2 $3 ${tree%% *}" >"$logs/$1.count"
}

# Whatever is built is there, whatever passed: a build has nothing to do then.
build() {  # PRESET [TARGET]...
  rm -f "$logs/build $1.count"
  check "build $1" scripts/build.sh "$@"
}

# A step that either holds or does not.
check() {  # NAME COMMAND...
  has_passed "$1" && return
  if measure "$@"; then
    count "$1" 1 0
  else
    count "$1" 0 1
    tail -n 80 "$logs/$1.log"
    return 1
  fi
}

# A step that ends with "N passed, N failed".
run() {  # NAME COMMAND...
  has_passed "$1" && return
  local log=$logs/$1.log status=0
  measure "$@" || status=$?
  if [[ $(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$log" | tail -n 1) =~ ^([0-9]+)\ passed,\ ([0-9]+) ]] &&
     { [[ $status -eq 0 ]] || [[ ${BASH_REMATCH[2]} -gt 0 ]]; }; then
    count "$1" "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}"
  else
    count "$1" 0 1
    status=1
  fi
  [[ $status -eq 0 ]] || { grep -E -B 30 '^\[  FAILED|FAILED|failed' "$log" || cat "$log"; } | tail -n 80
}

# What needs one build is a lane. Lanes run side by side, for each waits now and then: the tests under
# Wine nearly always, so they start as soon as they can.
windows_lane() {
  build windows || return
  run windows scripts/wine_tests.sh &
  run state scripts/check_state.sh
  run binaries scripts/check_binaries.sh
  run packages scripts/package_tests.sh
  run verdicts scripts/judge_folder.sh samples/*
  wait
}

native_lane() {
  PQ_REPETITIONS=1000 run native scripts/gtest.sh build/native/bin/pq_tests
  run fleet scripts/fleet_tests.sh
  run browser scripts/browser_tests.sh
  run metrics scripts/metrics_tests.sh
  check schema scripts/check_schema.sh build/native/bin/pqhost
  check format scripts/format.sh
  run msvc python3 scripts/check_msvc.py
}

sanitizer_lane() {
  build asan || return
  check lint scripts/lint.sh &
  run asan scripts/gtest.sh build/asan/bin/pq_tests
  run fuzz scripts/fuzz.sh --replay
  build tsan pq_tests_threads &&
    TSAN_OPTIONS=suppressions=tests/thread_sanitizer.supp \
      run tsan scripts/gtest.sh build/tsan/bin/pq_tests_threads
  wait
}

if build native all pq_tests_by_room; then
  windows_lane &
  native_lane &
  sanitizer_lane &
  wait
fi

passed=0
failed=0
failures=()
for name in "build native" "build windows" "build asan" "build tsan" native state binaries msvc asan tsan \
            browser metrics fleet fuzz verdicts schema format lint windows packages; do
  [[ -e $logs/$name.count ]] || echo "0 1" >"$logs/$name.count"  # what it needs was not built
  read -r good bad _ <"$logs/$name.count"
  passed=$((passed + good))
  failed=$((failed + bad))
  [[ $bad -eq 0 ]] || failures+=("$name")
done

[[ ${#failures[@]} -eq 0 ]] || echo "Failed: ${failures[*]}"
echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
