#!/usr/bin/env bash
# Installs what it needs, builds, and passes every test.
#
#   ./test.sh              everything: Linux with its sanitizers, and Windows under Wine
#   ./test.sh --linux      Linux only
#   ./test.sh --windows    Windows only, under Wine
#   ./test.sh --quick      the development build on Linux and its tests only
set -euo pipefail
cd "$(dirname "$0")"
# shellcheck source=scripts/lib/stages.sh
. scripts/lib/stages.sh

linux=1 deep=1 windows=1
for argument in "$@"; do
  case "$argument" in
    --linux) windows=0 ;;
    --windows) linux=0 deep=0 ;;
    --quick) deep=0 windows=0 ;;
    *) echo "test.sh: unknown argument \"$argument\" (known: --linux, --windows, --quick)" >&2; exit 2 ;;
  esac
done

if [ "$windows" = 1 ]; then
  stage "install dependencies" scripts/install-deps.sh --windows
else
  stage "install dependencies" scripts/install-deps.sh
fi
if [ "$linux" = 1 ]; then
  stage "check the code's format" scripts/check-format.sh
  stage "check layers" scripts/check-layers.py
  stage "check links" scripts/check-docs.py
  stage "check spelling" scripts/check-spelling.sh
  stage "build (dev)" build_preset dev
  stage "test (dev)" test_preset dev
fi
if [ "$windows" = 1 ]; then
  stage "build (mingw)" build_preset mingw
  stage "test (mingw, under Wine)" test_preset mingw
fi
if [ "$linux" = 1 ] && [ "$windows" = 1 ]; then
  stage "compare pictures" scripts/compare-pictures.sh build/dev/out build/mingw/out
fi
if [ "$deep" = 1 ]; then
  stage "check that headers compile alone" scripts/check-headers.py
  stage "check with cppcheck" scripts/check-cppcheck.sh
  stage "check with clang-tidy" scripts/check-tidy.sh
  for sanitizer in asan tsan; do
    stage "build ($sanitizer)" build_preset "$sanitizer"
    stage "test ($sanitizer)" test_preset "$sanitizer"
  done
  stage "fuzz" ./fuzz.sh --check
  stage "reference" scripts/make-reference.sh
fi
summary
