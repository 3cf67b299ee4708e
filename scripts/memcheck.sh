#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Runs the test programs and the examples of a build under valgrind, with all processes that they start, also commands
# in shells: memcheck.sh BUILD_DIR [PROGRAM...]
#
# JOBS (all) processors share each program's tests; GTEST_FILTER selects other tests than the default. Errors are
# misused memory and lost memory (definitely or indirectly), but not memory that a static still points to at the end.
# Only errors of shells and other programs of the system are suppressed. The script first prints what it leaves out.
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
  set -- "$@" consumer minimal_host_example
  echo "memcheck: abi.*, install.*, pages.*, format: left out (scripts about files; what commands they start, others do)"
fi
echo "memcheck: compilers, cmake, python, fish: run as they are, with what they start"
others='*/fish,*/c++,*/g++*,*/clang++*,/usr/lib/llvm*,*/cmake,*/python3*,/usr/lib/gcc*'
# With AVX2, the C library's comparison of wide texts reads whole vectors, beyond the end of the texts.
export GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2

# A command takes seconds here instead of milliseconds.
echo "memcheck: lists of REELDB_SAMPLES: left out (hundreds of commands; the sanitizers read them)"
unset REELDB_SAMPLES
if [ -z "${GTEST_FILTER:-}" ]; then
  echo "memcheck: PowerCut, ImportKilled: left out (what is killed cannot say what it lost)"
  echo "memcheck: HostileFiles.ListThatGrows*: left out (the list grows faster than it is read)"
  echo "memcheck: eight tests of who holds a project: left out (it is valgrind by name)"
  holders='SqliteStoreTest.HolderOfAFile*:SqliteSharing.SecondWriterIsToldWho*:SqliteSharing.LinkAndFileAreOneProject'
  commands='WriteLockHolder.HolderOfTheFileItself:WriteLockHolder.*Command*'
  export GTEST_FILTER="-PowerCut.*:ImportKilled.*:HostileFiles.ListThatGrows*:$holders:SqliteSharing.*DropsNoLock*:$commands"
fi
jobs=${JOBS:-$(nproc)}
logs=$(mktemp -d)
others_lose=$(mktemp)
trap 'rm -rf "$logs" "$others_lose"' EXIT
trap 'exit 130' INT TERM
for place in /bin /usr/bin; do
  printf '{\n  lost there\n  Memcheck:Leak\n  match-leak-kinds: definite,indirect\n  ...\n  obj:%s/*\n}\n' $place
done >"$others_lose"

# part PROGRAM NUMBER: runs a part of a program's tests. The report of valgrind on a process goes to a file, because the
# tests read the output of commands.
part()
{
  GTEST_TOTAL_SHARDS=$jobs GTEST_SHARD_INDEX=$2 valgrind --quiet --vgdb=no --error-exitcode=99 --log-file="$logs/said.%p" \
    --leak-check=full --show-leak-kinds=definite,indirect --errors-for-leak-kinds=definite,indirect \
    --trace-children=yes --trace-children-skip="$others" --suppressions="$others_lose" \
    "$build/bin/$1" >"$logs/printed.$2" 2>&1 || : >"$logs/failed.$2"
}

# has_tests PROGRAM: fails for an example, which has no tests
has_tests()
{
  case $1 in consumer | minimal_host_example) return 1 ;; esac
}

# count WHAT: the number of tests that PASSED or were SKIPPED
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
  # A system call that valgrind does not know is not an error of the program.
  said=$(cat "$logs"/said.* | grep -v -e 'noted but unhandled' -e 'This could cause spurious value errors' \
    -e 'README_MISSING_SYSCALL_OR_IOCTL' || true)
  if [ -n "$said" ] || [ -n "$(find "$logs" -name 'failed.*')" ] ||
    { has_tests "$program" && [ "$(count PASSED)" = 0 ]; }; then
    echo "memcheck: $program: not clean" >&2
    grep -hv -e '^\[ RUN ' -e '^\[       OK ' "$logs"/printed.* >&2 || true
    printf '%s\n' "$said" >&2
    failed="$failed $program"
  elif has_tests "$program"; then
    echo "memcheck: $program: clean: $(count PASSED) passed, $(count SKIPPED) skipped, $(($(date +%s) - begun)) s"
  else
    echo "memcheck: $program: clean"
  fi
  rm -f "$logs"/*
done
[ -z "$failed" ] || {
  echo "memcheck: not clean:$failed" >&2
  exit 1
}
