// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_XMEML_H
#define REELDB_LISTS_XMEML_H

#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// Reads sequences of xmeml; docs/formats/xmeml.md says what is understood. Throws Error if the file is damaged or has
/// no sequence.
List readXmeml(std::string_view text);

} // namespace reeldb::lists

#endif
