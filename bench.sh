#!/usr/bin/env bash
# Builds the release, runs all benchmarks, one after the other, and writes their figures into docs/performance.md.
#
#   ./bench.sh             all of them; fails when a target was missed
#   ./bench.sh NAME...     those named, without touching the page: acquisition, discovery, features, file_transfer, genapi,
#                          pattern, producer
#
# Figures mean something only on a machine that does nothing else meanwhile.
set -euo pipefail
cd "$(dirname "$0")"
# shellcheck source=scripts/lib/stages.sh
. scripts/lib/stages.sh

all=(acquisition discovery features file_transfer genapi pattern producer)
[ $# -gt 0 ] && names=("$@") || names=("${all[@]}")
for name in "${names[@]}"; do
  [[ " ${all[*]} " = *" $name "* ]] || { sed -n '2,8s/^# \{0,1\}//p' "$0" >&2; exit 2; }
done

out=build/release/out
table=build/release/figures.md

run_bench() {
  # run_bench NAME: a missed target is told and remembered; whatever else goes wrong ends the run.
  local status=0
  printf '\n=== %s_bench\n' "$1"
  case "$1" in
    producer) OVI_VIRTUAL_SPEED_MODE=1 "$out/producer_bench" "$out/VirtualCamera.cti" || status=$? ;;
    *) "$out/$1_bench" || status=$? ;;
  esac
  case "$status" in
    0) ;;
    3) missed+=("$1") ;;
    *) echo "bench.sh: $1_bench ended with exit code $status" >&2; exit 1 ;;
  esac
}

stage "install dependencies" scripts/install-deps.sh
stage "build (release)" build_preset release ovi_virtual_camera "${names[@]/%/_bench}"

rm -f "$table"
export OVI_BENCH_TABLE="$PWD/$table"
missed=()
for name in "${names[@]}"; do
  run_bench "$name"
done

if [ $# = 0 ]; then
  scripts/lib/write-figures.py "$table" docs/performance.md
  echo "bench.sh: the figures are in docs/performance.md"
fi
if [ "${#missed[@]}" -gt 0 ]; then
  echo "bench.sh: targets were missed by: ${missed[*]}" >&2
  exit 1
fi
