# SPDX-License-Identifier: Apache-2.0
# reeldb_hide_foreign_symbols(target): keeps from its exports what a shared library has of other libraries: instances of
# their templates and inline functions. A program that uses the same libraries in another version must not meet them.
function(reeldb_hide_foreign_symbols target)
  # A mangled name begins with _Z, with what it is of the entity (type information, a guard, a local static), then, if
  # the entity is nested, with N and the qualifiers of a member function.
  set(patterns)
  foreach(kind IN ITEMS "" TI TS TV TT GV GR Z TIZ TSZ TVZ GVZ)
    list(APPEND patterns "_Z${kind}S[tabdios]*")
    foreach(qualifiers IN ITEMS "" K R KR O V)
      foreach(space IN ITEMS "S[tabdios]" 9__gnu_cxx 3fmt 4toml 4utf8 8nlohmann 6reeldb4base)
        list(APPEND patterns "_Z${kind}N${qualifiers}${space}*")
      endforeach()
    endforeach()
  endforeach()
  list(JOIN patterns ";\n  " patterns)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  file(CONFIGURE OUTPUT ${script} CONTENT "{\n local:\n  sqlite3_*;\n  @patterns@;\n};\n" @ONLY)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
  target_link_options(${target} PRIVATE LINKER:--version-script=${script})
endfunction()
