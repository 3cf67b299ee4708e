#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Compares the binary interface of programs and hosts - exported symbols, layouts, the order of virtual functions - with
# the baselines in tests/abi.
#
# abi.sh check LIBRARY       the library, built by g++ with -g (make abi-check)
# abi.sh check-headers       the classes of the exported headers and of the host interface
# abi.sh baseline LIBRARY    makes both baselines again (make abi-baseline)
# abi.sh self-test           plants changes in copies of the headers: breaks must be found, other changes must pass
#
# Exits with 1 on a break or if a tool is missing, and with 77 on a machine without baselines.
set -eu
export LC_ALL=C

source=$(realpath "$(dirname "$0")/..")
library_baseline=$source/tests/abi/library-14.abi
headers_baseline=$source/tests/abi/headers-14.abi
machine=x86_64
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

skip() {
  echo "abi: skipped: $*" >&2
  exit 77
}

fail() {
  echo "abi: $*" >&2
  exit 1
}

for tool in abidw abidiff g++ readelf; do
  command -v $tool >/dev/null || fail "$tool: not found (packages abigail-tools, g++, binutils)"
done
[ "$(uname -m)" = $machine ] || skip "the baselines are those of $machine, and this is $(uname -m)"

# Without debug information, and with another compiler's, a comparison finds nothing or everything.
require_readable() {
  readelf -S "$1" >"$work/sections" || fail "$1: cannot be read"
  grep -q '\.debug_info' "$work/sections" || fail "$1: has no debug information (build it with the preset abi)"
  if readelf -p .comment "$1" | grep -q clang; then
    fail "$1: was built by clang, the baseline by g++"
  fi
}

# describe LIBRARY FILE: what abidw sees; not where on this machine
describe() {
  abidw --no-corpus-path --no-comp-dir-path --no-show-locs --out-file "$2.raw" "$1"
  sed "s!path='[^']*/\(src\|tests\)/!path='\1/!" "$2.raw" >"$2"
  rm "$2.raw"
}

# compare BASELINE LIBRARY WHAT: prints the changes. Additions break nothing.
compare() {
  require_readable "$2"
  if abidiff --no-show-locs --no-added-syms "$1" "$2" >"$work/told"; then
    echo "abi: $3: nothing is broken"
    return 0
  fi
  cat "$work/told"
  echo "abi: $3: programs or hosts that were built before would break over what is told above." >&2
  echo "abi: if this is meant, it is a new major version: make abi-baseline, and say so in CHANGES.md" >&2
  return 1
}

# headers FOLDER FILE: makes a library that mentions every class of the headers in FOLDER. Otherwise classes without
# functions would not be described.
headers() {
  g++ -std=c++17 -g -O0 -fPIC -shared -femit-class-debug-always -I"$1/include" "$source/tests/abi/interface.cpp" -o "$2"
}

check_headers() { # check_headers FOLDER
  headers "$1" "$work/headers.so" && compare "$headers_baseline" "$work/headers.so" "the headers"
}

copy_headers() {
  rm -rf "$work/tree"
  mkdir -p "$work/tree/src"
  cp -r "$source/src/host" "$work/tree/src/"
  cp -rP "$source/include" "$work/tree/"
}

# plant HEADER SCRIPT: edits a fresh copy of the header with sed
plant() {
  copy_headers
  sed -i "$2" "$work/tree/include/$1"
  if cmp -s "$source/include/$1" "$work/tree/include/$1"; then
    fail "self-test: $1: what was to be changed is not there any more: $2"
  fi
}

breaks() { # breaks REPORTED-WORDS HEADER SCRIPT
  plant "$2" "$3"
  if check_headers "$work/tree" >"$work/out" 2>&1; then
    fail "self-test: $2: not found: $3"
  fi
  grep -qF "$1" "$work/out" || {
    cat "$work/out"
    fail "self-test: $2: $3: should be told by: $1"
  }
  found=$((found + 1))
}

passes() { # passes HEADER SCRIPT
  plant "$@"
  check_headers "$work/tree" >"$work/out" 2>&1 || {
    cat "$work/out"
    fail "self-test: $1: breaks nobody, but was told: $2"
  }
}

case ${1:-} in
check)
  compare "$library_baseline" "$2" "$(basename "$2")"
  check_headers "$source"
  ;;
check-headers) check_headers "$source" ;;
baseline)
  require_readable "$2"
  describe "$2" "$library_baseline"
  headers "$source" "$work/headers.so"
  describe "$work/headers.so" "$headers_baseline"
  ls -l "$library_baseline" "$headers_baseline"
  ;;
self-test)
  found=0
  passes ReelDbManager.h 's/  void buildReelList();/& void added() {}/'
  passes host/edit.h 's/  configb& config();/\0 bool added(int = 1) const;/'
  breaks 'virtual void ReelDbClient::inserted()' \
    ReelDbClient.h 's/  virtual void ourReelDbRecChanged();/  virtual void inserted(); &/'
  breaks "'int inserted', at offset" \
    ReelDbManager.h 's/  int notifyHoldCount; /  int inserted; &/'
  breaks "'int numAudioChans' offset changed" \
    ReelTypeManager.h 's/int numVideoChans;/int both;/; s/int numAudioChans;/int numVideoChans;/; s/int both;/int numAudioChans;/'
  breaks 'virtual void iRefCountService::inserted()' \
    host/os.h 's/  virtual void incRef(int\* address) = 0;/  virtual void inserted() = 0; &/'
  breaks 'virtual void ProjectListener::inserted()' \
    host/events.h 's/  virtual void handleLogDirtied/  virtual void inserted(); &/'
  breaks 'struct LabelMappingSet::Entry' \
    host/device.h 's/    std::uint32_t source;/    std::uint16_t source;/'
  breaks 'class Cookie' \
    host/cookie.h 's/  std::uint16_t tag_;/  std::uint32_t tag_;/'
  if (require_readable /bin/sh) 2>/dev/null; then
    fail "self-test: a program without debug information was taken"
  fi
  echo "abi: self-test: $found planted breaks were found"
  ;;
*)
  sed -n '3,12s/^# \{0,1\}//p' "$0" >&2
  exit 2
  ;;
esac
