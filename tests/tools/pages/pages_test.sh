#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# pages_test.sh STEP WORK: tries the manual pages of the commands. In the environment: SOURCE, the sources; REELDB, the program;
# MANUAL, the folder with its manual pages. Exits with 77, and says why, when something the step needs is not here.
set -eu
step=$1 work=$2
rm -rf "$work"
mkdir -p "$work"

fail() {
  echo "pages_test: $*" >&2
  exit 1
}

commands() { # commands WORD...: the words of this command and of each one below it, in lines
  echo "$@"
  "$REELDB" "$@" --help | sed -n '/^Commands:$/,/^$/s/^  \([^ ][^ ]*\) .*/\1/p' | while read -r name; do
    commands "$@" "$name" </dev/null
  done
}

case $step in
complete) # each command that help names has a page, and each line of its help is in it
  number=0
  commands >"$work/list"
  while read -r words; do
    name=$(echo reeldb $words | tr ' ' '-')
    page=$MANUAL/$name.1
    [ -e "$page" ] || fail "$page: not made"
    # shellcheck disable=SC2086 # a list of words
    "$REELDB" $words --help >"$work/help"
    # A page breaks lines where it likes and writes "-" and "\" in its own way.
    sed 's/\\-/-/g; s/\\e/\\/g; s/\\&//g; s/^\.B //' "$page" | tr -s ' \n' '  ' >"$work/page"
    sed -n '3,$s/^ *//p' "$work/help" | grep -v '^$' | grep -v ':$' | sed 's/   *.*//' | while read -r line; do
      grep -qF -- "$line" "$work/page" || fail "$page: lacks \"$line\""
    done
    number=$((number + 1))
  done <"$work/list"
  [ "$number" -gt 30 ] || fail "$number commands only"
  ;;

related) # pages lead to pages that are there; a page that its group leads to leads back
  for page in "$MANUAL"/*.1; do
    sed -n '/^\.SH SEE ALSO/,$s/^\.BR \(.*\) (1),*$/\1/p' "$page" | sed 's/\\-/-/g' >"$work/related"
    while read -r other; do
      [ -e "$MANUAL/$other.1" ] || [ -e "$SOURCE/tools/host_check/$other.1" ] || fail "$page: leads to $other, which is not there"
    done <"$work/related"
    name=$(basename "$page" .1)
    parent=${name%-*}
    [ "$parent" != "$name" ] && [ -e "$MANUAL/$parent.1" ] && sed 's/\\-/-/g' "$MANUAL/$parent.1" | grep -q "^\.BR $name " || continue
    grep -qx "$parent" "$work/related" || fail "$page: does not lead to $parent"
  done
  grep -qx '.BR reeldb\\-device\\-show (1),' "$MANUAL/reeldb-device.1" || fail "reeldb-device.1: does not lead downwards"
  ;;

format) # the formatter has nothing to warn of
  command -v groff >/dev/null || {
    echo "pages_test: skipped, no groff here"
    exit 77
  }
  for page in "$MANUAL"/*.1 "$SOURCE"/tools/host_check/*.1; do
    warnings=$(groff -man -Tutf8 -ww -z "$page" 2>&1) || fail "$page: $warnings"
    [ -z "$warnings" ] || fail "$page: $warnings"
  done
  groff -man -Tutf8 -P-bcou "$MANUAL/reeldb-set.1" >"$work/set.txt"
  grep -q '^ *reeldb-set - change the fields of reels$' "$work/set.txt" || fail "reeldb-set.1: has no name"
  grep -q '^ *reeldb set \[OPTIONS\] \[ID\] \[FIELD=VALUE\.\.\.\]$' "$work/set.txt" || fail "reeldb-set.1: has no synopsis"
  ;;

*)
  fail "$step: unknown step"
  ;;
esac
