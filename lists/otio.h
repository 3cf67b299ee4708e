// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_OTIO_H
#define REELDB_LISTS_OTIO_H

#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// Whether the text, without outer white space, begins like a timeline of OTIO.
bool isOtio(std::string_view text);

/// Reads a timeline of OTIO; docs/formats/otio.md says what is understood. Throws Error if the file is damaged or has
/// no timeline.
List readOtio(std::string_view text);

} // namespace reeldb::lists

#endif
