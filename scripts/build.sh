#!/usr/bin/env bash
# Configures and builds presets, quietly unless something fails.
#   scripts/build.sh PRESET [TARGET]...
set -euo pipefail
cd "$(dirname "$0")/.."
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros

preset=$1
shift
targets=()
for target in "$@"; do targets+=(--target "$target"); done

mkdir -p build
log=build/$preset.log
if ! { cmake --preset "$preset" && cmake --build --preset "$preset" "${targets[@]}"; } >"$log" 2>&1
then
  grep -E -m 20 -A 6 'error|Error|FAILED' "$log" >&2 || tail -n 30 "$log" >&2
  echo "Building the preset '$preset' failed; the whole output is in $log" >&2
  exit 1
fi
