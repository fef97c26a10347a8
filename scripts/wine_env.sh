# Sourced in the project's folder: a Wine prefix of the project's own.
export WINEPREFIX=${WINEPREFIX:-$PWD/build/wine}
export WINEDEBUG=-all
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
export DISPLAY=
if [[ ! -e $WINEPREFIX/system.reg ]]; then
  mkdir -p "$WINEPREFIX"
  wineboot -i >/dev/null 2>&1
  wineserver -w
fi
