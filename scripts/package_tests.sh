#!/usr/bin/env bash
# Packs what has been built, twice, and tries the packages: as an archive, under Wine as a plain user,
# in a root of their own, signed. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/.."
# Debian's own Python: it is the one that has Debian's python3-jsonschema.
exec /usr/bin/python3 tests/packages/package_tests.py
