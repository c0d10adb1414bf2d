#!/usr/bin/env bash
# Writes a file of random bytes into a camera's UserSet1, reads it back and compares the two.
# Usage: round-trip-file.sh PATH-OF-OVI CAMERA
set -euo pipefail
ovi=${1:?path of ovi}
camera=${2:?name of the camera}

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
head -c 100001 /dev/urandom >"$folder/sent"
"$ovi" file put "$folder/sent" --as UserSet1 --read-back "$folder/received" --camera "$camera"
cmp "$folder/sent" "$folder/received"
printf 'UserSet1 of %s came back as it was sent: %s bytes\n' "$camera" "$(wc -c <"$folder/received")"
