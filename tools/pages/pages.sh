#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# pages.sh manual|markdown REELDB FOLDER: makes a page of every command in FOLDER, which is emptied of such pages first,
# out of what the program REELDB says of itself.
set -eu
kind=$1 program=$(realpath "$2")
tools=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$3"
cd "$3"

help_of() { # help_of COMMAND...
  # The caller's project is none of this, nor is the width of his terminal.
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

markdown_page() { # the same
  shift 2
  page=$(echo "${*:-README}" | tr ' ' '-')
  {
    echo "# $(echo reeldb "$@")"
    echo
    echo '```console'
    echo "\$ $(echo reeldb "$@") --help"
    help_of "$@"
    echo '```'
  } >"$page.md"
}

write() { # write PARENT COMMAND...: its page and those below it
  parent=$1
  shift
  children=$(commands_of "$@" | tr '\n' ' ')
  "${kind}_page" "$parent" "$children" "$@"
  own=$(echo reeldb "$@" | tr ' ' '-')
  for child in $children; do
    (write "$own" "$@" "$child") # its variables are its own
  done
}

case $kind in
manual) rm -f ./reeldb*.1 ;;
markdown) rm -f ./*.md ;;
*)
  echo "pages: $kind: neither manual nor markdown" >&2
  exit 2
  ;;
esac
write ''
if [ "$kind" = markdown ]; then # the page of reeldb itself leads to the others
  {
    echo
    echo 'Each command has a page, which is what its `--help` prints:'
    echo
    for page in $(ls ./*.md | grep -v README | LC_ALL=C sort); do
      page=$(basename "$page")
      heading=$(sed -n '1s/^# //p' "$page")
      echo "- [$heading]($page): $(sed -n 5p "$page")"
    done
  } >>README.md
fi
