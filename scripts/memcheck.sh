#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Runs the test programs of a build under valgrind, and the programs that they start: memcheck.sh BUILD_DIR [PROGRAM...]
#
# Each program's tests are shared out among JOBS (all) processors; GTEST_FILTER chooses others than here. Nothing is
# suppressed. What is left out is said first.
set -eu

build=$1
shift
command -v valgrind >/dev/null || {
  echo "memcheck: valgrind: not found (package valgrind)" >&2
  exit 2
}
if [ $# = 0 ]; then
  for path in "$build"/bin/*_test "$build"/bin/*_test_* "$build"/bin/*_contract; do
    case $path in
      */reeldb_test_allocation) echo "memcheck: $(basename "$path"): left out (it tries the operator new that valgrind replaces)" ;;
      *) set -- "$@" "$(basename "$path")" ;;
    esac
  done
fi
# The C library's comparison of wide texts reads whole vectors, beyond the end of what it was given, where AVX2 is there.
export GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2

# A command takes seconds here instead of milliseconds.
echo "memcheck: lists of REELDB_SAMPLES: left out (hundreds of commands; the sanitizers read them)"
unset REELDB_SAMPLES
if [ -z "${GTEST_FILTER:-}" ]; then
  echo "memcheck: PowerCut, ImportKilled: left out (what is killed cannot say what it lost)"
  echo "memcheck: HostileFiles.ListThatGrows*: left out (the list grows faster than it is read)"
  echo "memcheck: five tests of who holds a project: left out (it is valgrind by name)"
  holders='SqliteStoreTest.HolderOfAFile*:SqliteSharing.SecondWriterIsToldWho*:SqliteSharing.LinkAndFileAreOneProject'
  export GTEST_FILTER="-PowerCut.*:ImportKilled.*:HostileFiles.ListThatGrows*:$holders:SqliteSharing.*DropsNoLock*"
fi
jobs=${JOBS:-$(nproc)}
logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
trap 'exit 130' INT TERM

# part PROGRAM NUMBER: runs one of the parts of a program's tests. What valgrind has to say of a process goes to a file
# of that process, since the tests read what a command prints.
part()
{
  GTEST_TOTAL_SHARDS=$jobs GTEST_SHARD_INDEX=$2 valgrind --quiet --vgdb=no --error-exitcode=99 --log-file="$logs/said.%p" \
    --leak-check=full --show-leak-kinds=definite,indirect --errors-for-leak-kinds=definite,indirect \
    --trace-children=yes --trace-children-skip='/bin/*,/usr/bin/*,/usr/lib/gcc*' \
    "$build/bin/$1" >"$logs/printed.$2" 2>&1 || : >"$logs/failed.$2"
}

# count WHAT: how many tests PASSED or were SKIPPED
count()
{
  sed -n "s/^\\[  $1 *\\] \\([0-9]*\\) tests*[.,].*/\\1/p" "$logs"/printed.* | awk '{ n += $1 } END { print n + 0 }'
}

failed=
for program in "$@"; do
  begun=$(date +%s)
  number=0
  while [ "$number" -lt "$jobs" ]; do
    part "$program" "$number" &
    number=$((number + 1))
  done
  wait
  # A system call that valgrind does not know is no fault of the program.
  said=$(cat "$logs"/said.* | grep -v -e 'noted but unhandled' -e 'This could cause spurious value errors' \
    -e 'README_MISSING_SYSCALL_OR_IOCTL' || true)
  if [ -n "$said" ] || [ -n "$(find "$logs" -name 'failed.*')" ] || [ "$(count PASSED)" = 0 ]; then
    echo "memcheck: $program: not clean" >&2
    grep -hv -e '^\[ RUN ' -e '^\[       OK ' "$logs"/printed.* >&2 || true
    printf '%s\n' "$said" >&2
    failed="$failed $program"
  else
    echo "memcheck: $program: clean: $(count PASSED) passed, $(count SKIPPED) skipped, $(($(date +%s) - begun)) s"
  fi
  rm -f "$logs"/*
done
[ -z "$failed" ] || {
  echo "memcheck: not clean:$failed" >&2
  exit 1
}
