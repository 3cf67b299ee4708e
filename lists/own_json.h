// SPDX-License-Identifier: Apache-2.0
//
// The JSON that this program writes, and what scripts write in its form. docs/formats/export.md describes it.
#ifndef REELDB_LISTS_OWN_JSON_H
#define REELDB_LISTS_OWN_JSON_H

#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// Whether the text, which has no white space in front, begins like JSON and has a key that this program writes.
bool isOwnJson(std::string_view text);

/// Reads one value, or several after each other. Throws Error if the text is damaged, with its line. An object that
/// cannot be read is a rejected line.
List readOwnJson(std::string_view text);

} // namespace reeldb::lists

#endif
