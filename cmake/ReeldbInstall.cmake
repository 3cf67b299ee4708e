# SPDX-License-Identifier: Apache-2.0
# The installed files and their places. All are relative to the prefix, so that an installed tree can be moved.
#
#   runtime      the three libraries, for programs that are linked to them
#   development  headers, CMake package, pkg-config files, host contract, examples, reeldb-host-check
#   tool         the command
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/reeldb)
set(data_dir ${CMAKE_INSTALL_DATADIR}/reeldb)
set(contract_dir ${data_dir}/host-contract)

# --- The libraries. Their headers need only C++17, although their sources need C++20.
target_compile_features(reeldb INTERFACE cxx_std_17)
target_compile_features(reelhost_values INTERFACE cxx_std_17)
set_target_properties(reelhost reelhost_values PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS reeldb reelhost reelhost_values EXPORT reeldbTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/reeldb)

# --- Headers. One folder on the include path serves all: "ReelDbManager.h", "host/edit.h", "reelhost/host.h".
file(GLOB exported_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h)
install(FILES ${exported_headers} ${PROJECT_SOURCE_DIR}/include/exports.txt
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/reeldb COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/host ${PROJECT_SOURCE_DIR}/standalone/reelhost
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/reeldb COMPONENT development FILES_MATCHING PATTERN "*.h")

# --- The CMake package
install(EXPORT reeldbTargets NAMESPACE reeldb:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/install/reeldbConfig.cmake.in
  ${PROJECT_BINARY_DIR}/reeldbConfig.cmake
  INSTALL_DESTINATION ${package_dir} PATH_VARS contract_dir)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/reeldbConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/reeldbConfig.cmake
  ${PROJECT_BINARY_DIR}/reeldbConfigVersion.cmake
  ${CMAKE_CURRENT_LIST_DIR}/ReeldbHostCheck.cmake
  ${CMAKE_CURRENT_LIST_DIR}/ReeldbHostContract.cmake
  DESTINATION ${package_dir} COMPONENT development)

# --- pkg-config: the library alone, the library with the standalone host, and the values for other hosts
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
function(reeldb_install_pkgconfig pc_name pc_description)
  list(JOIN ARGN " " pc_libs)
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/install/pkgconfig.pc.in ${PROJECT_BINARY_DIR}/${pc_name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pc_name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()
reeldb_install_pkgconfig(reeldb "reel database of an editing application; needs a host" -lreeldb)
reeldb_install_pkgconfig(reeldb-host "reel database with its standalone host" -lreeldb -lreelhost -lreelhostvalues)
reeldb_install_pkgconfig(reeldb-host-values "strings, containers and memory for hosts of reeldb" -lreelhostvalues)

# --- For hosts: the check of names, the contract, the examples
install(TARGETS host_check RUNTIME COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/tools/host_check/reeldb-host-check.1
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT development)
file(GLOB contract_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/standalone/contract/*_contract.cpp)
install(FILES ${contract_sources}
  ${PROJECT_SOURCE_DIR}/tests/standalone/contract/host_fixture.cpp
  ${PROJECT_SOURCE_DIR}/tests/standalone/contract/host_fixture.h
  DESTINATION ${contract_dir} COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${data_dir}/examples COMPONENT development
  FILES_MATCHING PATTERN "*.cpp" PATTERN "*.h" PATTERN "*/CMakeLists.txt" PATTERN "*.md")

# The documents name these files by their places in the project.
function(reeldb_install_link name target)
  file(RELATIVE_PATH path ${CMAKE_INSTALL_FULL_DOCDIR} ${target})
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links)
  file(CREATE_LINK ${path} ${PROJECT_BINARY_DIR}/links/${name} SYMBOLIC)
  install(FILES ${PROJECT_BINARY_DIR}/links/${name} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
endfunction()
reeldb_install_link(examples ${CMAKE_INSTALL_FULL_DATADIR}/reeldb/examples)
reeldb_install_link(include ${CMAKE_INSTALL_FULL_INCLUDEDIR}/reeldb)

# --- The command: its program and module, example lists, completions for shells, and manual pages, which the build
# makes.
file(GLOB lists CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/examples/*.edl ${PROJECT_SOURCE_DIR}/examples/*.ale ${PROJECT_SOURCE_DIR}/examples/*.csv)
install(FILES ${lists} DESTINATION ${data_dir}/examples COMPONENT tool)
set(completions ${PROJECT_SOURCE_DIR}/cli/completions)
install(FILES ${completions}/reeldb.bash RENAME reeldb
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tool)
install(FILES ${completions}/_reeldb DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tool)
install(FILES ${completions}/reeldb.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tool)
install(DIRECTORY ${PROJECT_BINARY_DIR}/share/ DESTINATION ${CMAKE_INSTALL_DATADIR} COMPONENT tool)

# --- Documents, in folders in which their links are valid. Those about the command are installed with it.
set(tool_documents index.md glossary.md performance.md formats pictures)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGES.md ${PROJECT_SOURCE_DIR}/LICENSE
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tool)
install(FILES ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
file(GLOB documents CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/docs/*)
list(REMOVE_ITEM documents Doxyfile) # for making the reference, which needs the sources
foreach(document IN LISTS documents)
  if(document IN_LIST tool_documents)
    set(component tool)
  else()
    set(component development)
  endif()
  if(IS_DIRECTORY ${PROJECT_SOURCE_DIR}/docs/${document})
    set(kind DIRECTORY)
  else()
    set(kind FILES)
  endif()
  install(${kind} ${PROJECT_SOURCE_DIR}/docs/${document} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT ${component})
endforeach()
