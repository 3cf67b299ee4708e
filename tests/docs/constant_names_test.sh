#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# constant_names_test.sh SOURCE_DIR: fails when a constant is named kLargest, Largest or LARGEST instead of largest.
# clang-tidy checks the style of names, but to it kLargest begins with a small letter, and it does not run over tests.
# First the script plants such names in a file of its own, and fails when it does not find them there.
set -eu
cd "$1"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Definitions of constants on one line. Members are left out: they end with an underscore.
misnamed() {
  grep -rnE --include='*.cpp' --include='*.h' --include='*.c' \
    -e '^[^"/]*\bconstexpr\b[^"/(=]*[ *](k?[A-Z][A-Za-z0-9_]*)(\[[^]]*\])*( =|\{|\("|;)' \
    -e '^((static|inline) )*const ([^"/(*=]*|[^"/(=]*\* const) (k?[A-Z][A-Za-z0-9_]*)(\[[^]]*\])* = ' \
    -e '^ +static const [^"/(=]*[ *](k?[A-Z][A-Za-z0-9_]*)(\[[^]]*\])*( = |\()' "$@"
}

cat >"$work/planted.cpp" <<'EOF'
constexpr int kLargest = 3;
inline constexpr std::array<int, 2> LARGEST_SIZES{1, 2};
static const char* const Names[] = {"A"};
  static constexpr std::string_view kText("x", 1);
  static const int Count = 3;
  constexpr auto Other = Kind::Other;
EOF
cat >"$work/sound.cpp" <<'EOF'
constexpr auto other = Kind::Other;
const int largest = 3; // of kHz
inline constexpr std::array<int, 2> sizes{1, 2};
constexpr Kind kinds[] = {Kind::A};
static constexpr bool is(Kind kind) { return kind == Kind::A; }
const Result make(Kind);
const char* NAME_OF_THE_BOUNDARY = "a variable";
constexpr int largest = LIMIT == 3 ? 1 : 2;
EOF
if [ "$(misnamed "$work" | grep -c planted.cpp:)" != 6 ] || misnamed "$work/sound.cpp"; then
  echo "constant_names: does not find what it is to find, or more" >&2
  exit 1
fi
if misnamed include src standalone lists base app cli tools examples bench fuzz tests; then
  echo "constant_names: name constants like variables: largest (CONTRIBUTING.md)" >&2
  exit 1
fi
