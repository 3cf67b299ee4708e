// SPDX-License-Identifier: Apache-2.0
//
// Writes the project for other programs.
#ifndef REELDB_APP_EXPORT_H
#define REELDB_APP_EXPORT_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/history.h"
#include "app/kept_lists.h"
#include "app/reels.h"
#include "app/selection.h"
#include "app/session.h"
#include "app/shots.h"
#include "app/state.h"

namespace reeldb::app {

/// The content of an export.
struct ProjectContent {
  std::string project;
  std::string rate;
  std::vector<Reel> reels;
  std::vector<std::vector<std::string>> oldNames; ///< of each reel
  bool reelsOnly = false;                         ///< for reports: whether the shots are left out
  std::vector<Shot> shots;
  std::optional<ProjectState> state = {};               ///< for JSON without reelsOnly
  std::optional<std::vector<CommitEntry>> history = {}; ///< for JSON, if asked for; the newest first
};

/// All reels and shots, in the project's order. Reels are read by record, not by name: if two identifiers differ only
/// in case, a lookup finds only the first.
ProjectContent readContent(Session& session);

/// Leaves the selected reels and their shots; without the state, which a project can be made of only if it is whole.
/// Throws Error as requireSelected does.
void restrictTo(Session& session, ProjectContent& content, const Selection& selection);

/// A list or a table as text, and the changes that its format required.
struct Written {
  std::string text;
  std::size_t shots = 0;            ///< the number of shots in it
  std::vector<std::string> remarks; ///< differences from the project: "subject: fact (cause)"
  std::vector<std::string> leftOut; ///< shots that it cannot hold, likewise
};

/// The lengths of reel names that cut lists have.
const std::vector<std::size_t>& reelLengths();

/// A cut list (CMX3600 EDL) with reel names of this length, one of reelLengths. Throws Error (Refused) if the field has
/// fewer names than there are reels.
Written writeEdl(const ProjectContent& content, std::size_t reelLength);
/// A log exchange file (ALE).
Written writeAle(const ProjectContent& content);
/// A collection of clips in OTIO, one for each shot.
Written writeOtio(const ProjectContent& content);
/// Tables of the shots and of the reels, according to RFC 4180.
Written writeShotsCsv(const ProjectContent& content);
Written writeReelsCsv(const ProjectContent& content);
/// A table of the events of a list, with the columns of a shot first.
Written writeEventsCsv(const ListEvents& list);

} // namespace reeldb::app

#endif
