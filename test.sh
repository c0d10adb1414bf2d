#!/usr/bin/env bash
# Installs what it needs, builds, and passes every test.
#
#   ./test.sh              Linux: format, development build, address and undefined sanitizer build
#   ./test.sh --quick      the development build and its tests only
#   ./test.sh --windows    Windows only, under Wine
#   ./test.sh --all        also the thread sanitizer build, the fuzzers for 20 seconds each, the reference, and Windows
set -euo pipefail
cd "$(dirname "$0")"
# shellcheck source=scripts/lib/stages.sh
. scripts/lib/stages.sh

linux=1 sanitizers=1 everything=0 windows=0
for argument in "$@"; do
  case "$argument" in
    --quick) sanitizers=0 ;;
    --linux) ;;
    --windows) linux=0 sanitizers=0 windows=1 ;;
    --all) everything=1 windows=1 ;;
    *) echo "test.sh: unknown argument \"$argument\" (known: --quick, --linux, --windows, --all)" >&2; exit 2 ;;
  esac
done

if [ "$windows" = 1 ]; then
  stage "install dependencies" scripts/install-deps.sh --windows
else
  stage "install dependencies" scripts/install-deps.sh
fi
if [ "$linux" = 1 ]; then
  stage "check the code's format" scripts/check-format.sh
  stage "build (dev)" build_preset dev
  stage "test (dev)" test_preset dev
fi
if [ "$sanitizers" = 1 ]; then
  stage "build (asan)" build_preset asan
  stage "test (asan)" test_preset asan
fi
if [ "$everything" = 1 ]; then
  stage "build (tsan)" build_preset tsan
  stage "test (tsan)" test_preset tsan
  stage "fuzz" ./fuzz.sh 20
  stage "reference" scripts/make-reference.sh
fi
if [ "$windows" = 1 ]; then
  stage "build (mingw)" build_preset mingw
  stage "test (mingw, under Wine)" test_preset mingw
fi
summary
