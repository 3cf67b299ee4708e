// SPDX-License-Identifier: Apache-2.0
//
// Checks texts before they are stored. For the sources of this room.
#ifndef REELDB_APP_PLAIN_TEXT_H
#define REELDB_APP_PLAIN_TEXT_H

#include <cstddef>
#include <string>

#include <fmt/format.h>

#include "app/error.h"
#include "base/display_text.h"
#include "host/codes.h"

namespace reeldb::app {

/// The longest text, in bytes, that the library reads back whole from a field.
inline constexpr std::size_t longestField = codes::longestText;

/// Throws Error (Invalid), "FACT (cause)", unless the text is UTF-8 without control characters. Every text is checked
/// here before it is stored. Stored texts may contain any bytes, because other programs store texts, too.
inline void requirePlainText(const std::string& text, std::string_view fact)
{
  if (const std::string_view flaw = base::textFlaw(text); !flaw.empty())
    throw Error(ErrorKind::Invalid, fmt::format("{} ({})", fact, flaw));
}

} // namespace reeldb::app

#endif
