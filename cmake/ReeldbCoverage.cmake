# SPDX-License-Identifier: Apache-2.0
# Measures the code that the tests run: clang's source-based coverage in every target. Tests that let a child process
# abort on purpose count, too, so each program and each library writes its counters on SIGABRT.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
  message(FATAL_ERROR "REELDB_COVERAGE: needs clang (have ${CMAKE_CXX_COMPILER_ID})")
endif()
add_compile_options(-O0 -fprofile-instr-generate -fcoverage-mapping)
add_link_options(-fprofile-instr-generate)
add_library(flush_on_abort OBJECT ${CMAKE_CURRENT_LIST_DIR}/coverage/flush_on_abort.c)
link_libraries($<$<NOT:$<STREQUAL:$<TARGET_PROPERTY:NAME>,flush_on_abort>>:flush_on_abort>)
