# SPDX-License-Identifier: Apache-2.0
# reeldb_warnings(target): sets the warnings for a target of this project. Never PUBLIC, because users of the library
# choose their own warnings.
function(reeldb_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Wshadow
    # An optimising g++ 12 warns that the text of `"x" + string` overlaps itself, which is never true.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  if(REELDB_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
