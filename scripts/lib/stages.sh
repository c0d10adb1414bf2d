# Functions of the scripts at the root: they say what is being done, how long it took, and what failed.

stage_names=() stage_seconds=()

# What was compiled in one checkout serves the next one too, wherever it lies.
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1

jobs_count() { nproc; }

stage() {
  # stage NAME command...: runs the command under a heading and remembers how long it took.
  local name=$1 start=$SECONDS
  shift
  printf '\n=== %s\n' "$name"
  if ! "$@"; then
    printf '\n*** FAILED: %s (%s)\n' "$name" "$*" >&2
    exit 1
  fi
  stage_names+=("$name")
  stage_seconds+=("$((SECONDS - start))")
}

build_preset() {
  # build_preset PRESET [target...]: configures and builds quietly; shows the whole output when it fails.
  local preset=$1 log
  shift
  log="build/$preset/build.log"
  mkdir -p "build/$preset"
  if ! cmake --preset "$preset" >"$log" 2>&1; then
    cat "$log" >&2
    return 1
  fi
  if ! cmake --build "build/$preset" -j "$(jobs_count)" ${1+--target "$@"} >"$log" 2>&1; then
    grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking|Re-checking|Generating)' "$log" >&2 || cat "$log" >&2
    return 1
  fi
}

test_preset() {
  # test_preset PRESET: runs the suite of one build; a failing test shows its output. Tests wait more than they compute,
  # so there are more of them at once than cores; under Wine all starts of programs go through one server.
  local preset=$1 jobs
  jobs=$(jobs_count)
  [ "$preset" = mingw ] || jobs=$((2 * jobs))
  ctest --test-dir "build/$preset" --output-on-failure --no-tests=error -j "$jobs"
}

summary() {
  local i
  printf '\n=== all passed\n'
  for i in "${!stage_names[@]}"; do
    printf '%6d s  %s\n' "${stage_seconds[$i]}" "${stage_names[$i]}"
  done
}
