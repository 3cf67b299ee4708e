// SPDX-License-Identifier: Apache-2.0
//
// What a shared library offers and asks for, read from its file. Nothing is loaded or run.
#ifndef REELDB_HOST_CHECK_DYNAMIC_SYMBOLS_H
#define REELDB_HOST_CHECK_DYNAMIC_SYMBOLS_H

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace host_check {

/// All names as the linker knows them (mangled).
struct DynamicSymbols {
  std::set<std::string> offered; ///< what others can be linked to
  /// What a host has to bring. What the runtime libraries bring is left out: it carries a version, and C functions and
  /// the allocation operators are theirs in any case. A host is C++.
  std::set<std::string> asked;
  std::vector<std::string> libraries; ///< the libraries it names as needed, in their order
};

/// Reads a shared library or a program. Throws std::runtime_error, "FILE: fact (cause)", for what cannot be read or is
/// no such file of this machine's kind.
DynamicSymbols readDynamicSymbols(const std::filesystem::path& file);

} // namespace host_check

#endif
