#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# plain_words_test.sh SOURCE_DIR: fails when the comments of a public header or a document use a form of the word list in
# CONTRIBUTING.md. First it plants every form in a tree of its own, and fails when it does not find one there.
set -eu
source=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A form: a Perl expression, a tab, a sentence that has the form, a tab, what to write instead.
forms() {
  cat <<'EOF'
\banswer(s|ed|ing)?\b	the lookup answers the reel	returns, the result
\b(tells?|telling|told)\b	it tells the clients	reports, notifies, warns, says
\banew\b	it is read anew	again
\b(so|that) many\b	it adds that many channels	that number of, N
(?<!there )\b(is|are|was|were) none\b	a log that does not open is none	is not a reel, has no row
\b(names?|denotes?|means?|holds?) none\b	the reel names none	names no map
\b(of|for|by|from|to|behind|with) who\b	it is truncated for who reads it	for the caller
\bwhoever\b	whoever reads it	anyone who, the caller that
\b(let|lets|letting|lot) go\b	it lets go of the lock	releases, closes
\bwhat (is|are|was|were) (no|none)\b	what is no reel is reported	sources that are not reels
\b(that|which|it|one|what) (is|are|was|were) no (?!longer|more)	a file that is no project	that is not a project
\bmakes? no sense\b	the request makes no sense	is not possible in this state
\bas things are\b	it is refused as things are	in this state
\b(hears?|heard)\b	clients hear of it	is notified of, receives
\bpass(es|ed)? over\b	other lines are passed over	skips, ignores
\bone [a-z]+ an? (clip|command|file|format|key|line|log|name|project|record|reel|row|shot)\b	one entry a shot	one per
EOF
}

# The prose of the files, a line "FILE:NUMBER: TEXT" for each. A line begins with the end of the line before it, since a
# form may be broken there. Of a header this is the comments. Code, and text in quotes, is left out.
prose() {
  awk '
    FNR == 1 { carry = ""; block = 0 }
    FILENAME ~ /\.md$/ && /^ *```/ { block = !block; next }
    block { next }
    {
      text = $0
      if (FILENAME !~ /\.md$/) {
        if (!match(text, /\/\/+<?/)) { carry = ""; next }
        text = substr(text, RSTART + RLENGTH)
      }
      gsub(/`[^`]*`/, "CODE", text)
      gsub(/"[^"]*"/, "QUOTE", text)
      gsub(/[ \t]+/, " ", text)
      sub(/^[ \/]+/, "", text)
      print FILENAME ":" FNR ": " carry text
      count = split(text, words, " ")
      carry = ""
      for (i = count > 3 ? count - 2 : 1; i <= count; ++i)
        carry = carry words[i] " "
    }' "$@"
}

# check TREE EXCEPTIONS: prints what is wrong in the tree. An exception is a line "FILE: WORDS: REASON".
check() {
  (
    cd "$1"
    files=$(find include src/host standalone/reelhost base app lists README.md docs \
      \( -name '*.h' -o -name '*.md' \) -type f | LC_ALL=C sort)
    # shellcheck disable=SC2086 # a list of words
    prose $files >"$work/prose"
    : >"$work/found"
    forms | while IFS='	' read -r form _ instead; do
      grep -iP -- "$form" "$work/prose" | sed "s|\$| (write: $instead)|" >>"$work/found" || test $? -eq 1
    done
    grep -v '^#' "$2" >"$work/exceptions" || true
    while IFS= read -r exception; do
      file=${exception%%: *}
      words=${exception#*: }
      words=${words%%: *}
      if grep -F -- "$words" "$work/found" | grep -q "^$file:"; then
        awk -v file="$file:" -v words="$words" 'index($0, file) != 1 || !index($0, words)' "$work/found" >"$work/rest"
        mv "$work/rest" "$work/found"
      else
        echo "$2: no longer needed: $exception"
      fi
    done <"$work/exceptions"
    LC_ALL=C sort -u "$work/found"
  )
}

fail() {
  echo "plain_words_test: $*" >&2
  exit 1
}

# The self-test.
tree=$work/tree
mkdir -p "$tree/include" "$tree/src/host" "$tree/standalone/reelhost" "$tree/base" "$tree/app" "$tree/lists" "$tree/docs"
none=$work/none
: >"$none"
{
  echo '/// Whether there is none. A reel that is no longer there.'
  # shellcheck disable=SC2016 # the backquotes are text
  echo 'int answer; // returns "it tells" and `anew`'
} >"$tree/include/clean.h"
{
  # shellcheck disable=SC2016
  echo 'The message is `that is no project`.'
  echo '```console'
  echo '$ whoever'
  echo '```'
} >"$tree/README.md"
found=$(check "$tree" "$none")
[ -z "$found" ] || fail "found in a clean tree: $found"
planted=0
tab='	'
forms >"$work/forms"
places='include/x.h src/host/x.h standalone/reelhost/x.h base/x.h app/x.h lists/x.h docs/x.md'
plant() { # plant FORMAT WORD...: writes the words into every place, behind the mark of a comment
  for place in $places; do
    case $place in *.h) mark='/// ' ;; *) mark='' ;; esac
    (
      cd "$tree"
      format=$1
      shift
      # shellcheck disable=SC2059 # the format is one of ours
      printf "$format" "$mark" "$@" >"$place"
    )
  done
}
foundEverywhere() { # the sentence that was planted
  check "$tree" "$none" >"$work/reported"
  for place in $places; do
    grep -q "^$place:" "$work/reported" || fail "not found in $place: $1"
  done
}
while IFS="$tab" read -r _ sentence _; do
  plant '%s%s.\n' "$sentence"
  foundEverywhere "$sentence"
  plant '%s%s\n/// %s.\n' "${sentence% *}" "${sentence##* }"
  foundEverywhere "$sentence, broken before the last word"
  planted=$((planted + 1))
done <"$work/forms"
for place in $places; do rm "$tree/$place"; done
[ "$planted" -eq "$(wc -l <"$work/forms")" ] || fail "planted $planted forms only"
echo '/// It tells the time.' >"$tree/base/x.h"
echo 'base/x.h: tells the time: a clock does' >"$work/some"
found=$(check "$tree" "$work/some")
[ -z "$found" ] || fail "an exception has no effect: $found"
rm "$tree/base/x.h"
check "$tree" "$work/some" | grep -q 'no longer needed' || fail "an exception that nothing needs is not reported"

found=$(check "$source" "$here/plain_words_exceptions.txt")
if [ -n "$found" ]; then
  echo "$found" >&2
  fail "see the word list in CONTRIBUTING.md; exceptions are in tests/docs/plain_words_exceptions.txt"
fi
echo "plain_words_test: $planted forms planted and found; $(wc -l <"$work/prose") lines of prose have none of them"
