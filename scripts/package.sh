#!/usr/bin/env bash
# Builds what is shipped and packs it into build/packages: ZIP file and installer for Windows, Debian
# packages, what is in them, hashes. CONTRIBUTING.md tells how a release is made.
#   scripts/package.sh [--output FOLDER] [--sign COMMAND]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install.sh package
scripts/build.sh native pqhost_debian pqfleet_debian
scripts/build.sh windows pqhost repository_pqmodule
exec python3 packaging/pack.py "$@"
