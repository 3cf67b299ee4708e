#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# needed_test.sh LIBRARY READELF SONAME ALLOWED...: the library has this name, needs no other library than those allowed
# (shell patterns), and nothing in it must be written to when it is mapped elsewhere than planned.
set -eu
library=$1 readelf=$2 soname=$3
shift 3

"$readelf" -d "$library" >/dev/null # fails here if it cannot be read
dynamic=$("$readelf" -d "$library")

failed=0
needed=$(echo "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p')
[ -n "$needed" ]
for name in $needed; do
  known=no
  for pattern in "$@"; do
    # shellcheck disable=SC2254 # a pattern is meant
    case $name in
    $pattern) known=yes ;;
    esac
  done
  if [ $known = no ]; then
    echo "needed_test: $library: needs $name (allowed: $*)"
    failed=1
  fi
done
if ! echo "$dynamic" | grep -qF "(SONAME)" || ! echo "$dynamic" | grep -qF "[$soname]"; then
  echo "needed_test: $library: has another name than $soname"
  failed=1
fi
for entry in TEXTREL SYMBOLIC; do
  if echo "$dynamic" | grep -qw "$entry"; then
    echo "needed_test: $library: has the entry $entry"
    failed=1
  fi
done
if ! echo "$dynamic" | grep -Eq 'BIND_NOW|Flags:.*NOW'; then
  echo "needed_test: $library: a missing host operation would show only when it is called (no BIND_NOW)"
  failed=1
fi
[ $failed = 0 ] && echo "needed_test: $library needs" $needed
exit $failed
