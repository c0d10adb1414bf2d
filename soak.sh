#!/usr/bin/env bash
# What takes too long for every day.
#
#   ./soak.sh [MINUTES]      images at full speed for MINUTES (default 5): nothing grows and nothing is lost
#   ./soak.sh faults [ARG...]  every GenTL function fails with every code in every journey; ARG as fault_matrix takes them
set -euo pipefail
cd "$(dirname "$0")"
# shellcheck source=scripts/lib/stages.sh
. scripts/lib/stages.sh

stage "install dependencies" scripts/install-deps.sh
if [ "${1:-}" = faults ]; then
  shift
  stage "build (release)" build_preset release fault_matrix
  cd build/release
  if ! out/fault_matrix --full "$@" 2>fault_matrix.log; then
    tail -n 40 fault_matrix.log >&2
    exit 1
  fi
else
  stage "build (release)" build_preset release acquisition_soak ovi_virtual_camera
  build/release/out/acquisition_soak "${1:-5}"
fi
