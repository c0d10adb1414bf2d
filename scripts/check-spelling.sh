#!/usr/bin/env bash
# Fails on misspelled English in code, texts and pages. Words that are meant so stand in scripts/lib/spelling.txt.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files | grep -vE '^fuzz/corpus/|^tests/.*\.xml$|\.(png|ico|svg)$')
codespell --ignore-words=scripts/lib/spelling.txt "${files[@]}" || { echo "check-spelling: see above" >&2; exit 1; }
echo "check-spelling: ${#files[@]} files, no findings"
