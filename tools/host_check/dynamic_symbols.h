// SPDX-License-Identifier: Apache-2.0
//
// The symbols that a shared library exports and imports, read from its file. Nothing is loaded or run.
#ifndef REELDB_HOST_CHECK_DYNAMIC_SYMBOLS_H
#define REELDB_HOST_CHECK_DYNAMIC_SYMBOLS_H

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace host_check {

/// All names as the linker knows them (mangled).
struct DynamicSymbols {
  std::set<std::string> offered; ///< the exported symbols
  /// The symbols that a host has to provide. Symbols of the runtime libraries are left out: those with a version, C
  /// functions and the allocation operators. A host is written in C++.
  std::set<std::string> asked;
  std::vector<std::string> libraries; ///< the libraries it names as needed, in their order
};

/// Reads a shared library or a program. Throws std::runtime_error, "FILE: fact (cause)", if the file cannot be read, is
/// neither, or is for another kind of machine.
DynamicSymbols readDynamicSymbols(const std::filesystem::path& file);

} // namespace host_check

#endif
