#!/usr/bin/env bash
# Drives the HTML report in headless Chromium; pictures of it land in build/browser. Ends with
# "N passed, N failed". Given a part of a test's name, runs only such tests.
set -euo pipefail
cd "$(dirname "$0")/.."
exec node tests/browser/report_test.mjs build/native/bin/pqhost build/browser "$@"
