// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_DETECT_H
#define REELDB_LISTS_DETECT_H

#include <optional>
#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// As detect(), for decoded text. A timeline of OTIO is an object of JSON with a schema; xmeml and FCPXML have a root
/// of that name. A log file starts with the section Heading, or Column. A cut list holds, anywhere, an FCM statement or
/// a line that begins like an event and has two timecodes or more, so a list of nothing but bad events is still a cut
/// list; or it starts with a TITLE and has nothing but notes and event numbers below. A table has a row of titles.
std::optional<Format> detectText(std::string_view text, const TitleMap& titles = {});

} // namespace reeldb::lists

#endif
