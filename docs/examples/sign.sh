#!/usr/bin/env bash
# Signs a program, library or installer for Windows, in its place; as in
#   CERTIFICATE=chain.pem KEY=key.pem scripts/package.sh --sign docs/examples/sign.sh
# With TIMESTAMP=URL of a time stamp authority the signature outlives the certificate. A key in a
# hardware module is named by osslsigncode's -pkcs11module instead of -key.
set -euo pipefail
file=$1
stamp=()
[[ -z ${TIMESTAMP:-} ]] || stamp=(-ts "$TIMESTAMP")
osslsigncode sign -certs "$CERTIFICATE" -key "$KEY" -h sha256 -n pqhost "${stamp[@]}" \
  -in "$file" -out "$file.signed" >/dev/null
mv "$file.signed" "$file"
