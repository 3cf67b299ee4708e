#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Whether a room sees the headers it may see, and no others: compiles includes with the include path of its target.
#
# rooms_test.sh PROJECT COMPILER INCLUDE-PATH SEES... --not HIDDEN...
#
# PROJECT is the folder of the project, INCLUDE-PATH a list with colons. Exits with 1 when a header of SEES is not found
# or does not compile, when one of HIDDEN is found, and when one of HIDDEN is no header of the project at all.
set -eu

project=$1
compiler=$2
path=$3
shift 3

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" # a header in quotes is looked for here first: there is none

# compile SOURCE FOLDER...
compile() {
  source=$1
  shift
  for folder in "$@"; do
    [ -z "$folder" ] || printf -- '-I\n%s\n' "$folder"
  done >options
  tr '\n' '\0' <options | xargs -0 "$compiler" -std=c++20 -fsyntax-only -x c++ "$source"
}

seen=0 hidden=0 list=sees
for header in "$@"; do
  if [ "$header" = --not ]; then
    list=hidden
  elif [ $list = sees ]; then
    echo "#include \"$header\"" >>room.cpp
    seen=$((seen + 1))
  else
    printf '#if __has_include("%s")\n#error "%s: must not be seen"\n#endif\n' "$header" "$header" >>room.cpp
    printf '#if !__has_include("%s")\n#error "%s: no such header"\n#endif\n' "$header" "$header" >>project.cpp
    hidden=$((hidden + 1))
  fi
done
[ $seen -gt 0 ] && [ $hidden -gt 0 ] || {
  echo "rooms: nothing to try" >&2
  exit 1
}

# In every folder by whose name a room includes headers, each hidden header is found.
compile project.cpp "$project" "$project"/src "$project"/standalone "$project"/include "$project"/cli
IFS=:
# shellcheck disable=SC2086 # a list with colons
compile room.cpp $path
echo "rooms: $seen headers are seen, $hidden are not"
