#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Installs the missing Debian packages that a job needs: setup.sh run|test|check|bench|package
# It runs as root or uses sudo; without either it lists the packages and stops. The names are those of Debian 12. Ubuntu
# 24.04 has the same names, but was not tried.
set -eu

job=${1:-run}

build="g++ cmake ninja-build make libsqlite3-dev libtomlplusplus-dev libcli11-dev libfmt-dev nlohmann-json3-dev
       libutfcpp-dev zlib1g-dev libmd-dev rapidjson-dev
       libpugixml-dev"
tests="abigail-tools libgtest-dev libgmock-dev binutils clang-format-14 locales pkg-config procps bash zsh fish groff-base"
check="clang-14 libclang-rt-14-dev clang-tidy-14 doxygen llvm-14 python3 valgrind"
bench="gnuplot-nox python3 valgrind sqlite3"
package="debootstrap dpkg-dev file lintian"

case $job in
run) wanted=$build ;;
test) wanted="$build $tests" ;;
check) wanted="$build $tests $check" ;;
bench) wanted="$build $bench" ;;
package) wanted="$build $package" ;;
*)
  echo "setup: unknown job '$job' (run, test, check, bench or package)" >&2
  exit 2
  ;;
esac

if ! command -v dpkg-query >/dev/null 2>&1; then
  echo "setup: this system has no dpkg; packages are known for Debian 12 and Ubuntu 24.04 only." >&2
  echo "setup: going on with what is installed; needed are the equivalents of:" $wanted >&2
  exit 0
fi

missing=
for package in $wanted; do
  status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || status=
  [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "setup: installing$missing"
if [ "$(id -u)" = 0 ]; then
  as_root=
elif command -v sudo >/dev/null 2>&1; then
  as_root=sudo
else
  echo "setup: not root and no sudo; please have installed: apt-get install$missing" >&2
  exit 1
fi
$as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=120 update </dev/null
# shellcheck disable=SC2086 # a list of words
$as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=120 install -y \
  --no-install-recommends $missing </dev/null
