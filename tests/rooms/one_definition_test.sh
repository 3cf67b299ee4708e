#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# one_definition_test.sh SOURCE_DIR: no two headers of a room define a struct, class or enumeration of the same name.
# Linked into one program, two such types share their functions, and the wrong destructor runs.
set -eu
cd "$1"

# twice FOLDER: the names that its headers define more than once, outside of other types
twice()
{
  find "$1" -maxdepth 1 -name '*.h' -exec cat {} + |
    sed -nE 's/^(struct|class|enum class|enum) ([A-Za-z_]+)[^;]*\{.*/\2/p' | sort | uniq -d
}

probe=$(mktemp -d)
trap 'rm -rf "$probe"' EXIT
echo 'struct Same {' > "$probe/a.h"
printf 'class Same : public Other {\nstruct Once {};\nstruct Once;\n' > "$probe/b.h"
[ "$(twice "$probe")" = Same ] || { echo "one_definition_test: does not find a planted name"; exit 1; }

status=0
for room in base lists app app/json cli/line cli/text cli/commands src/reeltypes src/reelrec src/reeldb src/labelmaps \
  standalone/model standalone/journal standalone/store standalone/facility; do
  names=$(twice "$room")
  if [ -n "$names" ]; then
    echo "$room: more than one definition (name one of them otherwise):" $names
    status=1
  fi
done
exit $status
