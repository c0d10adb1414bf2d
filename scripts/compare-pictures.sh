#!/usr/bin/env bash
# Takes pictures on both platforms and compares them byte for byte.
#
#   scripts/compare-pictures.sh LINUX-OUT WINDOWS-OUT    the folders of the programs, as build/dev/out
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
linux=$(cd "$1" && pwd) windows=$(cd "$2" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

take() {
  # take FOLDER COMMAND...: fifty pictures of each of three cameras.
  local folder=$1 camera
  shift
  mkdir "$folder"
  for camera in "Mono --set PixelFormat=Mono12p --set Width=640 --set Height=480" Colour "BigEndian"; do
    # shellcheck disable=SC2086 # words of the camera's options
    "$@" stream --camera $camera --frames 50 --save png --to "$folder" >/dev/null 2>"$folder.log" ||
      { cat "$folder.log" >&2; return 1; }
  done
}

export GENICAM_GENTL64_PATH="$linux"
take linux "$linux/ovi"
export GENICAM_GENTL64_PATH="Z:$windows"
take windows "$here/wine-run.sh" "$windows/ovi.exe"
diff -r linux windows
count=$(find linux -type f | wc -l)
[ "$count" = 150 ] || { echo "compare-pictures: $count pictures instead of 150" >&2; exit 1; }
echo "compare-pictures: $count pictures are the same on both platforms"
