# SPDX-License-Identifier: Apache-2.0
# Has everything tell a fuzzer where it goes. The fuzzer itself is linked into the fuzz targets alone.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
  message(FATAL_ERROR "REELDB_FUZZ: needs clang (have ${CMAKE_CXX_COMPILER_ID})")
endif()
add_compile_options(-fsanitize=fuzzer-no-link)
