#!/usr/bin/env bash
# Proves that packages are made of nothing but what is committed: builds and packs the last commit in
# two folders of different names, without a compiler cache, and compares the packages byte by byte.
# And that each source file includes what it needs, which its neighbours hide when they are compiled
# together. Takes three whole builds. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install.sh package
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
folders=("$work/one" "$work/another/folder/below/it")

for folder in "${folders[@]}"; do
  mkdir -p "$folder"
  git archive HEAD | tar -x -C "$folder"
  cp -r node_modules "$folder/"
  echo "Building and packing in $folder"
  (cd "$folder" && export CCACHE_DISABLE=1 &&
   scripts/build.sh native pqhost_debian pqfleet_debian && scripts/build.sh windows pqhost repository_pqmodule &&
   python3 packaging/pack.py)
done

passed=0
failed=0
echo "Compiling each file by itself"
if (cd "${folders[0]}" && cmake --preset native -B build/alone -DPQ_UNITY=OFF &&
    cmake --build build/alone) >"$work/alone.log" 2>&1; then
  passed=$((passed + 1))
else
  grep -E -m 20 -A 6 'error' "$work/alone.log"
  failed=$((failed + 1))
fi
for file in "${folders[0]}"/build/packages/*; do
  name=${file##*/}
  if cmp "$file" "${folders[1]}/build/packages/$name"; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
  fi
done
cat "${folders[0]}/build/packages/SHA256SUMS"
echo "$passed passed, $failed failed"
[[ $failed -eq 0 && $passed -eq 7 ]]
