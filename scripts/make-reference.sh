#!/usr/bin/env bash
# Makes the reference of the public headers as web pages in build/reference/html. Whatever is not documented is an error.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v doxygen >/dev/null || scripts/install-deps.sh --docs
rm -rf build/reference
mkdir -p build/reference

# First ovi.h alone: every parameter and every result of a function has to be told.
doxygen - <<END
@INCLUDE               = docs/Doxyfile
INPUT                  = include/ovi/ovi.h
USE_MDFILE_AS_MAINPAGE =
WARN_NO_PARAMDOC       = YES
HTML_OUTPUT            = check
END
rm -rf build/reference/check

doxygen docs/Doxyfile
echo "The reference is build/reference/html/index.html"
