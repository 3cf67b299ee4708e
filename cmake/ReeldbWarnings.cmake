# SPDX-License-Identifier: Apache-2.0
# reeldb_warnings(target): the warnings every target of this project is built with. Never PUBLIC: what a user of the
# library turns on is the user's business.
function(reeldb_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Wshadow
    # g++ 12 takes the text of `"x" + string` to overlap itself when it optimises: never true, so never useful.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  if(REELDB_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
