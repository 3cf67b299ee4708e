#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Runs fuzz targets of the preset fuzz, JOBS (all processors) at a time: fuzz.sh [TARGET...]. Without names it runs all.
#
# Each runs for FUZZ_SECONDS (20) seconds. It starts from fuzz/corpus with its packed inputs, fuzz/findings, and the inputs
# of earlier runs in build/fuzz/corpus. Findings go to build/fuzz/findings/TARGET; the exit status is then 1.
set -eu
cd "$(dirname "$0")/.."

seconds=${FUZZ_SECONDS:-20}
build=${FUZZ_BUILD:-build/fuzz}
jobs=${JOBS:-$(nproc)}
if [ $# = 0 ]; then
  for source in fuzz/targets/*.cpp; do
    set -- "$@" "$(basename "$source" .cpp)"
  done
fi

# Some targets write each input to a file: in memory, if the system has such a folder.
scratch=$(mktemp -d -p /dev/shm reeldb-fuzz-XXXXXX 2>/dev/null || mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'exit 130' INT TERM

export UBSAN_OPTIONS=print_stacktrace=1
ASAN_SYMBOLIZER_PATH=${ASAN_SYMBOLIZER_PATH:-$(command -v llvm-symbolizer-14 || true)}
export ASAN_SYMBOLIZER_PATH
unset REELDB_FACILITY

count_files()
{
  find "$1" -type f | wc -l
}

# run TARGET: fuzzes it and leaves its report in the scratch folder; a file "broken" there means that there is a finding
run()
{
  target=$1
  program=$build/bin/fuzz_$target
  corpus=$build/corpus/$target
  findings=$build/findings/$target
  log=$build/log/$target
  mkdir -p "$corpus" "$findings" "$build/log" "$scratch/$target"
  before=$(count_files "$findings")

  set -- "$corpus" "fuzz/corpus/$target"
  [ ! -d "$build/fuzz/unpacked/$target" ] || set -- "$@" "$build/fuzz/unpacked/$target"
  [ ! -d "fuzz/findings/$target" ] || set -- "$@" "fuzz/findings/$target"
  [ ! -f "fuzz/dictionaries/$target.dict" ] || set -- "$@" "-dict=fuzz/dictionaries/$target.dict"
  for option in $(sed 's/#.*//' "fuzz/targets/$target.options"); do
    set -- "$@" "-$option"
  done
  # All code under test is linear in its input. An input that takes ten seconds is a finding.
  failed=0
  TMPDIR="$scratch/$target" "$program" "$@" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
    -artifact_prefix="$findings/" >"$log" 2>&1 || failed=$?

  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  found=$(($(count_files "$findings") - before))
  printf '%-12s %10s runs, %s findings\n' "$target" "${runs:-no}" "$found"
  if [ "$failed" != 0 ] || [ -z "$runs" ]; then
    : >"$scratch/broken"
    sed -n -e 's/^ *what(): */  /p' -e 's/^SUMMARY: /  /p' -e 's/^.*Test unit written to /  /p' "$log"
    echo "  more in $log"
  fi
}

for target in "$@"; do
  if [ ! -x "$build/bin/fuzz_$target" ]; then
    echo "fuzz: $build/bin/fuzz_$target: not there (cmake --preset fuzz && cmake --build --preset fuzz)" >&2
    exit 2
  fi
done
total=0
while [ $# -gt 0 ]; do
  started=
  while [ $# -gt 0 ] && [ "$(echo "$started" | wc -w)" -lt "$jobs" ]; do
    run "$1" >"$scratch/report.$1" &
    started="$started $1"
    shift
  done
  wait
  for target in $started; do
    cat "$scratch/report.$target"
    total=$((total + $(awk 'NR == 1 { print $2 + 0 }' "$scratch/report.$target")))
  done
done
echo "fuzz: $total runs in all"
[ ! -e "$scratch/broken" ]
