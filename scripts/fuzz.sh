#!/usr/bin/env bash
# Looks for inputs that break a fuzz target.
#   scripts/fuzz.sh MINUTES [TARGET]...   runs each target that long and prints what it found
#   scripts/fuzz.sh --replay              runs every seed, then a thousand inputs made from them, or as
#                                         many of these as 5 seconds allow; ends with a count
# What is found lies in build/fuzz/found/TARGET/, new inputs worth keeping in build/fuzz/grown/TARGET/.
set -uo pipefail
cd "$(dirname "$0")/.."

usage() {
  echo "usage: scripts/fuzz.sh MINUTES [TARGET]... | --replay" >&2
  exit 2
}

[[ $# -ge 1 ]] || usage
if [[ $1 == --replay ]]; then
  amount=(-seed=1 -runs=1000 -max_total_time=5)
elif [[ $1 =~ ^[0-9]+$ && $1 -gt 0 ]]; then
  amount=(-max_total_time=$(($1 * 60)))
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
scripts/build.sh asan "${targets[@]}" || exit 1

reports=build/fuzz/reports
rm -rf "$reports"
mkdir -p "$reports"

# Every seed once, each by itself, then whatever the fuzzer makes of them.
examine() {  # TARGET; its report, begun with "ok" or "bad", goes to a file
  local target=$1
  local program=build/asan/bin/$target found=$PWD/build/fuzz/found/$target
  local grown=build/fuzz/grown/$target log=build/fuzz/$target.log
  local before status=0 runs seeds
  local dictionary=build/fuzz/$target.dict words=()
  [[ $replay != --replay ]] || grown=$(mktemp -d)
  mkdir -p "$found" "$grown"
  scripts/fuzz_dictionary.py "$target" >"$dictionary"
  [[ ! -s $dictionary ]] || words=(-dict="$dictionary")
  before=$(ls "$found" | wc -l)
  # libFuzzer takes files for inputs and folders for corpora.
  seeds=(fuzz/corpus/"$target"/*)
  "$program" -artifact_prefix="$found/" "${seeds[@]}" >"$log" 2>&1 || status=$?
  if [[ $status -eq 0 ]]; then
    "$program" -artifact_prefix="$found/" "${amount[@]}" "${words[@]}" \
      -timeout=25 -rss_limit_mb=2560 -print_final_stats=1 "$grown" "fuzz/corpus/$target" \
      >>"$log" 2>&1 || status=$?
  fi
  [[ $replay != --replay ]] || rm -rf "$grown"
  if [[ $status -eq 0 ]]; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    printf 'ok\n%-24s %4d seeds %10s runs   nothing found\n' "$target" "${#seeds[@]}" "${runs:-0}"
  else
    printf 'bad\n%-24s FAILED, %d input(s) in %s; its last lines:\n' "$target" \
      $(($(ls "$found" | wc -l) - before)) "$found"
    grep -E 'ERROR|SUMMARY|runtime error|deadly signal|Test unit written' "$log" | tail -n 6
  fi >"$reports/$target"
}

# A target keeps one core busy.
for target in "${targets[@]}"; do
  while [[ $(jobs -rp | wc -l) -ge $(nproc) ]]; do wait -n; done
  examine "$target" &
done
wait

passed=0
failed=0
for target in "${targets[@]}"; do
  if [[ $(head -n 1 "$reports/$target") == ok ]]; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
  fi
  tail -n +2 "$reports/$target"
done
echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
