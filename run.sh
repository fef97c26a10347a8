#!/usr/bin/env bash
# Builds what is needed and shows a server's verdict and tables.
#   ./run.sh            the recorded two-socket server, then this machine, through the Windows program
#                       and library under Wine; one program, hardly optimised
#   ./run.sh ARGS...    the native pqhost with these arguments
set -euo pipefail
cd "$(dirname "$0")"

scripts/install.sh build
if [[ $# -gt 0 ]]; then
  scripts/build.sh native pqhost
  exec build/native/bin/pqhost "$@"
fi

scripts/build.sh quick pqhost repository_pqmodule
. scripts/wine_env.sh
out=$PWD/build/run
mkdir -p "$out/logs"
pqhost() {  # ARGUMENT...
  local status=0
  (cd "$out" && "${at_fixed_addresses[@]}" wine ../quick/bin/pqhost.exe "$@" </dev/null) || status=$?
  [[ $status -le 1 ]] || exit "$status"  # 1: collected, but not everything was there
}

echo "== A recorded two-socket server: pqhost collect --replay samples/two-socket-server"
pqhost collect --replay ../../samples/two-socket-server

echo
echo "== This machine, through the library"
pqhost collect --log-folder logs --output result.txt
cat "$out/result.txt"
echo
echo "Results: $out/result.txt"
echo "Log files: $out/logs"
