#!/usr/bin/env bash
# Fails when a source file is not formatted as .clang-format says; --fix formats it.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.h' '*.hpp' '*.cpp' '*.c')
[ "${#files[@]}" -gt 0 ] || exit 0
if [ "${1-}" = --fix ]; then
  clang-format -i "${files[@]}"
else
  clang-format --dry-run --Werror "${files[@]}" || { echo "check-format: run scripts/check-format.sh --fix" >&2; exit 1; }
fi
