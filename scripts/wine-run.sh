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
exec wine "$@"
