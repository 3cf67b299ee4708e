# SPDX-License-Identifier: Apache-2.0
# reeldb_check_host(host): links an empty program with the library and this host. If the host lacks an operation, the
# build fails, and the linker names the operation. The library itself links no host.
function(reeldb_check_host host)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/linkcheck_${host}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "int main() {}\n")
  add_executable(linkcheck_${host} ${source})
  target_link_libraries(linkcheck_${host} PRIVATE reeldb::reeldb ${host})
  # bfd: mold ignores missing symbols of shared libraries without a message.
  target_link_options(linkcheck_${host} PRIVATE -fuse-ld=bfd LINKER:--no-allow-shlib-undefined LINKER:--no-as-needed)
endfunction()
