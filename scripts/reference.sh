#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# reference.sh: makes the reference of the exported headers, the host interface and the standalone host's headers, in
# build/reference. Fails when something in them has no comment, or one that cannot be read.
set -eu
cd "$(dirname "$0")/.."

# Of a header without a comment about itself doxygen leaves out functions, data and enumerations, without a word.
silent=$(grep -L '^/// @file$' include/*.h src/host/*.h standalone/reelhost/*.h || true)
if [ -n "$silent" ]; then
  echo "reference: a header needs a comment about itself, after \"/// @file\":" $silent >&2
  exit 1
fi

rm -rf build/reference
mkdir -p build/reference
if ! doxygen docs/Doxyfile || ! python3 scripts/reference.py build/reference/xml; then
  echo "reference: mend what is said above" >&2
  exit 1
fi
echo "reference: build/reference/index.html"
