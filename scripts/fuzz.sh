#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Runs fuzz targets that the preset fuzz has built, one after the other: fuzz.sh [TARGET...], all without a name.
#
# Each runs for FUZZ_SECONDS (20) seconds. It starts from fuzz/corpus, fuzz/findings and what earlier runs left in
# build/fuzz/corpus; what it finds goes to build/fuzz/findings/TARGET. Exit status 1: something was found.
set -eu
cd "$(dirname "$0")/.."

seconds=${FUZZ_SECONDS:-20}
build=${FUZZ_BUILD:-build/fuzz}
if [ $# = 0 ]; then
  for source in fuzz/targets/*.cpp; do
    set -- "$@" "$(basename "$source" .cpp)"
  done
fi

# Some targets write their input to a file each time: in memory, where that can be had.
scratch=$(mktemp -d -p /dev/shm reeldb-fuzz-XXXXXX 2>/dev/null || mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'exit 130' INT TERM

export TMPDIR="$scratch"
export UBSAN_OPTIONS=print_stacktrace=1
ASAN_SYMBOLIZER_PATH=${ASAN_SYMBOLIZER_PATH:-$(command -v llvm-symbolizer-14 || true)}
export ASAN_SYMBOLIZER_PATH
unset REELDB_FACILITY

count_files()
{
  find "$1" -type f | wc -l
}

status=0
for target in "$@"; do
  program=$build/bin/fuzz_$target
  if [ ! -x "$program" ]; then
    echo "fuzz: $program: not there (cmake --preset fuzz && cmake --build --preset fuzz)" >&2
    exit 2
  fi
  corpus=$build/corpus/$target
  findings=$build/findings/$target
  log=$build/log/$target
  mkdir -p "$corpus" "$findings" "$build/log"
  before=$(count_files "$findings")

  set -- "$corpus" "fuzz/corpus/$target"
  [ ! -d "fuzz/findings/$target" ] || set -- "$@" "fuzz/findings/$target"
  [ ! -f "fuzz/dictionaries/$target.dict" ] || set -- "$@" "-dict=fuzz/dictionaries/$target.dict"
  for option in $(sed 's/#.*//' "fuzz/targets/$target.options"); do
    set -- "$@" "-$option"
  done
  # Everything here takes time in proportion to its input: ten seconds are for one that does not.
  failed=0
  "$program" "$@" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 -artifact_prefix="$findings/" \
    >"$log" 2>&1 || failed=$?

  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  found=$(($(count_files "$findings") - before))
  printf '%-12s %10s runs, %s findings\n' "$target" "${runs:-no}" "$found"
  if [ "$failed" != 0 ] || [ -z "$runs" ]; then
    status=1
    sed -n -e 's/^ *what(): */  /p' -e 's/^SUMMARY: /  /p' -e 's/^.*Test unit written to /  /p' "$log"
    echo "  more in $log"
  fi
done
exit $status
