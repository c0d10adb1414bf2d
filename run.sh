#!/usr/bin/env bash
# Installs what it needs, builds, and does the main job on the virtual cameras: finds them, shows one's features, streams a
# few hundred images, and saves some of them as pictures.
set -euo pipefail
cd "$(dirname "$0")"
# shellcheck source=scripts/lib/stages.sh
. scripts/lib/stages.sh

out="build/release/out"
pictures="build/pictures"
ovi() { printf '\n$ ovi %s\n' "$*"; "$out/ovi" "$@"; }

stage "install dependencies" scripts/install-deps.sh
# All that cmake --install asks for.
stage "build (release)" build_preset release ovi-tool ovi_virtual_camera ovi_virtual_recorder

rm -rf "$pictures"
mkdir -p "$pictures"
export GENICAM_GENTL64_PATH="$PWD/$out"

ovi list
camera=$("$out/ovi" list --json | sed -n 's/.*"serial": *"\([^"]*\)".*/\1/p' | head -n 1)
ovi info "$camera"
ovi features --camera "$camera" 'Pixel*'
ovi get --camera "$camera" Width Height PixelFormat ExposureTime AcquisitionFrameRate
ovi stream --camera "$camera" --frames 300
ovi stream --camera "$camera" --frames 3 --save png --to "$pictures"
ovi stream --camera "$camera" --set PixelFormat=Mono12p --frames 3 --save png --to "$pictures"
ovi stream --camera Colour --frames 3 --save png --to "$pictures"
ovi stream --camera Colour --set PixelFormat=BGRa8 --frames 3 --save png --to "$pictures"
if [ -x scripts/round-trip-file.sh ]; then
  scripts/round-trip-file.sh "$out/ovi" "$camera"
fi

printf '\nThe pictures are in %s/%s:\n' "$PWD" "$pictures"
ls "$pictures"
