#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# plain_words_test.sh SOURCE_DIR: fails if a document, a comment, a message, a help text or the name of a test case uses a
# form of the word list in CONTRIBUTING.md. First it plants every form in a tree of its own, and fails if it does not find
# one there.
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
\bone [a-z]+ an? (case|clip|command|element|file|format|key|line|log|name|project|promise|record|reel|row|shot)\b	one case a promise	one per
\bremark(s|ed)? on\b	the name is remarked on	warns about
\bshin(es?|ing) through\b	the old value shines through	is visible, remains
\bthose who\b	for those who wait	programs that, callers that
EOF
}

# The prose of the files, a line "FILE:NUMBER: TEXT" for each:
# - of documents everything but code and text in backquotes or quotes,
# - of sources the comments without text in quotes, the names of test cases, and in the rooms with messages the literals,
# - of scripts and build files the comments.
# The text begins with the end of the line before it, since a form may be broken there.
prose() {
  awk '
    function tail(text, words, count, i, end) {
      count = split(text, words, " ")
      for (i = count > 4 ? count - 3 : 1; i <= count; ++i)
        end = end words[i] " "
      return end
    }
    function put(text) {
      gsub(/`[^`]*`|@p [A-Za-z_]+/, "CODE", text)
      gsub(/[ \t]+/, " ", text)
      sub(/^[ \/]+/, "", text)
      print FILENAME ":" FNR ": " carry text
      carry = tail(text)
    }
    # The literals of a line of code, outside of its comment. A raw literal may go on over several lines.
    function literals(line, found, at) {
      if (raw) {
        at = index(line, ")\"")
        raw = !at
        return at ? substr(line, 1, at - 1) : line
      }
      while (match(line, /"([^"\\]|\\.)*"|\047([^\047\\]|\\.)\047|\/\//)) {
        if (substr(line, RSTART, 2) == "//")
          break
        if (substr(line, RSTART - 1, 3) == "R\"(" && !index(substr(line, RSTART), ")\"")) {
          raw = 1
          return found substr(line, RSTART + 2)
        }
        if (substr(line, RSTART, 1) == "\"")
          found = found substr(line, RSTART + 1, RLENGTH - 2)
        line = substr(line, RSTART + RLENGTH)
      }
      if (match(line, /R"\(/) && !index(substr(line, RSTART), ")\"")) {
        raw = 1
        found = found substr(line, RSTART + 3)
      }
      gsub(/\\n/, " ", found)
      gsub(/\\"/, "\047", found)
      return found
    }
    FNR == 1 { carry = ""; block = 0; raw = 0; messages = FILENAME ~ /^(app|base|cli|lists|standalone|tests|tools)\// }
    FILENAME == "CONTRIBUTING.md" && /^\|/ { next } # the word list itself
    FILENAME ~ /\.md$/ {
      if (/^ *```/) block = !block
      else if (!block) {
        text = $0
        gsub(/"[^"]*"/, "QUOTE", text)
        put(text)
      }
      next
    }
    FILENAME !~ /\.(h|c|cpp)$/ {
      if (!match($0, /(^|[ \t])#+[ \t]/)) { carry = ""; next }
      text = substr($0, RSTART + RLENGTH)
      gsub(/"[^"]*"/, "QUOTE", text)
      put(text)
      next
    }
    match($0, /TEST(_[FP])?\([A-Za-z0-9_]+, *[A-Za-z0-9_]+/) {
      text = substr($0, RSTART, RLENGTH)
      sub(/.*, */, "", text)
      gsub(/[A-Z]/, " &", text)
      carry = ""
      put(text)
      carry = ""
    }
    {
      comment = !raw && match($0, /(^|[ \t])(\/\/+<?|\/\*+|\*) /) ? substr($0, RSTART + RLENGTH) : ""
      whole = comment != "" && substr($0, 1, RSTART) !~ /[^ \t\/*]/
      if (!whole) carry = messages && wasText ? carry : ""
      wasText = 0
      if (messages && !whole && (text = literals($0)) != "") {
        put(text)
        wasText = 1
      }
      if (comment != "") {
        if (!whole) carry = ""
        gsub(/"[^"]*"/, "QUOTE", comment)
        put(comment)
        if (!whole) carry = ""
      }
    }' "$@"
}

# check TREE EXCEPTIONS: prints what is wrong in the tree. An exception is a line "FILE: WORDS: REASON".
check() {
  (
    cd "$1"
    files=$(find . \( -name build -o -name '.?*' -o -name corpus -o -name findings \) -prune -o -type f \
      \( -name '*.md' -o -name '*.h' -o -name '*.c' -o -name '*.cpp' -o -name '*.sh' -o -name '*.py' -o -name '*.cmake' \
      -o -name CMakeLists.txt -o -name Makefile \) -print | sed 's|^\./||' | grep -v '^tests/docs/plain_words_test.sh$' |
      LC_ALL=C sort)
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
none=$work/none
: >"$none"
in_tree() { # in_tree FILE: standard input becomes the file
  mkdir -p "$tree/$(dirname "$1")"
  cat >"$tree/$1"
}
in_tree include/clean.h <<'EOF'
/// Whether there is none. A reel that is no longer there. Returns @p answer.
int answer; // returns "it tells" and `anew`
EOF
in_tree src/clean.cpp <<'EOF'
print("whoever"); // texts of the library are not changed
EOF
in_tree README.md <<'EOF'
The message is `that is no project`.
```console
$ whoever
```
EOF
found=$(check "$tree" "$none")
[ -z "$found" ] || fail "found in a clean tree: $found"

places='docs/x.md include/x.h src/x.cpp tests/x.cpp examples/x.c cli/literal.cpp cli/raw.cpp scripts/x.sh
  app/CMakeLists.txt'
line_in() { # line_in PLACE WORDS: the words as a line of that place
  case $1 in
    *.md | */raw.cpp) echo "$2" ;;
    */literal.cpp) echo "  print(\"$2 \"" ;;
    *.h | *.c | *.cpp) echo "  /// $2" ;;
    *) echo "# $2" ;;
  esac
}
plant() { # plant WORDS...: writes one line for each argument into every place
  for place in $places; do
    {
      [ "$place" != cli/raw.cpp ] || printf '  print(R"('
      for words in "$@"; do line_in "$place" "$words"; done
    } | in_tree "$place"
  done
}
found_in() { # found_in PLACES WHAT: fails unless the check reports each of the places
  check "$tree" "$none" >"$work/reported"
  for place in $1; do
    grep -q "^$place:" "$work/reported" || fail "not found in $place: $2"
  done
}
planted=0
tab='	'
forms >"$work/forms"
while IFS="$tab" read -r _ sentence _; do
  plant "$sentence."
  found_in "$places" "$sentence"
  plant "${sentence% *}" "${sentence##* }."
  found_in "$places" "$sentence, broken before the last word"
  for place in $places; do rm "$tree/$place"; done
  name=$(echo "$sentence" | awk '{ for (i = 1; i <= NF; ++i) printf "%s%s", toupper(substr($i, 1, 1)), substr($i, 2) }')
  echo "TEST_F(Case, $name)" | in_tree tests/x_test.cpp
  found_in tests/x_test.cpp "$name"
  rm "$tree/tests/x_test.cpp"
  planted=$((planted + 1))
done <"$work/forms"
[ "$planted" -eq "$(wc -l <"$work/forms")" ] || fail "planted $planted forms only"
echo '/// It tells the time.' | in_tree base/x.h
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
