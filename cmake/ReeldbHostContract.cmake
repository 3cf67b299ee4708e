# SPDX-License-Identifier: Apache-2.0
# reeldb_add_host_contract(NAME SETUP file.cpp... HOST target...): a test program, NAME, that tries a host against the
# host contract. SETUP is what its author writes: an implementation of host_fixture.h. HOST is the host, with whatever
# it is made of. Each case is a test of its own for ctest; one that the host does without is skipped and says why.
#
# A second program, NAME_reversed, is the same with the host before the library on the link line, and one test. There the
# library is initialized first: what it reads from the host while it is loaded must not need a constructor of the host.
#
# Needs GoogleTest and, in the project that calls it, enable_testing(). REELDB_HOST_CONTRACT_DIR is where the suite is.
include_guard(GLOBAL)
include(GoogleTest)

function(reeldb_add_host_contract name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SETUP;HOST")
  if(ARG_UNPARSED_ARGUMENTS OR NOT ARG_SETUP OR NOT ARG_HOST)
    message(FATAL_ERROR "reeldb_add_host_contract(${name}): needs SETUP file.cpp... and HOST target..., and nothing else "
                        "(have: ${ARGN})")
  endif()
  find_package(GTest REQUIRED)
  find_package(Threads REQUIRED)

  # The cases know of no host, so they are compiled once, for all hosts of a project.
  if(NOT TARGET reeldb_host_contract_cases)
    file(GLOB cases CONFIGURE_DEPENDS ${REELDB_HOST_CONTRACT_DIR}/*_contract.cpp)
    add_library(reeldb_host_contract_cases OBJECT EXCLUDE_FROM_ALL
      ${cases} ${REELDB_HOST_CONTRACT_DIR}/host_fixture.cpp)
    target_compile_features(reeldb_host_contract_cases PUBLIC cxx_std_17)
    target_include_directories(reeldb_host_contract_cases PUBLIC
      ${REELDB_HOST_CONTRACT_DIR} $<TARGET_PROPERTY:reeldb::reeldb,INTERFACE_INCLUDE_DIRECTORIES>)
    target_link_libraries(reeldb_host_contract_cases PUBLIC GTest::gtest Threads::Threads)
  endif()

  add_executable(${name} ${ARG_SETUP})
  # The library first: its operator new is then the program's, as in an application.
  target_link_libraries(${name} PRIVATE reeldb::reeldb ${ARG_HOST} reeldb_host_contract_cases GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST)

  add_executable(${name}_reversed $<TARGET_OBJECTS:${name}>)
  set_target_properties(${name}_reversed PROPERTIES LINKER_LANGUAGE CXX)
  target_link_libraries(${name}_reversed
    PRIVATE ${ARG_HOST} reeldb::reeldb reeldb_host_contract_cases GTest::gtest_main)
  add_test(NAME ${name}_reversed COMMAND ${name}_reversed --gtest_brief=1)
endfunction()
