#!/usr/bin/env bash
# Has Prometheus' own promtool read what --format prometheus writes, and tries the examples that
# have it collected: alerts, task and timer. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 scripts/metrics_tests.py build/native/bin/pqhost build/tools/promtool
