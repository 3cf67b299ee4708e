// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_WRITABLE_H
#define REELDB_LISTS_WRITABLE_H

#include <string>
#include <vector>

#include "lists/write.h"

namespace reeldb::lists {

/// The clips that a list can hold, with their texts writable; counts them, and notes what was changed or left out.
std::vector<Clip> writableClips(std::vector<Clip> clips, Written& written);

} // namespace reeldb::lists

#endif
