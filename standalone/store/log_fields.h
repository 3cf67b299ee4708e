// SPDX-License-Identifier: Apache-2.0
//
// The order in which every store returns the configuration keys of a log.
#ifndef REELDB_STORE_LOG_FIELDS_H
#define REELDB_STORE_LOG_FIELDS_H

#include <cstddef>
#include <string_view>

#include "reelhost/material.h"
#include "reelhost/store.h"

namespace reelhost {

/// The place of @p key in shotTexts, whose keys come first; shotTexts.size() for any other key.
std::size_t leadingPlace(std::string_view key);

/// The same fields, those of shotTexts first, then all others ordered by their bytes. If a key occurs twice, its last
/// value is kept.
KeyValues arranged(const KeyValues& fields);

} // namespace reelhost

#endif
