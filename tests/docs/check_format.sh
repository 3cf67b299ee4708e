#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# check_format.sh SOURCE_DIR CLANG_FORMAT: fails on files that are not formatted, and says how to mend them. A ruler, a
# comment of dashes with a title, ends at column 100: the formatter does not touch it.
set -eu
formatter=${2:-}
case $formatter in
*NOTFOUND | '')
  echo "check_format: clang-format-14: not found (package clang-format-14)" >&2
  exit 1
  ;;
esac
cd "$1"
files=$(find include src base standalone lists app cli tools tests bench fuzz examples \( -name '*.cpp' -o -name '*.h' -o -name '*.c' \) 2>/dev/null | sort)
[ -n "$files" ]
# shellcheck disable=SC2086 # a list of words
if ! "$formatter" --dry-run --Werror $files; then
  echo "check_format: mend with: $formatter -i FILE" >&2
  exit 1
fi
rulers() { grep -nE '^ *// ---.*---$' "$@" | grep -vE '^[^:]*:[0-9]+:.{100}$'; }
wrong=$(mktemp)
trap 'rm -f "$wrong"' EXIT
echo '// --- Too short ---' >"$wrong"
rulers /dev/null "$wrong" >/dev/null || {
  echo "check_format: does not find a ruler that is too short" >&2
  exit 1
}
# shellcheck disable=SC2086
if rulers $files; then
  echo "check_format: end the ruler at column 100" >&2
  exit 1
fi
echo "check_format: $(echo "$files" | wc -l) files are formatted"
