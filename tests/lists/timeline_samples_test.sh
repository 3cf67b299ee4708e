#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# timeline_samples_test.sh REELDB SCRIPT: imports each timeline below the folder REELDB_SAMPLES into a project of its own,
# and lets SCRIPT, timeline_samples.py, compare the clips with what it counts itself. A second import must add nothing.
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

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$reeldb" init "$work/facility" > "$work/init"
count=0
altered=0
for file in "$REELDB_SAMPLES"/otio/* "$REELDB_SAMPLES"/xmeml/* "$REELDB_SAMPLES"/fcpxml/*; do
  [ -e "$file" ] || continue
  count=$((count + 1))
  "$reeldb" -C "$work/facility" project new "p$count" > /dev/null
  run() { "$reeldb" -C "$work/facility" -p "p$count" "$@"; }
  status=0
  run import --json "$file" > "$work/import.json" 2> "$work/errors" || status=$?
  if [ $status -eq 0 ] || [ $status -eq 4 ]; then
    run list-file show 1 --json > "$work/events.json"
    run import --json "$file" > "$work/again.json" 2> /dev/null || [ $? -eq 4 ]
    python3 "$script" "$file" "$work/import.json" "$work/events.json" "$work/again.json"
    sed 's/"source_in": "\(.\)/"source_in": "9\1/' "$work/events.json" > "$work/wrong.json"
    if ! cmp -s "$work/events.json" "$work/wrong.json" && grep -q '"clips": [1-9]' "$work/import.json"; then
      altered=$((altered + 1))
      if python3 "$script" "$file" "$work/import.json" "$work/wrong.json" "$work/again.json" > /dev/null; then
        echo "timeline_samples.py: other source timecodes pass"
        exit 1
      fi
    fi
  else
    python3 "$script" "$file" refused "$status" "$work/errors"
  fi
done
[ $count -gt 0 ] || skip "$REELDB_SAMPLES has no timelines"
if [ $altered -eq 0 ]; then
  echo "timeline_samples.py: no file was tried with other source timecodes"
  exit 1
fi
echo "$count timelines, $altered of them also with other source timecodes"
