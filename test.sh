#!/usr/bin/env bash
# Installs what it needs, builds, and passes every test.
#
#   ./test.sh              everything: Linux with its sanitizer builds and static checks, and Windows under Wine
#   ./test.sh --linux      Linux only
#   ./test.sh --windows    Windows only
#   ./test.sh --quick      the development build and its tests only
set -euo pipefail
cd "$(dirname "$0")"
# shellcheck source=scripts/lib/stages.sh
. scripts/lib/stages.sh

linux=1 windows=1 quick=0
for argument in "$@"; do
  case "$argument" in
    --linux) windows=0 ;;
    --windows) linux=0 ;;
    --quick) quick=1 windows=0 ;;
    *) echo "test.sh: unknown argument \"$argument\" (known: --linux, --windows, --quick)" >&2; exit 2 ;;
  esac
done

if [ "$windows" = 1 ]; then
  stage "install dependencies" scripts/install-deps.sh --windows
else
  stage "install dependencies" scripts/install-deps.sh
fi

if [ "$linux" = 1 ]; then
  [ "$quick" = 1 ] || stage "check the code's format" scripts/check-format.sh
  stage "build (dev)" build_preset dev
  stage "test (dev)" test_preset dev
  if [ "$quick" = 0 ]; then
    stage "build (asan)" build_preset asan
    stage "test (asan)" test_preset asan
    stage "build (tsan)" build_preset tsan
    stage "test (tsan)" test_preset tsan
    [ ! -x scripts/check-static.sh ] || stage "check the code statically" scripts/check-static.sh
    [ ! -x fuzz.sh ] || stage "fuzz" ./fuzz.sh 20
  fi
fi
if [ "$windows" = 1 ]; then
  stage "build (mingw)" build_preset mingw
  stage "test (mingw, under Wine)" test_preset mingw
fi
summary
