// SPDX-License-Identifier: Apache-2.0
//
// The properties of texts in a configuration file, and of the error that refuses a file.
#ifndef REELDB_FUZZ_SUPPORT_CONFIG_ERROR_H
#define REELDB_FUZZ_SUPPORT_CONFIG_ERROR_H

#include <string>

#include "reelhost/error.h"

namespace reeldb_fuzz {

/// Throws Broken unless the text is UTF-8 without control characters, so that a terminal can show it.
void requirePrintable(const std::string& text, const char* what);

/// Throws Broken unless the error is Unreadable, and names the file and, if the file could be parsed, a line of it.
void requireHelpful(const reelhost::Error& error, const std::string& path, const std::string& bytes);

} // namespace reeldb_fuzz

#endif
