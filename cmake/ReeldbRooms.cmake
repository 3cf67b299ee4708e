# SPDX-License-Identifier: Apache-2.0
# The rooms, and the rooms that each may see. The compiler enforces it: a room is a target, and its include path is a
# folder with links to the rooms that it may see. The compiler does not find other includes; tests/rooms checks that.

# reeldb_room_sees(TARGET PUBLIC|PRIVATE ROOM...): TARGET includes the headers of each ROOM, a folder of the project or
# one header of it, by its own name: "lists/list.h" of lists, "text/table.h" of cli/text. PUBLIC: so does what is linked
# to it.
function(reeldb_room_sees target scope)
  string(TOLOWER ${scope} kind)
  set(view ${PROJECT_BINARY_DIR}/rooms/${target}/${kind})
  file(REMOVE_RECURSE ${view}) # with the links to what it may no longer see
  file(MAKE_DIRECTORY ${view})
  foreach(room IN LISTS ARGN)
    if(NOT EXISTS ${PROJECT_SOURCE_DIR}/${room})
      message(FATAL_ERROR "${target}: ${room}: no such room")
    endif()
    get_filename_component(name ${room} NAME)
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${room} ${view}/${name} SYMBOLIC)
  endforeach()
  target_include_directories(${target} ${scope} $<BUILD_INTERFACE:${view}>)
endfunction()
