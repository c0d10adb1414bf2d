#!/usr/bin/env bash
# Builds the packages: without arguments those of Debian, in build/package/packages; with --windows the archive for 64-bit
# Windows, in build/mingw/packages.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/lib/stages.sh
. scripts/lib/stages.sh

case "${1-}" in
  "") preset=package options=() targets=() ;;
  --windows)
    preset=mingw options=(--windows)
    targets=(ovi ovi-tool ovi_virtual_camera ovi_virtual_recorder) # what is packed
    ;;
  *) echo "make-packages.sh: unknown argument \"$1\" (known: --windows)" >&2; exit 2 ;;
esac

stage "install dependencies" scripts/install-deps.sh ${options[@]+"${options[@]}"}
stage "build ($preset)" build_preset "$preset" ${targets[@]+"${targets[@]}"}
rm -rf "build/$preset/packages"
stage "pack" cpack --config "build/$preset/CPackConfig.cmake"
rm -rf "build/$preset/packages/_CPack_Packages" # what was packed, as folders
ls "build/$preset/packages"
