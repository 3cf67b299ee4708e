// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_SEARCH_ATTRIBUTES_H
#define REELHOST_MODEL_SEARCH_ATTRIBUTES_H

#include <utility>
#include <vector>

#include "host/edit.h"

namespace reelhost::model {

using SearchAttributes = std::vector<std::pair<LogAttributes::eLogAttribute, LightweightString<char>>>;

/// The attributes that were added to a Map, in order.
const SearchAttributes& attributesIn(const LogAttributes::Map& map);

} // namespace reelhost::model

#endif
