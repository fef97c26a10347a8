#!/usr/bin/env bash
# Proves that packages are made of nothing but what is committed: builds and packs the last commit in
# two folders of different names, without a compiler cache, and compares the packages byte by byte.
# Takes two whole builds. Ends with "N passed, N failed".
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
   scripts/build.sh native pqhost_debian && scripts/build.sh windows pqhost repository_pqmodule &&
   python3 packaging/pack.py)
done

passed=0
failed=0
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
[[ $failed -eq 0 && $passed -eq 5 ]]
