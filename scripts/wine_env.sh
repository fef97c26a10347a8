# Sourced in the project's folder: a Wine prefix of the project's own. What runs Wine is put behind
# "${at_fixed_addresses[@]}".
export WINEPREFIX=${WINEPREFIX:-$PWD/build/wine}
export WINEDEBUG=-all
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
export DISPLAY=
# Debian's wine64 has a fixed place at 0x7d000000, and the kernel puts its heap anywhere in the 1 GiB
# behind it. One time in some 8,000 the heap covers 0x7ffe0000, where Windows keeps the data it shares
# with every process, and the process does not start (error 1359). Without random addresses it always
# does. A container may forbid to ask for them; then the chance remains.
at_fixed_addresses=()
if setarch -R true 2>/dev/null; then at_fixed_addresses=(setarch -R); fi
if [[ ! -e $WINEPREFIX/system.reg ]]; then
  mkdir -p "$WINEPREFIX"
  "${at_fixed_addresses[@]}" wineboot -i >/dev/null 2>&1
  wineserver -w
fi
