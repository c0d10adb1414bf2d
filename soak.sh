#!/usr/bin/env bash
# Takes images at full speed for MINUTES (default 5) and checks that nothing grows and nothing is lost.
set -euo pipefail
cd "$(dirname "$0")"
# shellcheck source=scripts/lib/stages.sh
. scripts/lib/stages.sh

stage "install dependencies" scripts/install-deps.sh
stage "build (release)" build_preset release acquisition_soak ovi_virtual_camera
build/release/out/acquisition_soak "${1:-5}"
