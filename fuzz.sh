#!/usr/bin/env bash
# Builds the fuzzers with clang and runs each of them, one on each core at a time.
#
#   ./fuzz.sh SECONDS [NAME...]          all fuzzers, or those named, for SECONDS each, from a new seed
#   ./fuzz.sh --check [NAME...]          the seeds in the sources and 10 s from a fixed seed: nothing that depends on luck
#   ./fuzz.sh --merge [NAME...]          takes into fuzz/corpus what the runs on this machine found to reach more code
#
# What they find lies in build/fuzz/findings, their logs in build/fuzz/logs, and what they learnt in build/fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")"
# shellcheck source=scripts/lib/stages.sh
. scripts/lib/stages.sh

all=()
for file in fuzz/*_fuzzer.cpp; do
  file=${file#fuzz/}
  all+=("${file%_fuzzer.cpp}")
done
usage() { sed -n '2,8s/^# \{0,1\}//p' "$0" >&2; printf 'Fuzzers: %s\n' "${all[*]}" >&2; exit 2; }

what=${1:-}
[[ $what =~ ^([1-9][0-9]*|--check|--merge)$ ]] || usage
shift
[ $# -gt 0 ] && names=("$@") || names=("${all[@]}")
for name in "${names[@]}"; do
  [ -f "fuzz/${name}_fuzzer.cpp" ] || usage
done

build=build/fuzz
# Files that fuzzers write lie in memory where that is possible; what a crash leaves behind goes with the folder.
scratch=$(mktemp -d "$([ -w /dev/shm ] && echo /dev/shm || echo /tmp)/ovi-fuzz.XXXXXX")
trap 'rm -rf "$scratch"' EXIT

fuzzer() {
  # fuzzer NAME ARGUMENT...: the program with what all of its runs have in common.
  local name=$1 options=(-timeout=25 -rss_limit_mb=2048 -max_len=16384 -close_fd_mask=3)
  shift
  [ ! -f "fuzz/$name.dict" ] || options+=("-dict=fuzz/$name.dict")
  TMPDIR=$scratch "$build/out/fuzz_$name" "${options[@]}" -artifact_prefix="$build/findings/$name-" "$@"
}

run_fuzzer() {
  # run_fuzzer NAME SECONDS [SEED]: one run, told in one line; a finding is told with how to see it again. With a seed
  # it starts from the sources' inputs alone, not from what earlier runs learnt.
  local name=$1 seconds=$2 log="$build/logs/$1.log" new status=0 figures learnt
  learnt=$build/corpus/$name
  [ $# -lt 3 ] || learnt=$scratch/$name.learnt
  mkdir -p "$learnt"
  touch "$scratch/$name.begin"
  fuzzer "$name" -max_total_time="$seconds" -seed="${3:-0}" -print_final_stats=1 "$learnt" "fuzz/corpus/$name" \
    >"$log" 2>&1 || status=$?
  figures=$(awk '/ cov: / { for (i = 1; i < NF; i++) { if ($i == "cov:") cov = $(i + 1); if ($i == "corp:") corp = $(i + 1) } }
    /^#[0-9]/ { runs = substr($1, 2) } /^stat::number_of_executed_units:/ { runs = $2 }
    END { printf "%9d runs, coverage %5d, corpus %s", runs, cov, corp }' "$log")
  mapfile -t new < <(find "$build/findings" -name "$name-*" -newer "$scratch/$name.begin")
  if [ "$status" = 0 ]; then
    printf '%-14s %s, no finding\n' "$name" "$figures"
    return 0
  fi
  printf '%-14s %s, FINDING (%s)\n' "$name" "$figures" "$log"
  grep -m 1 -E '^(SUMMARY|==[0-9]+==ERROR)' "$log" || tail -n 5 "$log"
  for file in "${new[@]}"; do
    printf '  see it again: %s/out/fuzz_%s %s\n' "$build" "$name" "$file"
  done
  return 1
}

merge_fuzzer() {
  # merge_fuzzer NAME: adds to the corpus in the sources what reaches code that it does not reach, small inputs first.
  local name=$1
  mkdir -p "$build/corpus/$name"
  fuzzer "$name" -merge=1 "fuzz/corpus/$name" "$build/corpus/$name" >"$build/logs/$name-merge.log" 2>&1
  printf '%-14s %d seeds, %s\n' "$name" "$(find "fuzz/corpus/$name" -type f | wc -l)" \
    "$(du -sh --apparent-size "fuzz/corpus/$name" | cut -f 1)"
}

in_parallel() {
  # in_parallel FUNCTION ARGUMENT...: calls the function for every fuzzer, as many at once as there are cores.
  local running=0 failed=0 name
  for name in "${names[@]}"; do
    if [ "$running" -ge "$(jobs_count)" ]; then
      wait -n || failed=1
      running=$((running - 1))
    fi
    "$1" "$name" "${@:2}" &
    running=$((running + 1))
  done
  while [ "$running" -gt 0 ]; do
    wait -n || failed=1
    running=$((running - 1))
  done
  return "$failed"
}

stage "install dependencies" scripts/install-deps.sh
stage "build (fuzz)" build_preset fuzz "${names[@]/#/fuzz_}"
mkdir -p "$build/findings" "$build/logs"
case $what in
  --merge) stage "merge" in_parallel merge_fuzzer ;;
  --check) stage "fuzz, 10 s each from a fixed seed" in_parallel run_fuzzer 10 1 ;;
  *) stage "fuzz, $what s each" in_parallel run_fuzzer "$what" ;;
esac
