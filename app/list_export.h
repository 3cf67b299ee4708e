// SPDX-License-Identifier: Apache-2.0
//
// Writes a list that the project keeps.
#ifndef REELDB_APP_LIST_EXPORT_H
#define REELDB_APP_LIST_EXPORT_H

#include <cstddef>
#include <optional>
#include <string>

#include "app/export.h"
#include "lists/list.h"

namespace reeldb::app {

/// The events of the list that the name means, as requireList reads it: those of the selected reels, or all if nothing
/// is selected. Throws Error as requireList and requireSelected do.
ListEvents selectedEvents(Session& session, const std::string& list, const Selection& selection);

/// The form that a list is written in. What is not given is as in the list.
struct ListForm {
  std::optional<lists::Format> format;
  std::optional<std::size_t> reelLength; ///< for a cut list, one of reelLengths
};

/// Writes the events of a list, as selectedEvents() finds them, with the reels that their shots have now.
/// Written::shots is the number of events, and the remarks say what of the list is not written. A list in a format that
/// is not written becomes a cut list. Throws Error as selectedEvents does, and Refused if the reel field has fewer
/// names than there are reels.
Written exportList(Session& session, const std::string& list, const ListForm& form, const Selection& selection = {});

} // namespace reeldb::app

#endif
