# SPDX-License-Identifier: Apache-2.0
# Compiles everything with the instrumentation that a fuzzer needs. Only the fuzz targets link the fuzzer itself.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
  message(FATAL_ERROR "REELDB_FUZZ: needs clang (have ${CMAKE_CXX_COMPILER_ID})")
endif()
add_compile_options(-fsanitize=fuzzer-no-link)
