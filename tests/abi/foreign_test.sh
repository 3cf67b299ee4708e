#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# foreign_test.sh LIBRARY NM: fails when the library exports a symbol of another library, or of base/: as it is written
# in C++, a name that begins with one of their namespaces, also behind a word such as "vtable for" or a result.
set -eu
export LC_ALL=C
library=$1 nm=$2

names=$("$nm" -D --defined-only -C "$library" | sed 's/^[0-9a-f]* . //')
[ "$(printf '%s\n' "$names" | grep -c .)" -gt 50 ] || { echo "$library: exports next to nothing" >&2; exit 1; }
# Arguments of templates, then those of functions, are part of a name of ours; what is left ends in the name.
foreign=$(printf '%s\n' "$names" |
  sed -E 's/operator[-<>()!=+*&|^~%,.]+//; :a; s/<[^<>]*>//g; ta; s/ ?\[[^]]*\]//g; s/\(.*//; s/.* //' |
  grep -E '^(std|__gnu_cxx|fmt|toml|nlohmann|utf8|reeldb::base)::|^sqlite3_' | sort -u || true)
if [ -n "$foreign" ]; then
  printf '%s: exports symbols that are not its own:\n%s\n' "$library" "$foreign" >&2
  exit 1
fi
