// SPDX-License-Identifier: Apache-2.0
//
// Writes cut lists, log files and timelines that the readers of this folder read back as the same clips.
#ifndef REELDB_LISTS_WRITE_H
#define REELDB_LISTS_WRITE_H

#include <cstddef>
#include <string>
#include <vector>

#include "lists/list.h"

namespace reeldb::lists {

/// A list as text, and the changes that its format required.
struct Written {
  std::string text;                 ///< UTF-8
  std::size_t clips = 0;            ///< the number of clips in it
  std::vector<std::string> remarks; ///< differences between the list and the clips: "subject: fact (cause)"
  std::vector<std::string> leftOut; ///< clips that no list can hold, likewise
};

/// The text as lists hold it: UTF-8 without control characters and outer blanks.
std::string writableText(const std::string& text);

/// Writes a cut list with reel names for a field of this width, one of reelFields. If a name is not the identifier, a
/// note at the head maps it; notes say the rates of the clips. A clip of a list becomes its event again, with its
/// number, transition, duration, speed and source ids, and keeps its reel text where that is the name of one reel; any
/// other clip becomes a cut with the next number. Throws Error if the field has fewer names than there are reels.
Written writeEdl(const std::string& title, const std::vector<Clip>& clips, std::size_t reelField);

/// Writes a timeline of OTIO. The clips that have record times and are those of a cut (@p isCut) stand on tracks of a
/// timeline, all others beside each other in a collection. A clip without a rate counts at @p rate: "25", "23.98". The
/// reel is where programs that read cut lists into OTIO keep it; what only the reader of this folder needs to return
/// the same clip is in metadata of its own.
Written writeOtio(const std::string& title, const std::vector<Clip>& clips, const std::string& rate, bool isCut);

/// Writes a log file. A log has no events, so the result warns about what they say of the cut. Its heading has the rate
/// that the clips' own log has in its heading; without one the rate of all clips, else that of the project, @p rate:
/// "25", "23.98".
Written writeAle(const std::string& rate, const std::vector<Clip>& clips, const std::string& headingRate = {});

} // namespace reeldb::lists

#endif
