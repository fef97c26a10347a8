#!/usr/bin/env bash
# Looks for inputs that break a fuzz target.
#   scripts/fuzz.sh MINUTES [TARGET]...   runs each target that long and prints what it found
#   scripts/fuzz.sh --replay              runs every seed, then 10 seconds a target; ends with a count
# What is found lies in build/fuzz/found/TARGET/, new inputs worth keeping in build/fuzz/grown/TARGET/.
set -uo pipefail
cd "$(dirname "$0")/.."

usage() {
  echo "usage: scripts/fuzz.sh MINUTES [TARGET]... | --replay" >&2
  exit 2
}

[[ $# -ge 1 ]] || usage
if [[ $1 == --replay ]]; then
  seconds=10
elif [[ $1 =~ ^[0-9]+$ && $1 -gt 0 ]]; then
  seconds=$(($1 * 60))
else
  usage
fi
replay=$1
shift
[[ $replay == --replay && $# -gt 0 ]] && usage

targets=("$@")
if [[ ${#targets[@]} -eq 0 ]]; then
  for source in fuzz/*_fuzz.cpp; do targets+=("$(basename "$source" .cpp)"); done
fi
for target in "${targets[@]}"; do
  [[ -f fuzz/$target.cpp ]] || { echo "$target: there is no fuzz/$target.cpp" >&2; exit 2; }
done
scripts/build.sh fuzz "${targets[@]}" || exit 1

passed=0
failed=0
for target in "${targets[@]}"; do
  program=build/fuzz/bin/$target
  found=$PWD/build/fuzz/found/$target
  grown=build/fuzz/grown/$target
  log=build/fuzz/$target.log
  mkdir -p "$found" "$grown"
  before=$(ls "$found" | wc -l)
  status=0
  # Every seed once, each by itself: libFuzzer takes files for inputs and folders for corpora.
  seeds=(fuzz/corpus/"$target"/*)
  "$program" -artifact_prefix="$found/" "${seeds[@]}" >"$log" 2>&1 || status=$?
  if [[ $status -eq 0 ]]; then
    "$program" -artifact_prefix="$found/" -max_total_time="$seconds" -timeout=25 -rss_limit_mb=2560 \
      -print_final_stats=1 "$grown" "fuzz/corpus/$target" >>"$log" 2>&1 || status=$?
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  if [[ $status -eq 0 ]]; then
    passed=$((passed + 1))
    printf '%-24s %4d seeds %10s runs   nothing found\n' "$target" "${#seeds[@]}" "${runs:-0}"
  else
    failed=$((failed + 1))
    new=$(($(ls "$found" | wc -l) - before))
    printf '%-24s FAILED, %d input(s) in %s; its last lines:\n' "$target" "$new" "$found"
    grep -E 'ERROR|SUMMARY|runtime error|deadly signal|Test unit written' "$log" | tail -n 6
  fi
done
echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
