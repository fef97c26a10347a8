#!/usr/bin/env bash
# Tries pqfleet on a PostgreSQL of its own, which is gone afterwards. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 scripts/fleet_tests.py build/native/bin
