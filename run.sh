#!/usr/bin/env bash
# Builds what is needed and shows a server's verdict and tables.
#   ./run.sh            the recorded two-socket server natively, then this machine through the Windows
#                       program and library under Wine
#   ./run.sh ARGS...    the native pqhost with these arguments
set -euo pipefail
cd "$(dirname "$0")"

scripts/install.sh build
scripts/build.sh native pqhost
if [[ $# -gt 0 ]]; then
  exec build/native/bin/pqhost "$@"
fi

echo "== A recorded two-socket server, natively: build/native/bin/pqhost collect --replay samples/two-socket-server"
status=0
build/native/bin/pqhost collect --replay samples/two-socket-server || status=$?
[[ $status -le 1 ]] || exit "$status"  # 1: collected, but not everything was there

echo
echo "== This machine, through the Windows program and library under Wine"
scripts/build.sh windows pqhost repository_pqmodule
. scripts/wine_env.sh
out=$PWD/build/run
mkdir -p "$out/logs"
status=0
(cd "$out" && "${at_fixed_addresses[@]}" wine ../windows/bin/pqhost.exe collect --log-folder logs \
  --output result.txt </dev/null) || status=$?
[[ $status -le 1 ]] || exit "$status"
cat "$out/result.txt"
echo
echo "Results: $out/result.txt"
echo "Log files: $out/logs"
