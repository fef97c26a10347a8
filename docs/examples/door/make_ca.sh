#!/usr/bin/env bash
# The certificates of a fleet's door, by an authority of its own:
#   make_ca.sh FOLDER                        the authority: ca.pem, and ca.key, which stays here
#   make_ca.sh FOLDER door door.example.org  the door's: server.pem, server.key
#   make_ca.sh FOLDER site berlin            a site's: berlin.pem, berlin.key, and berlin.p12 with
#                                            both for Windows, whose password is asked for, or $PASSWORD
# What is there is not made again. Keep FOLDER on a machine that is not the door.
set -euo pipefail
umask 077
folder=$1 kind=${2:-} name=${3:-}

make_key() {
  openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out "$1"
}

# sign FILE SUBJECT EXTENSIONS: FILE.pem for FILE.key, for thirteen months
sign() {
  openssl req -new -key "$1.key" -subj "$2" |
    openssl x509 -req -CA "$folder/ca.pem" -CAkey "$folder/ca.key" -set_serial "0x$(openssl rand -hex 16)" \
      -days 398 -sha256 -extfile <(printf '%s\n' "$3" 'basicConstraints=critical,CA:FALSE') -out "$1.pem" 2>/dev/null
}

mkdir -p "$folder"
if [[ ! -e $folder/ca.key ]]; then
  make_key "$folder/ca.key"
  openssl req -x509 -new -key "$folder/ca.key" -subj "/CN=pqfleet door authority" -days 3650 -sha256 \
    -addext basicConstraints=critical,CA:TRUE -addext keyUsage=critical,keyCertSign,cRLSign \
    -out "$folder/ca.pem"
fi
case $kind in
  "") exit ;;
  door) file=server subject="/CN=$name" ;;
  site)
    # As the door's configuration knows sites.
    [[ $name =~ ^[a-z0-9][a-z0-9-]{0,62}$ && $name != server && $name != ca ]] || {
      echo "make_ca.sh: $name: a site is called by small letters, digits and hyphens" >&2
      exit 2
    }
    file=$name subject="/CN=$name" ;;
  *) sed -n '2,7s/^# //p' "$0" >&2; exit 2 ;;
esac
[[ -n $name ]] || { echo "make_ca.sh: $kind needs a name" >&2; exit 2; }
[[ ! -e $folder/$file.pem ]] || { echo "$folder/$file.pem is there already" >&2; exit 1; }
make_key "$folder/$file.key"
if [[ $kind == door ]]; then
  [[ $name =~ ^[0-9.]+$ ]] && alternative="IP:$name" || alternative="DNS:$name"
  sign "$folder/$file" "$subject" "$(printf 'extendedKeyUsage=serverAuth\nsubjectAltName=%s' "$alternative")"
else
  sign "$folder/$file" "$subject" "extendedKeyUsage=clientAuth"
  openssl pkcs12 -export -inkey "$folder/$file.key" -in "$folder/$file.pem" -certfile "$folder/ca.pem" \
    -name "pqfleet $name" ${PASSWORD:+-passout env:PASSWORD} -out "$folder/$file.p12"
fi
