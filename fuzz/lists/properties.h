// SPDX-License-Identifier: Apache-2.0
//
// What has to be true of every list that was read, whatever its bytes were.
#ifndef REELDB_FUZZ_LISTS_PROPERTIES_H
#define REELDB_FUZZ_LISTS_PROPERTIES_H

#include <optional>
#include <string>
#include <vector>

#include "lists/list.h"

namespace reeldb_fuzz {

/// Reads the bytes; nothing when they are no list, which has to be said in clean words.
std::optional<reeldb::lists::List> readList(const std::string& bytes);

/// The lines of the bytes as the readers see them, without padding.
std::vector<std::string> linesOf(const std::string& bytes);

/// Throws Broken when a line is lost or counted twice, a text is no clean UTF-8, or what the list says of itself does
/// not agree.
void requireSound(const reeldb::lists::List& list, const std::string& bytes);

/// Throws Broken when the same text with other line ends, or in UTF-16, is read as another list.
void requireSameInOtherForms(const reeldb::lists::List& list, const std::string& bytes);

/// Throws Broken when a clip of @p again is not as it was. The channel counts, which may follow from other lines, and
/// the aliases are compared only where @p whole is set.
void requireSameClips(const reeldb::lists::List& again, const reeldb::lists::List& list, bool whole);

} // namespace reeldb_fuzz

#endif
