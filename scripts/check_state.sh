#!/usr/bin/env bash
# Looks for mutable statics in the libraries of the native and the Windows build. Ends with
# "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 scripts/check_state.py \
  nm build/native/libpqmodule_static.a build/native/host/libhost_*.a build/native/fleet/libfleet.a \
     build/native/bin/{repository,logger}.so \
  x86_64-w64-mingw32-nm build/windows/libpqmodule_static.a build/windows/host/libhost_*.a
