#!/usr/bin/env bash
# Puts in place what building, testing and running need: the distribution's packages, and the few libraries that no
# package offers, built once into a cache folder keyed by version. Run it again at any time: nothing to do is quick.
#
#   scripts/install-deps.sh             what a native build and its tests need
#   scripts/install-deps.sh --windows   also what building for 64-bit Windows and running it under Wine needs
#   scripts/install-deps.sh --docs      what making the reference of the headers needs, and nothing else
#
# OVI_DEPS_DIR names the cache folder (default: ${XDG_CACHE_HOME:-~/.cache}/ovi-deps).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=scripts/lib/deps.sh
. "$here/lib/deps.sh"

windows=0 docs=0
for argument in "$@"; do
  case "$argument" in
    --windows) windows=1 ;;
    --docs) docs=1 ;;
    *) echo "install-deps.sh: unknown argument \"$argument\" (known: --windows, --docs)" >&2; exit 2 ;;
  esac
done

native_packages=(g++ cmake ninja-build ccache clang clang-19 clang-tidy-19 clang-format pkg-config git ca-certificates xz-utils bzip2 cppcheck codespell
  libboost-filesystem-dev libboost-system-dev libpugixml-dev libcli11-dev nlohmann-json3-dev libpng-dev zlib1g-dev libgtest-dev libgmock-dev
  libbenchmark-dev clang-19 libclang-rt-19-dev python3 dpkg-dev file)
windows_packages=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine wine64)
docs_packages=(doxygen)

if [ "$docs" = 1 ]; then
  install_packages "${docs_packages[@]}"
  echo "install-deps: what the reference needs is in place"
  exit 0
fi

install_packages "${native_packages[@]}"
install_plog
build_miniz native
build_boost native
if [ "$windows" = 1 ]; then
  install_packages "${windows_packages[@]}"
  # shellcheck source=scripts/lib/deps-windows.sh
  . "$here/lib/deps-windows.sh"
  build_windows_dependencies
fi
echo "install-deps: everything is in place"
