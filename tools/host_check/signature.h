// SPDX-License-Identifier: Apache-2.0
//
// The C++ text of a mangled name.
#ifndef REELDB_HOST_CHECK_SIGNATURE_H
#define REELDB_HOST_CHECK_SIGNATURE_H

#include <string>
#include <string_view>

namespace host_check {

/// The name as in C++: "Edit::setDirty(bool)". A name that is not mangled stays as it is.
std::string demangled(const std::string& symbol);

/// Only the qualified name: "Edit::setDirty", without parameters, const, and the result that templates have. @p
/// signature is demangled.
std::string qualifiedName(std::string_view signature);

} // namespace host_check

#endif
