// SPDX-License-Identifier: Apache-2.0
//
// What a mangled name says.
#ifndef REELDB_HOST_CHECK_SIGNATURE_H
#define REELDB_HOST_CHECK_SIGNATURE_H

#include <string>
#include <string_view>

namespace host_check {

/// As it is written in C++: "Edit::setDirty(bool)". A name that is not mangled stays as it is.
std::string demangled(const std::string& symbol);

/// The qualified name alone: "Edit::setDirty". Without parameters, const and, where a template has put it in front,
/// result. @p signature is demangled.
std::string qualifiedName(std::string_view signature);

} // namespace host_check

#endif
