// SPDX-License-Identifier: Apache-2.0
//
// What has to be true of the texts of a configuration file, and of the error that refuses one.
#ifndef REELDB_FUZZ_SUPPORT_CONFIG_ERROR_H
#define REELDB_FUZZ_SUPPORT_CONFIG_ERROR_H

#include <string>

#include "reelhost/error.h"

namespace reeldb_fuzz {

/// Throws Broken unless the text is UTF-8 without control characters: it may be shown on a terminal.
void requirePrintable(const std::string& text, const char* what);

/// Throws Broken unless the error is that of a file which cannot be understood, and names the file and, but for one
/// that is not even parsed, a line of it.
void requireHelpful(const reelhost::Error& error, const std::string& path, const std::string& bytes);

} // namespace reeldb_fuzz

#endif
