#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# pack_corpus.sh TARGET: renews fuzz/corpus/TARGET.tar.gz, the inputs that the fuzzer made itself. Of the packed inputs
# and those of runs in build/fuzz/corpus it keeps as many as are needed to reach the same code. Needs the build of the
# preset fuzz.
set -eu
cd "$(dirname "$0")/.."
target=${1:?usage: pack_corpus.sh TARGET}
build=${FUZZ_BUILD:-build/fuzz}
program=$build/bin/fuzz_$target
if [ ! -x "$program" ]; then
  echo "pack_corpus: $program: not there (cmake --preset fuzz && cmake --build --preset fuzz)" >&2
  exit 2
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/packed" "$work/needed" "$build/corpus/$target"
pack=fuzz/corpus/$target.tar.gz
[ ! -e "$pack" ] || tar -xzf "$pack" -C "$work/packed"
"$program" -use_counters=0 -set_cover_merge=1 "$work/needed" "$work/packed" "$build/corpus/$target" \
  2>"$work/log" || {
  cat "$work/log" >&2
  exit 1
}

# The same inputs make the same pack.
cd "$work/needed"
tar --sort=name --format=ustar --mtime=@0 --owner=0 --group=0 --numeric-owner --mode=644 -cf "$work/pack" -- *
cd - >/dev/null
gzip -9n "$work/pack"
mv "$work/pack.gz" "$pack"
echo "pack_corpus: $pack: $(tar -tzf "$pack" | wc -l) inputs"
