#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Runs every test program of a build under valgrind, and the programs that they start: memcheck.sh BUILD_DIR [PROGRAM...]
# Nothing is suppressed. Left out is the program that tries the library's operator new: valgrind puts its own there.
set -eu

build=$1
shift
command -v valgrind >/dev/null || {
  echo "memcheck: valgrind: not found (package valgrind)" >&2
  exit 2
}
if [ $# = 0 ]; then
  # shellcheck disable=SC2046 # a list of words
  set -- $(cd "$build/bin" && ls | grep -E '_test$|_test_|^host_contract$' | grep -v '^reeldb_test_allocation$')
  echo "memcheck: reeldb_test_allocation: left out (it tries the operator new that valgrind replaces)"
fi
failed=
for program in "$@"; do
  log=$(mktemp)
  if valgrind --quiet --error-exitcode=99 --leak-check=full --show-leak-kinds=definite,indirect \
    --errors-for-leak-kinds=definite,indirect --child-silent-after-fork=no --trace-children=yes \
    --trace-children-skip='/bin/*,/usr/bin/*,/usr/lib/gcc*' \
    "$build/bin/$program" --gtest_brief=1 >"$log" 2>&1 && ! grep -q '^==[0-9]*== [A-Z]' "$log"; then
    echo "memcheck: $program: clean"
  else
    echo "memcheck: $program: not clean" >&2
    cat "$log" >&2
    failed="$failed $program"
  fi
  rm -f "$log"
done
[ -z "$failed" ] || {
  echo "memcheck: not clean:$failed" >&2
  exit 1
}
