#!/usr/bin/env bash
# Runs clang-tidy over our own sources, by the checks of .clang-tidy; warnings are errors.
#
#   scripts/check-tidy.sh             all of them
#   scripts/check-tidy.sh FOLDER...   the sources below these folders
set -euo pipefail
cd "$(dirname "$0")/.."
[ -e build/dev/compile_commands.json ] || cmake --preset dev >/dev/null
folders=("$@")
[ "${#folders[@]}" -gt 0 ] || folders=(src genapi/src producers tools)
git ls-files -- "${folders[@]}" | grep -E '\.cpp$' | grep -v '/windows/' |
  xargs -P "$(nproc)" -n 2 clang-tidy -p build/dev --quiet 2>/dev/null
