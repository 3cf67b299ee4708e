# SPDX-License-Identifier: Apache-2.0
# CPack runs this when the components are in their folders, before they are packed. It adds the files that Debian's
# policy requires in every package, and compresses the files that must be compressed.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component})
  string(TOUPPER ${component} upper)
  set(documents ${root}/usr/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${documents})
  configure_file(${CPACK_REELDB_SOURCE}/cmake/packages/copyright ${documents}/copyright COPYONLY)
  configure_file(${CPACK_REELDB_SOURCE}/cmake/packages/changelog.in ${documents}/changelog.Debian @ONLY)
  if(component STREQUAL "runtime")
    configure_file(${CPACK_REELDB_SOURCE}/cmake/packages/lintian-overrides
      ${root}/usr/share/lintian/overrides/${CPACK_DEBIAN_${upper}_PACKAGE_NAME} COPYONLY)
  endif()
  file(REMOVE ${documents}/LICENSE) # the copyright file says where the system has it
  if(EXISTS ${documents}/CHANGES.md)
    file(RENAME ${documents}/CHANGES.md ${documents}/changelog)
  endif()

  file(GLOB_RECURSE pages ${root}/usr/share/man/*)
  file(GLOB logs ${documents}/changelog ${documents}/changelog.Debian)
  if(pages OR logs)
    execute_process(COMMAND gzip -9nf ${pages} ${logs} COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(GLOB_RECURSE files LIST_DIRECTORIES false ${documents}/*)
  file(CHMOD ${files} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endforeach()
