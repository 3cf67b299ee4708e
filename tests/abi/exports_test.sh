#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# exports_test.sh exports|imports LIBRARY NM LIST...: compares the names a library exports or asks a host for with a
# list, or the sum of several, and prints what differs.
# exports_test.sh host-names LIBRARY NM LIST...: only that the library asks a host for all that is listed. For builds in
# which tools add names of their own.
set -eu
export LC_ALL=C

kind=$1 library=$2 nm=$3
shift 3

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

case $kind in
exports)
  select='--defined-only'
  # Nothing is skipped: the exported names are exactly those that the version script lets through.
  filter='{ print $NF }'
  ;;
imports | host-names)
  select='--undefined-only'
  # The compiler's runtime and libc come with a version; the start files' own names are optional.
  filter='$NF !~ /@(GLIBC|GLIBCXX|CXXABI|GCC)_/ && $NF !~ /^(_ITM_|__gmon_)/ { print $NF }'
  ;;
*)
  echo "exports_test: $kind: unknown check" >&2
  exit 2
  ;;
esac

"$nm" -D "$select" "$library" >"$work/nm"
awk "$filter" "$work/nm" | sort >"$work/have"
for list in "$@"; do
  if ! sort -c "$list" 2>/dev/null; then
    echo "exports_test: $list: not sorted (mend with: LC_ALL=C sort -o $list $list)" >&2
    exit 1
  fi
done
sort "$@" >"$work/want"
[ -s "$work/want" ]

failed=0
comm -13 "$work/have" "$work/want" >"$work/missing"
if [ -s "$work/missing" ]; then
  echo "exports_test: $library: listed in $*, but not in the library:"
  sed 's/^/  /' "$work/missing"
  failed=1
fi
comm -23 "$work/have" "$work/want" >"$work/extra"
if [ "$kind" != host-names ] && [ -s "$work/extra" ]; then
  echo "exports_test: $library: in the library, but not listed in $*:"
  sed 's/^/  /' "$work/extra"
  failed=1
fi
if [ $failed = 1 ]; then
  echo "exports_test: if this is meant, edit the list, or print a new one with:"
  echo "  $nm -D $select $library | awk '$filter' | LC_ALL=C sort"
  exit 1
fi
echo "exports_test: $(wc -l <"$work/want") names of $kind as listed"
