#!/usr/bin/env bash
# Looks for inputs that break a fuzz target, and keeps what reaches code that no other input does.
#   scripts/fuzz.sh MINUTES [TARGET]...     until each has had that much processor time, as fuzz/results.txt
#                                           says, where that is kept; it goes on where it was stopped
#   scripts/fuzz.sh --replay [TARGET]...    runs every seed, then a thousand inputs made from them, or as
#                                           many of these as 5 seconds allow; ends with a count
#   scripts/fuzz.sh --minimise [TARGET]...  adds the fewest new inputs that reach more code to the seeds,
#                                           and leaves out those without a name that reach no more
#   scripts/fuzz.sh --valgrind [TARGET]...  runs every seed under valgrind; ends with a count
# What is found lies in build/fuzz/found/TARGET/, new inputs in build/fuzz/grown/TARGET/.
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 scripts/fuzz.py "$@"
