#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# include_arrows_test.sh SOURCE_DIR: every include leads where the layout of the project lets it lead.
# include_arrows_test.sh --self-test: plants wrong includes, one at a time, in a tree of its own; each must be found.
#
#   src/labelmaps -> src/reeldb -> src/reelrec -> src/reeltypes -> src/host -> the standard library and libc
#
# Arrows go that way alone, also over several steps, and also by way of the exported headers, each of which belongs to
# one of the rooms. One arrow runs back: a record tells the manager of its changes, so src/reelrec includes
# ReelDbManager.h. standalone/ and cli/ see of all this the exported headers and src/host, and cli/ sees of standalone/
# the headers in reelhost/.
set -eu
export LC_ALL=C

check() {
  cd "$1"
  files=$(find include src standalone cli \( -name '*.h' -o -name '*.cpp' -o -name '*.c' -o -name '*.in' \) | sort)
  [ -n "$files" ]
  # shellcheck disable=SC2086 # a list of words
  echo "$files" | awk '
    function wrong(why) {
      printf "%s:%d: %s: %s\n", FILENAME, FNR, target, why
      failed = 1
    }
    function directory(path) { sub("/[^/]*$", "", path); return path }
    function room(path,  part) { split(path, part, "/"); return part[1] == "src" ? part[2] : part[1] }
    # The room an exported header belongs to.
    function owner(path) {
      if (path ~ /^src\//) return room(path)
      if (path in ownerOf) return ownerOf[path]
      return "none"
    }
    # The header within a room that the text of an include means; empty when there is none.
    function within(tree, text,  path) {
      if ((directory(FILENAME) "/" text) in exists) return directory(FILENAME) "/" text
      for (path in exists)
        if (index(path, tree "/") == 1 && substr(path, length(path) - length(text)) == "/" text) return path
      return ""
    }

    BEGIN {
      n = split("host reeltypes reelrec reeldb labelmaps", order, " ")
      for (i = 1; i <= n; ++i) level[order[i]] = i
      level["export"] = 1
      ownerOf["include/ReelDbExport.h"] = "export"
      ownerOf["include/ReelTypeManager.h"] = "reeltypes"
      ownerOf["include/ReelDbRec.h"] = "reelrec"
      ownerOf["include/ReelDbClient.h"] = "reeldb"
      ownerOf["include/ReelDbManager.h"] = "reeldb"
      ownerOf["include/ReelDbVersion.h"] = "reeldb"
      ownerOf["include/CreateNewReelAction.h"] = "reeldb"
      ownerOf["include/MainThread.h"] = "reeldb"
      ownerOf["include/LabelMaps.h"] = "labelmaps"
      n = split("algorithm array atomic cctype cerrno charconv climits cmath cstddef cstdint cstdio cstdlib cstring " \
                "cwchar cwctype exception functional initializer_list iterator limits memory new optional " \
                "stdexcept string string_view strings.h tuple type_traits utility vector", names, " ")
      for (i = 1; i <= n; ++i) standard[names[i]] = 1
    }

    FILENAME == "-" { exists[$0] = 1; next }

    FNR == 1 {
      target = FILENAME
      here = room(FILENAME)
      if (FILENAME ~ /^src\// && !(here in level))
        wrong("a room of the library that has no place in the order of rooms")
      if (FILENAME ~ /^include\// && !(FILENAME in ownerOf))
        wrong("an exported header that belongs to no room")
      if (here == "host" && FILENAME !~ /\.h$/)
        wrong("the host interface is declarations only")
    }

    /^[ \t]*#[ \t]*include/ {
      target = $0
      sub(/^[ \t]*#[ \t]*include[ \t]*/, "", target)
      quoted = target ~ /^"/
      if (!quoted && target !~ /^</) { wrong("an include that cannot be followed"); next }
      target = substr(target, 2)
      sub(/[">].*$/, "", target)
      ++includes

      if (!quoted) {
        if (FILENAME ~ /^(src|include)\// && !(target in standard))
          wrong("the library uses the standard library and libc alone")
        else if (FILENAME !~ /^(src|include)\// &&
                 (("include/" target) in exists || ("src/" target) in exists || ("standalone/" target) in exists))
          wrong("a header of the project in angle brackets")
        next
      }
      if (target ~ /(^|\/)\.\.?\//) { wrong("a path that climbs"); next }

      if (here == "host") {
        if (!((directory(FILENAME) "/" target) in exists))
          wrong("the host interface includes its own headers alone")
        next
      }
      if (here == "standalone" || here == "cli") {
        path = within(here, target)
        if (path == "" && here == "cli" && target ~ /^reelhost\// && ("standalone/" target) in exists) next
        if (path == "" && target !~ /^host\// && !(("include/" target) in exists))
          wrong("not a header of " here "/, not exported, not of the host interface")
        else if (path == "" && target ~ /^host\// && !(("src/" target) in exists))
          wrong("no such header")
        next
      }

      # The library.
      path = directory(FILENAME) "/" target
      if (!(path in exists)) path = "include/" target
      if (!(path in exists)) path = "src/" target
      if (!(path in exists)) { wrong("no such header in include/ or src/"); next }
      if (FILENAME ~ /^include\// && path ~ /^src\// && room(path) != "host")
        wrong("an exported header that needs a private one")
      else if (level[owner(path)] > level[owner(FILENAME)] && !(path == "include/ReelDbManager.h" && here == "reelrec"))
        wrong(owner(FILENAME) " includes " owner(path))
    }

    END {
      if (!failed) printf "include_arrows_test: %d includes lead the right way\n", includes
      exit failed
    }' - $files
}

# expect FILE LINE: this include in this file is found and told.
planted=0
expect() {
  cp -R "$work/good" "$work/bad"
  mkdir -p "$(dirname "$work/bad/$1")"
  echo "$2" >>"$work/bad/$1"
  line=$(wc -l <"$work/bad/$1")
  if (check "$work/bad") >"$work/told"; then
    echo "include_arrows_test: not found: $1: $2" >&2
    exit 1
  fi
  if ! grep -qF "$1:" "$work/told" || [ "$(wc -l <"$work/told")" != 1 ]; then
    echo "include_arrows_test: wrongly told: $1:$line: $2:" >&2
    cat "$work/told" >&2
    exit 1
  fi
  rm -rf "$work/bad"
  planted=$((planted + 1))
}

self_test() {
  work=$(mktemp -d)
  trap 'rm -rf "$work"' EXIT
  mkdir -p "$work/good"
  (
    cd "$work/good"
    mkdir -p include src/host src/reeltypes src/reelrec src/reeldb src/labelmaps standalone/reelhost standalone/model \
      cli/lists
    echo '#include <cstddef>' >src/host/lwstring.h
    echo '#include "lwstring.h"' >src/host/edit.h
    : >include/ReelDbExport.h
    echo '#include "host/lwstring.h"' >include/ReelTypeManager.h
    echo '#include "ReelDbExport.h"' >include/ReelDbRec.h
    printf '#include <vector>\n#include "ReelDbRec.h"\n' >include/ReelDbManager.h
    : >include/LabelMaps.h
    echo '#include "ReelTypeManager.h"' >src/reeltypes/known_type.h
    : >src/reelrec/open_log.h
    printf '#include "ReelDbManager.h"\n#include "reeltypes/known_type.h"\n' >src/reelrec/attributes.cpp
    echo '#include "reelrec/open_log.h"' >src/reeldb/client_pass.h
    echo '#include "reeldb/client_pass.h"' >src/reeldb/client.cpp
    : >src/labelmaps/map.h
    printf '#include "LabelMaps.h"\n#include "ReelDbManager.h"\n#include "reeldb/client_pass.h"\n' \
      >src/labelmaps/label_maps.cpp
    : >standalone/reelhost/host.h
    printf '#include <sqlite3.h>\n#include "host/edit.h"\n#include "ReelDbManager.h"\n' >standalone/model/log.h
    echo '#include "model/log.h"' >standalone/model/log.cpp
    printf '#include "lists/list.h"\n#include "list.h"\n' >cli/lists/edl.cpp
    printf '#include "reelhost/host.h"\n#include "host/edit.h"\n' >cli/lists/list.h
  )
  if ! (check "$work/good") >"$work/told"; then
    echo "include_arrows_test: nothing is wrong here:" >&2
    cat "$work/told" >&2
    exit 1
  fi

  expect src/reeltypes/known_type.h '#include "reelrec/open_log.h"'
  expect src/reeltypes/known_type.h '#include "reeldb/client_pass.h"'
  expect src/reeltypes/known_type.h '#include "ReelDbRec.h"'
  expect src/reeltypes/known_type.h '#include "ReelDbManager.h"'
  expect src/reelrec/open_log.h '#include "reeldb/client_pass.h"'
  expect src/reelrec/attributes.cpp '  #  include "labelmaps/map.h" // indented'
  expect src/reeldb/client.cpp '#include "labelmaps/map.h"'
  expect src/reeldb/client.cpp '#include "LabelMaps.h"'
  expect include/ReelDbRec.h '#include "ReelDbManager.h"'
  expect include/ReelTypeManager.h '#include "ReelDbRec.h"'
  expect include/ReelDbManager.h '#include "reeldb/client_pass.h"'
  expect include/ReelDbManager.h '#include "gone.h"'
  expect include/New.h '#include <vector>'
  expect src/new/thing.h '#include <vector>'
  expect src/host/edit.h '#include "ReelDbExport.h"'
  expect src/host/edit.h '#include "reelrec/open_log.h"'
  expect src/host/edit.h '#include <sqlite3.h>'
  expect src/host/edit.cpp '#include <vector>'
  expect src/reeldb/client.cpp '#include <fmt/format.h>'
  expect src/reeldb/client.cpp '#include "reelhost/host.h"'
  expect src/reeldb/client.cpp '#include "lists/list.h"'
  expect src/reeldb/client.cpp '#include "../standalone/model/log.h"'
  expect src/reeldb/client.cpp '#include HEADER'
  expect standalone/model/log.cpp '#include "reeldb/client_pass.h"'
  expect standalone/model/log.cpp '#include "reelrec/open_log.h"'
  expect standalone/model/log.cpp '#include "../../src/reelrec/open_log.h"'
  expect standalone/model/log.cpp '#include "lists/list.h"'
  expect standalone/model/log.cpp '#include "host/gone.h"'
  expect standalone/model/log.cpp '#include <host/edit.h>'
  expect cli/lists/edl.cpp '#include "reeltypes/known_type.h"'
  expect cli/lists/edl.cpp '#include "model/log.h"'
  expect cli/lists/edl.cpp '#include <ReelDbManager.h>'
  echo "include_arrows_test: $planted planted includes were found"
}

case $1 in
--self-test) self_test ;;
*) check "$1" ;;
esac
