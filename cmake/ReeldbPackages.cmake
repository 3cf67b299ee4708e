# SPDX-License-Identifier: Apache-2.0
# The Debian packages: `make package` (preset "package") writes them into build/package, one for each component.
# cmake/packages/finish.cmake adds the files that Debian requires in each.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "the reeldb developers")
set(CPACK_PACKAGE_CONTACT "the reeldb developers <maintainers@reeldb.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/packages/finish.cmake)
set(CPACK_REELDB_SOURCE ${PROJECT_SOURCE_DIR})

set(CPACK_COMPONENTS_ALL runtime development tool)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)

set(version "${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
set(what "reeldb knows which source reels a project of an editing application has,
which shots were recorded from each, what type they are and which devices
accept them.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libreeldb${PROJECT_VERSION_MAJOR})
# The package that a program needs if it is linked to these libraries, and the trigger that renews the loader's list.
set(control ${PROJECT_BINARY_DIR}/debian)
foreach(library IN ITEMS libreeldb libreelhost libreelhostvalues)
  string(APPEND shlibs
    "${library} ${PROJECT_VERSION_MAJOR} ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (>= ${PROJECT_VERSION})\n")
endforeach()
file(WRITE ${control}/shlibs "${shlibs}")
file(WRITE ${control}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${control}/shlibs ${control}/triggers)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "reel database of an editing application, shared libraries
${what}
.
This package holds the library, its standalone host, and the host's values.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libreeldb-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "cmake, libgtest-dev, pkg-config, reeldb")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "reel database of an editing application, development files
${what}
.
This package holds the headers, the CMake package and pkg-config files, the
host contract, which tries a host of one's own, and reeldb-host-check, which
says what such a host lacks.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME reeldb)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION video)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${version})")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "reel database of an editing application, command
${what}
.
This package holds the command reeldb: it keeps reels and shots in projects of
its own and imports cut lists and log exchange files.")

include(CPack)
