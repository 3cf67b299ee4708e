#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# list_names_test.sh REELDB SCRIPT: imports the cut lists of the folder REELDB_SAMPLES into one project, and lets SCRIPT,
# list_names.py, check that no reel is two sources. Then it makes one reel of all, and fails if that passes.
# Exit code 77: skipped, with the reason.
set -eu
reeldb=$1
script=$2
skip() {
  echo "skipped: $1"
  exit 77
}
command -v python3 > /dev/null || skip "no python3"
[ -n "${REELDB_SAMPLES:-}" ] || skip "REELDB_SAMPLES names no folder with lists"
set -- "$REELDB_SAMPLES"/*.edl
[ -e "$1" ] || skip "$REELDB_SAMPLES has no cut list"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$reeldb" init "$work/facility" > "$work/init"
status=0
"$reeldb" -C "$work/facility" import "$@" > "$work/import" 2>&1 || status=$?
if [ $status -ne 0 ] && [ $status -ne 4 ]; then # 4: lines were rejected
  cat "$work/import"
  echo "import: exit code $status"
  exit 1
fi
"$reeldb" -C "$work/facility" export --json > "$work/whole.json"
python3 "$script" check "$work/whole.json" "$@"

python3 - "$work/whole.json" "$work/joined.json" << 'END'
import json, sys
with open(sys.argv[1], encoding="utf-8") as file:
    project = json.load(file)
for shot in project["shots"]:
    shot["aliases"].append(shot["reel"])
    shot["reel"] = "ONE"
with open(sys.argv[2], "w", encoding="utf-8") as file:
    json.dump(project, file)
END
if python3 "$script" check "$work/joined.json" "$@" > "$work/joined"; then
  echo "list_names.py: one reel of all sources passes"
  exit 1
fi
head -1 "$work/joined"
