#!/usr/bin/env bash
# clang-tidy over all sources, as the native build compiles them. A file that was clean is looked at
# again only after it, a header that it includes or .clang-tidy has changed.
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 scripts/lint.py "$@"
