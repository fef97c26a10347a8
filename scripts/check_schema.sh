#!/usr/bin/env bash
# Validates the JSON of every sample recording, of its check, of its verdict and of a comparison with it
# against the schemas in docs, and sees that these refuse what they should. Takes the path of pqhost.
set -euo pipefail
if [ $# -ne 1 ]; then
  echo "usage: $0 PQHOST (such as build/native/bin/pqhost)" >&2
  exit 2
fi
pqhost=$(realpath "$1")
cd "$(dirname "$0")/.."
# Debian's own Python: it is the one that has Debian's python3-jsonschema.
exec /usr/bin/python3 scripts/check_schema.py "$pqhost"
