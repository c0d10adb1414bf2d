#!/bin/sh
# Builds the fuzzers with clang and runs each of them for SECONDS. What they find lies in build/fuzz/findings.
set -eu
seconds=${1:?usage: ./fuzz.sh SECONDS}
cd "$(dirname "$0")"
folder=build/fuzz
cmake --preset dev -B "$folder" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DOVI_BUILD_FUZZ=ON \
  -DOVI_SANITIZE=address,undefined,fuzzer-no-link -DOVI_BUILD_TESTS=OFF -DOVI_BUILD_BENCH=OFF -DOVI_BUILD_TOOL=OFF \
  -DOVI_BUILD_EXAMPLES=OFF >"$folder.log" 2>&1 || { cat "$folder.log"; exit 1; }
cmake --build "$folder" --target fuzzers
mkdir -p "$folder/findings"
failed=0
for name in formula description registers; do
  mkdir -p "$folder/corpus/$name"
  echo "== $name, $seconds s"
  dictionary=
  [ -f "fuzz/$name.dict" ] && dictionary="-dict=fuzz/$name.dict"
  "$folder/out/fuzz_$name" "$folder/corpus/$name" "fuzz/corpus/$name" $dictionary -max_total_time="$seconds" -timeout=10 \
    -rss_limit_mb=2048 -max_len=65536 -print_final_stats=1 -verbosity=0 -artifact_prefix="$folder/findings/$name-" || failed=1
done
exit $failed
