#!/usr/bin/env bash
# Installs through apt and npm what the build and the tests need and this machine lacks.
#   scripts/install.sh [build|package|test]
# It is what ./run.sh needs (the default), what scripts/package.sh needs, or what ./test.sh needs.
set -euo pipefail

packages=(
  g++ cmake ninja-build ccache                    # native build
  g++-mingw-w64-x86-64-posix wine wine64          # Windows build and where it runs
  libboost-dev libcli11-dev nlohmann-json3-dev libfmt-dev libsqlite3-dev nettle-dev
  zlib1g-dev libz-mingw-w64-dev
  libpq-dev libcpp-httplib-dev                    # pqfleet
  googletest
)
purpose=${1:-build}
if [[ $purpose != build ]]; then
  packages+=(
    python3 dpkg-dev
    wixl msitools                                 # the installer for Windows
    osslsigncode openssl                          # signs programs and installer
  )
fi
if [[ $purpose == test ]]; then
  packages+=(
    clang libclang-rt-14-dev lld                  # fuzz targets; links what tests in seconds
    libc++-14-dev libwine-dev                     # headers for the other compiler family
    gcovr                                         # which lines the tests run
    clang-format clang-tidy
    libclang-14-dev llvm-14-dev                   # tells clang-tidy where to look
    libbenchmark-dev
    valgrind                                      # counts instructions in a test
    python3-jsonschema                            # JSON schemas
    lintian man-db                                # what Debian says of the package
    postgresql procps                             # what pqfleet is tried on
    curl libpcre2-8-0                             # what sends to its door, and what nginx needs
    unzip                                         # what others make of our ZIP files
    locales                                       # a machine that is not English, under Wine
    chromium                                      # what reads the HTML report in a test
  )
fi
command -v npm >/dev/null || packages+=(nodejs npm)  # SQLite's amalgamation, the browser's driver

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
    missing+=("$package")
done

install_node_modules() {
  [[ package-lock.json -ot node_modules/.package-lock.json ]] && return
  echo "Installing through npm into node_modules: what package.json names"
  npm ci --ignore-scripts --no-audit --no-fund --loglevel=error
}

# Debian's prometheus and nginx start servers when they are installed. Of their packages only the
# programs are taken, which need nothing of the rest.
#   unpack_tool PACKAGE FILE
unpack_tool() {
  local package=$1 file=$2 name=${2##*/} folder
  [[ -x build/tools/$name ]] && return
  folder=$(mktemp -d)
  chmod 755 "$folder"  # apt downloads as a user of its own
  echo "Unpacking $name, of Debian's package $package, into build/tools"
  # Lists of another day may name a version that is gone.
  if ! { (cd "$folder" &&
          { apt-get download "$package" ||
            { "${as_root[@]}" apt-get update && apt-get download "$package"; }; } &&
          dpkg-deb -x "$package"_*.deb .) >"$folder/log" 2>&1 &&
         mkdir -p build/tools && mv "$folder/$file" build/tools/; }; then
    tail -n 20 "$folder/log" >&2
    echo "The tests need build/tools/$name, and apt does not give Debian's package $package, which" \
         "has it; the whole output is in $folder/log" >&2
    return 1
  fi
  rm -rf "$folder"
}

# Debian's PostgreSQL makes a server and starts it when it is installed. The tests start one of their
# own and end it; nobody who contributes here should find another one running.
make_no_postgresql_server() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends postgresql-common &&
    printf '\n%s\n' 'create_main_cluster = false' |
      "${as_root[@]}" tee -a /etc/postgresql-common/createcluster.conf
}

install_other() {
  install_node_modules
  [[ $purpose == test ]] || return 0
  unpack_tool prometheus usr/bin/promtool
  unpack_tool nginx usr/sbin/nginx
}

cd "$(dirname "$0")/.."
as_root=()
[[ $(id -u) -eq 0 ]] || as_root=(sudo)
if [[ ${#missing[@]} -eq 0 ]]; then
  install_other
  exit
fi

if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || {
    echo "These packages are missing, and installing them needs root or sudo: ${missing[*]}" >&2
    exit 1
  }
fi
echo "Installing through apt: ${missing[*]}"
log=$(mktemp)
if ! { "${as_root[@]}" apt-get update -qq &&
       { [[ " ${missing[*]} " != *" postgresql "* ]] || make_no_postgresql_server; } &&
       "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
         apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
  tail -n 20 "$log" >&2
  echo "apt could not install all of them; the whole output is in $log" >&2
  exit 1
fi
rm -f "$log"
install_other
