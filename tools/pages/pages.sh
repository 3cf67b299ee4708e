#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# pages.sh REELDB FOLDER: makes a manual page in FOLDER for every command, from the help of the program REELDB. Earlier
# pages are removed.
set -eu
program=$(realpath "$1")
tools=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2"
cd "$2"

help_of() { # help_of COMMAND...
  # The help must not depend on the caller's project or on the width of the terminal.
  env -u REELDB_FACILITY -u COLUMNS NO_COLOR=1 "$program" "$@" --help
}

commands_of() { # those that stand below the command
  help_of "$@" | awk '/^Commands:$/ { inside = 1; next } /^$/ { inside = 0 } inside && /^  [^ ]/ { print $1 }'
}

manual_page() { # manual_page PARENT CHILDREN COMMAND...
  parent=$1 children=$2
  shift 2
  page=$(echo reeldb "$@" | tr ' ' '-')
  pages=
  [ $# != 0 ] || pages=' reeldb-host-check'
  for child in $children; do
    pages="$pages $page-$child"
  done
  help_of "$@" |
    awk -v command="$(echo reeldb "$@")" -v parent="$parent" -v children="${pages# }" -f "$tools/manual_page.awk" \
      >"$page.1"
}

write() { # write PARENT COMMAND...: its page and those below it
  parent=$1
  shift
  children=$(commands_of "$@" | tr '\n' ' ')
  manual_page "$parent" "$children" "$@"
  own=$(echo reeldb "$@" | tr ' ' '-')
  for child in $children; do
    (write "$own" "$@" "$child") # its variables are its own
  done
}

rm -f ./reeldb*.1
write ''
