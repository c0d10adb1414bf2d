#!/usr/bin/env bash
# Runs clang-tidy over our own sources, by the checks of .clang-tidy; every finding is an error.
#
#   scripts/check-tidy.sh             all of them
#   scripts/check-tidy.sh FOLDER...   the sources below these folders
#
# The sources are checked as the preset "tidy" puts them together, up to forty to a unit, so that the headers of the
# libraries are gone through as seldom. Names of a file's own must therefore differ within a component.
set -euo pipefail
cd "$(dirname "$0")/.."
folders=("$@")
[ "${#folders[@]}" -gt 0 ] || folders=(src genapi/src producers tools)
mkdir -p build/tidy
cmake --preset tidy >build/tidy/configure.log 2>&1 || { cat build/tidy/configure.log >&2; exit 1; }
exec python3 scripts/lib/tidy.py --tool clang-tidy-19 "${folders[@]}"
