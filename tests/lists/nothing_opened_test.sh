#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# nothing_opened_test.sh REELDB: a timeline that names other files, by a DTD, an entity, an include or a style sheet, makes
# the command open none of them and connect to nothing; entities that grow do not grow.
# Exit code 77: skipped, with the reason.
set -eu
reeldb=$1
command -v strace > /dev/null || { echo "skipped: no strace"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
strace -o "$work/probe" true 2> /dev/null || { echo "skipped: strace may not trace here"; exit 77; }

echo "a secret" > "$work/secret"
laughs=$(i=1; while [ $i -le 9 ]; do p=$((i - 1)); printf '<!ENTITY l%d "&l%d;&l%d;&l%d;&l%d;&l%d;&l%d;&l%d;&l%d;&l%d;&l%d;">' \
  $i $p $p $p $p $p $p $p $p $p $p; i=$((i + 1)); done)
head_of() {
  printf '<?xml version="1.0"?><?xml-stylesheet href="file://%s/secret"?>' "$work"
  printf '<!DOCTYPE %s SYSTEM "file://%s/secret" [<!ENTITY s SYSTEM "file://%s/secret">' "$1" "$work" "$work"
  printf '<!ENTITY %% p SYSTEM "http://127.0.0.1:1/secret"> <!ENTITY l0 "laugh">%s]>\n' "$laughs"
}
inside="<x:include xmlns:x=\"http://www.w3.org/2001/XInclude\" href=\"file://$work/secret\"/>"
{
  head_of xmeml
  echo "<xmeml version=\"5\">$inside<sequence><rate><timebase>25</timebase></rate><media><video><track>"
  echo '<clipitem><name>&s;&l9;</name><in>0</in><out>1</out><start>0</start><end>1</end></clipitem>'
  echo '</track></video></media></sequence></xmeml>'
} > "$work/cut.xml"
{
  head_of fcpxml
  echo "<fcpxml version=\"1.11\">$inside<resources><asset id=\"a\" src=\"file://$work/secret\" name=\"&s;&l9;\"/></resources>"
  echo '<asset-clip ref="a" name="&s;&l9;" duration="1s"/></fcpxml>'
} > "$work/cut.fcpxml"
printf '{"OTIO_SCHEMA": "Clip.1", "name": "c", "media_reference": {"OTIO_SCHEMA": "ExternalReference.1", "target_url": "file://%s/secret"}}' \
  "$work" > "$work/cut.otio"

"$reeldb" init "$work/facility" > "$work/init"
for list in cut.xml cut.fcpxml cut.otio; do
  # A build with AddressSanitizer cannot look for leaks while it is traced.
  ASAN_OPTIONS=detect_leaks=0 strace -f -s 4096 -e trace=file,network -o "$work/trace" "$reeldb" -C "$work/facility" import --json "$work/$list" \
    > "$work/report"
  grep -q '"shots_added": 1' "$work/report" || { cat "$work/report"; echo "$list: not imported"; exit 1; }
  grep -q "open.*$list" "$work/trace" || { echo "$list: the trace does not even show the list"; exit 1; }
  # The system looks up the name of the user through a socket of its own, AF_UNIX.
  if grep -v 'AF_UNIX' "$work/trace" | grep -E 'secret|connect\(|socket\('; then
    echo "$list: opened or connected to something"
    exit 1
  fi
  if grep -qE 'a secret|laugh' "$work/report"; then
    echo "$list: resolved an entity"
    exit 1
  fi
done
echo "3 timelines: nothing opened, nothing connected to"
