#!/usr/bin/env bash
# Runs a Windows program under Wine without a display, in a Wine prefix of this work tree's own.
#
#   scripts/wine-run.sh PROGRAM.exe [arguments...]
#
# OVI_WINE_PREFIX names another prefix (default: build/wine). OVI_WINE_DISPLAY names an X display for programs that are
# to show windows.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX=${OVI_WINE_PREFIX:-$root/build/wine} WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
export LC_ALL=C.UTF-8  # File names outside ASCII need it.
unset DISPLAY WAYLAND_DISPLAY
[ -z "${OVI_WINE_DISPLAY-}" ] || export DISPLAY=$OVI_WINE_DISPLAY

# The first start fills the prefix; programs that start meanwhile wait for it.
if [ ! -e "$WINEPREFIX/.filled" ]; then
  mkdir -p "$WINEPREFIX"
  exec 9>"$WINEPREFIX/.lock"
  flock 9
  if [ ! -e "$WINEPREFIX/.filled" ]; then
    wine wineboot --init >&2
    touch "$WINEPREFIX/.filled"
  fi
  exec 9>&-
fi

# The first program of a session also starts Wine's own services, which keep its output open for as long as any program
# runs. So that whoever reads it need not wait for them, they get files, and the reader a copy.
[ ! -t 1 ] || exec wine "$@"
copies=$(mktemp -d)
trap 'rm -rf "$copies"' EXIT
touch "$copies/out" "$copies/err"
wine "$@" <&0 >"$copies/out" 2>"$copies/err" &
program=$!
tail -c +1 -q -f -s 0.05 --pid=$program "$copies/out" &
tail -c +1 -q -f -s 0.05 --pid=$program "$copies/err" >&2 &
code=0
wait $program || code=$?
wait
exit $code
