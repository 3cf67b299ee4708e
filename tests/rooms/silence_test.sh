#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# silence_test.sh FOLDER...: fails on a source in these folders that prints or reads a command line.
# silence_test.sh --self-test: plants each, one at a time; each must be found.
set -eu

loud='#[ \t]*include[ \t]*[<"](CLI/|iostream|getopt\.h|argp\.h)|(^|[^a-zA-Z_])(printf|fprintf|vprintf|puts|fputs|putchar|perror|fwrite)[ \t]*\(|fmt::print|std::(cout|cerr|clog)|getopt(_long)?[ \t]*\('

check() {
  found=$(find "$@" \( -name '*.h' -o -name '*.cpp' \) -exec grep -nE "$loud" {} +) || found=
  [ -z "$found" ] || {
    echo "$found"
    echo "silence_test: this prints or reads a command line; that is for a face to do" >&2
    return 1
  }
}

if [ "$1" != --self-test ]; then
  check "$@"
  exit
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
printf '#include <cstdio>\nstd::snprintf(text, sizeof text, "%%d", 1);\n' >"$work/quiet.cpp"
check "$work"
planted=0
while read -r line; do
  echo "$line" >"$work/loud.cpp"
  if (check "$work") >/dev/null 2>&1; then
    echo "silence_test: not found: $line" >&2
    exit 1
  fi
  planted=$((planted + 1))
done <<'LOUD'
#include <CLI/App.hpp>
#include <iostream>
std::printf("x");
std::fputs("x", stderr);
fmt::print("x");
std::cout << 1;
getopt(argc, argv, "x");
LOUD
echo "silence_test: $planted planted lines were found"
