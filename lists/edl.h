// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_EDL_H
#define REELDB_LISTS_EDL_H

#include <string_view>

#include "lists/list.h"

namespace reeldb::lists {

/// Reads decoded text as a cut list; never throws for what it holds.
List readEdl(std::string_view text, const ReadOptions& options = {});

} // namespace reeldb::lists

#endif
