// SPDX-License-Identifier: Apache-2.0
//
// The order in which every store answers the configuration keys of a log.
#ifndef REELDB_STORE_LOG_FIELDS_H
#define REELDB_STORE_LOG_FIELDS_H

#include <array>
#include <cstddef>
#include <string_view>

#include "reelhost/store.h"

namespace reelhost {

/// The keys that come first, in this order. In a project file each is a column of its own (see sqlite_schema.cpp), and
/// its place here is the place of that column.
inline constexpr std::array<std::string_view, 8> leadingKeys = {"reelid",    "source_file", "source_in", "source_out",
                                                                "record_in", "record_out",  "tracks",    "aliases"};

/// The place of @p key among the leading keys; leadingKeys.size() when it is none of them.
std::size_t leadingPlace(std::string_view key);

/// The same fields, leading keys first, all others after them ordered by their bytes; of a key that comes twice the
/// last value stays.
KeyValues arranged(const KeyValues& fields);

} // namespace reelhost

#endif
