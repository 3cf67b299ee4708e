// SPDX-License-Identifier: Apache-2.0
//
// What a project or a list needs, where it stands and where it is used, as a page for people.
#ifndef REELDB_APP_REPORT_H
#define REELDB_APP_REPORT_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/kept_lists.h"
#include "app/needs.h"
#include "app/session.h"

namespace reeldb::app {

/// A list that uses a reel.
struct ReportedList {
  KeptList list;
  std::size_t events = 0;         ///< the number of its events from the reel
  std::vector<std::string> clips; ///< their clip names, each once, in the order of the list
};

struct ReportedReel {
  Need need;
  std::vector<ReportedList> uses; ///< by the number of the list
};

/// The reels of a project or a list.
struct ReelReport {
  std::string project;
  std::string rate;             ///< frames per second, as the facility names them
  std::string time;             ///< when it was made: "2026-11-22T13:38:48Z"
  std::optional<KeptList> list; ///< empty: the whole project
  /// In the order of comesFirst().
  std::vector<ReportedReel> reels;
};

/// The report of a list that the project keeps, which @p list names as requireList does, or of the whole project.
/// Throws Error: NotFound or Refused for the list.
ReelReport readReport(Session& session, const std::optional<std::string>& list);

/// The report as an HTML page that needs no other file and no script, and can be printed.
std::string reportHtml(const ReelReport& report);

} // namespace reeldb::app

#endif
