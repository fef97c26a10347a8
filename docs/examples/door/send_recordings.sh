#!/usr/bin/env bash
# Sends the recordings in a folder to a fleet's door, and removes each that has arrived; what has not
# stays for the next run. Of a site's machine on which its servers leave recordings, as a nightly job:
#   send_recordings.sh FOLDER https://door.example.org SITE.pem SITE.key CA.pem
# Exit codes: 0 all have arrived; 1 some have not.
set -euo pipefail
folder=$1 door=$2 certificate=$3 key=$4 authority=$5

status=0
shopt -s nullglob
for file in "$folder"/*.zip; do
  digest=$(sha256sum "$file" | cut -c1-64)
  # Again after 1, 2, 4 … seconds when the door is busy, closed or away; not when it refuses.
  if curl --silent --show-error --fail --retry "${RETRIES:-8}" --retry-connrefused --connect-timeout 20 \
       --max-time 900 --cert "$certificate" --key "$key" --cacert "$authority" \
       --upload-file "$file" "$door/recordings/${digest#\\}.zip"; then
    rm -- "$file"
  else
    echo "$file has not arrived" >&2
    status=1
  fi
done
exit "$status"
