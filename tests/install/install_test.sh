#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# install_test.sh STEP WORK: the step "tree" installs into WORK and moves what came out; every other step uses it from
# there. Exits with 77, and says why, when something that the step needs is not on this machine.
#
# In the environment: CMAKE, CXX, PKG_CONFIG and READELF, the programs; BUILD and SOURCE, the build and its sources;
# LIBDIR, where libraries are below the prefix; GENERATOR; VERSION, of reeldb.
set -eu
step=$1 work=$2
first=$work/first moved=$work/moved
build_of=$work/$step
lib=$moved/$LIBDIR

fail() {
  echo "install_test: $*" >&2
  exit 1
}

# build FOLDER [ARGUMENT...]: configures and builds a project against the installed tree
build() {
  folder=$1
  shift
  rm -rf "$build_of"
  "$CMAKE" -S "$folder" -B "$build_of" -G "$GENERATOR" -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_PREFIX_PATH="$moved" \
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF "$@" >"$work/$step.log" 2>&1 &&
    "$CMAKE" --build "$build_of" >>"$work/$step.log" 2>&1 || {
    cat "$work/$step.log"
    fail "$folder: does not build against the installed tree"
  }
}

# expect_output FILE: standard input is what the file must hold
expect_output() {
  diff - "$1" || fail "$1: not what was expected"
}

consumer_says() {
  cat <<'END'
notified: the project was entered
notified: there is a new reel, A001
A001 is in the project EXAMPLE
END
}

case $step in
tree)
  rm -rf "$work"
  mkdir -p "$work"
  "$CMAKE" --install "$BUILD" --prefix "$first" >"$work/install.log" || fail "does not install"
  mv "$first" "$moved"
  while read -r file; do
    # shellcheck disable=SC2086 # a pattern is meant
    set -- $moved/$file
    [ -e "$1" ] || fail "$file: not installed"
  done <<END
bin/reeldb
bin/reeldb-host-check
include/reeldb/ReelDbManager.h
include/reeldb/exports.txt
include/reeldb/host/edit.h
include/reeldb/reelhost/host.h
$LIBDIR/libreeldb.so
$LIBDIR/libreeldb.so.14
$LIBDIR/libreelhost.so.14
$LIBDIR/libreelhostvalues.so.14
$LIBDIR/reeldb/libreelcli.so
$LIBDIR/cmake/reeldb/reeldbConfig.cmake
$LIBDIR/cmake/reeldb/reeldbConfigVersion.cmake
$LIBDIR/pkgconfig/reeldb.pc
$LIBDIR/pkgconfig/reeldb-host.pc
$LIBDIR/pkgconfig/reeldb-host-values.pc
share/bash-completion/completions/reeldb
share/doc/reeldb/LICENSE
share/doc/reeldb/docs/formats/edl.md
share/doc/reeldb/docs/embedding.md
share/fish/vendor_completions.d/reeldb.fish
share/man/man1/reeldb.1
share/man/man1/reeldb-device-show.1
share/man/man1/reeldb-host-check.1
share/reeldb/examples/consumer/CMakeLists.txt
share/reeldb/examples/minimal-host/minimal_host.cpp
share/reeldb/examples/cut-list.edl
share/reeldb/host-contract/host_fixture.h
share/reeldb/host-contract/logs_contract.cpp
share/zsh/vendor-completions/_reeldb
END
  [ ! -e "$moved/share/reeldb/host-contract/standalone_host.cpp" ] || fail "a host's own set-up is installed"
  echo "install_test: $(find "$moved" -type f | wc -l) files"
  ;;

