#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Lists the tests that the last run in a build folder skipped, with the reasons, which ctest does not print:
# skipped.sh BUILD_DIR
set -eu

awk '
  / Testing: / { test = $0; sub(/^.* Testing: /, "", test); sub(/ +# GetParam.*/, "", test); reason = last = "" }
  /^Output:$/ { reason = last = "" }
  takes { reason = reason (reason == "" ? "" : " ") $0; takes = 0 }
  /: Skipped$/ { takes = 1 }
  /^<end of output>$/ { if (reason == "") reason = last }
  !/^-*$/ { last = $0 }
  /^(Skip regular expression found in output|Skip return code)/ { print "skipped: " test ": " reason }
' "$1/Testing/Temporary/LastTest.log"
