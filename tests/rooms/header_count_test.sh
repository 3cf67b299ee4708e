#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Whether each source pulls in few headers: what it costs to compile a source grows with their number.
#
# header_count_test.sh MOST COMPILER INCLUDE-PATH SOURCE...
#
# INCLUDE-PATH is a list with colons. Exits with 1 when a source pulls in more than MOST headers, directly or by way of
# others, and when a source cannot be read.
set -eu

most=$1
compiler=$2
path=$3
shift 3

options=$(printf '%s' "$path" | tr ':' '\n' | sed '/^$/d; s/^/-I/')
largest=0
failed=0
for source in "$@"; do
  # A make rule with the source and every header, several in a line.
  # shellcheck disable=SC2086 # a list
  rule=$(IFS='
' && "$compiler" -std=c++20 -M $options "$source")
  count=$(($(printf '%s\n' "$rule" | sed 's/^[^ ]*: *//; s/\\$//' | tr -s ' ' '\n' | grep -c .) - 1))
  [ $count -le $largest ] || largest=$count
  if [ $count -gt "$most" ]; then
    echo "${source##*/}: pulls in $count headers ($most are the most; a header that it includes includes too much)" >&2
    failed=1
  fi
done
[ $largest -gt 0 ] || {
  echo "header_count_test: no source pulls in a header" >&2
  exit 1
}
[ $failed = 0 ] || exit 1
echo "header_count_test: at most $largest headers"