paths) # nothing remembers where it was built or first installed, and libraries find each other where they are
  for path in "$first" "$BUILD" "$SOURCE"; do
    if grep -rlF "$path" "$moved"; then
      fail "these hold the path $path"
    fi
  done
  for file in "$moved"/bin/* "$lib"/*.so "$lib"/reeldb/*.so; do
    run_path=$("$READELF" -d "$file" | sed -n 's/.*R\(UN\)\?PATH.*\[\(.*\)\]/\2/p')
    # shellcheck disable=SC2016 # it stands in the file like this
    case $run_path in
    '' | '$ORIGIN' | '$ORIGIN/'*) ;;
    *) fail "$file: looks for libraries in $run_path" ;;
    esac
  done
  for file in "$lib/libreelhost.so" "$lib/reeldb/libreelcli.so"; do
    if LD_LIBRARY_PATH='' ldd "$file" | grep -E 'libreel.*not found'; then
      fail "$file: does not find the others"
    fi
  done
  ;;

documents) # the links between them lead somewhere here, too
  cd "$moved/share/doc/reeldb"
  # The pages of the project itself name its sources; readers who have only the installed tree are not sent there.
  find . -name '*.md' ! -name CONTRIBUTING.md ! -name architecture.md >"$work/documents"
  [ "$(wc -l <"$work/documents")" -gt 10 ] || fail "too few documents are installed"
  while read -r document; do
    grep -o ']([^)#: ]*[)#]' "$document" | sed 's/^](//; s/[)#]$//' | while read -r target; do
      [ -z "$target" ] || [ -e "$(dirname "$document")/$target" ] || echo "$document: $target"
    done
  done <"$work/documents" >"$work/dead"
  [ ! -s "$work/dead" ] || fail "links lead nowhere: $(cat "$work/dead")"
  ;;

command)
  cd "$work"
  rm -rf studio
  "$moved/bin/reeldb" init studio >command.out
  "$moved/bin/reeldb" -C studio create A001 >>command.out
  "$moved/bin/reeldb" -C studio list >list.out
  grep -q '^A001 ' list.out || {
    cat command.out list.out
    fail "the installed command does not list the reel it created"
  }
  # The same from a folder on the search path, by a link, as people have it.
  mkdir -p path
  ln -sf "$moved/bin/reeldb" path/reeldb
  PATH=$work/path:$PATH reeldb -C studio list | expect_output list.out
  ;;

headers) # each installed header compiles by itself, as the oldest C++ that is promised and without a warning
  cd "$moved/include/reeldb"
  for header in *.h host/*.h reelhost/*.h; do
    echo "#include \"$header\""
  done >"$work/headers.cpp"
  [ "$(wc -l <"$work/headers.cpp")" -gt 25 ] || fail "too few headers are installed"
  while read -r include; do
    echo "$include" >"$work/header.cpp"
    "$CXX" -std=c++17 -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Werror -I. \
      "$work/header.cpp" ||
      fail "$include: does not compile by itself"
  done <"$work/headers.cpp"
  ;;

find_package)
  build "$moved/share/reeldb/examples/consumer"
  "$build_of/consumer" >"$work/$step.out"
  consumer_says | expect_output "$work/$step.out"
  ;;

versions)
  build "$SOURCE/tests/install/versions"
  ;;

pkg_config)
  if [ ! -x "$PKG_CONFIG" ]; then
    echo "install_test: skipped, no pkg-config here"
    exit 77
  fi
  PKG_CONFIG_PATH=$lib/pkgconfig
  export PKG_CONFIG_PATH
  cd "$work"
  # shellcheck disable=SC2046 # a list of words
  "$CXX" -std=c++17 "$moved/share/reeldb/examples/consumer/main.cpp" -o pkg_consumer \
    $("$PKG_CONFIG" --cflags --libs reeldb-host)
  LD_LIBRARY_PATH=$lib ./pkg_consumer >"$work/$step.out"
  consumer_says | expect_output "$work/$step.out"
  for package in reeldb reeldb-host reeldb-host-values; do
    [ "$("$PKG_CONFIG" --modversion $package)" = "$VERSION" ] || fail "$package: of another version than $VERSION"
    "$PKG_CONFIG" --validate $package
  done
  ;;

minimal_host) # its tests are left out here: they take long, and are run with the packages
  build "$moved/share/reeldb/examples/minimal-host" -DBUILD_TESTING=OFF
  "$build_of/minimal_host_example" >"$work/$step.out"
  grep -q "^reels changed: 'C003'$" "$work/$step.out" || fail "the example on the minimal host: $(cat "$work/$step.out")"
  "$moved/bin/reeldb-host-check" "$build_of/libminimal_host.so" "$lib/libreelhostvalues.so.14"
  ;;

*)
  fail "$step: unknown step"
  ;;
esac
