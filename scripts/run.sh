#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# The main job: makes a new facility, imports the example lists, and shows their reels.
set -eu

reeldb=build/release/bin/reeldb
facility=build/demo

rm -rf "$facility"
"$reeldb" init "$facility"
echo
status=0
"$reeldb" -C "$facility" import examples/*.edl examples/*.ale || status=$?
# 4: imported, but some lines of a list were rejected. The examples have such lines on purpose.
[ "$status" = 0 ] || [ "$status" = 4 ] || exit "$status"
echo
"$reeldb" -C "$facility" list
echo
echo 'To type reeldb alone:'
echo "  export PATH=\"$(cd "$(dirname "$reeldb")" && pwd):\$PATH\""
