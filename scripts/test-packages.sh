#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# test-packages.sh [FOLDER]: tests the packages in FOLDER (build/package). lintian checks them. In a bare Debian root
# the command is installed, run and removed without a trace. Then, with a compiler, the examples are built with the
# development package, and a host is tested against the host contract.
#
# The bare root is made once with debootstrap, in build/bare-root or in the folder REELDB_BARE_ROOT. The tests use
# copies. The downloads of apt are kept beside it. Needs root, because the copy is entered with chroot. Takes some
# minutes.
set -eu

# In a private view of the mounts, so that no mount is left behind.
if [ -z "${REELDB_OWN_MOUNTS:-}" ]; then
  if [ "$(id -u)" != 0 ]; then
    echo "test-packages: needs root, to enter a bare root" >&2
    exit 1
  fi
  REELDB_OWN_MOUNTS=yes exec unshare --mount --propagation private sh "$0" "$@"
fi

packages=$(realpath "${1:-build/package}")
pristine=${REELDB_BARE_ROOT:-build/bare-root}
work=$(mktemp -d "${TMPDIR:-/tmp}/reeldb-packages-XXXXXX")
root=$work/root

fail() {
  echo "test-packages: $*" >&2
  exit 1
}

clean_up() {
  umount "$root/var/cache/apt/archives" "$root/proc" 2>/dev/null || true
  rm -rf --one-file-system "$work"
}
trap clean_up EXIT
trap 'exit 1' HUP INT TERM

in_root() {
  chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
    ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} "$@" </dev/null
}

quietly() { # quietly COMMAND...: prints its output only if it fails
  "$@" >"$work/log" 2>&1 || {
    cat "$work/log"
    fail "failed: $*"
  }
}

apt() {
  quietly in_root apt-get -q -y --no-install-recommends -o APT::Keep-Downloaded-Packages=true "$@"
}

step() {
  echo "-- $*"
}

files_in_root() { # except files that apt and the loader keep
  (cd "$root" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./tmp -o -path ./var/lib/apt -o -path ./var/lib/dpkg \
    -o -path ./var/cache -o -path ./var/log -o -path ./etc/ld.so.cache \) -prune -o -print | LC_ALL=C sort)
}

# --- The packages
runtime='' development='' tool=''
for package in "$packages"/*.deb; do
  case $(dpkg-deb -f "$package" Package) in
  libreeldb[0-9]*) runtime=$package ;;
  libreeldb-dev) development=$package ;;
  reeldb) tool=$package ;;
  *) fail "$package: unknown package" ;;
  esac
done
[ -n "$runtime" ] && [ -n "$development" ] && [ -n "$tool" ] || fail "$packages: not all three packages are there (make package)"
version=$(dpkg-deb -f "$tool" Version)

step "lintian"
command -v lintian >/dev/null || fail "lintian: not found (scripts/setup.sh package)"
lintian --allow-root --fail-on error "$runtime" "$development" "$tool" || fail "lintian found an error"

# --- The bare root
if [ ! -e "$pristine/etc/debian_version" ]; then
  step "debootstrap into $pristine"
  rm -rf --one-file-system "$pristine" "$pristine.begun"
  mkdir -p "$(dirname "$pristine")"
  quietly debootstrap --variant=minbase bookworm "$(realpath "$pristine.begun")"
  mv "$pristine.begun" "$pristine"
fi
step "a copy of the bare root"
mkdir -p "$root" "$pristine.fetched/partial"
cp -a "$pristine/." "$root"
cp /etc/resolv.conf "$root/etc/resolv.conf"
mkdir -p "$root/proc" "$root/var/cache/apt/archives" "$root/packages"
mount -t proc proc "$root/proc"
mount --bind "$pristine.fetched" "$root/var/cache/apt/archives"
cp "$runtime" "$development" "$tool" "$root/packages"
apt update

# --- The command in a bare root
files_in_root >"$work/before"
step "reeldb $version is installed"
apt install "/packages/$(basename "$runtime")" "/packages/$(basename "$tool")"
for package in "$runtime" "$tool"; do
  dpkg-deb -f "$package" Package | xargs chroot "$root" dpkg -L
done >"$work/ours"
for file in man/man1/reeldb.1.gz man/man1/reeldb-import.1.gz bash-completion/completions/reeldb \
  zsh/vendor-completions/_reeldb fish/vendor_completions.d/reeldb.fish; do
  grep -qx "/usr/share/$file" "$work/ours" || fail "$file: not in the package"
done
in_root reeldb --version
quietly in_root sh -euc '
  cd /tmp
  reeldb init studio
  cd studio
  reeldb create A001
  reeldb import /usr/share/reeldb/examples/cut-list.edl || [ $? = 4 ] # 4: some of its lines are wrong on purpose
  reeldb list | grep "^A001 "'

step "removed without a trace"
apt purge reeldb "$(dpkg-deb -f "$runtime" Package)"
apt autoremove --purge
files_in_root >"$work/after"
diff "$work/before" "$work/after" || fail "installing and removing left the difference above"
while read -r path; do
  case $path in
  */reeldb* | */libreel*) [ ! -e "$root$path" ] || fail "$path: still there after its package was removed" ;;
  esac
