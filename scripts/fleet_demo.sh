#!/usr/bin/env bash
# A fleet to look at: makes 1,000 recordings, submits them, parses them, asks, and serves the pages,
# on a PostgreSQL of its own that is gone with Ctrl-C.
#   scripts/fleet_demo.sh [RECORDINGS [PORT]]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh native pqfleet write_random_recordings
exec python3 scripts/fleet_demo.py build/native/bin "$@"
