#!/usr/bin/env bash
# Runs cppcheck over our own sources; a finding fails unless scripts/lib/cppcheck-suppressions.txt says why it is none.
set -euo pipefail
cd "$(dirname "$0")/.."
includes=()
for folder in include interface/gentl/include genapi/include genapi/src producers/virtual producers/virtual/include \
  producers/virtual/camera tools/ovi src/*/include src/*/; do
  includes+=(-I "$folder")
done
mapfile -t sources < <(git ls-files -- src genapi/src producers tools | grep '\.cpp$' | grep -v '/windows/')
# One combination of macros, the one of the machine that runs this: all that could be would take minutes.
cppcheck "${includes[@]}" -D__linux__ -D__x86_64__ --std=c++20 --enable=warning,performance,portability --inline-suppr \
  --suppressions-list=scripts/lib/cppcheck-suppressions.txt --quiet --error-exitcode=1 -j "$(nproc)" \
  --template='{file}:{line}: {message} [{id}]' --template-location= "${sources[@]}"
echo "check-cppcheck: ${#sources[@]} sources, no findings"
