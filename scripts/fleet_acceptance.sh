#!/usr/bin/env bash
# What pqfleet costs and withstands with as many recordings as it is made for, against the bars that
# are set for it: CPU of a recording, rates, size, answers, and a run in which workers and PostgreSQL
# are killed. Times hold on a quiet machine only. Ends with "N passed, N failed".
#   scripts/fleet_acceptance.sh [RECORDINGS [PART...]]   10,000 unless given; parts: cost large chaos
#   equality
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh native pqfleet pqhost write_random_recordings
exec python3 scripts/fleet_acceptance.py build/native/bin "$@"
