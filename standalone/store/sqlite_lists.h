// SPDX-License-Identifier: Apache-2.0
//
// Reads the lists of a project from their tables. All functions throw sqlite::Failure, with cause Damaged if the tables
// hold data that no program of ours has written. REQUIRES: a transaction, and tables of a version with lists.
#ifndef REELDB_STORE_SQLITE_LISTS_H
#define REELDB_STORE_SQLITE_LISTS_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "reelhost/lists.h"
#include "store/sqlite.h"

namespace reelhost {

std::int64_t lastListNumber(sqlite::Database& database); ///< the highest number that a list ever had
void readListHeads(sqlite::Database& database, const std::function<void(KeptList&&)>& sink);
std::optional<std::vector<ListEvent>> eventsOf(sqlite::Database& database, std::int64_t list);
std::optional<KeptList> findList(sqlite::Database& database, std::int64_t number); ///< the whole list
std::optional<std::string> listBytes(sqlite::Database& database, const Digest& digest);

/// The bytes of a digest, as they are bound to a statement.
inline std::string_view textOf(const Digest& digest)
{
  return {reinterpret_cast<const char*>(digest.data()), digest.size()};
}

} // namespace reelhost

#endif
