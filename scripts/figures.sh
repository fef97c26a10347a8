#!/usr/bin/env bash
# Measures what the program costs and writes it down: the generated part of docs/figures.md, and a line
# of bench/results/history.txt for this version, in the place of the one that it had.
# Processor time throughout, the best of several runs, so that other work on the machine counts little.
# How long the library takes to load is measured when build/windows is there, under Wine.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh native pq_bench pqhost write_long_table
mkdir -p build/bench
repetitions=5
filter='^BM_(Sel|Sdr|Sensors|EventLog|TermLog|DriveLists|DriveDetails|Sas2Log|IntelDevices|RaidLogs|LsiSummary)/(1000|100000)$'
filter+='|^BM_(Arp|Connections)/(50|500|100|100000)$|^BM_Collect|^BM_LoadLibrary|^BM_Sample|^BM_ManyEvents/.*/100000'
build/native/bin/pq_bench --benchmark_filter="$filter" --benchmark_repetitions=$repetitions \
  --benchmark_min_time=0.1 --benchmark_out=build/bench/figures.json --benchmark_out_format=json \
  >build/bench/output.txt 2>&1 || { cat build/bench/output.txt; exit 1; }
runner=()
if [[ -f build/windows/bin/repository_pqmodule.dll ]] && command -v wine >/dev/null; then
  . scripts/wine_env.sh
  runner=("${at_fixed_addresses[@]}" wine)
fi
python3 scripts/figures.py build/bench/figures.json "${runner[@]}"
