#!/usr/bin/env bash
# Reads back from the native and the Windows build how what is shipped is guarded. Ends with
# "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 scripts/check_binaries.py build/native build/windows
