#!/usr/bin/env bash
# Checks that every source file is formatted; with --fix, formats them.
set -euo pipefail
cd "$(dirname "$0")/.."
mode=(--dry-run -Werror)
[[ ${1:-} == --fix ]] && mode=(-i)
git ls-files --cached --others --exclude-standard '*.cpp' '*.h' | xargs clang-format "${mode[@]}"
