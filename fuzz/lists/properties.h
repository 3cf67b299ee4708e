// SPDX-License-Identifier: Apache-2.0
//
// The properties that every list has after reading, whatever its bytes are.
#ifndef REELDB_FUZZ_LISTS_PROPERTIES_H
#define REELDB_FUZZ_LISTS_PROPERTIES_H

#include <optional>
#include <string>
#include <vector>

#include "lists/list.h"

namespace reeldb_fuzz {

/// Reads the bytes. Empty if they are not a list; the error must then be clean text.
std::optional<reeldb::lists::List> readList(const std::string& bytes);

/// The lines as the readers see them, without padding.
std::vector<std::string> linesOf(const std::string& bytes);

/// Throws Broken if a line is lost or counted twice, if a text is not clean UTF-8, or if members of the list contradict
/// each other.
void requireSound(const reeldb::lists::List& list, const std::string& bytes);

/// The same for a timeline: its lines are not those of clips, several of which may begin in one line.
void requireSoundTimeline(const reeldb::lists::List& list, const std::string& bytes);

/// The same for a table or JSON, which also has rows of reels.
void requireSoundTable(const reeldb::lists::List& list, const std::string& bytes);

/// Throws Broken if a cut list that was written with all clips of a timeline is read as other reels, names or source
/// times. Texts that no list can hold, of which the writer remarks, are excused.
void requireTimelineComesBack(const reeldb::lists::List& list);

/// Throws Broken if the same text with other line ends, or in UTF-16, is read as another list.
void requireSameInOtherForms(const reeldb::lists::List& list, const std::string& bytes);

/// Throws Broken if a clip of @p again differs. The channel counts, which may depend on other lines, and the aliases
/// are compared only if @p whole is set.
void requireSameClips(const reeldb::lists::List& again, const reeldb::lists::List& list, bool whole);

/// Throws Broken if a list that was written with all events of the list is read as other events. Texts that no list can
/// hold, of which the writer remarks, are excused.
void requireEventsComeBack(const reeldb::lists::List& list);

} // namespace reeldb_fuzz

#endif
