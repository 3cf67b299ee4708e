# SPDX-License-Identifier: Apache-2.0
# What most sources include is read once: a header that costs a second is not read again by each of a hundred sources.
# A source includes what it uses all the same; the presets that set REELDB_PCH to OFF see an include that is missing.

# clang refuses headers that were precompiled with another visibility of symbols, and the targets differ in that.
if(REELDB_PCH AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(reeldb_precompiles ON)
else()
  set(reeldb_precompiles OFF)
endif()

# reeldb_precompile(NAME [KIND] HEADERS <header>... [LIBRARIES target...]): makes the set NAME. KIND is EXECUTABLE for the
# sources of programs, else they are those of libraries (the compiler accepts no other ones).
function(reeldb_precompile name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "EXECUTABLE" "" "HEADERS;LIBRARIES")
  if(NOT reeldb_precompiles)
    return()
  endif()
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  if(ARG_EXECUTABLE)
    file(CONFIGURE OUTPUT ${source} CONTENT "int main() {}\n")
    add_executable(${name} EXCLUDE_FROM_ALL ${source})
  else()
    file(CONFIGURE OUTPUT ${source} CONTENT "")
    add_library(${name} OBJECT EXCLUDE_FROM_ALL ${source})
  endif()
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES})
  target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
  reeldb_warnings(${name})
endfunction()

# reeldb_precompiled(TARGET NAME): TARGET is built with the set NAME.
function(reeldb_precompiled target name)
  if(reeldb_precompiles)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()