done <"$work/ours"

# --- An upgrade, over a facility that was in use
# REELDB_OLD_PACKAGES names a folder with the packages of an earlier version.
if [ -n "${REELDB_OLD_PACKAGES:-}" ]; then
  mkdir -p "$root/packages/old"
  cp "$REELDB_OLD_PACKAGES"/*.deb "$root/packages/old"
  step "the packages in $REELDB_OLD_PACKAGES are installed and used"
  old=$(cd "$root" && ls packages/old/libreeldb[0-9]*.deb packages/old/reeldb_*.deb | sed 's,^,/,')
  # shellcheck disable=SC2086 # a list of words
  apt install $old
  quietly in_root sh -euc '
    cd /tmp
    reeldb init used
    cd used
    reeldb import /usr/share/reeldb/examples/cut-list.edl || [ $? = 4 ]
    reeldb create B007
    reeldb rename B007 B008
    reeldb set B008 available=no 0=rain
    reeldb create GONE
    reeldb delete GONE --yes
    reeldb export --json >/tmp/before.json
    reeldb list --json >/tmp/list.json'
  step "upgraded to reeldb $version over it"
  apt install --reinstall "/packages/$(basename "$runtime")" "/packages/$(basename "$tool")"
  quietly in_root sh -euc '
    cd /tmp/used
    reeldb project check
    reeldb export --json >/tmp/after.json
    reeldb list --json >/tmp/list-after.json'
  for name in before:after list:list-after; do
    quietly python3 "$(dirname "$0")/json_grown.py" "$root/tmp/${name%:*}.json" "$root/tmp/${name#*:}.json"
  done
  quietly in_root sh -euc '
    cd /tmp/used
    reeldb which B007
    reeldb undelete
    reeldb show GONE
    reeldb set B008 available=yes
    reeldb import /usr/share/reeldb/examples/camera-log.ale || [ $? = 4 ]
    reeldb undo
    reeldb history --json >/dev/null'
  apt purge reeldb "$(dpkg-deb -f "$runtime" Package)"
  apt autoremove --purge
fi

# --- The development package, with a compiler
step "a compiler, CMake, pkg-config and GoogleTest are installed"
apt install g++ make cmake pkg-config libgtest-dev
step "libreeldb-dev $version is installed"
apt install "/packages/$(basename "$runtime")" "/packages/$(basename "$development")"

step "examples/consumer, by CMake and by pkg-config"
quietly in_root sh -euc '
  cmake -S /usr/share/reeldb/examples/consumer -B /tmp/consumer
  cmake --build /tmp/consumer
  cd /tmp/consumer && ctest --output-on-failure
  c++ /usr/share/reeldb/examples/consumer/main.cpp $(pkg-config --cflags --libs reeldb-host) -o /tmp/with-pkg-config'
in_root /tmp/with-pkg-config
step "examples/reel-panel"
quietly in_root sh -euc '
  cmake -S /usr/share/reeldb/examples/reel-panel -B /tmp/reel-panel
  cmake --build /tmp/reel-panel'
step "examples/minimal-host, and the host contract on it"
quietly in_root sh -euc '
  cmake -S /usr/share/reeldb/examples/minimal-host -B /tmp/minimal-host
  cmake --build /tmp/minimal-host'
in_root reeldb-host-check /tmp/minimal-host/libminimal_host.so "/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/libreelhostvalues.so.14"
in_root /tmp/minimal-host/minimal_host_example
in_root /tmp/minimal-host/minimal_host_contract >"$work/contract" || {
  cat "$work/contract"
  fail "the minimal host breaks the host contract"
}
grep -B 1 '^\[  SKIPPED \] .* (' "$work/contract" | grep -v '^--' || true
grep '^\[  PASSED  \]' "$work/contract"

step "removed"
apt purge libreeldb-dev "$(dpkg-deb -f "$runtime" Package)"
left=$(cd "$root" && find usr etc var/lib/dpkg/info \( -name '*reeldb*' -o -name 'libreel*' \) | head)
[ -z "$left" ] || fail "still there after the packages were removed: $left"
echo "test-packages: $(basename "$runtime"), $(basename "$development") and $(basename "$tool") install, run and go"
