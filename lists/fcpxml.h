// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_FCPXML_H
#define REELDB_LISTS_FCPXML_H

#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// Reads the clips of FCPXML; docs/formats/fcpxml.md says what is understood. Throws Error if the file is damaged or is
/// nested without end.
List readFcpxml(std::string_view text);

} // namespace reeldb::lists

#endif
